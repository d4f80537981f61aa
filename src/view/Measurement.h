#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "view/Readout.h"
#include "view/WaveformView.h"

namespace quillon {

/// What is drawn over the graph of a measurement: the pinned sample's line and, where another sample is measured
/// against it, the way from one to the other. Columns may lie outside the graph.
struct Measurement {
    /// Of a lane with one trace: a line at the level of the pinned sample, and from there to that of the other one.
    struct Lane {
        std::int32_t top = 0;
        std::int32_t end = 0;        ///< behind the lane's last row
        std::int32_t pinnedRow = 0;  ///< within the lane, as the next one
        std::int32_t row = 0;
        std::u16string change;
    };
    std::int32_t pinned = 0;            ///< column
    std::optional<std::int32_t> other;  ///< column
    std::u16string time;                ///< between the two; empty without another
    std::vector<Lane> lanes;            ///< empty without another, and on one axis
};

/// `sample`: measured against the pinned one, from 1; 0: none. `place`: see HoverReadout. None where nothing is pinned.
[[nodiscard]] std::optional<Measurement> MeasurementOf(const WaveformView& view, const ReadoutSource& source,
                                                       std::int32_t sample, std::optional<double> place);

}  // namespace quillon
