#include "norvik/Bilingual.h"

#include "base/Text.h"

namespace quillon {

Bilingual Say(std::u16string_view english, std::u16string_view russian,
              std::initializer_list<std::u16string> arguments) {
    return {FillPlaces(english, arguments), FillPlaces(russian, arguments)};
}

}  // namespace quillon
