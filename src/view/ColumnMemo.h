#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "norvik/NorvikCore.h"
#include "view/ColumnGrid.h"

namespace quillon {

/// Columns of a strip, from .. to-1.
struct ColumnRange {
    std::int32_t from = 0;
    std::int32_t to = 0;
};

/// Extremes of columns that were computed, per channel (from 1) those of one range of columns of the same grid. Drawing
/// the same view again, with other scales or lanes, then costs no look at the samples.
class ColumnMemo {
  public:
    /// Columns that are kept per channel.
    static constexpr std::int32_t kMost = 8192;

    /// The part of a range outside which the columns of all the channels are known. Columns of another grid
    /// are forgotten, and those too far away to be kept together with the range.
    [[nodiscard]] ColumnRange Missing(const ColumnGrid& grid, std::span<const std::int16_t> channels,
                                      const ColumnRange& wanted);
    /// Keeps columns of a channel, together with those that it knows where they overlap or adjoin, else instead.
    void Store(std::int16_t channel, const ColumnRange& range, std::span<const RunExtremes> columns);
    /// Known columns of a channel.
    [[nodiscard]] std::span<const RunExtremes> Columns(std::int16_t channel, const ColumnRange& range) const;

  private:
    struct Known {
        std::int32_t from = 0;
        std::vector<RunExtremes> columns;
        [[nodiscard]] std::int32_t To() const { return from + static_cast<std::int32_t>(columns.size()); }
    };
    ColumnGrid m_grid;
    std::vector<Known> m_channels;
};

}  // namespace quillon
