#include "view/DataRange.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <utility>
#include <vector>

#include "data/ChannelSelection.h"

namespace quillon {

std::vector<RunExtremes> ExtremeCodes(RecordingBlock& block, const std::vector<std::int16_t>& channels,
                                      const SampleSpan& samples) {
    std::vector<RunExtremes> extremes(channels.size());
    std::vector<RunExtremes*> targets;
    for (RunExtremes& entry : extremes) targets.push_back(&entry);
    if (block.ColumnExtremes(channels, samples.first, samples.count, samples.count, targets)) return extremes;
    std::vector<std::int16_t> codes;
    constexpr std::int32_t piece = 65536;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        for (std::int64_t start = 0; start < samples.count; start += piece) {
            const auto done = static_cast<std::int32_t>(start);
            codes.resize(static_cast<std::size_t>(std::min(piece, samples.count - done)));
            block.ReadCodes(channels[at], samples.first + done, static_cast<std::int32_t>(codes.size()), codes.data());
            const auto [low, high] = std::minmax_element(codes.begin(), codes.end());
            if (done == 0) extremes[at] = {*low, *high};
            extremes[at] = {std::min(extremes[at].first, *low), std::max(extremes[at].second, *high)};
        }
    }
    return extremes;
}

namespace {

/// Collects the extremes of the readable samples by halving ranges that cannot be read.
class ReadableGatherer {
  public:
    ReadableGatherer(RecordingBlock& block, const std::vector<std::int16_t>& channels)
        : m_block(block), m_channels(channels) {
        m_result.codes.resize(channels.size());
    }

    void Gather(const SampleSpan& samples) {
        try {
            Widen(ExtremeCodes(m_block, m_channels, samples));
        } catch (const std::exception& error) {
            m_result.failure = error.what();
            // If both ends are unreadable, the range is most likely a hole or the missing end of a file.
            const bool hopeless = samples.count == 1 || m_halvings == 0;
            if (hopeless || !(CanRead(samples.first) || CanRead(samples.End() - 1))) return;
            --m_halvings;
            const std::int32_t half = samples.count / 2;
            Gather({samples.first, half});
            Gather({samples.first + half, samples.count - half});
        }
    }
    [[nodiscard]] ReadableExtremes& Result() { return m_result; }

  private:
    [[nodiscard]] bool CanRead(std::int32_t sample) const try {
        std::int16_t code = 0;
        return m_block.ReadCodes(m_channels.back(), sample, 1, &code) == 0;
    } catch (const std::exception&) {
        return false;
    }
    void Widen(const std::vector<RunExtremes>& extremes) {
        for (std::size_t at = 0; at < extremes.size(); ++at) {
            const auto [low, high] = std::minmax(extremes[at].first, extremes[at].second);
            std::optional<RunExtremes>& codes = m_result.codes[at];
            if (!codes) codes = {low, high};
            codes = {std::min(codes->first, low), std::max(codes->second, high)};
        }
    }

    RecordingBlock& m_block;
    const std::vector<std::int16_t>& m_channels;
    ReadableExtremes m_result;
    int m_halvings = 10000;  ///< remaining; bounds the time for a file full of holes
};

/// Range in units of a channel's two extreme codes; none if its scale gives no finite values.
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

ReadableExtremes ReadableExtremeCodes(RecordingBlock& block, const std::vector<std::int16_t>& channels,
                                      const SampleSpan& samples) {
    ReadableGatherer gatherer(block, channels);
    try {
        const std::vector<RunExtremes> extremes = ExtremeCodes(block, channels, samples);
        return {{extremes.begin(), extremes.end()}, {}};
    } catch (const std::exception&) {
        // Then in pieces, so that little is lost when the halvings are used up.
        constexpr std::int32_t piece = 65536;
        for (std::int64_t first = samples.first; first < samples.End(); first += piece) {
            const auto from = static_cast<std::int32_t>(first);
            gatherer.Gather({from, std::min(piece, samples.End() - from)});
        }
    }
    return std::move(gatherer.Result());
}

void RangeRecords::ReadMissing(const ViewBlock& block, const std::vector<std::int16_t>& channels) {
    m_ranges.resize(block.channelNumbers.size());
    std::vector<std::int16_t> unknown;
    std::copy_if(channels.begin(), channels.end(), std::back_inserter(unknown),
                 [&](std::int16_t channel) { return !m_ranges[static_cast<std::size_t>(channel - 1)].whole; });
    if (unknown.empty()) return;
    const ReadableExtremes extremes = ReadableExtremeCodes(*block.block, unknown, {0, block.sampleCount});
    for (std::size_t at = 0; at < unknown.size(); ++at) {
        Record& record = m_ranges[static_cast<std::size_t>(unknown[at] - 1)];
        record = {extremes.failure.empty(), extremes.failure, std::nullopt};
        if (extremes.codes[at]) record.range = InUnits(block, unknown[at], *extremes.codes[at]);
    }
}

std::string RangeRecords::Failure() const {
    for (const Record& record : m_ranges) {
        if (!record.failure.empty()) return record.failure;
    }
    return {};
}

std::optional<ValueRange> RangeRecords::Of(const ViewBlock& block, const std::vector<std::int16_t>& channels) {
    if (!block.block || block.sampleCount < 1) return std::nullopt;
    ReadMissing(block, channels);
    std::optional<ValueRange> range;
    for (const std::int16_t channel : channels) Widen(range, m_ranges[static_cast<std::size_t>(channel - 1)].range);
    return range;
}

std::optional<ValueRange> RangeRecords::Of(const ViewBlock& block, std::int16_t channel) {
    if (!block.block || block.sampleCount < 1 || channel < 1 || channel > block.channelCount) return std::nullopt;
    ReadMissing(block, {channel});
    return m_ranges[static_cast<std::size_t>(channel - 1)].range;
}

namespace {

/// Peaks up to this much of the central range are those of the signal, as of an ECG; what is higher is an artefact.
constexpr float kPeaks = 2.0F;

}  // namespace

std::optional<ValueRange> CentralRange(const ViewBlock& block, std::span<const std::int16_t> channels,
                                       std::span<const std::vector<TracePoint>> points, bool rawCodes) {
    std::vector<float> values;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        for (const TracePoint& point : points[at]) {
            const auto code = static_cast<std::int16_t>(point.y);
            if (rawCodes) {
                values.push_back(static_cast<float>(code) / AmplitudeScale::kCodesPerUnit);
            } else if (const auto value = InUnits(block, channels[at], {code, code})) {
                values.push_back(value->minimum);
            }
        }
    }
    if (values.empty()) return std::nullopt;
    // Half of one percent is left out at either end.
    const auto outside = static_cast<std::ptrdiff_t>(values.size() / 200);
    const auto low = values.begin() + outside;
    const auto high = values.end() - 1 - outside;
    std::nth_element(values.begin(), low, values.end());
    const float minimum = *low;
    std::nth_element(low, high, values.end());
    const float maximum = *high;
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    const bool alike = !(minimum < maximum);
    return alike || *most - *least <= kPeaks * (maximum - minimum) ? ValueRange{*least, *most}
                                                                   : ValueRange{minimum, maximum};
}

}  // namespace quillon
