#include "base/Bilingual.h"

#include <cassert>

#include "base/Text.h"

namespace quillon {

namespace {

/// Whether the text has places for exactly that many arguments.
[[maybe_unused]] bool HasPlaces(std::u16string_view text, std::size_t count) {
    std::size_t found = 0;
    for (char16_t digit = u'1'; digit <= u'9'; ++digit) {
        const bool used = text.find(std::u16string{u'%', digit}) != std::u16string_view::npos;
        found += used ? 1 : 0;
        if (used && static_cast<std::size_t>(digit - u'0') > count) return false;
    }
    return found == count;
}

}  // namespace

FormatError::FormatError(Bilingual reason, Language language)
    : m_reason(std::move(reason)), m_what(Utf8(m_reason.In(language))) {}

Bilingual Say(std::u16string_view english, std::u16string_view russian,
              std::initializer_list<std::u16string> arguments) {
    // A sentence without one of its numbers would not locate the fault.
    assert(HasPlaces(english, arguments.size()) && HasPlaces(russian, arguments.size()));
    return {FillPlaces(english, arguments), FillPlaces(russian, arguments)};
}

}  // namespace quillon
