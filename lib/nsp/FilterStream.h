#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/SampleSpan.h"
#include "nsp/BothWaysFilter.h"
#include "nsp/CellFilter.h"
#include "nsp/FilterBank.h"

namespace quillon::nsp {

/// Filters in one or both directions what it is fed in pieces of any size.
class FilterStream {
  public:
    /// Samples of all channels together that both directions hold at once: some milliseconds, some MB.
    static constexpr std::int32_t kCodesAtOnce = 1 << 21;

    /// `wanted` are samples of a block of `blockSamples`, one or more.
    FilterStream(const FilterDesign& design, std::size_t channels, SampleSpan wanted, std::int32_t blockSamples,
                 LaneCount lanes = MostLanes(), std::int32_t codesAtOnce = kCodesAtOnce);

    /// The stored samples that are to be fed next, in one or more calls; none when all that is wanted is ready. In both
    /// directions they may lie before others that were fed already.
    [[nodiscard]] SampleSpan Next() const;
    /// The first `count` samples of Next, of every channel.
    void Feed(const CodeSamples& samples, std::size_t count);
    /// The same for samples that were computed from codes.
    void Feed(const FloatSamples& samples, std::size_t count);

    /// What the last call of Feed has finished, in codes. All calls together finish the wanted samples, in order.
    [[nodiscard]] SampleSpan Ready() const { return m_bothWays ? m_bothWays->Ready() : m_ready; }
    [[nodiscard]] const float* Row(std::size_t channel) const {
        return m_bothWays ? m_bothWays->Row(channel) : m_rows[channel].data() + m_skipped;
    }

    /// The forward direction as it is now; null where other streams cannot go on from it: in a run-up, and where the
    /// backward direction needs what came before.
    [[nodiscard]] const CellFilter* Checkpoint() const {
        return m_bothWays || !m_forward.IsInCell() ? nullptr : &m_forward;
    }
    /// Before the first call of Feed: goes on from the checkpoint of another stream of the same design, channels and
    /// block, which is at the first wanted sample or before it.
    void GoOnFrom(const CellFilter& checkpoint);

    /// Whether the first samples of a cell need more than what is held at once: the way to them is long.
    [[nodiscard]] static bool HasLongCells(const FilterDesign& design, std::size_t channels);

  private:
    template <typename Sample>
    void Run(const ChannelSamples<Sample>& samples, std::size_t count);

    SampleSpan m_wanted;
    CellFilter m_forward;  ///< of one direction alone
    std::optional<BothWaysFilter> m_bothWays;
    SampleSpan m_ready;
    std::size_t m_skipped = 0;  ///< of the rows, before what is ready
    std::vector<std::vector<float>> m_rows;
};

}  // namespace quillon::nsp
