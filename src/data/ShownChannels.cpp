#include "data/ShownChannels.h"

#include <algorithm>
#include <map>

#include "data/Montages.h"
#include "data/QL_Types.h"
#include "data/UnitGroups.h"

namespace quillon {

namespace {

/// What the block says of a channel. `number` counts from 1.
struct Stored {
    std::int16_t number;
    std::u16string title;
    UnitGroup group;
    double perCode;  ///< base units of the group
    double offset;   ///< in its own unit
    bool fills;      ///< see RecordingBlock::FillsCodes
};

std::vector<Stored> StoredChannels(const RecordingBlock& block) {
    std::vector<Stored> channels;
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        Stored found{channel,
                     block.ChannelTitle(channel),
                     GroupOf(block.ChannelUnit(channel)),
                     0.0,
                     static_cast<double>(block.ChannelOffset(channel)),
                     block.FillsCodes(channel)};
        found.perCode = static_cast<double>(block.ChannelScale(channel)) * found.group.factor;
        channels.push_back(std::move(found));
    }
    return channels;
}

std::vector<std::u16string> TitlesOf(const std::vector<Stored>& channels) {
    std::vector<std::u16string> titles;
    for (const Stored& each : channels) titles.push_back(each.title);
    return titles;
}

nsp::FilterSettings FilterOf(const Stored& channel, const ShownSettings& settings, double rate) {
    if (settings.unfiltered.contains(channel.title)) return {};
    return UsableAt(settings.FilterOf(channel.group.name), rate);
}

CommonSignal::Term TermOf(const Stored& channel, double share) {
    return {channel.number, static_cast<float>(channel.perCode * share)};
}

/// The channel less a common signal, if any, whose own value at code 0 is `commonOffset` base units.
ShownChannel Less(const Stored& channel, std::size_t common, double commonOffset, const nsp::FilterSettings& filter) {
    ShownChannel shown;
    shown.channel = channel.number;
    shown.title = channel.title;
    shown.filter = filter;
    double offset = channel.offset;
    // A channel without a scale has no values: nothing is subtracted from it.
    if (common != ShownChannel::kNone && channel.perCode != 0.0) {
        shown.common = common;
        shown.factor = static_cast<float>(1.0 / channel.perCode);
        offset -= commonOffset / channel.group.factor;
    }
    // A difference, and the deviation from the mean, reach as far as the whole range to either side.
    if (channel.fills && !shown.IsStored()) shown.coarser = 2.0F;
    // A high pass takes away what is constant.
    shown.offset = filter.highPass > 0.0 ? 0.0F : static_cast<float>(offset);
    return shown;
}

/// What is to be subtracted from the channels of a group.
struct GroupReference {
    std::size_t common = ShownChannel::kNone;
    double offset = 0.0;  ///< base units
};

GroupReference AddCommon(const std::vector<const Stored*>& parts, std::vector<CommonSignal>& commons) {
    GroupReference reference;
    if (parts.empty()) return reference;
    const double share = 1.0 / static_cast<double>(parts.size());
    CommonSignal signal;
    for (const Stored* part : parts) {
        signal.terms.push_back(TermOf(*part, share));
        reference.offset += part->offset * part->group.factor * share;
    }
    reference.common = commons.size();
    commons.push_back(std::move(signal));
    return reference;
}

std::map<std::u16string, GroupReference> ReferencesOf(const std::vector<Stored>& channels, const Reference& reference,
                                                      const std::vector<bool>& shown,
                                                      std::vector<CommonSignal>& commons) {
    std::map<std::u16string, std::vector<const Stored*>> parts;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        const Stored& channel = channels[at];
        const bool isPart = reference.kind == Reference::Kind::Average ? at < shown.size() && shown[at]
                                                                       : channel.title == reference.channel;
        std::vector<const Stored*>& group = parts[channel.group.name];
        // Of several channels of one title the first is meant.
        if (isPart && channel.perCode != 0.0 && (reference.kind == Reference::Kind::Average || group.empty()))
            group.push_back(&channel);
    }
    std::map<std::u16string, GroupReference> references;
    if (reference.kind == Reference::Kind::AsRecorded) return references;
    for (const auto& [name, group] : parts) {
        // The average of one channel is the channel.
        const std::size_t least = reference.kind == Reference::Kind::Average ? 2 : 1;
        if (group.size() >= least) references[name] = AddCommon(group, commons);
    }
    return references;
}

}  // namespace

bool ShownChannelSet::AreStored() const {
    return std::all_of(channels.begin(), channels.end(), [](const ShownChannel& each) { return each.IsStored(); });
}

nsp::FilterSettings UsableAt(nsp::FilterSettings settings, double rate) {
    if (settings.lowPass >= rate / 2.0) settings.lowPass = 0.0;
    if (settings.notch >= rate / 2.0) settings.notch = 0.0;
    if (nsp::RefusalOf(settings, rate) != nsp::FilterRefusal::None) return {};
    return settings;
}

ShownChannelSet ChannelsShown(const RecordingBlock& stored, const ShownSettings& settings,
                              const std::vector<bool>& shown) {
    const std::vector<Stored> channels = StoredChannels(stored);
    ShownChannelSet result;
    const auto references = ReferencesOf(channels, settings.reference, shown, result.commons);
    for (const Stored& channel : channels) {
        const nsp::FilterSettings filter = FilterOf(channel, settings, stored.SampleRate());
        const auto found = references.find(channel.group.name);
        GroupReference reference = found != references.end() ? found->second : GroupReference();
        // A reference channel itself stays what it is: its own trace would be a line.
        if (settings.reference.kind == Reference::Kind::Channel && channel.title == settings.reference.channel)
            reference = {};
        result.channels.push_back(Less(channel, reference.common, reference.offset, filter));
    }
    return result;
}

ShownChannelSet PairsShown(const RecordingBlock& stored, const ShownSettings& settings) {
    ShownChannelSet result;
    result.arePairs = true;
    if (!settings.montage) return result;
    const std::vector<Stored> channels = StoredChannels(stored);
    const std::vector<std::u16string> titles = TitlesOf(channels);
    std::u16string wrong;
    for (const ChannelPair& pair : PairsOf(settings.montage->pairs, wrong)) {
        const std::size_t first = ChannelNamed(pair.first, titles);
        const std::size_t second = ChannelNamed(pair.second, titles);
        if (first >= channels.size() || second >= channels.size() || first == second) continue;
        const Stored& one = channels[first];
        const Stored& other = channels[second];
        if (one.group.name != other.group.name || one.perCode == 0.0 || other.perCode == 0.0) continue;
        if (result.channels.size() >= static_cast<std::size_t>(kSlotCount)) break;
        const GroupReference reference = AddCommon({&other}, result.commons);
        result.channels.push_back(
            Less(one, reference.common, reference.offset, FilterOf(one, settings, stored.SampleRate())));
        result.channels.back().title = pair.Title();
    }
    return result;
}

}  // namespace quillon
