#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "data/Document.h"
#include "format/QL_Format.h"
#include "view/ExtremesCache.h"
#include "view/Lane.h"
#include "view/SceneBlocks.h"
#include "view/Selection.h"

namespace quillon {

/// Input of the readouts. Lines end with CR LF; a tab stands between a name and its value.
struct ReadoutSource {
    const ViewBlock& block;
    const ChannelSlots& slots;
    const FormatOptions& format;
    bool rawCodes = false;              ///< codes instead of values
    ExtremesCache* extremes = nullptr;  ///< of the block; without it the extremes of a range are read
    /// As in lanes: channels are named by their titles instead of their numbers, and an empty unit stays empty.
    bool titles = false;
    /// Where signals of other blocks are read out too: whose signals they are, their blocks, and the shown signals in
    /// the order of the readout.
    const Document* document = nullptr;
    SceneBlocks others{};
    std::vector<std::int16_t> signals{};
};

/// A code as the value that is shown for it: in the channel's unit, or the code where raw codes are shown.
[[nodiscard]] double ShownValue(const ReadoutSource& source, std::int16_t channel, double code);

/// Position of a sample (from 1) on the time axis: its number, its time of day or the time from the block's start.
[[nodiscard]] std::u16string PositionText(const ViewBlock& block, std::int32_t sample, std::u16string_view separator,
                                          const FormatOptions& format);

/// The position of a sample and the value there of every shown channel: "X:", then "Ch1:", "Ch2:" ... by acquisition
/// channel number, or their titles. A channel that cannot be read has no value. Of other blocks it is the sample that
/// holds at `place`, in samples of the block from its first one on; by default where the sample begins.
[[nodiscard]] std::u16string HoverReadout(const ReadoutSource& source, std::int32_t sample,
                                          std::optional<double> place = {});

/// "dX:", the time from the range's first to its last sample; for every shown channel the smallest and the largest
/// value of the range and the difference between the values at its end and its start; "1/dX:" as a frequency. Where
/// extremes are not known yet an ellipsis stands for them, and `complete` is set to false. Of other blocks the samples
/// that begin within the range count, or the one that holds there where none does.
[[nodiscard]] std::u16string RangeReadout(const ReadoutSource& source, const Selection& range,
                                          bool* complete = nullptr);

/// Position, time and frequency as above from the pinned sample to this one, earlier ones negative; for every shown
/// channel its value here and by how much that is above the one at the pinned sample. `place`: see HoverReadout.
[[nodiscard]] std::u16string PinnedReadout(const ReadoutSource& source, std::int32_t pinned, std::int32_t sample,
                                           std::optional<double> place = {});

/// What PinnedReadout tells of a signal, for drawing it.
struct MeasuredSignal {
    std::int16_t signal = 0;  ///< see Document, from 1
    double pinned = 0.0;      ///< value at the pinned sample, as it is shown
    double value = 0.0;       ///< at the other one
    std::u16string change;    ///< with its sign
};
/// Of the signals of `source.signals`; those that cannot be read are left out.
[[nodiscard]] std::vector<MeasuredSignal> MeasuredSignals(const ReadoutSource& source, std::int32_t pinned,
                                                          std::int32_t sample, std::optional<double> place = {});

/// Time and frequency of PinnedReadout in one line; no frequency where there is no time.
[[nodiscard]] std::u16string MeasuredTime(const ReadoutSource& source, std::int32_t pinned, std::int32_t sample);

/// A value of a channel as the readouts write it, without the blank that stands for a sign.
[[nodiscard]] std::u16string ReadoutValue(const ReadoutSource& source, std::int16_t channel, double value);

/// The channel (from 1) of the lane at a row of the graph whose trace passes nearest to that row at a sample; 0 when
/// there is none.
[[nodiscard]] std::int16_t ChannelNear(const ReadoutSource& source, const Lanes& lanes, std::int32_t sample,
                                       std::int32_t row);

}  // namespace quillon
