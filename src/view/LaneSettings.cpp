#include "view/LaneSettings.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "view/ScaleSteps.h"

namespace quillon {

namespace {

/// No unit has blanks in front.
constexpr const char16_t* kCodes = u" codes";

double FiniteOr0(double value) {
    return std::isfinite(value) ? value : 0.0;
}

}  // namespace

std::vector<LaneChannel> LaneChannelsOf(const ViewBlock& block, const ChannelSlots& slots, bool rawCodes) {
    std::vector<LaneChannel> channels;
    std::map<std::u16string, int> titles;
    for (std::size_t at = 0; at < block.channelNumbers.size(); ++at) {
        const std::int16_t number = block.channelNumbers[at];
        const ChannelSlot* const slot = SlotOf(slots, number);
        LaneChannel channel;
        if (slot != nullptr) channel.title = slot->title;
        if (channel.title.empty()) channel.title = u"Ch " + Decimal(number + 1);
        channel.key = channel.title;
        // No title has a control character.
        if (const int count = ++titles[channel.title]; count > 1) channel.key += u'\x1F' + Decimal(count);
        channel.shown = slot != nullptr && slot->shown;
        channel.group = rawCodes ? UnitGroup{kCodes} : GroupOf(slot != nullptr ? slot->unit : std::u16string());
        const auto invScale = static_cast<double>(block.invScale[at]);
        channel.perCode = rawCodes ? 1.0 : invScale == 0.0 ? 0.0 : FiniteOr0(1.0 / invScale);
        channel.offset = rawCodes ? 0.0 : FiniteOr0(static_cast<double>(block.offsets[at]));
        channels.push_back(std::move(channel));
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
    std::map<std::u16string_view, std::size_t> ranks;
    for (const std::u16string& key : order) ranks.emplace(key, ranks.size());
    std::vector<std::size_t> known;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        if (ranks.contains(channels[at].key)) known.push_back(at);
    }
    std::vector<std::size_t> sorted = known;
    std::sort(sorted.begin(), sorted.end(),
              [&](std::size_t a, std::size_t b) { return ranks.at(channels[a].key) < ranks.at(channels[b].key); });
    std::vector<std::size_t> positions;
    for (std::size_t at = 0; at < channels.size(); ++at) positions.push_back(at);
    for (std::size_t at = 0; at < known.size(); ++at) positions[known[at]] = sorted[at];
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
