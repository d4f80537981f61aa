#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "view/AmplitudeScale.h"

namespace quillon {

/// A horizontal strip of the graph whose traces share an amplitude scale: what its drawing needs.
struct Lane {
    std::int32_t top = 0;           ///< first row of the graph
    std::int32_t height = 0;        ///< rows
    std::int64_t zeroRow = 0;       ///< row of the graph at which the value 0 lies, also far outside of it
    double unitsPerDivision = 1.0;  ///< units per AmplitudeScale::kDivision rows
    bool negativeUp = false;        ///< values grow downwards
    bool clip = false;              ///< traces end at its edges
    bool single = false;            ///< one channel by itself: a line between lanes instead of levels of amplitude
    std::vector<std::int16_t> channels{};  ///< that are drawn in it: signals, see Document; from 1

    [[nodiscard]] std::int32_t End() const { return top + height; }
    /// The row of a value, not rounded.
    [[nodiscard]] double RowOf(double units) const {
        const double above = units / unitsPerDivision * AmplitudeScale::kDivision;
        return static_cast<double>(zeroRow) + (negativeUp ? above : -above);
    }
};

/// The lanes of a graph, from its upper edge to its lower one; at least one.
using Lanes = std::vector<Lane>;

/// A signal and the lane that it is drawn in.
struct LaneTrace {
    std::int16_t channel = 0;  ///< from 1
    std::size_t lane = 0;
    friend bool operator==(const LaneTrace&, const LaneTrace&) = default;
};

/// The traces of all lanes in the order of their numbers, which is that of drawing: the first one is on top.
[[nodiscard]] std::vector<LaneTrace> TracesOf(const Lanes& lanes);
/// Their signals.
[[nodiscard]] std::vector<std::int16_t> ChannelsOf(const Lanes& lanes);

}  // namespace quillon
