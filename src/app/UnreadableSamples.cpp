#include "app/UnreadableSamples.h"

#include <utility>

#include "app/StringIds.h"
#include "base/Text.h"

namespace quillon {

std::optional<std::u16string> UnreadableSamples::Tell(const Facts& facts, const UserServices& services) {
    const bool inView = !facts.inView.empty();
    const std::string& reason = inView ? facts.inView : facts.inRanges;
    if (reason.empty()) {
        if (!facts.wholeView || std::exchange(m_told, {}).empty()) return std::nullopt;
        return std::u16string();
    }
    const std::u16string text =
        facts.fileName + u": " + services.Text(inView ? IDS_UNREADABLE : IDS_RANGE_PARTIAL) + u": " + Utf16(reason);
    const bool isNew = std::exchange(m_told, text) != text;
    return inView || isNew ? std::optional(text) : std::nullopt;
}

}  // namespace quillon
