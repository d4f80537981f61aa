#include "base/SystemText.h"

#include "base/Text.h"
#include "base/win/Win32.h"

namespace quillon {

namespace {

constexpr DWORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
constexpr DWORD kRussian = MAKELANGID(LANG_RUSSIAN, SUBLANG_RUSSIAN_RUSSIA);
constexpr DWORD kAny = 0;

/// Empty where the system has no text of that language.
std::u16string Message(DWORD number, DWORD language) {
    wchar_t* text = nullptr;
    const DWORD size =
        ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                         nullptr, number, language, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::u16string copy(text, text + size);
    ::LocalFree(text);
    while (!copy.empty() && copy.back() <= u' ') copy.pop_back();
    return copy;
}

/// For systems that lack a language: the text of the errno that the error corresponds to; empty where there is none.
Bilingual OwnText(DWORD number) {
    if (number == ERROR_SHARING_VIOLATION || number == ERROR_LOCK_VIOLATION) {
        return Say(u"The file is in use by another program", u"Файл занят другой программой");
    }
    const std::error_condition condition = std::system_category().default_error_condition(static_cast<int>(number));
    return condition.category() == std::generic_category() ? ErrnoText(condition.value()) : Bilingual{};
}

}  // namespace

Bilingual SystemText(std::int64_t number) {
    const auto error = static_cast<DWORD>(number);
    Bilingual text{Message(error, kEnglish), Message(error, kRussian)};
    if (!text.english.empty() && !text.russian.empty()) return text;
    const Bilingual own = OwnText(error);
    const std::u16string any = Message(error, kAny);
    const auto fill = [&](std::u16string& line, const std::u16string& first, std::u16string_view word) {
        if (line.empty()) line = first;
        if (line.empty()) line = any;
        if (line.empty()) line = std::u16string(word) + Decimal(error);
    };
    fill(text.english, own.english, u"error ");
    fill(text.russian, own.russian, u"ошибка ");
    return text;
}

}  // namespace quillon
