#include "nsp/PackedRuns.h"

#include <algorithm>
#include <array>
#include <bit>

#include "nsp/SideBySide.h"

namespace quillon::nsp {

namespace {

constexpr std::size_t kLanes = 8;
constexpr std::size_t kGroup = 8 * kLanes;  // samples; small enough to be scanned again from the first-level cache
constexpr std::ptrdiff_t kBefore = -1;      // an extreme from before the first group

/// Joins the lanes of each channel by `join`; afterwards every lane holds its channel's result.
template <std::size_t Channels, typename Join>
__m128i Fold(__m128i lanes, Join join) {
    lanes = join(lanes, _mm_shuffle_epi32(lanes, 0x4E));
    if constexpr (Channels <= 2) lanes = join(lanes, _mm_shuffle_epi32(lanes, 0xB1));
    if constexpr (Channels == 1) {
        lanes = join(lanes, _mm_shufflehi_epi16(_mm_shufflelo_epi16(lanes, 0xB1), 0xB1));
    }
    return lanes;
}

template <std::size_t Channels>
__m128i FoldMaximum(__m128i lanes) {
    return Fold<Channels>(lanes, [](__m128i a, __m128i b) { return _mm_max_epi16(a, b); });
}

template <std::size_t Channels>
__m128i FoldMinimum(__m128i lanes) {
    return Fold<Channels>(lanes, [](__m128i a, __m128i b) { return _mm_min_epi16(a, b); });
}

/// Bits of _mm_movemask_epi8 that belong to channel 0.
template <std::size_t Channels>
constexpr unsigned ChannelBits() {
    return Channels == 1 ? 0xFFFFU : Channels == 2 ? 0x3333U : 0x0303U;
}

/// True when the minimum of a channel occurs before its maximum; both occur in the samples. Vectors start at whole
/// frames and the last one overlaps.
template <std::size_t Channels>
bool MinimumIsFirst(const std::int16_t* samples, std::size_t count, std::size_t channel, const Extremes& values) {
    const __m128i maximum = _mm_set1_epi16(values.maximum);
    const __m128i minimum = _mm_set1_epi16(values.minimum);
    const unsigned wanted = ChannelBits<Channels>() << (2 * channel);
    for (std::size_t at = 0;; at += kLanes) {
        const __m128i lanes = LoadLanes(samples + std::min(at, count - kLanes));
        const auto highest = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(lanes, maximum))) & wanted;
        const auto lowest = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(lanes, minimum))) & wanted;
        // The maximum comes first on ties.
        if ((highest | lowest) != 0) return std::countr_zero(lowest) < std::countr_zero(highest);
        if (at >= count) return false;
    }
}

template <std::size_t Channels>
void ReduceFewSamples(const std::int16_t* samples, std::size_t frames, Extremes* result) {
    for (std::size_t channel = 0; channel < Channels; ++channel) result[channel] = Extremes::Of(samples[channel]);
    for (std::size_t at = Channels; at < frames * Channels; ++at) result[at % Channels].Add(samples[at]);
}

/// 8 to 63 samples: the values first, then where they are.
template <std::size_t Channels>
void ReduceOneGroup(const std::int16_t* samples, std::size_t count, Extremes* result) {
    __m128i highest = LoadLanes(samples + (count - kLanes));
    __m128i lowest = highest;
    for (std::size_t at = 0; at + kLanes < count; at += kLanes) {
        const __m128i lanes = LoadLanes(samples + at);
        highest = _mm_max_epi16(highest, lanes);
        lowest = _mm_min_epi16(lowest, lanes);
    }
    std::array<std::int16_t, kLanes> maxima;
    std::array<std::int16_t, kLanes> minima;
    StoreLanes(maxima.data(), FoldMaximum<Channels>(highest));
    StoreLanes(minima.data(), FoldMinimum<Channels>(lowest));
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        result[channel] = {maxima[channel], minima[channel], false};
        result[channel].minimumFirst = MinimumIsFirst<Channels>(samples, count, channel, result[channel]);
    }
}

/// The running extremes of a long stretch, spread over all lanes of their channel, and the groups that they came from.
template <std::size_t Channels>
struct GroupSearch {
    GroupSearch(__m128i highest, __m128i lowest) : maximum(highest), minimum(lowest) {
        maximumAt.fill(kBefore);
        minimumAt.fill(kBefore);
    }

    __m128i maximum;
    __m128i minimum;
    std::array<std::ptrdiff_t, Channels> maximumAt;
    std::array<std::ptrdiff_t, Channels> minimumAt;

