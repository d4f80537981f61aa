#include "base/Bilingual.h"

#include "base/Text.h"

namespace quillon {

FormatError::FormatError(Bilingual reason, Language language)
    : m_reason(std::move(reason)), m_what(Utf8(m_reason.In(language))) {}

Bilingual Say(std::u16string_view english, std::u16string_view russian,
              std::initializer_list<std::u16string> arguments) {
    return {FillPlaces(english, arguments), FillPlaces(russian, arguments)};
}

}  // namespace quillon
