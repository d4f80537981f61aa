#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "format/QL_Format.h"

namespace quillon {

/// Rows from the tick up to the upper edge of its label's text.
inline constexpr std::int32_t kFrequencyLabelRise = 2;
/// Labels are at least as far apart, or as their text is high, so that they never overlap.
inline constexpr std::int32_t kFrequencyLabelSpacing = 15;

/// One tick of the frequency scale.
struct FrequencyTick {
    std::int32_t row = 0;  ///< from the top of the box
    std::u16string text;   ///< empty where a label would be cut by the upper edge of the box
};

struct FrequencyScaleMarks {
    std::vector<FrequencyTick> ticks;  ///< from the lowest frequency, which is at the bottom, upwards
    std::u16string unit;               ///< of the labels
    double step = 0.0;                 ///< between ticks, in Hz; 0 where there is no sampling rate to go by
    double shownStep = 0.0;            ///< the same in the labels' unit
};

/// Ticks of a box whose height spans 0 Hz to half the sampling rate. Steps are 1, 2 or 5 times a power of ten: the
/// smallest, from 1 mHz on, that leaves 20 rows between ticks. Where that leaves no room for a label at all, a finer
/// one is taken whose labels are still apart; so a box of 40 rows or more has at least one label.
/// `labelHeight` are the rows that a label's text takes.
[[nodiscard]] FrequencyScaleMarks FrequencyMarks(int height, double sampleRate, const FormatOptions& options,
                                                 int labelHeight = kFrequencyLabelSpacing);

/// Bins, from 0 Hz up, of a picture that reaches up to a frequency (0: all) with its upper edge, out of so many.
[[nodiscard]] std::int32_t ShownBins(double highest, double sampleRate, std::int32_t bins);

/// "Channel 3, kHz": the localised word for a channel, the device's number of the channel from 1, the labels' unit.
[[nodiscard]] std::u16string FrequencyCaption(std::u16string_view channelWord, int channelNumber,
                                              std::u16string_view unit);

}  // namespace quillon
