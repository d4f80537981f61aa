#include "app/GoToInput.h"

#include "app/StringIds.h"

namespace quillon {

GoToMeaning MeaningOf(const GoToTexts& typed, const GoToTexts& offered, const ViewBlock& block,
                      const FormatOptions& format, std::int32_t present) {
    GoToMeaning meaning;
    const bool newPage = typed.page != offered.page;
    if (newPage) {
        meaning.page = ParseLength(typed.page, format);
        if (!meaning.page) return {.refusal = IDS_PAGE_BAD};
    }
    if (newPage && typed.place == offered.place) return meaning;
    meaning.range = ParseRange(typed.place, block, format, present);
    if (!meaning.range) meaning.sample = ParsePosition(typed.place, block, format, present);
    if (!meaning.range && !meaning.sample) return {.refusal = IDS_PLACE_BAD};
    return meaning;
}

}  // namespace quillon
