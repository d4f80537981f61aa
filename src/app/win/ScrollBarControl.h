#pragma once

#include "app/ScrollBars.h"
#include "base/win/Win32.h"

namespace quillon {

/// Current position of a dragged thumb; WM_HSCROLL and WM_VSCROLL carry only 16 bits of it.
[[nodiscard]] int TrackPosition(HWND scrollBar);

void ShowBar(HWND scrollBar, const ScrollBarValues& values, bool enabled);

}  // namespace quillon
