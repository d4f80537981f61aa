#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/SampleSpan.h"
#include "nsp/CellFilter.h"
#include "nsp/FilterBank.h"

namespace quillon::nsp {

/// Filters in one or both directions what it is fed in pieces of any size.
class FilterStream {
  public:
    /// `wanted` are samples of a block of `blockSamples`, one or more.
    FilterStream(const FilterDesign& design, std::size_t channels, SampleSpan wanted, std::int32_t blockSamples,
                 LaneCount lanes = MostLanes());

    /// The stored samples that are to be fed, in order.
    [[nodiscard]] SampleSpan Needed() const { return m_needed; }
    /// The stored sample that is fed next.
    [[nodiscard]] std::int32_t Position() const { return m_forward.Position(); }
    /// The next `count` samples of every channel, no more than are needed.
    void Feed(const CodeSamples& samples, std::size_t count);
    /// The same for samples that were computed from codes.
    void Feed(const FloatSamples& samples, std::size_t count);

    /// What the last call of Feed has finished, in codes. All calls together finish the wanted samples, in order. In
    /// both directions whole cells come at a time, one settling late: some 4 (cell + settling) bytes are kept for each
    /// channel.
    [[nodiscard]] SampleSpan Ready() const { return m_ready; }
    [[nodiscard]] const float* Row(std::size_t channel) const { return m_rows[channel].data() + m_skipped; }

    /// The forward direction as it is now; null where other streams cannot go on from it: in a run-up, and where the
    /// backward direction needs what came before.
    [[nodiscard]] const CellFilter* Checkpoint() const {
        return m_bothWays || !m_forward.IsInCell() ? nullptr : &m_forward;
    }
    /// Before the first call of Feed: goes on from the checkpoint of another stream of the same design, channels and
    /// block, which is at the first wanted sample or before it.
    void GoOnFrom(const CellFilter& checkpoint);

  private:
    using Rows = std::vector<std::vector<float>>;
    template <typename Sample>
    void Run(const ChannelSamples<Sample>& samples, std::size_t count);
    template <typename Sample>
    void FeedForward(const ChannelSamples<Sample>& samples, std::size_t count);
    template <typename Sample>
    void FeedBothWays(const ChannelSamples<Sample>& samples, std::size_t count);
    void RunBackward(std::int64_t from, std::int64_t end);

    SampleSpan m_wanted;
    std::int64_t m_blockEnd;
    std::int32_t m_settling;
    std::int32_t m_cellLength;
    bool m_bothWays;
    SampleSpan m_ahead;  ///< what the forward direction has to give
    SampleSpan m_needed;
    CellFilter m_forward;
    FilterBank m_backward;
    SampleSpan m_ready;
    std::size_t m_skipped = 0;  ///< of the rows, before what is ready
    Rows m_rows;
    Rows m_history;  ///< forward results that the backward run still needs
    std::int64_t m_historyFirst;
};

}  // namespace quillon::nsp
