#pragma once

#include <string>

#include "base/win/Win32.h"

namespace quillon {

/// The system's text for an error number, in the system's language.
[[nodiscard]] std::u16string SystemText(DWORD error);

}  // namespace quillon
