#pragma once

#include <cstddef>
#include <cstdint>

namespace quillon {

/// The check sums of a FLAC frame (RFC 9639, 9.1.8 and 9.3): most significant bit first, begun with 0.

/// Polynomial x^8 + x^2 + x + 1, over the header of a frame.
[[nodiscard]] std::uint8_t FlacCrc8(const std::uint8_t* bytes, std::size_t count);
/// Polynomial x^16 + x^15 + x^2 + 1, over a whole frame but for the sum itself.
[[nodiscard]] std::uint16_t FlacCrc16(const std::uint8_t* bytes, std::size_t count);

}  // namespace quillon
