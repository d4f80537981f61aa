#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/QL_Types.h"
#include "format/QL_Format.h"
#include "view/TimeAxis.h"

namespace quillon {

/// A mark of the time scale of a free axis.
struct TimeTick {
    std::int32_t column = 0;  ///< of the graph
    std::u16string text;      ///< of a major one
    bool major = false;
    friend bool operator==(const TimeTick&, const TimeTick&) = default;
};

/// The round marks that the graph shows, from left to right, as far as the graph is wide. Major ones are 60 to 140
/// pixels apart at 96 dpi, or as far as their texts need.
///
/// Steps are 1, 2 and 5 times a power of ten of a second below 10 s, then 10, 15, 20, 30 s, 1, 2, 5, 10, 15, 20, 30
/// min, 1, 2, 3, 6, 12 h and days; numbers of minutes and sample numbers have 1, 2 and 5 times powers of ten. Times of
/// day are round clock times, with the date instead of midnight; sample numbers count from 1. Where a mark lies and
/// what it says does not depend on the part that is shown.
[[nodiscard]] std::vector<TimeTick> TimeTicks(const TimeAxis& axis, const ViewBlock& block, const FormatOptions& format,
                                              int dpi = 96);

}  // namespace quillon
