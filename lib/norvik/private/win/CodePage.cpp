#include "norvik/private/win/CodePage.h"

#include <array>
#include <span>

#include "base/Text.h"

namespace quillon {

namespace {

/// Bytes of one character, the first `units` of `text`; 0 where it cannot be converted.
std::size_t Convert(UINT codePage, const wchar_t* text, int units, std::span<char> out) {
    const auto convert = [&](DWORD flags, const char* substitute) {
        return static_cast<std::size_t>(WideCharToMultiByte(codePage, flags, text, units, out.data(),
                                                            static_cast<int>(out.size()), substitute, nullptr));
    };
    // A best-fit letter would change the name. Code pages of all of Unicode take neither the flag nor a substitute.
    const std::size_t bytes = convert(WC_NO_BEST_FIT_CHARS, "?");
    return bytes != 0 ? bytes : convert(0, nullptr);
}

}  // namespace

std::string ToCodePage(UINT codePage, std::u16string_view text, std::size_t size) {
    const std::wstring wide(text.begin(), text.end());
    std::string result;
    for (std::size_t at = 0; at < wide.size();) {
        const bool pair = at + 1 < wide.size() && IS_SURROGATE_PAIR(wide[at], wide[at + 1]);
        std::array<char, 8> bytes{};
        const std::size_t count = Convert(codePage, wide.data() + at, pair ? 2 : 1, bytes);
        if (result.size() + count > size) break;
        result.append(bytes.data(), count);
        at += pair ? 2 : 1;
    }
    return result;
}

std::u16string FromCodePage(UINT codePage, std::string_view bytes) {
    if (bytes.empty() || codePage == CP_UTF8) return FromLatin1(bytes);
    std::wstring wide(bytes.size(), L'\0');  // no character takes more units than bytes
    const int units = MultiByteToWideChar(codePage, 0, bytes.data(), static_cast<int>(bytes.size()), wide.data(),
                                          static_cast<int>(wide.size()));
    if (units <= 0) return FromLatin1(bytes);
    return {wide.begin(), wide.begin() + units};
}

}  // namespace quillon
