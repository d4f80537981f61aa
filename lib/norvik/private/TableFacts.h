#pragma once

#include <vector>

#include "base/Bilingual.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/TableHead.h"
#include "norvik/private/TableRows.h"

namespace quillon {

/// What head and rows of a table tell together.
struct TableFacts {
    double rate = 1.0;  ///< Hz
    double startTime = 0.0;
    std::vector<ChannelDescription> channels;
    std::vector<FrameRun> stretches;
    std::vector<Bilingual> remarks;
};

/// Of the rows read so far, at least one; what may change with further ones is the rate, the stretches and the remarks.
[[nodiscard]] TableFacts FindTableFacts(const TableHead& head, const TableRows& rows, const ByteSource& source);

}  // namespace quillon
