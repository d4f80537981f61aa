#include "norvik/private/WfdbHeader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "base/Text.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/WfdbFields.h"

namespace quillon {

namespace {

constexpr std::uint64_t kMostSignals = 65535;
constexpr std::size_t kMostSegments = 32767;
/// Of a segment.
constexpr std::uint64_t kMostFrames = std::uint64_t{1} << 46;
constexpr double kLowestRate = 1e-9;
constexpr double kHighestRate = 1e12;
constexpr std::size_t kRemarkLetters = 120;
/// Of the record's name in titles of signals.
constexpr std::size_t kTitleBytes = 64;
constexpr std::array kFormats{8, 16, 24, 32, 61, 80, 160, 212, 310, 311, 508, 516, 524};

/// "line 3: gain 'abc'"
[[noreturn]] void RefuseField(std::size_t line, std::u16string_view english, std::u16string_view russian,
                              std::string_view field) {
    throw FormatError(Say(u"line %1: " + std::u16string(english) + u" '%2'",
                          u"строка %1: " + std::u16string(russian) + u" «%2»",
                          {Number(line), FromUtf8OrLatin1(field)}));
}

/// The record line; returns how many lines of signals or segments are to follow.
std::uint64_t ReadRecordLine(const HeaderLine& line, WfdbHeader& header) {
    FieldText fields(line.text);
    const std::string_view name = fields.Next();
    const std::size_t slash = name.find('/');
    header.name = name.substr(0, slash);
    const std::string_view count = fields.Next();
    const std::optional<std::uint64_t> signals = WholeNumber(count);
    if (!signals || *signals > kMostSignals) RefuseField(line.number, u"number of signals", u"число сигналов", count);
    std::optional<std::uint64_t> following = signals;
    if (slash != std::string_view::npos) {
        header.isMaster = true;
        following = WholeNumber(name.substr(slash + 1));
        if (!following || *following == 0 || *following > kMostSegments)
            RefuseField(line.number, u"number of segments", u"число сегментов", name);
    } else if (*signals == 0) {
        throw FormatError(Say(u"the record has no signals", u"в записи нет сигналов"));
    }
    if (const std::string_view rate = fields.Next(); !rate.empty()) {
        // Behind it may stand the rate of a counter.
        const std::optional<double> parsed = RealNumber(rate.substr(0, rate.find('/')));
        if (!parsed || *parsed < kLowestRate || *parsed > kHighestRate)
            RefuseField(line.number, u"sampling rate", u"частота дискретизации", rate);
        header.rate = *parsed;
    }
    header.frames = WholeNumber(fields.Next()).value_or(0);
    const std::string_view clock = fields.Next();
    const std::string_view date = fields.Next();
    const std::optional<double> seconds = ParseWfdbClock(clock);
    const std::optional<double> day = ParseWfdbDate(date);
    if (seconds) header.startTime = day.value_or(0.0) + *seconds / 86400.0;
    if ((!clock.empty() && !seconds) || (!date.empty() && !day)) {
        header.notes.push_back(Say(u"start '%1' not understood", u"начало «%1» не понято",
                                   {FromUtf8OrLatin1(std::string(clock) + " " + std::string(date))}));
    }
    return *following;
}

/// "212x4:3+24": the format, samples per frame, skew and offset.
void ReadFormat(const HeaderLine& line, std::string_view field, WfdbSignal& signal) {
    const auto digits = [&](std::size_t at) { return field.substr(at, field.find_first_of("x:+", at) - at); };
    const std::optional<std::uint64_t> format = WholeNumber(digits(0));
    const bool known = format && (*format == 0 || std::find(kFormats.begin(), kFormats.end(),
                                                            static_cast<int>(std::min<std::uint64_t>(*format, 9999))) !=
                                                      kFormats.end());
    if (!known) {
        throw FormatError(Say(u"format %1 in line %2 is not known", u"формат %1 в строке %2 не известен",
                              {FromUtf8OrLatin1(digits(0)), Number(line.number)}));
    }
    signal.format = static_cast<int>(*format);
    for (std::size_t at = field.find_first_of("x:+"); at < field.size(); at = field.find_first_of("x:+", at + 1)) {
        const std::string_view number = digits(at + 1);
        const std::optional<std::uint64_t> value = WholeNumber(number);
        if (field[at] == ':') {
            signal.skew = static_cast<std::int64_t>(std::min<std::uint64_t>(value.value_or(0), 1U << 31));
            continue;
        }
        const bool samples = field[at] == 'x';
        if (!value || (samples && (*value == 0 || *value > kMostSignals)))
            RefuseField(line.number, u"format", u"формат", field);
        (samples ? signal.samplesPerFrame = static_cast<std::uint32_t>(*value) : signal.offset = *value);
    }
}

/// "200(1024)/mV": the gain, baseline and unit. Returns whether there is a baseline. `oddGain`: the first gain that is
/// of no use.
bool ReadGain(const HeaderLine& line, std::string_view field, WfdbSignal& signal, std::u16string& oddGain) {
    const std::size_t slash = field.find('/');
    if (slash != std::string_view::npos) signal.unit = FromUtf8OrLatin1(Trim(field.substr(slash + 1)));
    if (signal.unit == u"NU") signal.unit.clear();
    const std::string_view numbers = field.substr(0, slash);
    const std::size_t bracket = numbers.find('(');
    const std::optional<double> gain = RealNumber(numbers.substr(0, bracket));
    std::optional<double> baseline;
    if (bracket != std::string_view::npos) {
        baseline = RealNumber(numbers.substr(bracket + 1, numbers.find(')', bracket) - bracket - 1));
        if (!baseline) RefuseField(line.number, u"gain", u"усиление", field);
    }
    if (!gain) RefuseField(line.number, u"gain", u"усиление", field);
    signal.baseline = baseline.value_or(0.0);
    // Blocks keep units per code, and the values of the largest ones, in single precision.
    const bool usable =
        static_cast<float>(1.0 / *gain) != 0.0F && std::isfinite(static_cast<float>(4294967296.0 / *gain));
    if (usable) signal.gain = *gain;
    if (!usable && *gain != 0.0 && oddGain.empty()) oddGain = FromUtf8OrLatin1(field);
    if (!std::isfinite(static_cast<float>(signal.baseline / signal.gain))) signal.baseline = 0.0;
    return baseline.has_value();
}

WfdbSignal ReadSignalLine(const HeaderLine& line, std::size_t ordinal, const WfdbHeader& header,
                          std::u16string& oddGain) {
    FieldText fields(line.text);
    WfdbSignal signal;
    signal.line = line.number;
    signal.unit = u"mV";
    signal.file = fields.Next();
    ReadFormat(line, fields.Next(), signal);
    bool hasBaseline = false;
    if (const std::string_view gain = fields.Next(); !gain.empty()) hasBaseline = ReadGain(line, gain, signal, oddGain);
    // Resolution, zero, initial value, check sum and block size; a description may follow any of them.
    std::array<std::optional<std::int64_t>, 5> numbers;
    for (auto& number : numbers) {
        number = SignedNumber(fields.Peek());
        if (!number) break;
        static_cast<void>(fields.Next());
    }
    const auto zero = static_cast<double>(numbers[1].value_or(0));
    if (!hasBaseline && std::isfinite(static_cast<float>(zero / signal.gain))) signal.baseline = zero;
    signal.initial = static_cast<std::int32_t>(numbers[2].value_or(numbers[1].value_or(0)));
    signal.title = FromUtf8OrLatin1(fields.Rest());
    if (signal.title.empty())
        signal.title =
            u"record " + FromUtf8OrLatin1(header.name.substr(0, kTitleBytes)) + u", signal " + Number(ordinal);
    return signal;
}

/// What the signals of one file have in common.
void CheckFiles(const WfdbHeader& header) {
    std::map<std::string_view, const WfdbSignal*> first;
    std::uint64_t frameSamples = 0;
    for (const WfdbSignal& signal : header.signals) {
        const WfdbSignal& known = *first.try_emplace(signal.file, &signal).first->second;
        // The channels of a FLAC file are of one length.
        const bool sameLength = signal.format < 500 || signal.samplesPerFrame == known.samplesPerFrame;
        if (signal.format != known.format || !sameLength) {
            throw FormatError(Say(u"lines %1 and %2 tell different formats of '%3'",
                                  u"строки %1 и %2 называют разные форматы «%3»",
                                  {Number(known.line), Number(signal.line), FromUtf8OrLatin1(signal.file)}));
        }
        frameSamples += signal.samplesPerFrame;
        if (frameSamples <= kMostSignals) continue;
        throw FormatError(Say(u"line %1: frames of more than %2 samples", u"строка %1: в кадре больше %2 отсчётов",
                              {Number(signal.line), Number(kMostSignals)}));
    }
}

[[noreturn]] void RefuseMissingLines(std::uint64_t announced, std::size_t found) {
    throw FormatError(Say(u"%1 signals are announced, lines for %2 follow",
                          u"объявлено сигналов: %1, а строк для них: %2", {Number(announced), Number(found)}));
}

bool IsText(std::string_view line) {
    return std::none_of(line.begin(), line.end(), [](char sign) { return sign >= 0 && sign < ' ' && sign != '\t'; });
}

/// A record line, and the line behind it.
bool IsHeader(const HeaderLine& record, const HeaderLine& next) {
    FieldText fields(record.text);
    FieldText nextFields(next.text);
    const std::string_view name = fields.Next();
    if (!WholeNumber(fields.Next())) return false;
    const std::string_view other = nextFields.Next();
    const std::string_view second = nextFields.Next();
    const std::size_t slash = name.find('/');
    if (slash != std::string_view::npos) return WholeNumber(name.substr(slash + 1)) && WholeNumber(second);
    // Two lines of numbers are no header, though the first may be one of record "1".
    const auto isLetter = [](char sign) { return sign == '~' || (sign >= 'A' && sign <= 'z'); };
    return WholeNumber(second.substr(0, second.find_first_of("x:+"))) &&
           std::any_of(other.begin(), other.end(), isLetter);
}

}  // namespace

bool LooksLikeWfdb(std::span<const std::uint8_t> start) {
    HeaderLines lines({reinterpret_cast<const char*>(start.data()), start.size()});
    const std::optional<HeaderLine> record = lines.Next();
    const std::optional<HeaderLine> next = lines.Next();
    return record && next && IsText(record->text) && IsText(next->text) && IsHeader(*record, *next);
}

WfdbHeader ParseWfdbHeader(std::string_view text) {
    HeaderLines lines(text);
    const std::optional<HeaderLine> record = lines.Next();
    if (!record) throw FormatError(Say(u"no record line", u"нет строки записи"));
    WfdbHeader header;
    const std::uint64_t following = ReadRecordLine(*record, header);
    std::u16string oddGain;
    for (std::uint64_t at = 0; at < following; ++at) {
        const std::optional<HeaderLine> line = lines.Next();
        if (!line && !header.isMaster) RefuseMissingLines(following, static_cast<std::size_t>(at));
        if (!line) {
            header.notes.push_back(Say(u"%1 segments are announced, lines for %2 follow",
                                       u"объявлено сегментов: %1, а строк для них: %2",
                                       {Number(following), Number(at)}));
            break;
        }
        if (header.isMaster) {
            FieldText fields(line->text);
            WfdbSegment segment{std::string(fields.Next()), 0};
            const std::string_view count = fields.Next();
            const std::optional<std::uint64_t> frames = WholeNumber(count);
            if (!frames || *frames > kMostFrames)
                RefuseField(line->number, u"number of samples", u"число отсчётов", count);
            segment.frames = *frames;
            header.segments.push_back(std::move(segment));
        } else {
            WfdbSignal signal = ReadSignalLine(*line, static_cast<std::size_t>(at), header, oddGain);
            header.titles.push_back(signal.title);
            signal.ordinal = header.signals.size();
            if (signal.format != 0) header.signals.push_back(std::move(signal));
        }
    }
    CheckFiles(header);
    if (!oddGain.empty())
        header.notes.push_back(Say(u"gain '%1' taken as 200", u"усиление «%1» принято за 200", {oddGain}));
    header.remark = FromUtf8OrLatin1(lines.Comment()).substr(0, kRemarkLetters);
    return header;
}

}  // namespace quillon
