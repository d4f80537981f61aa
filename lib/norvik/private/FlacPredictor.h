#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quillon {

// Samples out of residuals, in place: the first samples are whole ones, as many as the predictor has coefficients; what
// follows them are residuals (RFC 9639, 9.2.5 and 9.2.6). Arithmetic wraps around, so that damaged coefficients do no
// harm. Sample: std::int32_t, or std::int64_t where one needs 33 bits.

inline constexpr unsigned kFlacMostOrder = 32;
inline constexpr unsigned kFlacMostFixedOrder = 4;

/// Polynomial of order 0 to 4 through the samples before.
template <typename Sample>
void RestoreFixed(unsigned order, std::span<Sample> samples);

/// Sum of coefficients times samples, the nearest sample first, shifted right by `shift`. `narrow`: no such sum needs
/// more than 32 bits.
template <typename Sample>
void RestoreLinear(std::span<const std::int32_t> coefficients, unsigned shift, bool narrow, std::span<Sample> samples);

}  // namespace quillon
