#include "view/Readout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <utility>

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

/// A signal that is read out.
struct Line {
    SceneBlock of;
    std::int16_t channel;  ///< of that block, from 1
    std::u16string title{};
    std::u16string unit{};
    std::int16_t signal = 0;  ///< see Document; only where signals of other blocks are read out too
    [[nodiscard]] const ViewBlock& Block() const { return of.block; }
};

double ValueOf(const ViewBlock& block, std::int16_t channel, double code) {
    const float inverse = block.invScale[At(channel)];
    const double scaled = inverse == 0.0F ? 0.0 : code / static_cast<double>(inverse);
    return scaled + static_cast<double>(block.offsets[At(channel)]);
}

/// A value without a unit has no prefix either: it is written as with a unit that takes none.
std::u16string WithoutUnit(double value, const FormatOptions& format) {
    const std::u16string text = FormatValue(static_cast<float>(value), u"%", format);
    return text.substr(0, text.rfind(u' '));
}

std::u16string ValueText(const ReadoutSource& source, const std::u16string& unit, double value) {
    // On one axis an empty unit is a volt, see FormatValue.
    if (!source.rawCodes && unit.empty() && source.titles) return WithoutUnit(value, source.format);
    if (!source.rawCodes) return FormatValue(static_cast<float>(value), unit, source.format);
    const std::u16string text = NumberText(value, source.format.decimalSeparator);
    return value < 0.0 ? text : u' ' + text;
}

/// The value that is shown for a code, as text.
std::u16string CodeText(const ReadoutSource& source, const Line& line, double code) {
    return ValueText(source, line.unit, source.rawCodes ? code : ValueOf(line.Block(), line.channel, code));
}

std::u16string Name(const ReadoutSource& source, const Line& line) {
    std::u16string title = line.title;
    if (!source.titles || title.empty())
        return u"Ch" + Decimal(line.Block().channelNumbers[At(line.channel)] + 1) + u":\t";
    // Tabs and line ends separate the parts of a readout.
    std::replace_if(
        title.begin(), title.end(), [](char16_t letter) { return letter < u' '; }, u' ');
    return title + u":\t";
}

double CodeAt(const ViewBlock& block, std::int16_t channel, std::int32_t sample) {
    std::int16_t code = 0;
    block.block->ReadCodes(channel, sample - 1, 1, &code);
    return code;
}

/// All that is shown. `unused` stands for extremes that are not asked for.
std::vector<Line> LinesOf(const ReadoutSource& source, ExtremesCache& unused) {
    std::vector<Line> lines;
    const SceneBlock own{source.block, source.extremes != nullptr ? *source.extremes : unused};
    if (source.document == nullptr) {
        for (const std::int16_t channel : ShownChannels(source.block, source.slots)) {
            const ChannelSlot& slot = *SlotOf(source.slots, source.block.channelNumbers[At(channel)]);
            lines.push_back({own, channel, slot.title, slot.unit});
        }
        return lines;
    }
    for (const std::int16_t number : source.signals) {
        const Signal signal = source.document->GetSignal(number);
        const SceneBlock* of = &own;
        for (const SceneBlock& other : source.others) {
            if (&other.block == &signal.block) of = &other;
        }
        if (&of->block == &signal.block) lines.push_back({*of, signal.channel, signal.title, signal.unit, number});
    }
    return lines;
}

/// A place in samples of the loaded block as one in those of another block; rounded off where it is meant to be whole.
double PlaceIn(const ReadoutSource& source, const ViewBlock& block, double place) {
    if (&block == &source.block) return place;
    constexpr double tolerance = 1e-6;
    const double there = place * block.sampleCount / source.block.sampleCount;
    const double whole = std::nearbyint(there);
    return std::fabs(there - whole) < tolerance ? whole : there;
}

/// The sample (from 1) of a block that holds at a place.
std::int32_t SampleAt(const ReadoutSource& source, const ViewBlock& block, double place) {
    const double there = std::floor(PlaceIn(source, block, place));
    return static_cast<std::int32_t>(std::clamp(there, 0.0, block.sampleCount - 1.0)) + 1;
}

/// The samples of a block that a range of the loaded one stands for.
SampleSpan SamplesIn(const ReadoutSource& source, const ViewBlock& block, const SampleSpan& range) {
    if (&block == &source.block) return range;
    const auto first = static_cast<std::int32_t>(std::ceil(PlaceIn(source, block, range.first)));
    const auto end = static_cast<std::int32_t>(std::ceil(PlaceIn(source, block, range.End())));
    if (end <= first) return {SampleAt(source, block, range.first) - 1, 1};
    return {first, end - first};
}

