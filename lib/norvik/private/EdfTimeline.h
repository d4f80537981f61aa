#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/EdfAnnotations.h"
#include "norvik/private/EdfHeader.h"

namespace quillon {

/// Records that follow each other in time without a gap.
struct EdfStretch {
    std::uint64_t firstRecord = 0;
    std::uint64_t records = 0;
    double onset = 0.0;  ///< of the first record, in seconds since the start date
};

struct EdfTimeline {
    std::vector<EdfStretch> stretches;  ///< in the order of the file, at least one
    EdfAnnotations annotations;
    std::vector<Bilingual> notes;  ///< oddities
};

/// Reads the annotation signals of the whole file and cuts it into stretches: at every record of a discontinuous file
/// whose onset is off by more than half a sample of the fastest signal, and where a block would get too many samples.
/// What comes after `maxStretches` stretches is left out.
[[nodiscard]] EdfTimeline ReadEdfTimeline(const std::shared_ptr<ByteSource>& source, const EdfHeader& header,
                                          std::size_t maxStretches);

}  // namespace quillon
