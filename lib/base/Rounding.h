#pragma once

#include <emmintrin.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace quillon {

/// Rounds to the nearest integer, halves to even, the rounding used everywhere in the program.
/// Throws std::range_error when the result (or a NaN) does not fit the target type.
template <typename Integer = std::int32_t>
[[nodiscard]] Integer RoundHalfEven(double value) {
    static_assert(sizeof(Integer) <= 4, "a double holds every value of the target exactly");
    const double rounded = std::nearbyint(value);
    if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
        throw std::range_error("a value does not fit its integer type");
    }
    return static_cast<Integer>(rounded);
}

/// The same for a value that is known to fit, for inner loops: the processor's own conversion, with equal results.
[[nodiscard]] inline std::int32_t RoundHalfEvenInRange(double value) {
    return _mm_cvtsd_si32(_mm_set_sd(value));
}

}  // namespace quillon
