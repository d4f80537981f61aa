#include "nsp/FrameRuns.h"

#include <algorithm>

namespace quillon::nsp {

namespace {

constexpr std::size_t kLanes = 8;
/// Columns reduced together; the accumulators of more do not fit the sixteen vector registers.
constexpr std::size_t kTogether = 4;
constexpr std::size_t kLineSamples = 64 / sizeof(std::int16_t);
/// Finished runs are written sixteen at a time, a cache line per channel: single results would touch as many lines as
/// there are channels, and these often compete for the same place in the cache.
constexpr std::size_t kStagedRuns = 16;

/// Adds frames to neighbouring columns at once.
template <std::size_t Count>
void AddFrames(LaneExtremes* extremes, const std::size_t* channels, const std::int16_t* frames, std::size_t count,
               std::size_t step) {
    LaneExtremes state[Count];
    for (std::size_t i = 0; i < Count; ++i) state[i] = extremes[i];
    for (; count > 0; --count, frames += step) {
        for (std::size_t line = 0; line < step; line += kLineSamples) PrefetchAhead(frames + line);
        for (std::size_t i = 0; i < Count; ++i) state[i].Add(LoadLanes(frames + channels[i]));
    }
    for (std::size_t i = 0; i < Count; ++i) extremes[i] = state[i];
}

/// Rows of `slots` results: writes those of four neighbouring slots to their channels.
void WriteFourSlots(const ExtremePair* staged, std::size_t slots, std::size_t runs, ExtremePair** out) {
    const auto load = [&](std::size_t run) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(staged + run * slots));
    };
    std::size_t run = 0;
    for (; run + 4 <= runs; run += 4) {
        const __m128i a = _mm_unpacklo_epi32(load(run), load(run + 1));
        const __m128i b = _mm_unpackhi_epi32(load(run), load(run + 1));
        const __m128i c = _mm_unpacklo_epi32(load(run + 2), load(run + 3));
        const __m128i d = _mm_unpackhi_epi32(load(run + 2), load(run + 3));
        const __m128i channels[4] = {_mm_unpacklo_epi64(a, c), _mm_unpackhi_epi64(a, c), _mm_unpacklo_epi64(b, d),
                                     _mm_unpackhi_epi64(b, d)};
        for (std::size_t i = 0; i < 4; ++i) {
            if (out[i] != nullptr) _mm_storeu_si128(reinterpret_cast<__m128i*>(out[i] + run), channels[i]);
        }
    }
    for (; run < runs; ++run) {
        for (std::size_t i = 0; i < 4; ++i) {
            if (out[i] != nullptr) out[i][run] = staged[run * slots + i];
        }
    }
    for (std::size_t i = 0; i < 4; ++i) {
        if (out[i] != nullptr) out[i] += runs;
    }
}

/// The fewest vectors that cover the selected channels, by the channel in their lane 0; the last one of a frame
/// overlaps the one before it.
std::vector<std::size_t> Columns(std::size_t channels, std::span<const std::size_t> selected) {
    std::vector<std::size_t> sorted(selected.begin(), selected.end());
    std::sort(sorted.begin(), sorted.end());
    std::vector<std::size_t> columns;
    for (const std::size_t channel : sorted) {
        if (columns.empty() || channel >= columns.back() + kLanes)
            columns.push_back(channels < kLanes ? 0 : std::min(channel, channels - kLanes));
    }
    return columns;
}

}  // namespace

FrameRuns::FrameRuns(std::size_t channels, std::span<const std::size_t> selected, std::size_t run,
                     std::span<ExtremePair* const> out)
    : m_channels(channels),
      m_run(run),
      m_channelOf(Columns(channels, selected)),
      m_extremes(m_channelOf.size()),
      m_later(m_channelOf.size()),
      m_out(m_channelOf.size() * kLanes),
      m_stretch(channels, m_channelOf) {
    for (std::size_t i = 0; i < selected.size(); ++i) {
        // Of two vectors that hold the channel, the earlier one.
        const auto beyond = std::upper_bound(m_channelOf.begin(), m_channelOf.end(), selected[i]);
        auto column = static_cast<std::size_t>(beyond - m_channelOf.begin()) - 1;
        if (column > 0 && selected[i] < m_channelOf[column - 1] + kLanes) --column;
        m_out[column * kLanes + selected[i] - m_channelOf[column]] = out[i];
    }
    m_staged.resize(m_out.size() * kStagedRuns);
    if (channels > 0 && channels < kLanes) m_unreadable = (kLanes - 1) / channels;
}

void FrameRuns::Feed(const std::int16_t* frames, std::size_t frameCount) {
    if (m_channelOf.empty()) return;
    while (frameCount > 0) {
        const std::size_t part = std::min({frameCount, m_run - m_filled, FrameStretch::kMostFrames});
        // Frames of the part whose vectors reach past the piece.
        const std::size_t last = std::min(part, m_unreadable - std::min(m_unreadable, frameCount - part));
        if (part - last >= FrameStretch::kGroupFrames) {
            AddStretch(frames, part - last);
        } else {
            AddSingly(frames, part - last);
        }
        if (last > 0) {
            std::array<std::int16_t, 3 * kLanes> end{};
            std::copy_n(frames + (part - last) * m_channels, last * m_channels, end.begin());
            AddSingly(end.data(), last);
        }
        if (m_filled == m_run) RunDone();
        frames += part * m_channels;
        frameCount -= part;
    }
    WriteStaged();
}

void FrameRuns::AddStretch(const std::int16_t* frames, std::size_t count) {
    if (m_filled == 0) {
        m_stretch.Reduce(frames, count, m_extremes.data());
    } else {
        m_stretch.Reduce(frames, count, m_later.data());
        for (std::size_t column = 0; column < m_extremes.size(); ++column) m_extremes[column].Add(m_later[column]);
    }
    m_filled += count;
}

void FrameRuns::AddSingly(const std::int16_t* frames, std::size_t count) {
    if (count == 0) return;
    const std::size_t columns = m_channelOf.size();
    for (std::size_t first = 0; first < columns; first += kTogether) {
        LaneExtremes* extremes = &m_extremes[first];
        const std::size_t* channels = &m_channelOf[first];
        const std::size_t together = std::min(kTogether, columns - first);
        if (m_filled == 0) {
            for (std::size_t i = 0; i < together; ++i) extremes[i] = LaneExtremes::Of(LoadLanes(frames + channels[i]));
        }
        switch (together) {
            case 1: AddFrames<1>(extremes, channels, frames, count, m_channels); break;
            case 2: AddFrames<2>(extremes, channels, frames, count, m_channels); break;
            case 3: AddFrames<3>(extremes, channels, frames, count, m_channels); break;
            default: AddFrames<kTogether>(extremes, channels, frames, count, m_channels); break;
        }
    }
    m_filled += count;
}

void FrameRuns::Finish() {
    if (m_filled > 0 && !m_channelOf.empty()) RunDone();
    WriteStaged();
}

void FrameRuns::RunDone() {
    ExtremePair* pairs = &m_staged[m_stagedRuns * m_out.size()];
    for (const LaneExtremes& extremes : m_extremes) {
        extremes.StorePairs(pairs);
        pairs += kLanes;
    }
    m_filled = 0;
    if (++m_stagedRuns == kStagedRuns) WriteStaged();
}
void FrameRuns::WriteStaged() {
    for (std::size_t slot = 0; slot < m_out.size(); slot += 4) {
        WriteFourSlots(&m_staged[slot], m_out.size(), m_stagedRuns, &m_out[slot]);
    }
    m_stagedRuns = 0;
}

}  // namespace quillon::nsp
