#include "nsp/FrameRuns.h"

#include <algorithm>

namespace quillon::nsp {

namespace {

constexpr std::size_t kLanes = 8;
/// Samples that stay in the first-level cache while one column after the other goes over them.
constexpr std::size_t kTileSamples = 4096;
/// Columns reduced together; the accumulators of more do not fit the sixteen vector registers.
constexpr std::size_t kTogether = 4;
constexpr std::size_t kLineSamples = 64 / sizeof(std::int16_t);
/// Finished runs are written sixteen at a time, a cache line per channel: single results would touch as many lines as
/// there are channels, and these often compete for the same place in the cache.
constexpr std::size_t kStagedRuns = 16;
constexpr std::size_t kGroup = 8;  // frames
/// A run's first frames are taken one by one, as new extremes are frequent there.
constexpr std::size_t kSettled = 2 * kGroup;

/// Eight frames at a time: their values first. Only where a lane has both a new maximum and a new minimum among them
/// (rare once a run has settled) their order is not known yet and the frames are taken one by one.
void AddGroup(LaneExtremes& extremes, const std::int16_t* frame, std::size_t step) {
    __m128i highest = LoadLanes(frame);
    __m128i lowest = highest;
    for (std::size_t i = 1; i < kGroup; ++i) {
        const __m128i lanes = LoadLanes(frame + i * step);
        highest = _mm_max_epi16(highest, lanes);
        lowest = _mm_min_epi16(lowest, lanes);
    }
    const __m128i higher = _mm_cmpgt_epi16(highest, extremes.maximum);
    const __m128i lower = _mm_cmpgt_epi16(extremes.minimum, lowest);
    if (_mm_movemask_epi8(_mm_and_si128(higher, lower)) != 0) [[unlikely]] {
        for (std::size_t i = 0; i < kGroup; ++i) extremes.Add(LoadLanes(frame + i * step));
        return;
    }
    extremes.maximum = _mm_max_epi16(extremes.maximum, highest);
    extremes.minimum = _mm_min_epi16(extremes.minimum, lowest);
    extremes.order = _mm_andnot_si128(lower, _mm_or_si128(extremes.order, higher));
}

/// Adds frames to neighbouring columns at once; `done` frames of the run are in `extremes` already.
/// Group by group over all of them, so that memory is read and prefetched in one even stream.
template <std::size_t Count>
void AddFrames(LaneExtremes* extremes, const std::size_t* channels, std::size_t done, const std::int16_t* frames,
               std::size_t count, std::size_t step) {
    LaneExtremes state[Count];
    for (std::size_t i = 0; i < Count; ++i) state[i] = extremes[i];
    for (; count > 0 && (done < kSettled || count < kGroup); ++done, --count, frames += step) {
        for (std::size_t line = 0; line < step; line += kLineSamples) PrefetchAhead(frames + line);
        for (std::size_t i = 0; i < Count; ++i) state[i].Add(LoadLanes(frames + channels[i]));
    }
    const std::size_t share = kGroup * step / Count;
    for (; count >= kGroup; count -= kGroup, frames += kGroup * step) {
        for (std::size_t i = 0; i < Count; ++i) {
            for (std::size_t line = 0; line < share; line += kLineSamples) PrefetchAhead(frames + i * share + line);
            AddGroup(state[i], frames + channels[i], step);
        }
    }
    for (; count > 0; --count, frames += step) {
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

}  // namespace

FrameRuns::FrameRuns(std::size_t channels, std::span<const std::size_t> selected, std::size_t run,
                     std::span<ExtremePair* const> out)
    : m_channels(channels), m_run(run) {
    std::vector<ExtremePair*> wanted(channels);
    for (std::size_t i = 0; i < selected.size(); ++i) wanted[selected[i]] = out[i];
    // The fewest vectors that cover the selected channels; the last one of a frame overlaps the one before it.
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (wanted[channel] == nullptr) continue;
        if (m_channelOf.empty() || channel >= m_channelOf.back() + kLanes) {
            m_channelOf.push_back(channels < kLanes ? 0 : std::min(channel, channels - kLanes));
            m_out.resize(m_channelOf.size() * kLanes);
        }
        m_out[m_out.size() - kLanes + channel - m_channelOf.back()] = wanted[channel];
    }
    m_extremes.resize(m_channelOf.size());
    m_staged.resize(m_out.size() * kStagedRuns);
    if (channels > 0 && channels < kLanes) m_unreadable = (kLanes - 1) / channels;
}

void FrameRuns::Feed(const std::int16_t* frames, std::size_t frameCount) {
    if (m_channelOf.empty()) return;
    const std::size_t last = std::min(m_unreadable, frameCount);
    FeedReadable(frames, frameCount - last);
    if (last > 0) {
        std::array<std::int16_t, 3 * kLanes> end{};
        std::copy_n(frames + (frameCount - last) * m_channels, last * m_channels, end.begin());
        FeedReadable(end.data(), last);
    }
    WriteStaged();
}

void FrameRuns::FeedReadable(const std::int16_t* frames, std::size_t frameCount) {
    const std::size_t columns = m_channelOf.size();
    const std::size_t tile = columns > kTogether ? std::max<std::size_t>(1, kTileSamples / m_channels) : frameCount;
    while (frameCount > 0) {
        const std::size_t part = std::min({frameCount, m_run - m_filled, tile});
        for (std::size_t first = 0; first < columns; first += kTogether) {
            LaneExtremes* extremes = &m_extremes[first];
            const std::size_t* channels = &m_channelOf[first];
            const std::size_t together = std::min(kTogether, columns - first);
            if (m_filled == 0) {
                for (std::size_t i = 0; i < together; ++i)
                    extremes[i] = LaneExtremes::Of(LoadLanes(frames + channels[i]));
            }
            switch (together) {
                case 1: AddFrames<1>(extremes, channels, m_filled, frames, part, m_channels); break;
                case 2: AddFrames<2>(extremes, channels, m_filled, frames, part, m_channels); break;
                case 3: AddFrames<3>(extremes, channels, m_filled, frames, part, m_channels); break;
                default: AddFrames<kTogether>(extremes, channels, m_filled, frames, part, m_channels); break;
            }
        }
        m_filled += part;
        if (m_filled == m_run) RunDone();
        frames += part * m_channels;
        frameCount -= part;
    }
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
