#pragma once

#include <string>

#include "data/QL_Types.h"
#include "format/QL_Format.h"

namespace quillon {

/// Where a block of at least one sample begins and ends, as the time scale tells it: times, or numbers of samples.
struct OverviewTexts {
    std::u16string start;
    std::u16string end;
};
[[nodiscard]] OverviewTexts TextsOf(const ViewBlock& block, const FormatOptions& format);

}  // namespace quillon
