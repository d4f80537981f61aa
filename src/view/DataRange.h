#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/SampleSpan.h"
#include "data/QL_Types.h"
#include "view/AmplitudeScale.h"
#include "view/ExtremesCache.h"
#include "view/QL_ChUtils.h"

namespace quillon {

/// The full range used when raw codes are shown: every code, 1000 per unit.
inline constexpr ValueRange kRawCodesRange{-32.767F, 32.767F};

/// The two extreme codes of every channel over a range of samples, each pair in any order. Throws where a channel
/// cannot be read.
[[nodiscard]] std::vector<RunExtremes> ExtremeCodes(RecordingBlock& block, std::span<const std::int16_t> channels,
                                                    const SampleSpan& samples);

/// Extremes of the readable samples only.
struct ReadableExtremes {
    std::vector<std::optional<RunExtremes>> codes;  ///< per channel; none where no sample can be read
    std::string failure;                            ///< why some samples are not included; empty when all are
};
/// The same as ExtremeCodes for the readable samples. `searches` bounds the time for samples full of unreadable places.
[[nodiscard]] ReadableExtremes ReadableExtremeCodes(RecordingBlock& block, std::span<const std::int16_t> channels,
                                                    const SampleSpan& samples, int searches = 10000);

/// The ranges of a whole block's channels, from the block's extremes. Samples that cannot be read are left out; such a
/// range is searched again at every use.
class RangeRecords {
  public:
    /// Reads through the cache, which must outlive this object and hold the same block.
    explicit RangeRecords(ExtremesCache& extremes) : m_extremes(extremes) {}

    /// Another block is loaded.
    void Reset();
    /// Reads about one piece of the block (see SamplesPerPiece), or comes nearer to it, for the ranges of these
    /// channels (from 1), beginning at the samples that are `seen` and going on outwards. False when nothing is left to
    /// be read; the ranges are then recorded.
    bool ReadMissing(const ViewBlock& block, std::span<const std::int16_t> channels, const SampleSpan& seen);
    /// How much of the block the present run of ReadMissing has passed, 0 to 1.
    [[nodiscard]] double PassedShare() const;
    /// Whether the ranges of the channels are recorded and leave nothing out.
    [[nodiscard]] bool IsKnown(std::span<const std::int16_t> channels) const;
    /// Whether the ranges of the channels are recorded at all.
    [[nodiscard]] bool IsRecorded(std::span<const std::int16_t> channels) const;
    /// Smallest and largest recorded value of some channels; none where there is none.
    [[nodiscard]] std::optional<ValueRange> Found(std::span<const std::int16_t> channels) const;
    /// The same, after reading all that is missing.
    [[nodiscard]] std::optional<ValueRange> Of(const ViewBlock& block, std::span<const std::int16_t> channels);
    /// Why some range leaves out samples, as the block said it; empty when none does.
    [[nodiscard]] std::string Failure() const;

  private:
    struct Record {
        bool found = false;
        bool whole = false;  ///< of every sample
        std::string failure;
        std::optional<ValueRange> range;  ///< none for a channel whose scale makes no finite values
    };
    /// A run of ReadMissing over the units of the cache, which are numbered from 0.
    struct Run {
        std::vector<std::int16_t> channels;
        std::int32_t units = 0;
        std::int32_t right = 0;  ///< units from here on are not passed
        std::int32_t left = 0;   ///< nor those below this one
        std::int32_t turns = 0;
        /// Of samples that are in no unit of the cache, per channel.
        ReadableExtremes others;
    };
    [[nodiscard]] Run Begin(const ViewBlock& block, std::span<const std::int16_t> channels, const SampleSpan& seen);
    /// Comes nearer to what is not known of these units; whether they can be read now.
    [[nodiscard]] bool Approach(const ViewBlock& block, std::int32_t from, std::int32_t to) const;
    void ReadUnits(const ViewBlock& block, std::int32_t from, std::int32_t to);
    void ReadOthers(const ViewBlock& block, const SampleSpan& samples);
    void Store(const ViewBlock& block);

    ExtremesCache& m_extremes;
    std::vector<Record> m_ranges;  ///< per channel of the block
    std::optional<Run> m_run;
};

/// The range used to choose a block's scale when it is first shown: that of the central 99 % of the visible points, so
/// that a single artefact does not determine it; that of all points if at most twice as wide (peaks of the signal
/// itself must be visible) or if the central points are all equal. `points` are those of `channels` (from 1), as
/// TraceReader gives them. With raw codes it is the range of the codes, 1000 to a unit. None where there is no point of
/// a finite value.
[[nodiscard]] std::optional<ValueRange> CentralRange(const ViewBlock& block, std::span<const std::int16_t> channels,
                                                     std::span<const std::vector<TracePoint>> points, bool rawCodes);

}  // namespace quillon
