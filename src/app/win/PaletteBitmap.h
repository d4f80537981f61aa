#pragma once

#include <cstdint>

#include "base/win/WinHandle.h"

namespace quillon {

/// A ramp of a palette's colours for a menu, the weakest at the left; opaque, of a size that suits the density.
[[nodiscard]] GdiBitmap MakePaletteBitmap(std::int16_t palette, int dpi);

}  // namespace quillon
