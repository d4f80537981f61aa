#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "base/SampleSpan.h"
#include "norvik/NorvikCore.h"
#include "view/ColumnMemo.h"

namespace quillon {

/// Extremes of a block's samples that were once read, so that scrolling and zooming out read nothing again.
///
/// The runs of a trace lie on a fixed grid: at n samples per pixel they start at samples 1, 1 + n, 1 + 2n, ... of the
/// block (from 0), wherever the view is. The steps from 100 samples per pixel on are multiples of 100, so the runs of
/// all of them are made of the same cells of 100 samples; from 10 000 on they are made of coarse cells of 10 000, which
/// are kept for the whole block. Fine cells are kept in chunks, of which the least recently used are evicted when all
/// cells together would exceed the limit. Fine cells take 2 % of the size of the samples that they stand for, coarse
/// ones a hundredth of that.
///
/// Samples are read in units of one coarse cell. Fill reads a bounded number of units, so that a long stretch can be
/// read in slices; ColumnExtremes reads whatever is missing.
///
/// The results equal RecordingBlock::ColumnExtremes in value and order.
class ExtremesCache {
  public:
    static constexpr std::int32_t kCell = 100;          ///< samples of a fine cell
    static constexpr std::int32_t kCoarseCell = 10000;  ///< samples of a coarse cell, and of a unit
    static constexpr std::int32_t kChunk = 100000;      ///< samples of a chunk
    static constexpr std::size_t kDefaultLimit = 192U << 20U;

    explicit ExtremesCache(std::size_t byteLimit = kDefaultLimit) : m_limit(byteLimit) {}

    /// Clears the cache for another block.
    void Reset();
    void SetLimit(std::size_t byteLimit);
    /// Goes on with another block, which is to begin with the same samples: those of some units are compared. Returns
    /// whether it does, else the cache is of no further use. Scales and offsets are the caller's to compare.
    [[nodiscard]] bool Grow(RecordingBlock& block);
    /// Whether runs of that length that start at that sample (from 0) are made of cells.
    [[nodiscard]] static bool Serves(std::int32_t first, std::int32_t run) {
        return run >= kCell && run % kCell == 0 && first % kCell == 1;
    }
    /// Whether cells other than the coarse ones may be evicted to make room for new ones.
    enum class Eviction { Allowed, Never };
    /// The first sample from `samples.first` on whose cells are not known for all of the channels; the end of `samples`
    /// where all are. `run`: length of the runs that the cells are wanted for; a multiple of kCoarseCell wants coarse
    /// cells only.
    [[nodiscard]] std::int32_t KnownTo(const RecordingBlock& block, std::span<const std::int16_t> channels,
                                       const SampleSpan& samples, std::int32_t run);
    /// Reads the unknown units from sample `first` (from 1) on that follow each other, about SamplesPerPiece samples of
    /// them and none behind `end`; or only comes nearer to them, see RecordingBlock::Approach. With Eviction::Never,
    /// fine cells that do not fit the limit are not kept. False where the block does not reduce runs itself; throws
    /// what the block throws.
    bool Fill(RecordingBlock& block, std::span<const std::int16_t> channels, const SampleSpan& samples,
              std::int32_t run, Eviction eviction);
    /// The extremes of some samples in any order, from coarse cells inside and from samples read at the ends, of which
    /// there are less than two units. None where a coarse cell inside is not known.
    [[nodiscard]] std::optional<std::vector<RunExtremes>> ExtremesOf(RecordingBlock& block,
                                                                     std::span<const std::int16_t> channels,
                                                                     const SampleSpan& samples);
    /// The extremes in any order of those samples of a channel whose coarse cells are known; none where none are.
    [[nodiscard]] std::optional<RunExtremes> KnownExtremes(std::int16_t channel) const;
    /// Units of a block of that many samples. The first sample is in none.
    [[nodiscard]] static std::int32_t UnitCount(std::int32_t samples);
    /// The samples of units from .. to-1 of such a block; there is at least one unit.
    [[nodiscard]] static SampleSpan UnitSamples(std::int32_t from, std::int32_t to, std::int32_t samples);
    /// As RecordingBlock::ColumnExtremes, for runs that Serves() accepts; reads the cells that are missing. False, with
    /// undefined results, where the block does not reduce runs itself.
    bool ColumnExtremes(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t first,
                        std::int32_t count, std::int32_t run, std::span<RunExtremes* const> out);
    /// Known cells of a channel that lie together: `cell` (from 0) and those behind it, at most up to `end`. Their size
    /// is kCell or kCoarseCell.
    [[nodiscard]] std::span<const RunExtremes> CellsFrom(std::int16_t channel, std::int32_t cell, std::int32_t end,
                                                         std::int32_t size);
    /// The extremes of known cells of a channel, from `first` to `end` - 1.
    [[nodiscard]] RunExtremes OfCells(std::int16_t channel, std::int32_t first, std::int32_t end, std::int32_t size);
    /// Columns of a free axis that were made of the block's samples.
    [[nodiscard]] ColumnMemo& Columns() { return m_columns; }
    /// Bytes that the cells take.
    [[nodiscard]] std::size_t Bytes() const { return m_bytes; }

  private:
    /// Cells per channel of the block; a channel that was not read has none.
    using Cells = std::vector<std::vector<RunExtremes>>;
    struct Chunk {
        Cells fine;
        std::vector<std::uint32_t> known;  ///< per channel, a bit for every unit of the chunk
        std::uint64_t used = 0;            ///< m_clock at its last use
    };

    void Prepare(const RecordingBlock& block);
    [[nodiscard]] SampleSpan SamplesOf(std::int32_t unit) const;
    [[nodiscard]] bool HasCells(std::int32_t unit, std::span<const std::int16_t> channels, bool coarse) const;
    bool ReadUnits(RecordingBlock& block, std::span<const std::int16_t> channels, const SampleSpan& samples,
                   std::int32_t run, Eviction eviction);
    bool FillUnits(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t firstUnit,
                   std::int32_t unitCount, Eviction eviction);
    void StoreFine(std::int32_t unit, std::size_t channel, std::span<const RunExtremes> cells);
    void StoreCoarse(std::int32_t unit, std::size_t channel, std::span<const RunExtremes> cells);
    void DropOldest();
    void Drop(std::unordered_map<std::int32_t, Chunk>::iterator chunk);
    /// Whether the samples of a unit of the block have the extremes that are known.
    [[nodiscard]] bool Matches(RecordingBlock& block, std::int32_t unit) const;

    std::size_t m_limit;
    std::size_t m_bytes = 0;
    std::uint64_t m_clock = 0;
    std::int32_t m_samples = 0;
    std::unordered_map<std::int32_t, Chunk> m_chunks;
    Cells m_coarse;                                ///< of the whole block, unknown ones included
    std::vector<std::vector<bool>> m_coarseKnown;  ///< per channel and unit
    std::vector<RunExtremes> m_buffer;             ///< of one pass, channel after channel
    ColumnMemo m_columns;
};

}  // namespace quillon