    void Add(const std::int16_t* samples, std::size_t at) {
        const std::int16_t* group = samples + at;
        PrefetchAhead(group);
        PrefetchAhead(group + kGroup / 2);
        __m128i highest = LoadLanes(group);
        __m128i lowest = highest;
        for (std::size_t lane = kLanes; lane < kGroup; lane += kLanes) {
            const __m128i lanes = LoadLanes(group + lane);
            highest = _mm_max_epi16(highest, lanes);
            lowest = _mm_min_epi16(lowest, lanes);
        }
        const __m128i changed = _mm_or_si128(_mm_cmpgt_epi16(highest, maximum), _mm_cmpgt_epi16(minimum, lowest));
        if (_mm_movemask_epi8(changed) != 0) Remember(highest, lowest, at);
    }

    void Remember(__m128i highest, __m128i lowest, std::size_t at) {
        highest = FoldMaximum<Channels>(highest);
        lowest = FoldMinimum<Channels>(lowest);
        const int higher = _mm_movemask_epi8(_mm_cmpgt_epi16(highest, maximum));
        const int lower = _mm_movemask_epi8(_mm_cmpgt_epi16(minimum, lowest));
        maximum = _mm_max_epi16(maximum, highest);
        minimum = _mm_min_epi16(minimum, lowest);
        for (std::size_t channel = 0; channel < Channels; ++channel) {
            if ((higher >> (2 * channel) & 1) != 0) maximumAt[channel] = static_cast<std::ptrdiff_t>(at);
            if ((lower >> (2 * channel) & 1) != 0) minimumAt[channel] = static_cast<std::ptrdiff_t>(at);
        }
    }
};

/// 8 x 8 samples (Channels 1), 4 x 4 frames of two or 2 x 2 frames of four: from one run per vector to one frame of
/// every run per vector.
template <std::size_t Channels>
void TransposeFrames(__m128i* v) {
    if constexpr (Channels == 4) {
        const __m128i low = _mm_unpacklo_epi64(v[0], v[1]);
        v[1] = _mm_unpackhi_epi64(v[0], v[1]);
        v[0] = low;
    } else if constexpr (Channels == 2) {
        const __m128i a = _mm_unpacklo_epi32(v[0], v[1]);
        const __m128i b = _mm_unpackhi_epi32(v[0], v[1]);
        const __m128i c = _mm_unpacklo_epi32(v[2], v[3]);
        const __m128i d = _mm_unpackhi_epi32(v[2], v[3]);
        v[0] = _mm_unpacklo_epi64(a, c);
        v[1] = _mm_unpackhi_epi64(a, c);
        v[2] = _mm_unpacklo_epi64(b, d);
        v[3] = _mm_unpackhi_epi64(b, d);
    } else {
        Transpose8x8(v);
    }
}

}  // namespace

template <std::size_t Channels>
void ReduceStretch(const std::int16_t* samples, std::size_t frames, bool carriesOn, Extremes* result) {
    const std::size_t count = frames * Channels;
    if (count < kGroup) {
        std::array<Extremes, Channels> own;
        if (count < kLanes) {
            ReduceFewSamples<Channels>(samples, frames, own.data());
        } else {
            ReduceOneGroup<Channels>(samples, count, own.data());
        }
        for (std::size_t channel = 0; channel < Channels; ++channel) {
            if (carriesOn) {
                result[channel].Add(own[channel]);
            } else {
                result[channel] = own[channel];
            }
        }
        return;
    }
    // Starting from what came before, the few groups that change it are found at once.
    std::array<std::int16_t, kLanes> highest;
    std::array<std::int16_t, kLanes> lowest;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        const std::size_t channel = lane % Channels;
        if (!carriesOn) result[channel] = Extremes::Of(samples[channel]);
        highest[lane] = result[channel].maximum;
        lowest[lane] = result[channel].minimum;
    }
    GroupSearch<Channels> search(LoadLanes(highest.data()), LoadLanes(lowest.data()));
    std::size_t at = 0;
    for (; at + kGroup <= count; at += kGroup) search.Add(samples, at);
    if (at < count) search.Add(samples, count - kGroup);
    StoreLanes(highest.data(), search.maximum);
    StoreLanes(lowest.data(), search.minimum);
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        const std::ptrdiff_t maximumAt = search.maximumAt[channel];
        const std::ptrdiff_t minimumAt = search.minimumAt[channel];
        Extremes& extremes = result[channel];
        extremes.maximum = highest[channel];
        extremes.minimum = lowest[channel];
        if (maximumAt != minimumAt) {
            extremes.minimumFirst = minimumAt < maximumAt;
        } else if (maximumAt != kBefore) {
            extremes.minimumFirst = MinimumIsFirst<Channels>(samples + maximumAt, kGroup, channel, extremes);
        }
    }
}

