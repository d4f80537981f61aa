#include "norvik/Bilingual.h"

namespace quillon {

namespace {

std::u16string Fill(std::u16string_view text, std::initializer_list<std::u16string> arguments) {
    std::u16string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool place = text[at] == u'%' && at + 1 < text.size() && text[at + 1] >= u'1' && text[at + 1] <= u'9';
        const auto index = place ? static_cast<std::size_t>(text[at + 1] - u'1') : arguments.size();
        if (index < arguments.size()) {
            out += arguments.begin()[index];
            ++at;
        } else {
            out.push_back(text[at]);
        }
    }
    return out;
}

}  // namespace

Bilingual Say(std::u16string_view english, std::u16string_view russian,
              std::initializer_list<std::u16string> arguments) {
    return {Fill(english, arguments), Fill(russian, arguments)};
}

}  // namespace quillon
