#include "view/Readout.h"

#include <algorithm>
#include <cmath>

#include "base/Resume.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "view/DataRange.h"
#include "view/ScaleLabels.h"

namespace quillon {

namespace {

constexpr std::u16string_view kLineEnd = u"\r\n";
/// Stands for values that are not known yet.
constexpr char16_t kUnknown = u'\u2026';
/// Character 135 of the family's ANSI code pages.
constexpr char16_t kRangeSign = u'\u2021';

std::size_t At(std::int16_t channel) {
    return static_cast<std::size_t>(channel - 1);
}

std::u16string ValueText(const ReadoutSource& source, std::int16_t channel, double value) {
    if (source.rawCodes) {
        const std::u16string text = NumberText(value, source.format.decimalSeparator);
        return value < 0.0 ? text : u' ' + text;
    }
    const auto slot = static_cast<std::size_t>(source.block.channelNumbers[At(channel)]);
    return FormatValue(static_cast<float>(value), source.slots[slot].unit, source.format);
}

std::u16string Name(const ReadoutSource& source, std::int16_t channel) {
    const std::int16_t number = source.block.channelNumbers[At(channel)];
    std::u16string title = source.slots[static_cast<std::size_t>(number)].title;
    if (!source.titles || title.empty()) return u"Ch" + Decimal(number + 1) + u":\t";
    // Tabs and line ends separate the parts of a readout.
    std::replace_if(
        title.begin(), title.end(), [](char16_t letter) { return letter < u' '; }, u' ');
    return title + u":\t";
}

std::int16_t CodeAt(const ReadoutSource& source, std::int16_t channel, std::int32_t sample) {
    std::int16_t code = 0;
    source.block.block->ReadCodes(channel, sample - 1, 1, &code);
    return code;
}

/// Extremes of a range that are known or quickly read.
std::optional<std::vector<RunExtremes>> QuickExtremes(const ReadoutSource& source,
                                                      const std::vector<std::int16_t>& channels,
                                                      const SampleSpan& samples) {
    RecordingBlock& block = *source.block.block;
    constexpr int pieces = 4;
    std::optional<std::vector<RunExtremes>> found = source.extremes->ExtremesOf(block, channels, samples);
    const SampleSpan cells{std::max(samples.first, 1), samples.End() - std::max(samples.first, 1)};
    for (int piece = 0; piece < pieces && !found; ++piece) {
        if (!source.extremes->Fill(block, channels, cells, ExtremesCache::kCoarseCell, ExtremesCache::Eviction::Never))
            return ExtremeCodes(block, channels, samples);
        found = source.extremes->ExtremesOf(block, channels, samples);
    }
    return found;
}

}  // namespace

double ShownValue(const ReadoutSource& source, std::int16_t channel, double code) {
    if (source.rawCodes) return code;
    const float inverse = source.block.invScale[At(channel)];
    const double scaled = inverse == 0.0F ? 0.0 : code / static_cast<double>(inverse);
    return scaled + static_cast<double>(source.block.offsets[At(channel)]);
}

std::u16string PositionText(const ViewBlock& block, std::int32_t sample, std::u16string_view separator,
                            const FormatOptions& format) {
    if (format.sampleIndexes || !(block.sampleRate > 0.0)) return Decimal(sample);
    return FormatAxisValueWithUnit(AxisSeconds(block, sample - 1.0, format), AxisKind::Time, separator, format);
}

std::u16string HoverReadout(const ReadoutSource& source, std::int32_t sample) {
    std::u16string text = u"X:\t" + PositionText(source.block, sample, u" ", source.format);
    text += kLineEnd;
    for (const std::int16_t channel : ShownChannels(source.block, source.slots)) {
        text += Name(source, channel);
        Resume(
            [&] { text += ValueText(source, channel, ShownValue(source, channel, CodeAt(source, channel, sample))); });
        text += kLineEnd;
    }
    return text;
}

std::u16string RangeReadout(const ReadoutSource& source, const Selection& range, bool* complete) {
    FormatOptions duration = source.format;
    duration.timeOfDay = false;
    const std::int32_t steps = range.Samples().count - 1;
    const double seconds = source.block.sampleRate > 0.0 ? steps / source.block.sampleRate : 0.0;
    const bool indexes = source.format.sampleIndexes || !(source.block.sampleRate > 0.0);
    std::u16string text =
        u"dX:\t" + (indexes ? Decimal(steps) : FormatAxisValueWithUnit(seconds, AxisKind::Time, u" ", duration));
    text += kLineEnd;
    const std::vector<std::int16_t> shown = ShownChannels(source.block, source.slots);
    // Unreadable ones are known to be so; unknown ones may be found later.
    std::vector<RunExtremes> extremes;
    bool known = true;
    Resume([&] {
        if (source.extremes == nullptr) {
            extremes = ExtremeCodes(*source.block.block, shown, range.Samples());
        } else if (auto found = QuickExtremes(source, shown, range.Samples())) {
            extremes = std::move(*found);
        } else {
            known = false;
        }
    });
    if (complete != nullptr) *complete = known;
    for (std::size_t at = 0; at < shown.size(); ++at) {
        const std::int16_t channel = shown[at];
        text += Name(source, channel);
        Resume([&] {
            if (extremes.empty() && known) return;
            const double change = ShownValue(source, channel, CodeAt(source, channel, range.end)) -
                                  ShownValue(source, channel, CodeAt(source, channel, range.start));
            if (known) {
                const double first = ShownValue(source, channel, extremes[at].first);
                const double second = ShownValue(source, channel, extremes[at].second);
                text += ValueText(source, channel, std::min(first, second)) + kRangeSign +
                        ValueText(source, channel, std::max(first, second));
            } else {
                text += kUnknown;
            }
            text += u'\t' + ValueText(source, channel, change);
        });
        text += kLineEnd;
    }
    if (seconds > 0.0) text += u"1/dX:\t" + FormatFrequency(1.0 / seconds, u" ", false, source.format) + u"\r\n";
    return text;
}

std::u16string ReadoutValue(const ReadoutSource& source, std::int16_t channel, double value) {
    const std::u16string text = ValueText(source, channel, value);
    return text.substr(text.front() == u' ' ? 1 : 0);
}

std::int16_t ChannelNear(const ReadoutSource& source, const Lanes& lanes, std::int32_t sample, std::int32_t row) {
    std::int16_t nearest = 0;
    double least = 0.0;
    for (const Lane& lane : lanes) {
        if (row < lane.top || row >= lane.End()) continue;
        if (lane.single && !lane.channels.empty()) return lane.channels.front();
        for (const std::int16_t channel : lane.channels) {
            Resume([&] {
                double value = ShownValue(source, channel, CodeAt(source, channel, sample));
                if (source.rawCodes) value /= 1000.0;
                const double distance = std::fabs(lane.RowOf(value) - row);
                if (nearest != 0 && distance >= least) return;
                nearest = channel;
                least = distance;
            });
        }
    }
    return nearest;
}

}  // namespace quillon
