#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/win/Win32.h"

namespace quillon::testing {

/// Waits in a thread that handles no messages, as one that acts as the user; false after some seconds.
[[nodiscard]] bool WaitUntil(const std::function<bool()>& condition);

/// Handles messages until the condition holds; false when it does not within a minute.
[[nodiscard]] bool PumpUntil(const std::function<bool()>& condition);

/// All windows inside one.
[[nodiscard]] std::vector<HWND> Descendants(HWND window);
/// The window with that number inside a dialog, on a page of it or directly; null: none.
[[nodiscard]] HWND FindChild(HWND dialog, int id);
[[nodiscard]] std::wstring ClassOf(HWND window);
/// The focus of the window's thread.
[[nodiscard]] HWND FocusOf(HWND window);
/// Takes a line of a combo box as the mouse does.
void ChooseLine(HWND combo, int line);

/// Every text of the dialog fits its control, and every line of a list the list.
void ExpectRoomForTexts(HWND dialog);

/// What the clipboard holds as text, up to its terminator.
[[nodiscard]] std::wstring ClipboardText();

}  // namespace quillon::testing
