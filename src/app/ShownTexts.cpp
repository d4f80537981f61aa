#include "app/ShownTexts.h"

#include <map>
#include <set>
#include <vector>

#include "data/ChannelSelection.h"
#include "data/ShownText.h"
#include "data/UnitGroups.h"

namespace quillon {

namespace {

ShownSettings Effective(const Document& document) {
    ShownSettings settings = document.Shown();
    const double rate = document.Block().sampleRate;
    std::erase_if(settings.filters, [rate](const auto& filter) {
        return nsp::RefusalOf(filter.second, rate) != nsp::FilterRefusal::None;
    });
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
    const std::vector<std::int16_t> shown = ShownChannels(document.Block(), document.Slots());
    return ShownText(Effective(document), *document.Block().block, std::set(shown.begin(), shown.end()), language,
                     separator);
}

}  // namespace quillon
