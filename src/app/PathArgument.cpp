#include "app/PathArgument.h"

namespace quillon {

std::u16string PathArgument(std::u16string_view text) {
    constexpr std::u16string_view blanks = u" \t";
    const std::size_t start = text.find_first_not_of(blanks);
    if (start == std::u16string_view::npos) return {};
    text.remove_prefix(start);
    if (text.front() == u'"') {
        text.remove_prefix(1);
        text = text.substr(0, text.find(u'"'));
    }
    // By the usual rules "C:\folder\" in quotation marks ends with one of them, as its backslash precedes it. No name
    // holds that character.
    while (!text.empty() && (blanks.find(text.back()) != std::u16string_view::npos || text.back() == u'"'))
        text.remove_suffix(1);
    return std::u16string(text);
}

bool IsDevicePath(std::u16string_view path) {
    const auto separates = [&](std::size_t at) { return path[at] == u'\\' || path[at] == u'/'; };
    return path.size() >= 4 && separates(0) && separates(1) && path[2] == u'.' && separates(3);
}

}  // namespace quillon
