#pragma once

#include <string>

#include "base/win/Win32.h"

namespace quillon {

/// Asks a question that is answered with Yes or No, the latter being the default. `owner` is disabled meanwhile; its
/// messages are handled.
[[nodiscard]] bool AskYesNo(HWND owner, const std::u16string& question, const std::u16string& title = u"Quillon");

}  // namespace quillon
