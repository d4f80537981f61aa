#pragma once

#include <cstdint>
#include <vector>

#include "app/Commands.h"

namespace quillon {

/// Draws the picture of a button, size x size pixels, top row first, as 0xAARRGGBB with straight (not premultiplied)
/// alpha. The shapes are drawn at the size asked for, with smooth edges, so that they are crisp at any density; before
/// a dark background (0xRRGGBB) in lighter colours.
[[nodiscard]] std::vector<std::uint32_t> DrawIcon(Icon icon, int size, std::uint32_t background);

/// The picture of a disabled button before the same background.
[[nodiscard]] std::vector<std::uint32_t> Greyed(std::vector<std::uint32_t> pixels);

}  // namespace quillon
