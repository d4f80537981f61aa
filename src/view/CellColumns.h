#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "norvik/NorvikCore.h"
#include "view/ExtremesCache.h"

namespace quillon {

/// Extremes of runs of samples of any place and length, from the cells of a cache. Asked for one after the other along
/// the block, runs that follow each other read the samples of the cell between them once.
class CellColumns {
  public:
    /// The objects must outlive this one.
    CellColumns(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels);

    /// The extremes of a run per channel; reads what is missing of it, and about a piece (see SamplesPerPiece) of what
    /// is missing up to sample `end`, which later runs are going to need. False where the block does not reduce runs
    /// itself, or the cache has no room. Throws what the block throws.
    bool Reduce(const SampleSpan& run, std::int32_t end, std::span<RunExtremes> out);

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
    [[nodiscard]] RunExtremes OfCells(std::int16_t channel, std::int32_t first, std::int32_t end, std::int32_t size);
    [[nodiscard]] RunExtremes OfSamples(std::int16_t channel, const SampleSpan& samples);
    /// Extends the extremes of a channel by those of a part of one cell, before or behind the samples that they are of.
    [[nodiscard]] bool AddEdge(std::int16_t channel, const SampleSpan& edge, std::int32_t size, bool before,
                               RunExtremes& found);
    [[nodiscard]] const std::int16_t* SamplesOfCell(std::int16_t channel, std::int32_t cell);

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
};

}  // namespace quillon
