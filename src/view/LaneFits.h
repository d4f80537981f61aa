#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "view/LaneSettings.h"
#include "view/QL_ChUtils.h"

namespace quillon {

/// Where the values of a channel lie, those of artefacts left out: `half` on both sides of the median.
struct LaneSpan {
    double middle = 0.0;
    double half = 0.0;  ///< 0: all values are the same, or there is none
    friend bool operator==(const LaneSpan&, const LaneSpan&) = default;
};

/// The span of a channel's points as TraceReader gives them: that of at least 99 % of their samples. None without a
/// point.
[[nodiscard]] std::optional<LaneSpan> SpanOfPoints(const LaneChannel& channel, std::span<const TracePoint> points);

/// Stretches that tell what is typical of a block.
inline constexpr std::int32_t kTypicalStretches = 16;

/// The typical spans of channels 1 .. n of a block: the same of stretches that are spread over it, of whose spans that
/// are not 0 the upper quartile, of whose medians the median. Reads at most `most` stretches of 1024 samples, less
/// where SamplesPerPiece is; what cannot be read is left out. Behind filters the stretches lie together. None where
/// nothing can be read.
[[nodiscard]] std::vector<std::optional<LaneSpan>> TypicalSpans(const ViewBlock& block,
                                                                std::span<const LaneChannel> channels,
                                                                std::int32_t most = kTypicalStretches);

/// How a block's lanes are fitted. `margin`: see LaneLayout. Spans are one per channel; channels without one keep
/// their scales.
struct LaneFit {
    const std::vector<LaneChannel>& channels;
    std::span<const std::optional<LaneSpan>> spans;
    double margin = 1.0;
};

/// Every group gets the finest scale that holds the spans of its channels, whose own steps stay; lanes are centred.
void FitGroups(const LaneFit& fit, LaneScales& scales);
/// A channel alone: its own step becomes the finest that holds its span; its lane is centred.
void FitChannel(const LaneFit& fit, std::size_t channel, LaneScales& scales);
/// For a block that is shown for the first time. Where the scale of a group is known and at least half of its shown
/// channels are readable at it, it stays, as do own steps that are known, and middles as long as something of the
/// channel is in its lane. Else one scale serves the group, the finest that holds all shown channels where their spans
/// differ by a factor of 8 at most; otherwise it is that of the median span, and channels with more than four times
/// that or less than an eighth of it get own steps. Afterwards all channels are known.
void FitTypical(const LaneFit& fit, LaneScales& scales);

}  // namespace quillon
