#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "view/TimeAxis.h"

namespace quillon {

/// Pixel columns of the graph, both included.
struct ColumnBand {
    std::int32_t left = 0;
    std::int32_t right = 0;
    friend bool operator==(const ColumnBand&, const ColumnBand&) = default;
};

/// A range of samples that the user marked. Samples count from 1; the end is before the start after a drag to the left.
struct Selection {
    bool active = false;
    std::int16_t channel = 1;  ///< position in the block, from 1, of the channel that it was started on
    std::int32_t start = 0;
    std::int32_t end = 0;

    [[nodiscard]] std::int32_t First() const { return std::min(start, end); }
    [[nodiscard]] std::int32_t Last() const { return std::max(start, end); }
    [[nodiscard]] std::int32_t Count() const { return Last() - First() + 1; }
    [[nodiscard]] SampleSpan Samples() const { return {First() - 1, Count()}; }
};

/// The first sample of a pixel column of the graph, which may lie outside it; clamped to the block's samples. The block
/// has at least one.
[[nodiscard]] std::int32_t SampleUnder(const TimeAxis& axis, std::int32_t column);

/// The sample whose point is nearest to a column: where a sample has several columns, its point is in the first one.
[[nodiscard]] std::int32_t SampleNear(const TimeAxis& axis, std::int32_t column);

/// The place at which a pixel column begins, in samples from the block's first one on; clamped to the block.
[[nodiscard]] double PlaceUnder(const TimeAxis& axis, std::int32_t column);

/// The columns that show a range of at least one sample, clipped to the graph; none if outside it.
[[nodiscard]] std::optional<ColumnBand> BandOf(const TimeAxis& axis, const SampleSpan& samples);

/// The band with at least that many columns, further to the right.
[[nodiscard]] inline std::optional<ColumnBand> AtLeast(std::optional<ColumnBand> band, std::int32_t columns) {
    if (band) band->right = std::max(band->right, band->left + columns - 1);
    return band;
}

/// The column of a sample's point (from 1); none if outside the graph.
[[nodiscard]] std::optional<ColumnBand> PointBand(const TimeAxis& axis, std::int32_t sample);

}  // namespace quillon
