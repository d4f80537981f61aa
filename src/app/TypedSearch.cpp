#include "app/TypedSearch.h"

#include <algorithm>

#include "base/Text.h"

namespace quillon {

namespace {

std::optional<int> Find(const std::u16string& beginning, std::span<const std::u16string> names, int from) {
    const int count = static_cast<int>(names.size());
    for (int step = 0; step < count; ++step) {
        const int at = (from + step) % count;
        if (LowerCase(names[static_cast<std::size_t>(at)]).starts_with(beginning)) return at;
    }
    return std::nullopt;
}

}  // namespace

std::optional<int> TypedSearch::Type(char16_t letter, std::uint32_t time, std::span<const std::u16string> names,
                                     int selected) {
    if (time - m_last > kPause) Begin();
    m_last = time;
    const std::u16string typed = LowerCase(std::u16string(1, letter));
    const std::u16string longer = m_typed + typed;
    const bool isFirst = m_typed.empty();
    // What fits already stays selected while more of it is typed.
    std::optional<int> found = Find(longer, names, isFirst ? selected + 1 : std::max(selected, 0));
    if (found) {
        m_typed = longer;
    } else if (longer.find_first_not_of(typed) == longer.npos) {
        found = Find(typed, names, selected + 1);
    }
    return found;
}

}  // namespace quillon
