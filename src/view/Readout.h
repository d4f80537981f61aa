#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "data/QL_Types.h"
#include "format/QL_Format.h"
#include "view/Lane.h"
#include "view/Selection.h"

namespace quillon {

/// Input of the readouts. Lines end with CR LF; a tab stands between a name and its value.
struct ReadoutSource {
    const ViewBlock& block;
    const ChannelSlots& slots;
    const FormatOptions& format;
    bool rawCodes = false;  ///< codes instead of values
};

/// Position of a sample (from 1) on the time axis: its number, its time of day or the time from the block's start.
[[nodiscard]] std::u16string PositionText(const ViewBlock& block, std::int32_t sample, std::u16string_view separator,
                                          const FormatOptions& format);

/// The position of a sample and the value there of every shown channel: "X:", then "Ch1:", "Ch2:" ... by acquisition
/// channel number. A channel that cannot be read has no value.
[[nodiscard]] std::u16string HoverReadout(const ReadoutSource& source, std::int32_t sample);

/// "dX:", the time from the range's first to its last sample; for every shown channel the smallest and the largest
/// value of the range and the difference between the values at its end and its start; "1/dX:" as a frequency.
[[nodiscard]] std::u16string RangeReadout(const ReadoutSource& source, const Selection& range);

/// A value of a channel as the readouts write it, without the blank that stands for a sign.
[[nodiscard]] std::u16string ReadoutValue(const ReadoutSource& source, std::int16_t channel, double value);

/// The channel (from 1) of the lane at a row of the graph whose trace passes nearest to that row at a sample; 0 when
/// there is none.
[[nodiscard]] std::int16_t ChannelNear(const ReadoutSource& source, const Lanes& lanes, std::int32_t sample,
                                       std::int32_t row);

/// Of some samples of one channel, in its unit (codes where raw codes are shown).
struct ChannelStatistics {
    std::int16_t channel = 0;  ///< position in the block, from 1
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    double rms = 0.0;
    double deviation = 0.0;  ///< standard deviation, of all samples (divided by their number)
};

/// Statistics of the shown channels, in one pass over the data. Channels that cannot be read are left out.
[[nodiscard]] std::vector<ChannelStatistics> StatisticsOf(const ReadoutSource& source, const SampleSpan& samples);

}  // namespace quillon
