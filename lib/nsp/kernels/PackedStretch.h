#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "nsp/kernels/LaneSearch.h"

namespace quillon::nsp {

/// Extremes of one stretch of frames of 1, 2 or 4 channels, one result per channel. Fast for long stretches.
template <typename Lanes, std::size_t Channels>
class PackedStretch {
  public:
    /// `frames` >= 1; `carriesOn` tells that `result` holds the extremes of the samples before.
    static void Reduce(const std::int16_t* samples, std::size_t frames, bool carriesOn, Extremes* result);

  private:
    using Vector = typename Lanes::Vector;
    static constexpr std::size_t kLanes = Lanes::kCount;
    static constexpr std::size_t kGroup = 8 * kLanes;  // samples; small enough to be scanned again while in the cache
    static constexpr std::ptrdiff_t kBefore = -1;      // an extreme from before the first group

    /// Joins the lanes of each channel; afterwards every lane holds its channel's result.
    static LaneRange<Lanes> Fold(LaneRange<Lanes> range) {
        if constexpr (kLanes == 16) range.Add({Lanes::Swap8(range.highest), Lanes::Swap8(range.lowest)});
        range.Add({Lanes::Swap4(range.highest), Lanes::Swap4(range.lowest)});
        if constexpr (Channels <= 2) range.Add({Lanes::Swap2(range.highest), Lanes::Swap2(range.lowest)});
        if constexpr (Channels == 1) range.Add({Lanes::Swap1(range.highest), Lanes::Swap1(range.lowest)});
        return range;
    }
    static bool MinimumIsFirst(const std::int16_t* samples, std::size_t count, std::size_t channel,
                               const Extremes& values);
    static void ReduceSingly(const std::int16_t* samples, std::size_t count, Extremes* result) {
        for (std::size_t at = 0; at < Channels; ++at) result[at] = Extremes::Of(samples[at]);
        for (std::size_t at = Channels; at < count; ++at) result[at % Channels].Add(samples[at]);
    }
    static void ReduceOneGroup(const std::int16_t* samples, std::size_t count, Extremes* result);

    /// The running extremes, spread over all lanes of their channel, and the groups that they came from.
    struct Search {
        LaneRange<Lanes> range;
        std::ptrdiff_t maximumAt[Channels];
        std::ptrdiff_t minimumAt[Channels];

        void Add(const std::int16_t* samples, std::size_t at) {
            PrefetchAhead(samples + at, kGroup);
            const auto group = LaneRange<Lanes>::template Of<8>(samples + at, kLanes);
            const Vector changed =
                Lanes::Or(Lanes::Greater(group.highest, range.highest), Lanes::Greater(range.lowest, group.lowest));
            if (Lanes::Bits(changed) != 0) Remember(Fold(group), static_cast<std::ptrdiff_t>(at));
        }
        void Remember(const LaneRange<Lanes>& group, std::ptrdiff_t at) {
            const std::uint32_t higher = Lanes::Bits(Lanes::Greater(group.highest, range.highest));
            const std::uint32_t lower = Lanes::Bits(Lanes::Greater(range.lowest, group.lowest));
            range.Add(group);
            for (std::size_t channel = 0; channel < Channels; ++channel) {
                if ((higher >> (2 * channel) & 1U) != 0) maximumAt[channel] = at;
                if ((lower >> (2 * channel) & 1U) != 0) minimumAt[channel] = at;
            }
        }
    };
};

/// True when the minimum of a channel occurs before its maximum; both occur in the samples. Vectors start at whole
/// frames and the last one overlaps.
template <typename Lanes, std::size_t Channels>
bool PackedStretch<Lanes, Channels>::MinimumIsFirst(const std::int16_t* samples, std::size_t count, std::size_t channel,
                                                    const Extremes& values) {
    const Vector maximum = Lanes::Fill(values.maximum);
    const Vector minimum = Lanes::Fill(values.minimum);
    constexpr std::uint32_t kOfFirst = Channels == 1 ? 0xFFFFFFFFU : Channels == 2 ? 0x33333333U : 0x03030303U;
    const std::uint32_t wanted = kOfFirst << (2 * channel);
    for (std::size_t at = 0;; at += kLanes) {
        const Vector lanes = Lanes::Load(samples + std::min(at, count - kLanes));
        const std::uint32_t highest = Lanes::Bits(Lanes::Equal(lanes, maximum)) & wanted;
        const std::uint32_t lowest = Lanes::Bits(Lanes::Equal(lanes, minimum)) & wanted;
        // The maximum comes first on ties.
        if ((highest | lowest) != 0) return std::countr_zero(lowest) < std::countr_zero(highest);
        if (at >= count) return false;
    }
}

/// Of a vector or more: the values first, then where they are.
template <typename Lanes, std::size_t Channels>
void PackedStretch<Lanes, Channels>::ReduceOneGroup(const std::int16_t* samples, std::size_t count, Extremes* result) {
    auto range = LaneRange<Lanes>::template Of<1>(samples + (count - kLanes), kLanes);
    for (std::size_t at = 0; at + kLanes < count; at += kLanes)
        range.Add(LaneRange<Lanes>::template Of<1>(samples + at, kLanes));
    range = Fold(range);
    std::int16_t maxima[kLanes];
    std::int16_t minima[kLanes];
    Lanes::Store(maxima, range.highest);
    Lanes::Store(minima, range.lowest);
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        result[channel] = {maxima[channel], minima[channel], false};
        result[channel].minimumFirst = MinimumIsFirst(samples, count, channel, result[channel]);
    }
}

template <typename Lanes, std::size_t Channels>
void PackedStretch<Lanes, Channels>::Reduce(const std::int16_t* samples, std::size_t frames, bool carriesOn,
                                            Extremes* result) {
    const std::size_t count = frames * Channels;
    if (count < kGroup) {
        Extremes own[Channels];
        count < kLanes ? ReduceSingly(samples, count, own) : ReduceOneGroup(samples, count, own);
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
    std::int16_t highest[kLanes];
    std::int16_t lowest[kLanes];
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        const std::size_t channel = lane % Channels;
        if (!carriesOn) result[channel] = Extremes::Of(samples[channel]);
        highest[lane] = result[channel].maximum;
        lowest[lane] = result[channel].minimum;
    }
    Search search{{Lanes::Load(highest), Lanes::Load(lowest)}, {}, {}};
    std::fill_n(search.maximumAt, Channels, kBefore);
    std::fill_n(search.minimumAt, Channels, kBefore);
    std::size_t at = 0;
    for (; at + kGroup <= count; at += kGroup) search.Add(samples, at);
    if (at < count) search.Add(samples, count - kGroup);
    Lanes::Store(highest, search.range.highest);
    Lanes::Store(lowest, search.range.lowest);
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        const std::ptrdiff_t maximumAt = search.maximumAt[channel];
        const std::ptrdiff_t minimumAt = search.minimumAt[channel];
        Extremes& extremes = result[channel];
        extremes.maximum = highest[channel];
        extremes.minimum = lowest[channel];
        if (maximumAt != minimumAt) {
            extremes.minimumFirst = minimumAt < maximumAt;
        } else if (maximumAt != kBefore) {
            extremes.minimumFirst = MinimumIsFirst(samples + maximumAt, kGroup, channel, extremes);
        }
    }
}

}  // namespace quillon::nsp
