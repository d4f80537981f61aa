#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillon {

/// Number of the graph's pointers: 0 a cross with a gap in the middle, 1 a target, 2 a target with an empty middle, 3 a
/// square with a dot.
inline constexpr int kCursorStyles = 4;

/// A pointer of two colours. Both masks have one bit per pixel, the highest of a byte first; rows follow each other
/// from the top and begin at even bytes.
struct CursorPicture {
    std::vector<std::uint8_t> kept;   ///< set where the screen shows through
    std::vector<std::uint8_t> white;  ///< set where the pointer is white; elsewhere it is black
};

/// The pointer, black with a white outline, about the pixel (width / 2, height / 2).
[[nodiscard]] CursorPicture DrawCursor(std::size_t style, int width, int height);

}  // namespace quillon
