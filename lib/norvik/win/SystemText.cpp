#include "norvik/win/SystemText.h"

#include "base/Text.h"

namespace quillon {

std::u16string SystemText(DWORD error) {
    wchar_t* text = nullptr;
    const DWORD size =
        ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                         nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::u16string copy(text, text + size);
    ::LocalFree(text);
    while (!copy.empty() && copy.back() <= u' ') copy.pop_back();
    return copy.empty() ? u"error " + Decimal(error) : copy;
}

}  // namespace quillon
