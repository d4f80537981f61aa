#include "app/GoToInput.h"

#include "app/StringIds.h"

namespace quillon {

namespace {

/// Whether a text says a place or a range, although the block may not have it.
bool IsUnderstood(std::u16string_view text, const ViewBlock& block, const FormatOptions& format) {
    const std::size_t dots = text.find(u"..");
    if (dots != text.npos)
        return IsUnderstood(text.substr(0, dots), block, format) && IsUnderstood(text.substr(dots + 2), block, format);
    return ParsePosition(text, block, format) || ParseLength(text, format);
}

}  // namespace

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
    if (!meaning.range && !meaning.sample)
        return {.refusal = IsUnderstood(typed.place, block, format) ? IDS_PLACE_BAD : IDS_PLACE_UNCLEAR};
    return meaning;
}

}  // namespace quillon
