#pragma once

#include "app/Settings.h"
#include "base/win/Win32.h"

namespace quillon {

/// Puts a hidden window where the settings say, onto the nearest monitor; a window that was maximised is to be shown
/// so, unless it is asked for as an icon.
void RestoreWindowPlace(HWND window, const Settings& settings, int& showCommand);

/// Remembers where the window is when it is neither an icon nor maximised, and whether it is the latter.
void KeepWindowPlace(HWND window, Settings& settings);

}  // namespace quillon
