#include "view/DataRange.h"

#include <algorithm>
#include <exception>
#include <vector>

#include "view/QL_ChUtils.h"

namespace quillon {

namespace {

/// The two extreme codes of every channel, each in any order.
std::vector<RunExtremes> ExtremeCodes(RecordingBlock& block, const std::vector<std::int16_t>& channels,
                                      const VisibleRange& samples) {
    std::vector<RunExtremes> extremes(channels.size());
    std::vector<RunExtremes*> targets;
    for (RunExtremes& entry : extremes) targets.push_back(&entry);
    const std::int32_t first = samples.first - 1;
    if (block.ColumnExtremes(channels, first, samples.Count(), samples.Count(), targets)) return extremes;
    std::vector<std::int16_t> codes;
    constexpr std::int32_t piece = 65536;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        for (std::int32_t done = 0; done < samples.Count(); done += piece) {
            codes.resize(static_cast<std::size_t>(std::min(piece, samples.Count() - done)));
            block.ReadCodes(channels[at], first + done, static_cast<std::int32_t>(codes.size()), codes.data());
            const auto [low, high] = std::minmax_element(codes.begin(), codes.end());
            if (done == 0) extremes[at] = {*low, *high};
            extremes[at] = {std::min(extremes[at].first, *low), std::max(extremes[at].second, *high)};
        }
    }
    return extremes;
}

}  // namespace

std::optional<ValueRange> RangeOf(const ViewBlock& block, const ChannelSlots& slots, const VisibleRange& samples) {
    const std::vector<std::int16_t> channels = ShownChannels(block, slots);
    if (!block.block || channels.empty() || samples.Count() < 1) return std::nullopt;
    try {
        const std::vector<RunExtremes> extremes = ExtremeCodes(*block.block, channels, samples);
        std::optional<ValueRange> range;
        for (std::size_t at = 0; at < channels.size(); ++at) {
            const auto channel = static_cast<std::size_t>(channels[at] - 1);
            if (block.invScale[channel] == 0.0F) continue;
            for (const std::int16_t code : {extremes[at].first, extremes[at].second}) {
                const float value = static_cast<float>(code) / block.invScale[channel] + block.offsets[channel];
                if (!range) range = ValueRange{value, value};
                range->minimum = std::min(range->minimum, value);
                range->maximum = std::max(range->maximum, value);
            }
        }
        return range;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::optional<ValueRange> TypicalRange(const ViewBlock& block, const ChannelSlots& slots) {
    constexpr std::int64_t fewBytes = 16 << 20;
    constexpr std::int32_t stretches = 16;
    constexpr std::int32_t stretchSamples = 16384;
    const std::int64_t bytes = std::int64_t{2} * block.sampleCount * block.channelCount;
    const bool few = bytes <= fewBytes || block.sampleCount <= stretches * stretchSamples;
    if (few) return RangeOf(block, slots, {1, block.sampleCount});
    std::optional<ValueRange> range;
    for (std::int64_t stretch = 0; stretch < stretches; ++stretch) {
        const auto first =
            static_cast<std::int32_t>(stretch * (block.sampleCount - stretchSamples) / (stretches - 1)) + 1;
        const std::optional<ValueRange> part = RangeOf(block, slots, {first, first + stretchSamples - 1});
        if (!part) continue;
        if (!range) range = part;
        range->minimum = std::min(range->minimum, part->minimum);
        range->maximum = std::max(range->maximum, part->maximum);
    }
    return range;
}

}  // namespace quillon
