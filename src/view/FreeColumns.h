#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "norvik/NorvikCore.h"
#include "view/ColumnMemo.h"
#include "view/ExtremesCache.h"

namespace quillon {

/// Exact extremes of columns with any number of samples above one, in the order in which they occur (see RunExtremes).
/// Long columns are made of the cache's cells inside them and of the samples at their edges, which are looked at only
/// where the cell that they lie in reaches as far as those inside; shorter columns are read. What was computed is kept
/// with the cache.
class FreeColumns {
  public:
    /// Samples per column: below, reading all of them in one pass is faster than reading those at most edges one by
    /// one; where the samples of many channels are stored as frames the edges of all of them are read at once.
    static constexpr double kCellColumn = 700.0;
    static constexpr double kCellColumnOfFrames = 450.0;

    FreeColumns(RecordingBlock& block, ExtremesCache& extremes, const ColumnGrid& grid)
        : m_block(block), m_extremes(extremes), m_grid(grid) {}

    /// Whether the columns are made of cells, where the block reduces runs itself.
    [[nodiscard]] bool AreOfCells() const {
        const bool frames = m_block.FramesAreCheap() && m_block.ChannelCount() > 8;
        return m_grid.SamplesPerColumn() >= (frames ? kCellColumnOfFrames : kCellColumn);
    }
    /// Length of the runs by which the cache is to be asked for the cells, see ExtremesCache::KnownTo.
    [[nodiscard]] std::int32_t CellRun() const;
    /// The columns of a range that have samples.
    [[nodiscard]] ColumnRange Limited(const ColumnRange& columns) const;
    /// The samples of some columns that the block has.
    [[nodiscard]] SampleSpan SamplesOf(const ColumnRange& columns) const;

    /// One list per channel, for a range of columns that have samples. Throws what the block throws.
    [[nodiscard]] std::vector<std::vector<RunExtremes>> Read(std::span<const std::int16_t> channels,
                                                             const ColumnRange& columns);
    /// The same of one channel from its samples before `end` only, without the cache.
    [[nodiscard]] std::vector<RunExtremes> ReadBefore(std::int16_t channel, const ColumnRange& columns,
                                                      std::int32_t end);

  private:
    using Lists = std::vector<std::vector<RunExtremes>>;
    [[nodiscard]] Lists Compute(std::span<const std::int16_t> channels, const ColumnRange& columns);
    [[nodiscard]] Lists ReadSamples(std::span<const std::int16_t> channels, const ColumnRange& columns,
                                    std::int32_t end);

    RecordingBlock& m_block;
    ExtremesCache& m_extremes;
    ColumnGrid m_grid;
};

}  // namespace quillon
