#pragma once

#include <cstddef>
#include <cstdint>

#include "base/SampleSpan.h"
#include "nsp/FilterBank.h"

/// Filtered samples of a block that are the same bits whatever part of it is asked for.
///
/// Two runs of a filter that began at different samples agree within half a code after its settling, but their
/// roundings differ for ever, and so would codes now and then. So a block is divided into cells of
/// FilterDesign::CellLength, counted from its first sample. The samples of a cell are by definition those of a run that
/// starts at rest one settling before the cell, or at the block's first sample. Backward, a second run over what the
/// first one gave does the same from the other side: it starts one settling behind the cell or at the block's last
/// sample.
namespace quillon::nsp {

/// The forward direction alone. It is fed a block's samples in order, from Position() on, and starts a second
/// run beside the first one a settling before each new cell.
class CellFilter {
  public:
    /// For the samples `wanted`; what comes out before them is the run-up.
    CellFilter(const FilterDesign& design, std::size_t channels, SampleSpan wanted, LaneCount lanes);
    /// Behind the last sample of the cell that `sample` lies in.
    [[nodiscard]] static std::int64_t CellEndBehind(std::int64_t cellLength, std::int64_t sample);
    /// The sample to be fed first where `first` is the first one wanted.
    [[nodiscard]] static std::int32_t StartFor(const FilterDesign& design, std::int32_t first);
    [[nodiscard]] std::int32_t Position() const { return m_position; }
    /// What comes out next is a sample of its cell, not of the run-up.
    [[nodiscard]] bool IsInCell() const { return m_position >= m_cellEnd - m_cellLength; }
    void Feed(CodeSamples samples, std::size_t count, FilteredSamples out);
    void Feed(FloatSamples samples, std::size_t count, FilteredSamples out);

  private:
    template <typename Sample>
    void Run(ChannelSamples<Sample> samples, std::size_t count, FilteredSamples out);

    std::int32_t m_settling;
    std::int32_t m_cellLength;
    std::int32_t m_position;  ///< of the sample that is fed next
    std::int64_t m_cellEnd;
    std::int64_t m_end;
    bool m_started = false;
    FilterBank m_current;
    FilterBank m_next;
};

}  // namespace quillon::nsp
