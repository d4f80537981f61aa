#pragma once

#include <string>

#include "base/Language.h"

namespace quillon {

/// Localised string of app/StringIds.h from the program's string table of that language; empty when there is none.
[[nodiscard]] std::u16string ResourceText(Language language, int id);

/// Russian when that is the system's interface language, else English.
[[nodiscard]] Language InterfaceLanguage();

/// The system's decimal separator.
[[nodiscard]] char16_t DecimalSeparator();

}  // namespace quillon
