#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quillon {

/// The widest and highest picture that is written, in pixels.
inline constexpr std::int32_t kMostPngSide = 8192;

/// A picture as the graph has it.
struct PngPicture {
    std::span<const std::uint32_t> pixels;  ///< 0xRRGGBB, rows of the width from the top
    std::int32_t width = 0;
    std::int32_t height = 0;
    int dpi = 0;  ///< pixels per inch; 0: not told
};

/// The bytes of a PNG file (RFC 2083): with a palette where there are at most 256 colours, else with 24 bits per pixel.
/// Throws std::invalid_argument for a side outside 1 .. kMostPngSide or another number of pixels.
[[nodiscard]] std::vector<std::byte> PngBytes(const PngPicture& picture);

}  // namespace quillon
