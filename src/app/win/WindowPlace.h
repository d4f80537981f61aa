#pragma once

#include "app/WindowPlacement.h"
#include "base/win/Win32.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// Moves a hidden window to its stored position, onto the nearest monitor; a window that was maximized is shown
/// maximized again, unless it is to be shown minimized. `density` of the window, which it changes itself (see
/// WM_DPICHANGED): the window is as large as it was when looked at.
void RestoreWindowPlace(HWND window, const WindowPlace& kept, const ScreenDensity& density, int& showCommand);

/// Remembers where the window is when it is neither minimized nor maximized, and whether it is maximized.
void KeepWindowPlace(HWND window, const ScreenDensity& density, WindowPlace& kept);

}  // namespace quillon
