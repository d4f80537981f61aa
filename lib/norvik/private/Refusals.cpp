#include "norvik/private/Refusals.h"

#include "base/Bilingual.h"
#include "base/Text.h"

namespace quillon {

std::u16string Number(std::uint64_t number) {
    return Decimal(static_cast<std::int64_t>(number));
}

void RefuseCutHeader(std::uint64_t size, std::uint64_t needed) {
    throw FormatError(Say(u"the header ends at byte %1 of %2", u"заголовок обрывается на байте %1 из %2",
                          {Number(size), Number(needed)}));
}

void RefuseField(std::u16string_view english, std::u16string_view russian, const std::u16string& value,
                 std::uint64_t place) {
    throw FormatError(Say(std::u16string(english) + u" %1 at byte %2", std::u16string(russian) + u" %1 в байте %2",
                          {value, Number(place)}));
}

void RefuseField(std::u16string_view english, std::u16string_view russian, std::uint64_t value, std::uint64_t place) {
    RefuseField(english, russian, Number(value), place);
}

void RefuseMissingChunk(std::u16string_view name, std::uint64_t first, std::uint64_t size) {
    throw FormatError(Say(u"no \"%1\" chunk from byte %2 to %3", u"нет блока \"%1\" в байтах с %2 по %3",
                          {std::u16string(name), Number(first), Number(size)}));
}

}  // namespace quillon
