#pragma once

#include <cstdint>
#include <vector>

#include "view/AmplitudeScale.h"

namespace quillon {

/// A horizontal strip of the graph whose traces share an amplitude scale.
struct Lane {
    std::int32_t top = 0;                ///< first row of the graph
    std::int32_t height = 0;             ///< rows
    AmplitudeScale scale;                ///< its rows count from `top`
    std::vector<std::int16_t> channels;  ///< that are drawn in it: positions in the block, from 1

    /// Row of the graph at which the value 0 lies.
    [[nodiscard]] std::int64_t ZeroRow() const { return top + scale.ZeroRow(); }
};

/// The lanes of a graph, from its upper edge to its lower one; at least one.
using Lanes = std::vector<Lane>;

/// The channels of all lanes, lane by lane: the order of the traces.
[[nodiscard]] inline std::vector<std::int16_t> ChannelsOf(const Lanes& lanes) {
    std::vector<std::int16_t> channels;
    for (const Lane& lane : lanes) channels.insert(channels.end(), lane.channels.begin(), lane.channels.end());
    return channels;
}

}  // namespace quillon
