#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/win/Win32.h"

namespace quillon {

/// A box with lines to be filled in. Its texts are in the user's language.
struct InputBox {
    struct Line {
        std::wstring prompt;
        std::wstring text;  ///< at first
    };
    std::wstring title;
    std::wstring ok;
    std::wstring cancel;
    std::vector<Line> lines;
    std::size_t selected = std::wstring::npos;  ///< characters of the first line selected at first; 0 or npos: all
    /// What is wrong with the texts; it is told in the box, which then stays open. Empty where nothing is.
    std::function<std::wstring(const std::vector<std::wstring>& texts)> refusal{};
};

/// Shows the box and returns its texts. None when the user cancels. The box is laid out in dialog units, so that it is
/// right at any density.
[[nodiscard]] std::optional<std::vector<std::wstring>> AskForText(HWND owner, const InputBox& box);

}  // namespace quillon
