#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "nsp/kernels/GroupFold.h"
#include "nsp/kernels/LaneSearch.h"
#include "nsp/kernels/TransposeFrames.h"

namespace quillon::nsp {

/// Extremes of kSources stretches of frames of 1, 2 or 4 channels, all of the same length, at once: lane `source` x
/// Channels + `channel`.
template <typename Lanes, std::size_t Channels>
class SideBySide {
  public:
    static constexpr std::size_t kSources = Lanes::kCount / Channels;
    /// Of shorter stretches this many are read.
    static constexpr std::size_t kLeastFrames = 8 / Channels;

    /// `frames` of each source, at least 1.
    static LaneExtremes<Lanes> Reduce(const std::int16_t* const* sources, std::size_t frames) {
        return frames * Channels < kGroup ? ReduceTiles(sources, frames) : ReduceGroups(sources, frames * Channels);
    }

  private:
    using Vector = typename Lanes::Vector;
    using Fold = GroupFold<Lanes, Channels>;
    static constexpr std::size_t kGroupVectors = Lanes::kCount == 8 ? 5 : 2;
    static constexpr std::size_t kGroup = kGroupVectors * Lanes::kCount;  // samples
    static_assert(kGroupVectors <= 128 / (2 * Lanes::kCount));            // FirstPlace has that many bits

    /// Frame by frame.
    static LaneExtremes<Lanes> ReduceTiles(const std::int16_t* const* sources, std::size_t frames);
    /// `count` samples of every source in groups, each of them folded to one lane per channel.
    static LaneExtremes<Lanes> ReduceGroups(const std::int16_t* const* sources, std::size_t count);

    /// How the vectors of a stretch are shared out among groups of almost the same size.
    struct Groups {
        explicit Groups(std::size_t samples)
            : count(samples),
              vectors((samples + Lanes::kCount - 1) / Lanes::kCount),
              groups((vectors + kGroupVectors - 1) / kGroupVectors),
              size(vectors / groups),
              longer(vectors % groups) {}
        [[nodiscard]] std::size_t Size(std::size_t group) const { return size + (group < longer ? 1 : 0); }
        /// The last ones of `length` samples overlap those before: a sample seen twice changes nothing.
        [[nodiscard]] std::size_t Start(std::size_t group, std::size_t length) const {
            return std::min((group * size + std::min(group, longer)) * Lanes::kCount, count - length);
        }

        std::size_t count;
        std::size_t vectors;
        std::size_t groups;
        std::size_t size;
        std::size_t longer;  ///< so many groups have one vector more
    };

    /// Of the samples in a group that have this value, the place of the first of those that `wanted` has a bit for.
    static int FirstPlace(const std::int16_t* group, std::int16_t value, std::uint64_t wanted);
    // A class, because lambdas in templates are not compiled for the processor that these are compiled for.
    struct OrderInGroup {
        const std::int16_t* const* sources;
        const Groups& groups;

        bool operator()(std::size_t lane, std::size_t group, const Extremes& values) const {
            constexpr std::uint64_t kOfFirst = Channels == 1   ? ~std::uint64_t{0}
                                               : Channels == 2 ? 0x3333333333333333U
                                                               : 0x0303030303030303U;
            const std::int16_t* const from = sources[lane / Channels] + groups.Start(group, kGroup);
            const std::uint64_t wanted = kOfFirst << (2 * (lane % Channels));
            return FirstPlace(from, values.minimum, wanted) < FirstPlace(from, values.maximum, wanted);
        }
    };
};

template <typename Lanes, std::size_t Channels>
LaneExtremes<Lanes> SideBySide<Lanes, Channels>::ReduceTiles(const std::int16_t* const* sources, std::size_t frames) {
    LaneExtremes<Lanes> extremes{};
    for (std::size_t frame = 0; frame < frames; frame += kLeastFrames) {
        // The last tile overlaps the one before it.
        const std::size_t from = frames < kLeastFrames ? 0 : std::min(frame, frames - kLeastFrames);
        Vector v[kLeastFrames];
        for (std::size_t i = 0; i < kLeastFrames; ++i)
            v[i] = Lanes::LoadSources(sources + i, kLeastFrames, from * Channels);
        TransposeFrames<Lanes, Channels>(v);
        if (frame == 0) extremes = LaneExtremes<Lanes>::Of(v[0]);
        if (frames >= kLeastFrames) {
            for (std::size_t i = 0; i < kLeastFrames; ++i) extremes.Add(v[i]);
        } else {
            for (std::size_t i = 1; i < frames; ++i) extremes.Add(v[i]);
        }
    }
    return extremes;
}

template <typename Lanes, std::size_t Channels>
int SideBySide<Lanes, Channels>::FirstPlace(const std::int16_t* group, std::int16_t value, std::uint64_t wanted) {
    const Vector all = Lanes::Fill(value);
    constexpr std::size_t kBits = 2 * Lanes::kCount;
    constexpr std::size_t kInWord = 64 / kBits;
    std::uint64_t words[2]{};
    for (std::size_t i = 0; i < kGroupVectors; ++i) {
        const Vector equal = Lanes::Equal(Lanes::Load(group + i * Lanes::kCount), all);
        words[i / kInWord] |= static_cast<std::uint64_t>(Lanes::Bits(equal)) << (i % kInWord * kBits);
    }
    const int first = std::countr_zero(words[0] & wanted);
    const int second = 64 + std::countr_zero(words[1] & wanted);
    return first < 64 ? first : second;
}

template <typename Lanes, std::size_t Channels>
LaneExtremes<Lanes> SideBySide<Lanes, Channels>::ReduceGroups(const std::int16_t* const* sources, std::size_t count) {
    const Groups groups(count);
    LaneSearch<Lanes> search{};
    for (std::size_t group = 0; group < groups.groups; ++group) {
        const std::size_t size = groups.Size(group);
        const std::size_t at = groups.Start(group, size * Lanes::kCount);
        LaneRange<Lanes> range;
        switch (size) {
            case 1: range = Fold::template Of<1>(sources, at); break;
            case 2: range = Fold::template Of<2>(sources, at); break;
            case 3: range = Fold::template Of<3>(sources, at); break;
            case 4: range = Fold::template Of<4>(sources, at); break;
            default: range = Fold::template Of<5>(sources, at); break;
        }
        if (group == 0) {
            search = LaneSearch<Lanes>::Of(range);
        } else {
            search.Add(range, Lanes::Fill(static_cast<std::int16_t>(group)));
        }
    }
    return search.ResultByLane(~std::uint32_t{0}, OrderInGroup{sources, groups});
}

}  // namespace quillon::nsp
