#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/win/Win32.h"

namespace quillon {

/// At most `size` bytes in a code page, ended behind a whole character; "?" for each character that it has not.
[[nodiscard]] std::string ToCodePage(UINT codePage, std::u16string_view text, std::size_t size);

/// Text of a code page; of ISO 8859-1 where that is UTF-8, since only what is no UTF-8 is given here.
[[nodiscard]] std::u16string FromCodePage(UINT codePage, std::string_view bytes);

}  // namespace quillon
