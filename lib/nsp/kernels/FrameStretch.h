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
        return Channels < 5 ? 4 : Channels == 5 ? 7 : 10;
    }();
    static constexpr std::size_t kGroupFrames = kGroupVectors * kFramesInVector;
    /// In fewer frames both extremes are in one group so often that frame by frame is the faster way.
    static constexpr std::size_t kLeastFrames = kFramesInVector == 1 ? 20 : 30;

    explicit FrameStretch(std::size_t channels) : m_channels(channels) {}

    /// Frames that are best reduced at once: they stay in the first-level cache from column to column.
    [[nodiscard]] std::size_t MostFrames() const {
        constexpr std::size_t kSamples = 8192;
        static_assert(kSamples < kMostGroups);
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

  private:
    using Search =
        std::conditional_t<Lanes::kCount == 16 && Channels != 0, TwinSearch<Lanes, Channels>, LaneSearch<Lanes>>;

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
    [[nodiscard]] LaneExtremes<Lanes> ReduceColumn(const std::int16_t* frames, std::size_t count,
                                                   const FrameColumn& column, bool isFirst) const {
        // The last group overlaps the one before it: a sample seen twice changes nothing.
        const auto start = [&](std::size_t group) {
            return frames + std::min(group * kGroupFrames, count - kGroupFrames) * Width() + column.channel;
        };
        auto search = Search::Of(GroupRange(start(0), isFirst));
        for (std::size_t group = 1; group * kGroupFrames < count; ++group)
            search.Add(GroupRange(start(group), isFirst), Lanes::Fill(static_cast<std::int16_t>(group)));
        return search.Result(column.wanted, [&](std::size_t lane, std::size_t group, const Extremes& values) {
            const std::int16_t* at = start(group) + lane;
            while (*at != values.maximum && *at != values.minimum) at += Width();
            return *at == values.minimum;
        });
    }

    std::size_t m_channels;
};

}  // namespace quillon::nsp
