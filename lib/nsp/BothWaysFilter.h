#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/SampleSpan.h"
#include "nsp/CellFilter.h"
#include "nsp/FilterBank.h"

namespace quillon::nsp {

/// Both directions, cell by cell (see CellFilter). The backward direction begins a settling behind a cell, at the end
/// of what may be gigabytes: so a cell is divided into chunks, of which one at a time is held. What a cell needs is fed
/// up to three times: once ahead to its end, leaving the state of the forward direction before every chunk; once chunk
/// by chunk back to its start, leaving those of the backward direction behind them; and once more forward, now with
/// both states at hand. A cell of one chunk, as all are that are not very long, is fed once.
class BothWaysFilter {
  public:
    /// `wanted` are samples of a block that ends at `blockEnd`. A chunk has about `codesAtOnce` samples of all channels
    /// together.
    BothWaysFilter(const FilterDesign& design, std::size_t channels, SampleSpan wanted, std::int64_t blockEnd,
                   LaneCount lanes, std::int32_t codesAtOnce);

    /// The stored samples that are to be fed next, in one or more calls; none when all that is wanted is ready.
    [[nodiscard]] SampleSpan Next() const { return m_next; }
    template <typename Sample>
    void Feed(const ChannelSamples<Sample>& samples, std::size_t count);
    /// What the last call of Feed has finished.
    [[nodiscard]] SampleSpan Ready() const { return m_ready; }
    [[nodiscard]] const float* Row(std::size_t channel) const { return m_rows[channel].data(); }

  private:
    enum class Pass { Ahead, Back, Give };
    [[nodiscard]] std::int64_t ChunkStart(std::int64_t chunk) const { return m_first + chunk * m_chunkLength; }
    [[nodiscard]] std::int64_t LastChunk() const { return (m_from - m_first - 1) / m_chunkLength; }
    void BeginCell();
    /// Finds what is to be fed next from where the forward direction is.
    void FindNext();
    /// The forward direction has given a whole chunk.
    void RunBackward(std::int64_t end);
    void GoToChunk(std::int64_t chunk, Pass pass);

    SampleSpan m_wanted;
    std::int64_t m_blockEnd;
    std::int32_t m_settling;
    std::int32_t m_cellLength;
    std::int64_t m_chunkLength;
    CellFilter m_forward;
    FilterBank m_backward;
    // Of the present cell: the first sample wanted, what is behind the last one, and where the backward direction
    // begins.
    std::int64_t m_first = 0;
    std::int64_t m_end = 0;
    std::int64_t m_from = 0;
    Pass m_pass = Pass::Ahead;
    std::int64_t m_chunk = 0;              ///< that is fed, except ahead
    std::vector<CellFilter> m_starts;      ///< before each chunk
    std::vector<FilterBank> m_ends;        ///< behind each chunk from the second one on, the last first
    std::optional<CellFilter> m_nextCell;  ///< the forward direction before the cell behind this one
    SampleSpan m_next;
    SampleSpan m_ready;
    std::vector<std::vector<float>> m_rows;  ///< of the chunk
};

}  // namespace quillon::nsp
