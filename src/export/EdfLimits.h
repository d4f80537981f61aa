#pragma once

#include <optional>
#include <string>

namespace quillon {

/// The two points of the line from codes to values that a header of European Data Format holds: two codes, and their
/// values as texts of at most 8 characters.
struct EdfLimits {
    int digitalMinimum = -32000;
    int digitalMaximum = 32000;
    std::string physicalMinimum;
    std::string physicalMaximum;
};

/// Limits from which a reader, in double precision, computes code x scale + offset to half a code for every code of 16
/// bits: those of codes -32000 and 32000 if they are exact enough, else of codes as far apart as possible. None if no
/// limits are exact enough: a large offset leaves too few of the 8 characters for a fine scale.
[[nodiscard]] std::optional<EdfLimits> FindEdfLimits(float scale, float offset);

/// The same, but of codes as far apart as possible wherever that is exact enough: programs that keep to the digital
/// limits then read all codes as they are.
[[nodiscard]] std::optional<EdfLimits> FindWideEdfLimits(float scale, float offset);

using EdfLimitsFinder = std::optional<EdfLimits> (*)(float scale, float offset);

}  // namespace quillon
