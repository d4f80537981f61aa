#pragma once

#include "app/WindowPlacement.h"
#include "base/win/Win32.h"

namespace quillon {

/// Moves a hidden window to its stored position, onto the nearest monitor; a window that was maximized is shown
/// maximized again, unless it is to be shown minimized.
void RestoreWindowPlace(HWND window, const WindowPlace& kept, int& showCommand);

/// Remembers where the window is when it is neither minimized nor maximized, and whether it is maximized.
void KeepWindowPlace(HWND window, WindowPlace& kept);

}  // namespace quillon
