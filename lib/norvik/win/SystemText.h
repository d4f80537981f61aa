#pragma once

#include <windows.h>

#include <string>

namespace quillon {

/// The system's text for an error number, in the system's language.
[[nodiscard]] std::u16string SystemText(DWORD error);

}  // namespace quillon
