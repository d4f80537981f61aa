#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "norvik/NorvikCore.h"
#include "view/ColumnGrid.h"
#include "view/ExtremesCache.h"
#include "view/SceneBlocks.h"

namespace quillon {

/// Lowest and highest code of some samples; at first those of none.
struct CodeRange {
    std::int16_t low = INT16_MAX;
    std::int16_t high = INT16_MIN;
    [[nodiscard]] bool IsEmpty() const { return low > high; }
    void Add(std::int16_t code) {
        low = std::min(low, code);
        high = std::max(high, code);
    }
    friend bool operator==(const CodeRange&, const CodeRange&) = default;
};

/// Extremes of all channels of whole blocks, each divided among the columns of a strip as far as its cells are known
/// (see ExtremesCache). Update reads nothing. A column that it knows holds the extremes of the cells that have samples
/// of it, and thus of up to a cell more at either side; the first sample is in no cell. Where a column is shorter than
/// a cell, ReadMore replaces all of the block by the exact ones.
class OverviewColumns {
  public:
    /// Cells of all channels that are looked at in one call, about a millisecond's.
    static constexpr std::int64_t kCellsAtOnce = std::int64_t{1} << 19;

    explicit OverviewColumns(std::int64_t cellsAtOnce = kCellsAtOnce) : m_cellsAtOnce(cellsAtOnce) {}

    /// Takes over what has become known of these blocks, as far as it may at once, and forgets others. Returns whether
    /// any column has changed.
    bool Update(const SceneBlocks& blocks, std::int32_t width);
    /// Whether Update has stopped before the end, or ReadMore has anything to do for its blocks.
    [[nodiscard]] bool HasMore() const;
    /// Share of the samples of short columns that is read, 0 to 1.
    [[nodiscard]] double ReadShare() const;
    /// Reads about a piece of a block with short columns (see SamplesPerPiece). Returns as Update. What cannot be read
    /// leaves the columns as they are.
    bool ReadMore(const SceneBlocks& blocks);
    /// The codes of the blocks have changed.
    void Forget() { m_strips.clear(); }
    /// The columns of a channel (from 1), empty ones where nothing is known; none of an unknown block.
    [[nodiscard]] std::span<const CodeRange> Of(const ViewBlock& block, std::int16_t channel) const;

  private:
    /// One block.
    struct Strip {
        std::weak_ptr<RecordingBlock> block;
        std::int32_t samples = 0;
        ColumnGrid grid;
        std::vector<std::vector<CodeRange>> channels;
        std::vector<bool> known;                    ///< per column, of all channels
        std::int32_t next = -1;                     ///< where Update has stopped; -1 where it came to the end
        std::int32_t read = 0;                      ///< samples of short columns that were read; all, or none to read
        std::vector<std::vector<CodeRange>> exact;  ///< of these
    };
    [[nodiscard]] static Strip Begin(const ViewBlock& block, std::int32_t width);
    [[nodiscard]] Strip* StripOf(const ViewBlock& block);
    /// `most`: cells that may be looked at; what was is taken off.
    static bool Take(Strip& strip, ExtremesCache& extremes, RecordingBlock& block, std::int64_t& most);
    static bool Read(Strip& strip, RecordingBlock& block);

    std::int64_t m_cellsAtOnce;
    std::int32_t m_width = 0;
    std::vector<Strip> m_strips;
};

}  // namespace quillon
