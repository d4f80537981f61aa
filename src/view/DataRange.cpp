#include "view/DataRange.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <vector>

#include "data/ChannelSelection.h"

namespace quillon {

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
        for (std::int64_t start = 0; start < samples.Count(); start += piece) {
            const auto done = static_cast<std::int32_t>(start);
            codes.resize(static_cast<std::size_t>(std::min(piece, samples.Count() - done)));
            block.ReadCodes(channels[at], first + done, static_cast<std::int32_t>(codes.size()), codes.data());
            const auto [low, high] = std::minmax_element(codes.begin(), codes.end());
            if (done == 0) extremes[at] = {*low, *high};
            extremes[at] = {std::min(extremes[at].first, *low), std::max(extremes[at].second, *high)};
        }
    }
    return extremes;
}

namespace {

/// Range in units of a channel's two extreme codes; none where its scale makes no finite values.
std::optional<ValueRange> InUnits(const ViewBlock& block, std::int16_t channel, RunExtremes codes) {
    const auto at = static_cast<std::size_t>(channel - 1);
    if (block.invScale[at] == 0.0F) return std::nullopt;
    const float first = static_cast<float>(codes.first) / block.invScale[at] + block.offsets[at];
    const float second = static_cast<float>(codes.second) / block.invScale[at] + block.offsets[at];
    if (!std::isfinite(first) || !std::isfinite(second)) return std::nullopt;
    return ValueRange{std::min(first, second), std::max(first, second)};
}

void Widen(std::optional<ValueRange>& range, const std::optional<ValueRange>& other) {
    if (!other) return;
    if (!range) range = other;
    range->minimum = std::min(range->minimum, other->minimum);
    range->maximum = std::max(range->maximum, other->maximum);
}

}  // namespace

std::optional<ValueRange> RangeOf(const ViewBlock& block, const ChannelSlots& slots, const VisibleRange& samples) {
    const std::vector<std::int16_t> channels = ShownChannels(block, slots);
    if (!block.block || channels.empty() || samples.Count() < 1) return std::nullopt;
    std::optional<ValueRange> range;
    try {
        const std::vector<RunExtremes> extremes = ExtremeCodes(*block.block, channels, samples);
        for (std::size_t at = 0; at < channels.size(); ++at) Widen(range, InUnits(block, channels[at], extremes[at]));
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return range;
}

void RangeRecords::Learn(const ViewBlock& block, const std::vector<std::int16_t>& channels) {
    m_ranges.resize(block.channelNumbers.size());
    std::vector<std::int16_t> unknown;
    std::copy_if(channels.begin(), channels.end(), std::back_inserter(unknown),
                 [&](std::int16_t channel) { return !m_ranges[static_cast<std::size_t>(channel - 1)].known; });
    if (unknown.empty()) return;
    try {
        const std::vector<RunExtremes> extremes = ExtremeCodes(*block.block, unknown, {1, block.sampleCount});
        for (std::size_t at = 0; at < unknown.size(); ++at) {
            m_ranges[static_cast<std::size_t>(unknown[at] - 1)] = {true, InUnits(block, unknown[at], extremes[at])};
        }
    } catch (const std::exception&) {
        // What could not be read stays unknown and is tried again at the next need.
    }
}

std::optional<ValueRange> RangeRecords::OfShown(const ViewBlock& block, const ChannelSlots& slots) {
    if (!block.block || block.sampleCount < 1) return std::nullopt;
    const std::vector<std::int16_t> shown = ShownChannels(block, slots);
    Learn(block, shown);
    std::optional<ValueRange> range;
    for (const std::int16_t channel : shown) Widen(range, m_ranges[static_cast<std::size_t>(channel - 1)].range);
    return range;
}

std::optional<ValueRange> RangeRecords::Of(const ViewBlock& block, std::int16_t channel) {
    if (!block.block || block.sampleCount < 1 || channel < 1 || channel > block.channelCount) return std::nullopt;
    Learn(block, {channel});
    return m_ranges[static_cast<std::size_t>(channel - 1)].range;
}

std::optional<ValueRange> TypicalRange(const ViewBlock& block, const ChannelSlots& slots, bool rawCodes) {
    if (rawCodes) {
        // As a block of channels whose unit is the one in which the scale counts codes.
        ViewBlock codes = block;
        codes.invScale.assign(block.invScale.size(), AmplitudeScale::kCodesPerUnit);
        codes.offsets.assign(block.offsets.size(), 0.0F);
        return TypicalRange(codes, slots, false);
    }
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
        Widen(range, RangeOf(block, slots, {first, first + stretchSamples - 1}));
    }
    return range;
}

}  // namespace quillon
