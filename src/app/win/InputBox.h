#pragma once

#include <optional>
#include <string>

#include "base/win/Win32.h"

namespace quillon {

/// Texts of an input box, in the user's language.
struct InputBoxTexts {
    std::wstring title;
    std::wstring prompt;
    std::wstring ok;
    std::wstring cancel;
};

/// Asks for a line of text, pre-filled with `value`, of which the first `selected` characters are selected (0 or npos:
/// all). None when the user cancels. The box is laid out in dialog units, so that it is right at any density.
[[nodiscard]] std::optional<std::wstring> AskForText(HWND owner, const InputBoxTexts& texts, const std::wstring& value,
                                                     std::size_t selected = std::wstring::npos);

}  // namespace quillon
