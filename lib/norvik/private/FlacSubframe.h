#pragma once

#include <cstdint>
#include <span>

#include "norvik/private/FlacBits.h"

namespace quillon {

/// Reads one channel of a frame (RFC 9639, 9.2) into `samples`, as many as the frame has. `depth`: bits of a sample, 4
/// to 33; above 32, Sample is std::int64_t. False where the bits mean nothing; the samples are then of no use. The
/// check sum of the frame tells whether they are right.
template <typename Sample>
[[nodiscard]] bool ReadFlacSubframe(FlacBits& bits, unsigned depth, std::span<Sample> samples);

}  // namespace quillon
