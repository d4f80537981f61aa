#pragma once

#include <cstdint>
#include <span>

namespace quillon {

/// Inverts the lightness of pixels (0x..RRGGBB) and keeps their hue: every part c becomes c + 255 - max - min of the
/// three. White becomes black, a colour a lighter or darker one. Done twice it changes nothing; the highest byte
/// stays.
void InvertLightness(std::span<std::uint32_t> pixels);

}  // namespace quillon
