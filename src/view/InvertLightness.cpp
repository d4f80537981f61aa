#include "view/InvertLightness.h"

#include <algorithm>

namespace quillon {

void InvertLightness(std::span<std::uint32_t> pixels) {
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t red = pixel >> 16 & 0xFF;
        const std::uint32_t green = pixel >> 8 & 0xFF;
        const std::uint32_t blue = pixel & 0xFF;
        const auto [least, most] = std::minmax({red, green, blue});
        // All components change by the same amount and stay within their bytes, so the three are added as one number,
        // modulo 2^32.
        pixel += 0x010101U * (255 - most - least);
    }
}

}  // namespace quillon
