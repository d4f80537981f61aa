#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <system_error>

#include "base/Bilingual.h"

/// Texts of the system's error numbers in both languages, whatever language the system has.
namespace quillon {

/// Of a number of GetLastError on Windows, of errno elsewhere.
[[nodiscard]] Bilingual SystemText(std::int64_t number);

/// Of a number of errno.
[[nodiscard]] Bilingual ErrnoText(int number);

/// Of either kind of number.
[[nodiscard]] Bilingual SystemText(const std::error_code& error);

/// what() of an exception; where it ends with a reason of the system, that reason in the given language.
[[nodiscard]] std::u16string WordsOf(const std::exception& error, Language language);

}  // namespace quillon
