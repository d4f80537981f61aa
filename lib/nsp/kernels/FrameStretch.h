#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "nsp/kernels/FrameColumns.h"
#include "nsp/kernels/LaneSearch.h"
#include "nsp/kernels/TwinSearch.h"

namespace quillon::nsp {

/// Extremes of long stretches of frames, a lane per channel: the values of each group of frames first, by two
/// instructions per vector of samples. `Channels` tells how many where a vector holds several frames, else it is 0.
template <typename Lanes, std::size_t Channels>
class FrameStretch {
  public:
    static constexpr std::size_t kFramesInVector = Channels == 0 ? 1 : Lanes::kCount / Channels;
    /// The usual runs, multiples of 100, are made of whole groups.
    static constexpr std::size_t kGroupVectors = [] {
        if (Lanes::kCount == 8) return Channels == 0 ? 20 : 10;
        return Channels == 0 ? 10 : Channels < 5 ? 5 : Channels == 5 ? 7 : 10;
    }();
    static constexpr std::size_t kGroupFrames = kGroupVectors * kFramesInVector;
    /// In fewer frames both extremes are in one group so often that frame by frame is the faster way.
    static constexpr std::size_t kLeastFrames = kFramesInVector == 1 ? 20 : 30;

    explicit FrameStretch(std::size_t channels) : m_channels(channels) {}

    /// Frames that are best reduced at once: they stay in the first-level cache from column to column.
    [[nodiscard]] std::size_t MostFrames() const {
        constexpr std::size_t kSamples = 8192;
        static_assert(kSamples < kMostGroups && kLeastFrames >= kGroupFrames);
        return std::max(kSamples / (kGroupFrames * Width()), std::size_t{1}) * kGroupFrames;
    }
    /// Adds `count` frames, kLeastFrames to MostFrames() of them, to the extremes of each column; `carriesOn` tells
    /// that these hold anything. The vectors of the last frames may reach behind them.
    void Add(const std::int16_t* frames, std::size_t count, const std::vector<FrameColumn>& columns, bool carriesOn,
             StoredExtremes<Lanes>* stored) const {
        for (const FrameColumn& column : columns) {
            const LaneExtremes<Lanes> stretch = ReduceColumn(frames, count, column, &column == columns.data());
            if (carriesOn) {
                LaneExtremes<Lanes> extremes = stored->Load();
                extremes.Add(stretch);
                stored++->Store(extremes);
            } else {
                stored++->Store(stretch);
            }
        }
    }

    /// A column of a run.
    struct Unordered {
        StoredExtremes<Lanes> result;
        std::int16_t groups[Lanes::kCount];
        std::uint32_t open;  ///< lanes, as Lanes::Bits
        const std::int16_t* samples;
        ExtremePair* pairs;
    };
    /// A whole run of kLeastFrames to MostFrames() frames: its results but for the order of lanes that have both
    /// extremes in one group, which are added to `unordered`. Looked at here, they would hold up the runs that follow.
    void AddRun(const std::int16_t* frames, std::size_t count, const std::vector<FrameColumn>& columns,
                ExtremePair* pairs, Unordered*& unordered) const {
        for (const FrameColumn& column : columns) {
            const Groups groups{frames + column.channel, count, Width()};
            const Search search = SearchGroups(groups, &column == columns.data());
            std::uint32_t open = 0;
            const LaneExtremes<Lanes> result = search.Unordered(column.wanted, open, unordered->groups);
            result.StorePairs(pairs);
            unordered->result.Store(result);
            unordered->open = open;
            unordered->samples = groups.samples;
            unordered->pairs = pairs;
            unordered += open != 0 ? 1 : 0;
            pairs += Lanes::kCount;
        }
    }
    /// Orders what AddRun has left.
    void Order(const Unordered& run, std::size_t count) const {
        LaneExtremes<Lanes> result = run.result.Load();
        LaneSearch<Lanes>::FindOrder(result, run.open, run.groups, MinimumFirst{{run.samples, count, Width()}});
        result.StorePairs(run.pairs);
    }

  private:
    using Vector = typename Lanes::Vector;
    static constexpr bool kIsTwin = Lanes::kCount == 16 && Channels != 0;
    using Search = std::conditional_t<kIsTwin, TwinSearch<Lanes, Channels>, LaneSearch<Lanes>>;

    /// Samples per frame; a constant where that is known.
    [[nodiscard]] std::size_t Width() const { return Channels == 0 ? m_channels : Channels; }
    [[nodiscard]] LaneRange<Lanes> GroupRange(const std::int16_t* group, bool prefetch) const {
        if (prefetch) PrefetchAhead(group, kGroupFrames * Width());
        auto range = LaneRange<Lanes>::template Of<kGroupVectors>(group, kFramesInVector * Width());
        // Of 3 channels two frames lie in a vector of 8 lanes.
        if constexpr (Lanes::kCount == 8 && Channels != 0) {
            range.Add({Lanes::template Shift<Channels>(range.highest), Lanes::template Shift<Channels>(range.lowest)});
        }
        return range;
    }
    /// Where a group starts. The last group overlaps the one before it: a sample seen twice changes nothing.
    struct Groups {
        const std::int16_t* samples;
        std::size_t count;  ///< frames
        std::size_t width;

        const std::int16_t* operator()(std::size_t group) const {
            return samples + std::min(group * kGroupFrames, count - kGroupFrames) * width;
        }
    };
    // Not a lambda: in templates those are not compiled for the same processor.
    struct MinimumFirst {
        Groups groups;

        Vector operator()(std::size_t group, Vector maximum, Vector minimum) const {
            if constexpr (kIsTwin) {
                return Search::template MinimumFirst<kGroupVectors>(groups(group), maximum, minimum);
            } else {
                const std::size_t width = Channels == 0 ? groups.width : Channels;
                // Backwards, so that the first occurrence has the last word.
                const std::int16_t* at = groups(group) + kGroupFrames * width;
                Vector order = Lanes::Zero();
#pragma GCC unroll 20
                for (std::size_t frame = 0; frame < kGroupFrames; ++frame) {
                    at -= width;
                    const Vector samples = Lanes::Load(at);
                    order = Lanes::Or(order, Lanes::Equal(samples, minimum));
                    order = Lanes::AndNot(Lanes::Equal(samples, maximum), order);
                }
                return order;
            }
        }
    };
    [[nodiscard]] Search SearchGroups(const Groups& groups, bool prefetch) const {
        auto search = Search::Of(GroupRange(groups(0), prefetch));
        for (std::size_t group = 1; group * kGroupFrames < groups.count; ++group)
            search.Add(GroupRange(groups(group), prefetch), Lanes::Fill(static_cast<std::int16_t>(group)));
        return search;
    }
    [[nodiscard]] LaneExtremes<Lanes> ReduceColumn(const std::int16_t* frames, std::size_t count,
                                                   const FrameColumn& column, bool isFirst) const {
        const Groups groups{frames + column.channel, count, Width()};
        return SearchGroups(groups, isFirst).Result(column.wanted, MinimumFirst{groups});
    }
    std::size_t m_channels;
};

}  // namespace quillon::nsp
