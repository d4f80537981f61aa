#include "view/Statistics.h"

#include <algorithm>
#include <cmath>

#include "base/Resume.h"
#include "data/ChannelSelection.h"

namespace quillon {

void StatisticsPass::Sums::Add(const std::int16_t* codes, std::size_t count, std::size_t step) {
    // 32 bits hold a few samples' sums, which are added faster.
    constexpr std::size_t group = 1024;
    for (std::size_t done = 0; done < count;) {
        const std::size_t end = std::min(done + group, count);
        std::int32_t groupSum = 0;
        for (; done < end; ++done) {
            const std::int16_t code = codes[done * step];
            minimum = std::min(minimum, code);
            maximum = std::max(maximum, code);
            groupSum += code;
            squares += std::int64_t{code} * code;
        }
        sum += groupSum;
    }
}

StatisticsPass::StatisticsPass(const ReadoutSource& source, const SampleSpan& samples)
    : m_source(source),
      m_samples(samples),
      m_next(samples.first),
      m_channels(ShownChannels(source.block, source.slots)),
      m_sums(m_channels.size()) {}

bool StatisticsPass::Step() {
    if (IsDone()) return false;
    RecordingBlock& block = *m_source.block.block;
    if (!block.Approach(m_next)) return true;
    const bool frames = block.FramesAreCheap();
    const auto width = static_cast<std::size_t>(frames ? m_source.block.channelCount : 1);
    const std::int32_t count = std::min(std::max(block.SamplesPerPiece(), 1), m_samples.End() - m_next);
    m_codes.resize(static_cast<std::size_t>(count) * width);
    bool framesRead = true;
    if (frames) {
        framesRead = false;
        Resume([&] { framesRead = block.ReadFrames(m_next, count, m_codes.data()) == 0; });
    }
    for (std::size_t at = 0; at < m_channels.size(); ++at) {
        Sums& sums = m_sums[at];
        if (!frames && sums.readable) {
            sums.readable = false;
            Resume([&] { sums.readable = block.ReadCodes(m_channels[at], m_next, count, m_codes.data()) == 0; });
        }
        sums.readable = sums.readable && framesRead;
        const std::size_t offset = frames ? static_cast<std::size_t>(m_channels[at] - 1) : 0;
        if (sums.readable) sums.Add(m_codes.data() + offset, static_cast<std::size_t>(count), width);
    }
    m_next += count;
    return !IsDone();
}

double StatisticsPass::Share() const {
    return m_samples.count < 1 ? 1.0 : static_cast<double>(m_next - m_samples.first) / m_samples.count;
}

ChannelStatistics StatisticsPass::InUnits(std::int16_t channel, std::int16_t minimum, std::int16_t maximum) const {
    const double low = ShownValue(m_source, channel, minimum);
    const double high = ShownValue(m_source, channel, maximum);
    ChannelStatistics statistics;
    statistics.channel = channel;
    statistics.minimum = std::min(low, high);
    statistics.maximum = std::max(low, high);
    return statistics;
}

std::optional<std::vector<ChannelStatistics>> StatisticsPass::Extremes() const {
    std::optional<std::vector<RunExtremes>> extremes;
    if (m_source.extremes != nullptr)
        Resume([&] { extremes = m_source.extremes->ExtremesOf(*m_source.block.block, m_channels, m_samples); });
    if (!extremes) return std::nullopt;
    std::vector<ChannelStatistics> found;
    for (std::size_t at = 0; at < m_channels.size(); ++at) {
        const auto [low, high] = std::minmax((*extremes)[at].first, (*extremes)[at].second);
        found.push_back(InUnits(m_channels[at], low, high));
    }
    return found;
}

std::vector<ChannelStatistics> StatisticsPass::Result() const {
    std::vector<ChannelStatistics> result;
    const double count = m_samples.count;
    for (std::size_t at = 0; at < m_channels.size(); ++at) {
        const Sums& sums = m_sums[at];
        if (!sums.readable) continue;
        ChannelStatistics statistics = InUnits(m_channels[at], sums.minimum, sums.maximum);
        const double meanCode = static_cast<double>(sums.sum) / count;
        const double variance = std::max(static_cast<double>(sums.squares) / count - meanCode * meanCode, 0.0);
        const double unit =
            std::fabs(ShownValue(m_source, m_channels[at], 1.0) - ShownValue(m_source, m_channels[at], 0.0));
        statistics.mean = ShownValue(m_source, m_channels[at], meanCode);
        statistics.deviation = std::sqrt(variance) * unit;
        statistics.rms = std::hypot(statistics.mean, statistics.deviation);
        result.push_back(statistics);
    }
    return result;
}

std::vector<ChannelStatistics> StatisticsOf(const ReadoutSource& source, const SampleSpan& samples) {
    StatisticsPass pass(source, samples);
    while (pass.Step()) {
    }
    return pass.Result();
}

}  // namespace quillon
