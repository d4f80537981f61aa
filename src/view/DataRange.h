#pragma once

#include <optional>
#include <vector>

#include "data/QL_Types.h"
#include "view/AmplitudeScale.h"
#include "view/TimeAxis.h"

namespace quillon {

/// The range that stands for the data when raw codes are shown: every code, 1000 to a unit.
inline constexpr ValueRange kRawCodesRange{-32.767F, 32.767F};

/// The two extreme codes of every channel over a range of samples, each pair in any order. Throws where a channel
/// cannot be read.
[[nodiscard]] std::vector<RunExtremes> ExtremeCodes(RecordingBlock& block, const std::vector<std::int16_t>& channels,
                                                    const VisibleRange& samples);

/// Smallest and largest value of the shown channels over a range of samples; none where there is nothing to be read.
[[nodiscard]] std::optional<ValueRange> RangeOf(const ViewBlock& block, const ChannelSlots& slots,
                                                const VisibleRange& samples);

/// The ranges of whole blocks' channels, each found on first need and kept until Reset.
class RangeRecords {
  public:
    /// Another block is loaded.
    void Reset() { m_ranges.clear(); }
    /// Smallest and largest value of the shown channels over the whole block; none where there is nothing to be read.
    [[nodiscard]] std::optional<ValueRange> OfShown(const ViewBlock& block, const ChannelSlots& slots);

    /// The same for one channel (from 1).
    [[nodiscard]] std::optional<ValueRange> Of(const ViewBlock& block, std::int16_t channel);

  private:
    void Learn(const ViewBlock& block, const std::vector<std::int16_t>& channels);

    struct Record {
        bool known = false;
        std::optional<ValueRange> range;  ///< none for a channel whose scale makes no finite values
    };
    std::vector<Record> m_ranges;  ///< per channel of the block
};

/// The range that a block's scale is chosen by when it is first shown: of all its samples where they are few enough to
/// be read at once, else of stretches spread evenly over it, so that a recording of any length shows at once.
/// With raw codes it is that of the codes, 1000 to a unit.
[[nodiscard]] std::optional<ValueRange> TypicalRange(const ViewBlock& block, const ChannelSlots& slots, bool rawCodes);

}  // namespace quillon
