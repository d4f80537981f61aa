#pragma once

#include "app/WindowPlacement.h"
#include "base/win/Win32.h"

namespace quillon {

/// Puts a hidden window where it was kept, onto the nearest monitor; a window that was maximised is to be shown
/// so, unless it is asked for as an icon.
void RestoreWindowPlace(HWND window, const WindowPlacement& kept, int& showCommand);

/// Remembers where the window is when it is neither an icon nor maximised, and whether it is the latter.
void KeepWindowPlace(HWND window, WindowPlacement& kept);

}  // namespace quillon
