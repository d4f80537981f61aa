#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "norvik/NorvikCore.h"
#include "nsp/RowRuns.h"
#include "view/ExtremesCache.h"

namespace quillon {

/// Extremes of runs of samples of any place and length, from the cells of a cache, several channels at once. The
/// samples of the cells between two runs are read where they may matter only.
class CellColumns {
  public:
    /// The objects must outlive this one.
    CellColumns(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels);

    /// out[c] has room for the extremes of channel c in all the runs, which follow each other. Reads what is missing of
    /// the cells, in pieces (see SamplesPerPiece). False where the block does not reduce runs itself, or the cache has
    /// no room. Throws what the block throws.
    bool Reduce(std::span<const SampleSpan> runs, std::span<RunExtremes* const> out);

  private:
    /// Cells that lie whole inside a run, and what is left of it on both sides.
    struct Inside {
        std::int32_t first = 0;
        std::int32_t end = 0;
        SampleSpan left;
        SampleSpan right;
    };
    /// Samples whose cells are known.
    struct Known {
        std::int32_t from = 0;
        std::int32_t to = 0;
    };
    [[nodiscard]] Inside CellsIn(const SampleSpan& run, std::int32_t size) const;
    [[nodiscard]] bool MakeKnown(const SampleSpan& run, std::int32_t end, std::int32_t size);
    [[nodiscard]] bool OfRun(std::int16_t channel, const SampleSpan& run, std::int32_t size, RunExtremes& found);
    [[nodiscard]] RunExtremes OfSamples(std::int16_t channel, const SampleSpan& samples);
    /// Extends the extremes of a channel by those of a part of one cell, before or behind the samples that they are of.
    [[nodiscard]] bool AddEdge(std::int16_t channel, const SampleSpan& edge, std::int32_t size, bool before,
                               RunExtremes& found);
    [[nodiscard]] const std::int16_t* SamplesOfCell(std::int16_t channel, std::int32_t cell);
    void HoldAll(std::int32_t cell);
    [[nodiscard]] bool ReduceOne(std::span<const SampleSpan> runs, std::size_t at, std::span<RunExtremes* const> out);
    /// Runs of fine cells from `first` on: m_batch says which cells.
    [[nodiscard]] bool ReduceBatch(std::span<const SampleSpan> runs, std::size_t first,
                                   std::span<RunExtremes* const> out);
    /// Fills m_rows.
    void FindCells(std::int32_t first, std::int32_t end);
    [[nodiscard]] const RunExtremes& CellOf(std::size_t channel, std::int32_t cell) const {
        return m_rows[channel][cell - m_firstCell];
    }
    /// Extends what was found in the cells inside the runs of the batch by the samples at their edges.
    void AddEdges(std::span<RunExtremes* const> found);
    /// A channel whose extremes may change by the cell between two runs: by its first samples those of the run to its
    /// left, by its last ones those of the run to its right.
    struct Open {
        std::size_t channel = 0;
        bool left = false;
        bool right = false;
    };

    RecordingBlock& m_block;
    ExtremesCache& m_extremes;
    std::span<const std::int16_t> m_channels;
    std::int32_t m_samples;
    bool m_allAtOnce;
    Known m_fine;
    Known m_coarse;
    std::int32_t m_cell = -1;           ///< whose samples are held
    std::vector<bool> m_held;           ///< per channel of the block
    std::vector<std::int16_t> m_codes;  ///< one channel of the block after the other
    // Of the batch of runs under way.
    std::vector<Inside> m_batch;
    std::vector<nsp::RowRun> m_runs;         ///< their cells, as samples of a row
    std::vector<const RunExtremes*> m_rows;  ///< cells from m_firstCell on, for every channel asked for
    std::vector<RunExtremes> m_cells;        ///< copies where they do not lie together
    std::int32_t m_firstCell = 0;
    std::vector<Open> m_open;
};

}  // namespace quillon
