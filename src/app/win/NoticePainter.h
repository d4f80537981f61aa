#pragma once

#include "app/GraphNotice.h"
#include "base/win/Win32.h"
#include "view/GraphColors.h"

namespace quillon {

/// Draws a notice centred in a rectangle, wrapped to a readable width, its title in bold.
void PaintNotice(HDC dc, const RECT& place, const GraphNotice& notice, const GraphColors& colors, int dpi);

}  // namespace quillon
