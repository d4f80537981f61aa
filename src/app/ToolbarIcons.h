#pragma once

#include <cstdint>
#include <vector>

#include "app/Commands.h"

namespace quillon {

/// Draws the picture of a button, size x size pixels, top row first, as 0xAARRGGBB with straight (not premultiplied)
/// alpha. The shapes are drawn at the size asked for, with smooth edges, so that they are crisp at any density.
[[nodiscard]] std::vector<std::uint32_t> DrawIcon(Icon icon, int size);

/// The picture of a disabled button.
[[nodiscard]] std::vector<std::uint32_t> Greyed(std::vector<std::uint32_t> pixels);

}  // namespace quillon
