#include "norvik/SystemBytes.h"

#include "base/Text.h"
#include "norvik/private/win/CodePage.h"

namespace quillon {

std::string SystemBytes(std::u16string_view text, std::size_t size) {
    return ToCodePage(GetACP(), text, size);
}

std::u16string FromUtf8OrSystemBytes(std::string_view bytes) {
    return IsValidUtf8(bytes) ? Utf16(bytes) : FromCodePage(GetACP(), bytes);
}

}  // namespace quillon
