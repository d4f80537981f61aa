#include "view/LaneSettings.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <utility>

#include "base/Text.h"
#include "data/ShownChannels.h"
#include "view/ScaleSteps.h"

namespace quillon {

namespace {

/// No unit has blanks in front.
constexpr const char16_t* kCodes = u" codes";

double FiniteOr0(double value) {
    return std::isfinite(value) ? value : 0.0;
}

bool IsHighPassed(const Signal& signal, const ShownSettings& settings) {
    if (signal.block.block == signal.block.stored || settings.unfiltered.contains(signal.title)) return false;
    const nsp::FilterSettings filter = settings.FilterOf(GroupOf(signal.unit).name);
    return UsableAt(filter, signal.block.sampleRate).highPass > 0.0;
}

}  // namespace

std::vector<LaneChannel> LaneChannelsOf(const Document& document, bool rawCodes) {
    std::vector<LaneChannel> channels(static_cast<std::size_t>(document.SignalCount()));
    std::map<std::u16string, int> titles;
    std::size_t place = 0;
    for (const std::int16_t number : document.SignalOrder()) {
        const Signal signal = document.GetSignal(number);
        const auto at = static_cast<std::size_t>(signal.channel - 1);
        LaneChannel& channel = channels[static_cast<std::size_t>(number - 1)];
        channel.number = signal.block.channelNumbers[at];
        channel.place = place++;
        channel.title = signal.title;
        if (channel.title.empty()) channel.title = u"Ch " + Decimal(channel.number + 1);
        channel.key = channel.title;
        // No title has a control character.
        if (const int count = ++titles[channel.title]; count > 1) channel.key += u'\x1F' + Decimal(count);
        channel.shown = signal.shown;
        channel.isHighPassed = IsHighPassed(signal, document.Shown());
        channel.group = rawCodes ? UnitGroup{kCodes} : GroupOf(signal.unit);
        const auto invScale = static_cast<double>(signal.block.invScale[at]);
        channel.perCode = rawCodes ? 1.0 : invScale == 0.0 ? 0.0 : FiniteOr0(1.0 / invScale);
        channel.offset = rawCodes ? 0.0 : FiniteOr0(static_cast<double>(signal.block.offsets[at]));
    }
    return channels;
}

int LaneScales::StepOf(const UnitGroup& group) const {
    const auto found = groups.find(group.name);
    return found == groups.end() ? 0 : found->second;
}

LaneScales::Own LaneScales::OwnOf(const LaneChannel& channel) const {
    const auto found = channels.find(channel.key);
    return found == channels.end() ? Own{} : found->second;
}

double LaneScales::ValuesPerLane(const LaneChannel& channel) const {
    return StepValue(StepOf(channel.group)) / (StepValue(OwnOf(channel).step) * channel.group.factor);
}

std::vector<std::size_t> LaneOrder(const std::vector<LaneChannel>& channels, const std::vector<std::u16string>& order) {
    std::vector<std::size_t> positions(channels.size());
    std::iota(positions.begin(), positions.end(), std::size_t{0});
    std::stable_sort(positions.begin(), positions.end(),
                     [&](std::size_t a, std::size_t b) { return channels[a].place < channels[b].place; });
    std::map<std::u16string_view, std::size_t> ranks;
    for (const std::u16string& key : order) ranks.emplace(key, ranks.size());
    const auto isKnown = [&](std::size_t at) { return ranks.contains(channels[at].key); };
    std::vector<std::size_t> sorted;
    std::copy_if(positions.begin(), positions.end(), std::back_inserter(sorted), isKnown);
    std::sort(sorted.begin(), sorted.end(),
              [&](std::size_t a, std::size_t b) { return ranks.at(channels[a].key) < ranks.at(channels[b].key); });
    auto next = sorted.begin();
    for (std::size_t& at : positions) {
        if (isKnown(at)) at = *next++;
    }
    return positions;
}

void SetLaneOrder(const std::vector<LaneChannel>& channels, const std::vector<std::size_t>& positions,
                  std::vector<std::u16string>& order) {
    const auto isOfBlock = [&](const std::u16string& key) {
        return std::any_of(channels.begin(), channels.end(),
                           [&](const LaneChannel& channel) { return channel.key == key; });
    };
    const auto first = std::find_if(order.begin(), order.end(), isOfBlock) - order.begin();
    std::erase_if(order, isOfBlock);
    std::vector<std::u16string> keys;
    for (const std::size_t at : positions) keys.push_back(channels[at].key);
    order.insert(order.begin() + first, std::make_move_iterator(keys.begin()), std::make_move_iterator(keys.end()));
}

}  // namespace quillon
