#include "export/EdfPlusTexts.h"

#include <array>
#include <cmath>

#include "base/Bilingual.h"
#include "base/DateTime.h"
#include "base/Text.h"
#include "data/ShownChannels.h"
#include "format/NumberText.h"

namespace quillon {

namespace {

constexpr double kTicks = 1e7;  ///< of a second; what widespread readers resolve

/// With the fewest decimals that the date, which resolves about a microsecond, can mean.
double SecondOfDay(double date) {
    const double seconds = (date - std::floor(date)) * kSecondsPerDay;
    const double resolution = (std::nextafter(std::abs(date), HUGE_VAL) - std::abs(date)) * kSecondsPerDay;
    for (int places = 0; places < 7; ++places) {
        const double unit = std::pow(10.0, places);
        const double rounded = std::nearbyint(seconds * unit) / unit;
        if (std::abs(rounded - seconds) <= resolution) return rounded;
    }
    return seconds;
}

std::u16string Prefiltering(const nsp::FilterSettings& filter) {
    std::u16string text;
    const auto add = [&](std::u16string_view name, double frequency) {
        if (frequency == 0.0) return;
        text += (text.empty() ? u"" : u" ") + std::u16string(name) + NumberText(frequency, u'.') + u"Hz";
    };
    add(u"HP:", filter.highPass);
    add(u"LP:", filter.lowPass);
    // The order is that of high pass and low pass.
    const bool ordered = !text.empty() && filter.order != nsp::FilterSettings().order;
    add(u"N:", filter.notch);
    if (ordered) text += u" order " + Decimal(filter.order);
    if (!text.empty() && filter.bothWays) text += u" both ways";
    return text;
}

std::u16string LongDate(const CivilTime& time) {
    constexpr std::array<std::u16string_view, 12> months{u"JAN", u"FEB", u"MAR", u"APR", u"MAY", u"JUN",
                                                         u"JUL", u"AUG", u"SEP", u"OCT", u"NOV", u"DEC"};
    const std::u16string day = Decimal(time.day);
    const std::u16string year = Decimal(time.year);
    return std::u16string(2 - day.size(), u'0') + day + u'-' +
           std::u16string(months[static_cast<std::size_t>(time.month) - 1]) + u'-' +
           std::u16string(4 - year.size(), u'0') + year;
}

}  // namespace

EdfPlusStart FindEdfPlusStart(const RecordingBlock& block, std::int32_t first) {
    const double date = block.StartTime();
    EdfPlusStart start{{.year = 1985, .month = 1, .day = 1}, 0.0, false};
    if (date == 0.0 || !std::isfinite(date)) return start;
    double day = std::floor(date);
    const double ticks = std::nearbyint((SecondOfDay(date) + first / block.SampleRate()) * kTicks);
    if (!std::isfinite(ticks)) return start;
    const double seconds = std::floor(ticks / kTicks);
    day += std::floor(seconds / kSecondsPerDay);
    const auto rest = static_cast<int>(seconds - std::floor(seconds / kSecondsPerDay) * kSecondsPerDay);
    CivilTime time = CivilFromDate(day);
    time.hour = rest / 3600;
    time.minute = rest / 60 % 60;
    time.second = rest % 60;
    if (time.year < 1 || time.year > 9999) return start;
    return {time, (ticks - seconds * kTicks) / kTicks, true};
}

std::u16string EdfPlusRecordingField(const EdfPlusStart& start, std::int32_t samples, bool filled) {
    const std::u16string text = u"Startdate " + (start.known ? LongDate(start.time) : std::u16string(u"X")) + u" X X X";
    return filled ? text + u" Samples:" + Decimal(samples) : text;
}

std::u16string EdfPlusLabel(std::u16string title) {
    for (const std::u16string_view own : {u"EDF Annotations", u"BDF Annotations"}) {
        if (Trim(std::u16string_view(title).substr(0, 16)) == own) return u"Annotations";
    }
    return title;
}

std::u16string EdfPlusUnit(std::u16string_view unit) {
    std::u16string text;
    for (const char16_t letter : unit) {
        switch (letter) {
            case u'\u00B5':
            case u'\u03BC': text += u'u'; break;
            case u'\u2126':
            case u'\u03A9': text += u"Ohm"; break;
            case u'\u00B0': text += u"deg"; break;
            default: text += letter;
        }
    }
    return text;
}

std::vector<EdfPlusShown> DescribeShown(const RecordingBlock& block, ShownSettings settings,
                                        std::vector<bool> averaged) {
    // A montage has no reference; its titles tell the differences.
    if (settings.montage) settings.reference = {};
    if (averaged.empty()) averaged.assign(static_cast<std::size_t>(block.ChannelCount()), true);
    std::vector<EdfPlusShown> texts;
    for (const ShownChannel& channel : ChannelsShown(block, settings, averaged).channels) {
        EdfPlusShown text{Prefiltering(channel.filter), {}};
        const bool average = settings.reference.kind == Reference::Kind::Average;
        if (channel.common != ShownChannel::kNone)
            text.reference = u"Reference: " + (average ? u"average" : settings.reference.channel);
        texts.push_back(std::move(text));
    }
    return texts;
}

std::u16string EdfPlusSummary(const SampleSpan& range, double rate, std::size_t channels, std::size_t allChannels,
                              Language language, char16_t separator) {
    const auto number = [](std::size_t count) { return Decimal(static_cast<std::int64_t>(count)); };
    const std::u16string length = FormatPattern(range.count / rate, u"0.0##", separator);
    std::u16string from = ClockText(range.first / rate, false, separator);
    if (from.find(u':') == 1) from.insert(0, 1, u'0');
    return Say(allChannels == 1 ? u"%1 s from %2, %3 of %4 channel, EDF+" : u"%1 s from %2, %3 of %4 channels, EDF+",
               u"%1 с от %2, каналов %3 из %4, EDF+", {length, from, number(channels), number(allChannels)})
        .In(language);
}

std::u16string EdfPlusSamples(bool asShown, Language language) {
    return (asShown ? Say(u", as shown", u", как на экране") : Say(u", as stored", u", как в записи")).In(language);
}

}  // namespace quillon