namespace {

/// 8 / Channels runs, frame by frame. The vectors of a run shorter than one vector reach past it.
template <std::size_t Channels>
LaneExtremes ReduceShortRuns(const std::int16_t* start, std::size_t run) {
    constexpr std::size_t kTogether = kLanes / Channels;
    LaneExtremes extremes{};
    for (std::size_t frame = 0; frame < run; frame += kTogether) {
        const std::size_t from = run < kTogether ? 0 : std::min(frame, run - kTogether);
        __m128i v[kTogether];
        for (std::size_t i = 0; i < kTogether; ++i) v[i] = LoadLanes(start + (i * run + from) * Channels);
        TransposeFrames<Channels>(v);
        if (frame == 0) extremes = LaneExtremes::Of(v[0]);
        if (run >= kTogether) {
            for (std::size_t i = 0; i < kTogether; ++i) extremes.Add(v[i]);
        } else {
            for (std::size_t i = 1; i < run; ++i) extremes.Add(v[i]);
        }
    }
    return extremes;
}

template <std::size_t Channels>
LaneExtremes ReduceLongRuns(const std::int16_t* start, std::size_t run) {
    const std::int16_t* sources[kLanes / Channels];
    for (std::size_t i = 0; i < kLanes / Channels; ++i) sources[i] = start + i * run * Channels;
    return ReduceSideBySide<Channels>(sources, run * Channels);
}

}  // namespace

template <std::size_t Channels>
std::size_t ReduceRunsTogether(const std::int16_t* samples, std::size_t frames, std::size_t run,
                               std::span<ExtremePair* const> out) {
    constexpr std::size_t kTogether = kLanes / Channels;  // runs, and frames of one vector
    const std::size_t step = run * Channels;
    // The vectors of a run shorter than one vector reach past it, for the last of the runs into what follows them all.
    const std::size_t beyond = run < kTogether ? kTogether - run : 0;
    if (kTogether * run + beyond > frames) return 0;
    const std::size_t whole = (frames - beyond) / run;
    std::size_t finished = 0;
    while (whole - finished > kTogether / 4) {
        // The last runs are taken together with some that are done already: the same results once more.
        const std::size_t done = std::min(finished, whole - kTogether);
        finished = done + kTogether;
        const std::int16_t* start = samples + done * step;
        for (std::size_t ahead = 0; ahead < kTogether * step; ahead += 32) PrefetchAhead(start + ahead);
        const LaneExtremes extremes =
            step < kLeastSideBySide ? ReduceShortRuns<Channels>(start, run) : ReduceLongRuns<Channels>(start, run);
        if constexpr (Channels == 1) {
            extremes.StorePairs(out[0] + done);
        } else {
            ExtremePair pairs[kLanes];
            extremes.StorePairs(pairs);
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                ExtremePair* channel = out[lane % Channels];
                if (channel != nullptr) channel[done + lane / Channels] = pairs[lane];
            }
        }
    }
    return finished;
}

template <std::size_t Channels>
void PackedRuns<Channels>::Feed(const std::int16_t* samples, std::size_t frames, std::size_t run, std::size_t& filled,
                                std::span<Extremes> state, std::span<ExtremePair*> out) {
    while (frames > 0) {
        if (filled == 0 && run * Channels < kLongRunSamples) {
            const std::size_t done = ReduceRunsTogether<Channels>(samples, frames, run, out);
            for (ExtremePair*& channel : out) channel += channel != nullptr ? done : 0;
            samples += done * run * Channels;
            frames -= done * run;
            if (frames == 0) return;
        }
        const std::size_t part = std::min(frames, run - filled);
        ReduceStretch<Channels>(samples, part, filled > 0, state.data());
        filled += part;
        samples += part * Channels;
        frames -= part;
        if (filled == run) Finish(filled, state, out);
    }
}

template <std::size_t Channels>
void PackedRuns<Channels>::Finish(std::size_t& filled, std::span<Extremes> state, std::span<ExtremePair*> out) {
    if (filled == 0) return;
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        if (out[channel] != nullptr) *out[channel]++ = state[channel].Pair();
    }
    filled = 0;
}

template class PackedRuns<1>;
template class PackedRuns<2>;
template class PackedRuns<4>;

}  // namespace quillon::nsp
