#include "view/DataRange.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <utility>
#include <vector>

#include "data/ChannelSelection.h"

namespace quillon {

std::vector<RunExtremes> ExtremeCodes(RecordingBlock& block, std::span<const std::int16_t> channels,
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
    ReadableGatherer(RecordingBlock& block, std::span<const std::int16_t> channels, int searches)
        : m_block(block), m_channels(channels), m_halvings(searches) {
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
    std::span<const std::int16_t> m_channels;
    ReadableExtremes m_result;
    int m_halvings;  ///< remaining; bounds the time for a file full of holes
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

void Widen(std::optional<RunExtremes>& codes, const std::optional<RunExtremes>& more) {
    if (!more) return;
    if (!codes) codes = more;
    const auto [low, high] = std::minmax({codes->first, codes->second, more->first, more->second});
    codes = {low, high};
}

}  // namespace

ReadableExtremes ReadableExtremeCodes(RecordingBlock& block, std::span<const std::int16_t> channels,
                                      const SampleSpan& samples, int searches) {
    ReadableGatherer gatherer(block, channels, searches);
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

void RangeRecords::Reset() {
    m_ranges.clear();
    m_run.reset();
}

RangeRecords::Run RangeRecords::Begin(const ViewBlock& block, std::span<const std::int16_t> channels,
                                      const SampleSpan& seen) {
    Run run;
    run.channels.assign(channels.begin(), channels.end());
    run.others.codes.resize(channels.size());
    run.units = ExtremesCache::UnitCount(block.sampleCount);
    run.right = run.left = std::clamp((seen.first - 1) / ExtremesCache::kCoarseCell, 0, run.units);
    return run;
}

bool RangeRecords::ReadMissing(const ViewBlock& block, std::span<const std::int16_t> channels, const SampleSpan& seen) {
    if (!block.block || block.sampleCount < 1 || IsKnown(channels)) return false;
    if (!m_run || !std::equal(channels.begin(), channels.end(), m_run->channels.begin(), m_run->channels.end())) {
        m_run = Begin(block, channels, seen);
        // The first sample is in no unit.
        ReadOthers(block, {0, 1});
    }
    Run& run = *m_run;
    const std::int32_t units = std::max(block.block->SamplesPerPiece() / ExtremesCache::kCoarseCell, 1);
    // Several pieces on one side before the other is taken, so that a disk is read in order.
    constexpr std::int32_t turn = 16;
    if (run.right < run.units && (run.left == 0 || run.turns / turn % 2 == 0)) {
        const std::int32_t to = std::min(run.right + units, run.units);
        if (!Approach(block, run.right, to)) return true;
        run.turns += run.left > 0 ? 1 : 0;
        ReadUnits(block, std::exchange(run.right, to), to);
    } else if (run.left > 0) {
        const std::int32_t from = std::max(run.left - units, 0);
        if (!Approach(block, from, run.left)) return true;
        ++run.turns;
        ReadUnits(block, from, std::exchange(run.left, from));
    }
    if (run.right < run.units || run.left > 0) return true;
    Store(block);
    return false;
}

double RangeRecords::PassedShare() const {
    return m_run && m_run->units > 0 ? static_cast<double>(m_run->right - m_run->left) / m_run->units : 0.0;
}

bool RangeRecords::Approach(const ViewBlock& block, std::int32_t from, std::int32_t to) const {
    const SampleSpan samples = ExtremesCache::UnitSamples(from, to, block.sampleCount);
    const std::int32_t first = m_extremes.KnownTo(*block.block, m_run->channels, samples, ExtremesCache::kCoarseCell);
    return first >= samples.End() || block.block->Approach(first);
}

void RangeRecords::ReadUnits(const ViewBlock& block, std::int32_t from, std::int32_t to) {
    const SampleSpan samples = ExtremesCache::UnitSamples(from, to, block.sampleCount);
    constexpr std::int32_t run = ExtremesCache::kCoarseCell;
    try {
        while (m_extremes.KnownTo(*block.block, m_run->channels, samples, run) < samples.End()) {
            if (m_extremes.Fill(*block.block, m_run->channels, samples, run, ExtremesCache::Eviction::Never)) continue;
            return ReadOthers(block, samples);
        }
    } catch (const std::exception&) {
        ReadOthers(block, samples);
    }
}

void RangeRecords::ReadOthers(const ViewBlock& block, const SampleSpan& samples) {
    constexpr int searches = 300;
    const ReadableExtremes extremes = ReadableExtremeCodes(*block.block, m_run->channels, samples, searches);
    if (!extremes.failure.empty()) m_run->others.failure = extremes.failure;
    for (std::size_t at = 0; at < extremes.codes.size(); ++at) Widen(m_run->others.codes[at], extremes.codes[at]);
}

void RangeRecords::Store(const ViewBlock& block) {
    m_ranges.resize(block.channelNumbers.size());
    for (std::size_t at = 0; at < m_run->channels.size(); ++at) {
        const std::int16_t channel = m_run->channels[at];
        std::optional<RunExtremes> codes = m_run->others.codes[at];
        Widen(codes, m_extremes.KnownExtremes(channel));
        Record& record = m_ranges[static_cast<std::size_t>(channel - 1)];
        // Another channel of this run may lack samples that this one has.
        if (record.whole) continue;
        record = {true, m_run->others.failure.empty(), m_run->others.failure, std::nullopt};
        if (codes) record.range = InUnits(block, channel, *codes);
    }
    m_run.reset();
}

std::string RangeRecords::Failure() const {
    for (const Record& record : m_ranges) {
        if (!record.failure.empty()) return record.failure;
    }
    return {};
}

bool RangeRecords::IsKnown(std::span<const std::int16_t> channels) const {
    return std::all_of(channels.begin(), channels.end(), [&](std::int16_t channel) {
        const auto at = static_cast<std::size_t>(channel - 1);
        return at < m_ranges.size() && m_ranges[at].whole;
    });
}

bool RangeRecords::IsRecorded(std::span<const std::int16_t> channels) const {
    return std::all_of(channels.begin(), channels.end(), [&](std::int16_t channel) {
        const auto at = static_cast<std::size_t>(channel - 1);
        return at < m_ranges.size() && m_ranges[at].found;
    });
}

std::optional<ValueRange> RangeRecords::Found(std::span<const std::int16_t> channels) const {
    std::optional<ValueRange> range;
    for (const std::int16_t channel : channels) {
        const auto at = static_cast<std::size_t>(channel - 1);
        if (at >= m_ranges.size() || !m_ranges[at].range) continue;
        const ValueRange& found = *m_ranges[at].range;
        if (!range) range = found;
        *range = {std::min(range->minimum, found.minimum), std::max(range->maximum, found.maximum)};
    }
    return range;
}

std::optional<ValueRange> RangeRecords::Of(const ViewBlock& block, std::span<const std::int16_t> channels) {
    while (ReadMissing(block, channels, {})) {
    }
    return Found(channels);
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
