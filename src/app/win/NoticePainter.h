#pragma once

#include "app/GraphNotice.h"
#include "base/win/Win32.h"

namespace quillon {

/// Writes a notice in the middle of a place, wrapped to a width that reads well, its title in bold.
void PaintNotice(HDC dc, const RECT& place, const GraphNotice& notice, int dpi);

}  // namespace quillon
