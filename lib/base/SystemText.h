#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <system_error>

#include "base/Bilingual.h"

/// Why the system refused, in both languages, whatever the system's own.
namespace quillon {

/// Of a number of the system: GetLastError on Windows, errno elsewhere.
[[nodiscard]] Bilingual SystemText(std::int64_t number);

/// Of a number of the C library (errno).
[[nodiscard]] Bilingual ErrnoText(int number);

/// Of either kind of number.
[[nodiscard]] Bilingual SystemText(const std::error_code& error);

/// what() of an exception; where it ends with a reason of the system, that in the language.
[[nodiscard]] std::u16string WordsOf(const std::exception& error, Language language);

}  // namespace quillon
