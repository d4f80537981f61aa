#include "app/KV_Resources.h"

#include "base/win/Win32.h"

namespace quillon {

std::u16string ResourceText(Language language, int id) {
    // Strings lie in bundles of 16, each as a length and that many characters. The bundle is looked up by its language
    // because LoadString always takes the system's.
    constexpr int perBundle = 16;
    const WORD code = language == Language::Russian ? MAKELANGID(LANG_RUSSIAN, SUBLANG_DEFAULT)
                                                    : MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
    const HRSRC found = FindResourceExW(nullptr, RT_STRING, MAKEINTRESOURCEW(id / perBundle + 1), code);
    if (found == nullptr) return {};
    const auto* text = static_cast<const wchar_t*>(LockResource(LoadResource(nullptr, found)));
    if (text == nullptr) return {};
    for (int before = id % perBundle; before > 0; --before) text += 1 + *text;
    return Narrow16({text + 1, static_cast<std::size_t>(*text)});
}

Language InterfaceLanguage() {
    return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_RUSSIAN ? Language::Russian : Language::English;
}

char16_t DecimalSeparator() {
    wchar_t text[8] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, text, 8);
    return text[0] != L'\0' ? static_cast<char16_t>(text[0]) : u'.';
}

}  // namespace quillon
