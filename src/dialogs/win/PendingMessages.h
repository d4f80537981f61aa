#pragma once

#include "base/win/Win32.h"

namespace quillon {

/// Handles the messages that are waiting, those of the dialog (may be null) with its keys. False when the program is
/// to end: the message that says so is left for the outer message loop.
[[nodiscard]] bool RunPendingMessages(HWND dialog);

}  // namespace quillon