/// Extremes of a range that are known or quickly read.
std::optional<std::vector<RunExtremes>> QuickExtremes(RecordingBlock& block, ExtremesCache& extremes,
                                                      const std::vector<std::int16_t>& channels,
                                                      const SampleSpan& samples) {
    constexpr int pieces = 4;
    std::optional<std::vector<RunExtremes>> found = extremes.ExtremesOf(block, channels, samples);
    const SampleSpan cells{std::max(samples.first, 1), samples.End() - std::max(samples.first, 1)};
    for (int piece = 0; piece < pieces && !found; ++piece) {
        if (!extremes.Fill(block, channels, cells, ExtremesCache::kCoarseCell, ExtremesCache::Eviction::Never))
            return ExtremeCodes(block, channels, samples);
        found = extremes.ExtremesOf(block, channels, samples);
    }
    return found;
}

/// What is known of the extremes of a block's lines in a range.
struct Found {
    bool known = true;                    ///< unreadable ones are known to be so; unknown ones may be found later
    std::vector<RunExtremes> extremes{};  ///< per channel; empty where they cannot be read
};

Found FindExtremes(const ReadoutSource& source, const SceneBlock& of, const std::vector<std::int16_t>& channels,
                   const SampleSpan& range) {
    Found found;
    const SampleSpan samples = SamplesIn(source, of.block, range);
    Resume([&] {
        if (source.extremes == nullptr) {
            found.extremes = ExtremeCodes(*of.block.block, channels, samples);
        } else if (auto known = QuickExtremes(*of.block.block, of.extremes, channels, samples)) {
            found.extremes = std::move(*known);
        } else {
            found.known = false;
        }
    });
    return found;
}

}  // namespace

double ShownValue(const ReadoutSource& source, std::int16_t channel, double code) {
    return source.rawCodes ? code : ValueOf(source.block, channel, code);
}

std::u16string PositionText(const ViewBlock& block, std::int32_t sample, std::u16string_view separator,
                            const FormatOptions& format) {
    if (format.sampleIndexes || !(block.sampleRate > 0.0)) return Decimal(sample);
    return FormatAxisValueWithUnit(AxisSeconds(block, sample - 1.0, format), AxisKind::Time, separator, format);
}

std::u16string HoverReadout(const ReadoutSource& source, std::int32_t sample, std::optional<double> place) {
    std::u16string text = u"X:\t" + PositionText(source.block, sample, u" ", source.format);
    text += kLineEnd;
    ExtremesCache unused;
    for (const Line& line : LinesOf(source, unused)) {
        text += Name(source, line);
        const bool isOwn = &line.Block() == &source.block;
        const std::int32_t at = isOwn ? sample : SampleAt(source, line.Block(), place.value_or(sample - 1.0));
        Resume([&] { text += CodeText(source, line, CodeAt(line.Block(), line.channel, at)); });
        text += kLineEnd;
    }
    return text;
}

namespace {

double SecondsOf(const ReadoutSource& source, std::int32_t steps) {
    return source.block.sampleRate > 0.0 ? steps / source.block.sampleRate : 0.0;
}

/// A number of samples as a time, or as what it is where samples are shown.
std::u16string TimeText(const ReadoutSource& source, std::int32_t steps) {
    if (source.format.sampleIndexes || !(source.block.sampleRate > 0.0)) return Decimal(steps);
    FormatOptions duration = source.format;
    duration.timeOfDay = false;
    const std::u16string text =
        FormatAxisValueWithUnit(SecondsOf(source, std::abs(steps)), AxisKind::Time, u" ", duration);
    return steps < 0 ? u'-' + text : text;
}

/// The frequency of such a time; empty where it is none.
std::u16string RateText(const ReadoutSource& source, std::int32_t steps) {
    const double seconds = SecondsOf(source, std::abs(steps));
    return seconds > 0.0 ? FormatFrequency(1.0 / seconds, u" ", false, source.format) : std::u16string();
}

std::u16string RateLine(const ReadoutSource& source, std::int32_t steps) {
    const std::u16string text = RateText(source, steps);
    return text.empty() ? text : u"1/dX:\t" + text + u"\r\n";
}

/// The values of a line as they are shown, at the pinned sample and at another one.
struct Measured {
    double pinned = 0.0;
    double value = 0.0;
};

/// Throws what reading throws.
Measured Measure(const ReadoutSource& source, const Line& line, std::int32_t pinned, std::int32_t sample,
                 std::optional<double> place) {
    const ViewBlock& block = line.Block();
    const auto value = [&](double at) {
        const double code = CodeAt(block, line.channel, SampleAt(source, block, at));
        return source.rawCodes ? code : ValueOf(block, line.channel, code);
    };
    return {value(pinned - 1.0), value(&block == &source.block ? sample - 1.0 : place.value_or(sample - 1.0))};
}

/// The values of a line of RangeReadout. `at`: its channel's place in what was found.
std::u16string RangeText(const ReadoutSource& source, const Line& line, const Selection& range, const Found& found,
                         std::size_t at) {
    std::u16string text;
    Resume([&] {
        if (found.extremes.empty() && found.known) return;
        const auto value = [&](double code) {
            return source.rawCodes ? code : ValueOf(line.Block(), line.channel, code);
        };
        const auto end = [&](std::int32_t sample) {
            return value(CodeAt(line.Block(), line.channel, SampleAt(source, line.Block(), sample - 1.0)));
        };
        const double change = end(range.end) - end(range.start);
        if (found.known) {
            const double first = value(found.extremes[at].first);
            const double second = value(found.extremes[at].second);
            text = ValueText(source, line.unit, std::min(first, second)) + kRangeSign +
                   ValueText(source, line.unit, std::max(first, second));
        } else {
            text = kUnknown;
        }
        text += u'\t' + ValueText(source, line.unit, change);
    });
    return text;
}

}  // namespace

