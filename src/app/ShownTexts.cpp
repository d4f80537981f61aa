#include "app/ShownTexts.h"

#include <set>

#include "data/ShownChannels.h"
#include "data/ShownText.h"
#include "data/UnitGroups.h"

namespace quillon {

namespace {

ShownSettings Effective(const Document& document) {
    ShownSettings settings = document.Shown();
    const double rate = document.Block().sampleRate;
    for (auto& [group, filter] : settings.filters) filter = UsableAt(filter, rate);
    return settings;
}

}  // namespace

std::u16string TextOfCurrent(const Document& document, Language language, char16_t separator) {
    const std::int16_t channel = document.CurrentChannel();
    if (!document.Block().block || channel < 1 || channel > document.Block().channelCount) return {};
    const Signal signal = document.GetSignal(channel);
    const std::u16string group = GroupOf(signal.unit).name;
    ShownSettings settings = Effective(document);
    if (settings.unfiltered.contains(signal.title)) settings.filters.erase(group);
    return ShownText(settings, group, language, separator);
}

std::u16string TextOfShown(const Document& document, Language language, char16_t separator) {
    if (!document.Block().block) return {};
    std::set<std::int16_t> shown;
    for (std::int16_t channel = 1; channel <= document.Block().channelCount; ++channel) {
        if (document.IsShown(channel)) shown.insert(channel);
    }
    return ShownText(Effective(document), *document.Block().block, shown, language, separator);
}

}  // namespace quillon
