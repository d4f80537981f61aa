#include "nsp/FrameStretch.h"

#include <algorithm>

namespace quillon::nsp {

namespace {

constexpr std::size_t kLineSamples = 64 / sizeof(std::int16_t);

}  // namespace

FrameStretch::FrameStretch(std::size_t channels, std::vector<std::size_t> columns)
    : m_channels(channels), m_columns(std::move(columns)), m_searches(m_columns.size()) {}

/// `Pairs`: of 3 channels, two frames lie in a vector.
template <bool Pairs>
void FrameStretch::AddGroup(const std::int16_t* group, std::size_t number) {
    for (std::size_t line = 0; line < kGroupFrames * m_channels; line += kLineSamples) PrefetchAhead(group + line);
    const __m128i numbers = _mm_set1_epi16(static_cast<std::int16_t>(number));
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        LaneRange range;
        if constexpr (Pairs) {
            range = LaneRange::Of<kGroupFrames / 2>(group, 6);
            range.Add({_mm_srli_si128(range.highest, 6), _mm_srli_si128(range.lowest, 6)});
        } else {
            range = LaneRange::Of<kGroupFrames>(group + m_columns[column], m_channels);
        }
        if (number == 0) {
            m_searches[column] = LaneSearch::Of(range);
        } else {
            m_searches[column].Add(range, numbers);
        }
    }
}

void FrameStretch::Reduce(const std::int16_t* frames, std::size_t count, LaneExtremes* extremes) {
    // The last group overlaps the one before it: a sample seen twice changes nothing.
    const auto start = [&](std::size_t group) { return std::min(group * kGroupFrames, count - kGroupFrames); };
    for (std::size_t group = 0; group * kGroupFrames < count; ++group) {
        const std::int16_t* const from = frames + start(group) * m_channels;
        m_channels == 3 ? AddGroup<true>(from, group) : AddGroup<false>(from, group);
    }
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        const auto minimumFirst = [&](std::size_t lane, std::size_t group, const Extremes& values) {
            const std::size_t channel = m_columns[column] + lane;
            if (channel >= m_channels) return false;
            const std::int16_t* at = frames + start(group) * m_channels + channel;
            while (*at != values.maximum && *at != values.minimum) at += m_channels;
            return *at == values.minimum;
        };
        extremes[column] = m_searches[column].Result(minimumFirst);
    }
}

}  // namespace quillon::nsp