std::u16string RangeReadout(const ReadoutSource& source, const Selection& range, bool* complete) {
    const std::int32_t steps = range.Samples().count - 1;
    std::u16string text = u"dX:\t" + TimeText(source, steps);
    text += kLineEnd;
    ExtremesCache unused;
    const std::vector<Line> lines = LinesOf(source, unused);
    std::map<const ViewBlock*, std::vector<std::int16_t>> channels;
    for (const Line& line : lines) channels[&line.Block()].push_back(line.channel);
    std::map<const ViewBlock*, Found> found;
    std::map<const ViewBlock*, std::size_t> next;
    for (const Line& line : lines) {
        const ViewBlock* const block = &line.Block();
        if (!found.contains(block)) found[block] = FindExtremes(source, line.of, channels[block], range.Samples());
        text += Name(source, line) + RangeText(source, line, range, found[block], next[block]++);
        text += kLineEnd;
    }
    if (complete != nullptr)
        *complete = std::all_of(found.begin(), found.end(), [](const auto& entry) { return entry.second.known; });
    return text + RateLine(source, steps);
}

std::u16string PinnedReadout(const ReadoutSource& source, std::int32_t pinned, std::int32_t sample,
                             std::optional<double> place) {
    std::u16string text = u"X:\t" + PositionText(source.block, sample, u" ", source.format);
    text += kLineEnd;
    text += u"dX:\t" + TimeText(source, sample - pinned);
    text += kLineEnd;
    text += RateLine(source, sample - pinned);
    ExtremesCache unused;
    for (const Line& line : LinesOf(source, unused)) {
        text += Name(source, line);
        Resume([&] {
            const Measured measured = Measure(source, line, pinned, sample, place);
            text += ValueText(source, line.unit, measured.value);
            text += u'\t' + ValueText(source, line.unit, measured.value - measured.pinned);
        });
        text += kLineEnd;
    }
    return text;
}

std::vector<MeasuredSignal> MeasuredSignals(const ReadoutSource& source, std::int32_t pinned, std::int32_t sample,
                                            std::optional<double> place) {
    std::vector<MeasuredSignal> signals;
    ExtremesCache unused;
    for (const Line& line : LinesOf(source, unused)) {
        Resume([&] {
            const Measured measured = Measure(source, line, pinned, sample, place);
            const double change = measured.value - measured.pinned;
            std::u16string text = ValueText(source, line.unit, change);
            if (text.front() == u' ') text.replace(0, 1, change > 0.0 ? u"+" : u"");
            signals.push_back({line.signal, measured.pinned, measured.value, std::move(text)});
        });
    }
    return signals;
}

std::u16string MeasuredTime(const ReadoutSource& source, std::int32_t pinned, std::int32_t sample) {
    const std::u16string rate = RateText(source, sample - pinned);
    return TimeText(source, sample - pinned) + (rate.empty() ? rate : u", " + rate);
}

std::u16string ReadoutValue(const ReadoutSource& source, std::int16_t channel, double value) {
    const auto slot = static_cast<std::size_t>(source.block.channelNumbers[At(channel)]);
    const std::u16string text = ValueText(source, source.slots[slot].unit, value);
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
                double value = ShownValue(source, channel, CodeAt(source.block, channel, sample));
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
