#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/SampleSpan.h"
#include "data/QL_Types.h"
#include "view/AmplitudeScale.h"
#include "view/QL_ChUtils.h"

namespace quillon {

/// The full range used when raw codes are shown: every code, 1000 per unit.
inline constexpr ValueRange kRawCodesRange{-32.767F, 32.767F};

/// The two extreme codes of every channel over a range of samples, each pair in any order. Throws where a channel
/// cannot be read.
[[nodiscard]] std::vector<RunExtremes> ExtremeCodes(RecordingBlock& block, const std::vector<std::int16_t>& channels,
                                                    const SampleSpan& samples);

/// The same for the readable samples only.
struct ReadableExtremes {
    std::vector<std::optional<RunExtremes>> codes;  ///< per channel; none where no sample can be read
    std::string failure;                            ///< why some samples are not included; empty when all are
};
[[nodiscard]] ReadableExtremes ReadableExtremeCodes(RecordingBlock& block, const std::vector<std::int16_t>& channels,
                                                    const SampleSpan& samples);

/// The ranges of whole blocks' channels, each computed on first use and cached until Reset. Samples that cannot be read
/// are left out; such a range is computed again at every use.
class RangeRecords {
  public:
    /// Another block is loaded.
    void Reset() { m_ranges.clear(); }
    /// Smallest and largest value of some channels (from 1) over the whole block; none where there is nothing to be
    /// read.
    [[nodiscard]] std::optional<ValueRange> Of(const ViewBlock& block, const std::vector<std::int16_t>& channels);

    /// The same for one channel (from 1).
    [[nodiscard]] std::optional<ValueRange> Of(const ViewBlock& block, std::int16_t channel);
    /// Why some range leaves out samples, as the block said it; empty when none does.
    [[nodiscard]] std::string Failure() const;

  private:
    void ReadMissing(const ViewBlock& block, const std::vector<std::int16_t>& channels);

    struct Record {
        bool whole = false;  ///< of every sample
        std::string failure;
        std::optional<ValueRange> range;  ///< none for a channel whose scale makes no finite values
    };
    std::vector<Record> m_ranges;  ///< per channel of the block
};

/// The range used to choose a block's scale when it is first shown: that of the central 99 % of the visible points, so
/// that a single artefact does not determine it; that of all points if at most twice as wide (peaks of the signal
/// itself must be visible) or if the central points are all equal. `points` are those of `channels` (from 1), as
/// TraceReader gives them. With raw codes it is the range of the codes, 1000 to a unit. None where there is no point of
/// a finite value.
[[nodiscard]] std::optional<ValueRange> CentralRange(const ViewBlock& block, std::span<const std::int16_t> channels,
                                                     std::span<const std::vector<TracePoint>> points, bool rawCodes);

}  // namespace quillon
