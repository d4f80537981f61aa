#include "norvik/SystemBytes.h"

#include "base/Text.h"

namespace quillon {

std::string SystemBytes(std::u16string_view text, std::size_t size) {
    return Utf8Within(text, size);
}

std::u16string FromUtf8OrSystemBytes(std::string_view bytes) {
    return FromUtf8OrLatin1(bytes);
}

}  // namespace quillon
