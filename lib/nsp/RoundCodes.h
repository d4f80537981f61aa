#pragma once

#include <cstddef>
#include <cstdint>

namespace quillon::nsp {

/// Values to the nearest codes, halves to the even one; values that 16 bits cannot hold become the limit of them, and
/// what is no number becomes the lower limit.
void RoundToCodes(const float* values, std::size_t count, std::int16_t* codes);

}  // namespace quillon::nsp
