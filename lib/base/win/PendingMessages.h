#pragma once

#include <functional>

#include "base/win/Win32.h"

namespace quillon {

/// Handles the messages that are waiting, but for those for which `take` returns true: it has handled or dropped them.
/// False when the program is to end: the message that says so is left for the outer message loop.
bool RunPendingMessages(const std::function<bool(MSG& message)>& take = {});

/// Whether a message is of keyboard or mouse.
[[nodiscard]] bool IsInput(UINT message);

}  // namespace quillon
