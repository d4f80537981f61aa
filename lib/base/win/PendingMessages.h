#pragma once

#include "base/win/Win32.h"

namespace quillon {

enum class PendingInput { Handled, Dropped };

/// Handles the messages that are waiting, those of the dialog (may be null) with its keys; keys and mouse can be
/// dropped, so that they start nothing while a command runs. False when the program is to end: the message that says so
/// is left for the outer message loop.
bool RunPendingMessages(HWND dialog, PendingInput input = PendingInput::Handled);

}  // namespace quillon
