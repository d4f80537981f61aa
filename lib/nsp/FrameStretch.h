#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "nsp/LaneSearch.h"

namespace quillon::nsp {

/// Extremes of long stretches of frames of 3 or more channels, eight channels per column: the values of each group of
/// frames first, by two instructions per vector of samples.
class FrameStretch {
  public:
    static constexpr std::size_t kGroupFrames = 20;  ///< the usual runs, multiples of 100, are made of whole groups
    static constexpr std::size_t kMostFrames = kGroupFrames * LaneSearch::kMostGroups;

    /// `columns`: the channel in lane 0 of each column.
    FrameStretch(std::size_t channels, std::vector<std::size_t> columns);

    /// Extremes by column of `count` frames, kGroupFrames to kMostFrames of them. With less than 8 channels, up to 7
    /// samples behind the frames are read. Lanes that reach beyond a frame hold nothing of use.
    void Reduce(const std::int16_t* frames, std::size_t count, LaneExtremes* extremes);

  private:
    template <bool Pairs>
    void AddGroup(const std::int16_t* group, std::size_t number);

    std::size_t m_channels;
    std::vector<std::size_t> m_columns;
    std::vector<LaneSearch> m_searches;  ///< by column
};

}  // namespace quillon::nsp
