#include "data/win/AnsiText.h"

#include "base/win/Win32.h"

namespace quillon {

std::optional<std::string> ExactAnsi(std::wstring_view text) {
    if (text.empty()) return std::string();
    // UTF-8 as the ANSI code page takes neither this flag nor the question for substitutes; it fails by itself instead.
    const bool utf8 = GetACP() == CP_UTF8;
    const DWORD flags = utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    BOOL substituted = FALSE;
    const auto convert = [&](char* out, int size) {
        return WideCharToMultiByte(CP_ACP, flags, text.data(), static_cast<int>(text.size()), out, size, nullptr,
                                   utf8 ? nullptr : &substituted);
    };
    std::string ansi(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    if (ansi.empty() || convert(ansi.data(), static_cast<int>(ansi.size())) == 0 || substituted) return std::nullopt;
    return ansi;
}

}  // namespace quillon
