#pragma once

#include <algorithm>
#include <cstdint>

namespace quillon {

/// Lengths of windows are thought of in pixels of a screen of 96 per inch: pixels that one takes at `dpi` per inch, to
/// the nearest, halves away from 0 as the system's MulDiv does.
[[nodiscard]] constexpr std::int32_t ScaledTo(int dpi, std::int32_t pixels) {
    const std::int64_t product = std::int64_t{pixels} * dpi;
    return static_cast<std::int32_t>((product < 0 ? product - 48 : product + 48) / 96);
}

/// The same for the width of a line, which is at least one pixel.
[[nodiscard]] constexpr std::int32_t LineAt(int dpi, std::int32_t pixels = 1) {
    return std::max(ScaledTo(dpi, pixels), std::int32_t{1});
}

/// A length that was measured at one density, at another; both in pixels per inch.
[[nodiscard]] constexpr std::int32_t Converted(std::int32_t pixels, int from, int to) {
    if (from == to || from < 1) return pixels;
    const std::int64_t product = std::int64_t{pixels} * to;
    return static_cast<std::int32_t>((product < 0 ? product - from / 2 : product + from / 2) / from);
}

}  // namespace quillon
