#include "norvik/private/EdfHeader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "base/Text.h"
#include "norvik/private/EdfDate.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/SignalRecords.h"

namespace quillon {

namespace {

constexpr std::uint64_t kFixedBytes = 256;      // of the header's fixed part
constexpr std::uint64_t kPerSignalBytes = 256;  // that the header grows by with every signal
// Whole numbers above this are not exact in every step of the arithmetic on them; no real field comes near.
constexpr double kLargestWhole = 1e15;
constexpr double kShortestRecord = 1e-9;  // seconds
constexpr double kLongestRecord = 1e9;    // seconds, some 30 years

/// A field of the header: its bytes and where they are, for messages.
struct Field {
    std::string_view text;
    std::uint64_t place = 0;
    [[nodiscard]] std::u16string Shown() const { return FromUtf8OrLatin1(Trim(text)); }
};

[[noreturn]] void Refuse(Bilingual reason) {
    throw FormatError(std::move(reason));
}

/// "<name> '<text>' at byte <place>"
[[noreturn]] void RefuseField(std::u16string_view english, std::u16string_view russian, const Field& field) {
    const Bilingual place =
        Say(u" '%1' at byte %2", u" «%1», байт %2", {field.Shown(), Decimal(static_cast<std::int64_t>(field.place))});
    Refuse({std::u16string(english) + place.english, std::u16string(russian) + place.russian});
}

std::optional<std::int64_t> ParseWhole(std::string_view field) {
    const std::optional<double> number = ParseEdfNumber(field);
    if (!number || std::nearbyint(*number) != *number || std::abs(*number) > kLargestWhole) return std::nullopt;
    return static_cast<std::int64_t>(*number);
}

/// The signals' part of the header: the first field of every signal, then the second field of every signal, ...
class SignalFields {
  public:
    SignalFields(std::string_view bytes, std::size_t signals) : m_bytes(bytes), m_signals(signals) {}

    /// The field of one signal; `before` is the width of all fields that come before it.
    [[nodiscard]] Field At(std::size_t before, std::size_t width, std::size_t signal) const {
        const std::size_t at = before * m_signals + width * signal;
        return {m_bytes.substr(at, width), kFixedBytes + at};
    }

  private:
    std::string_view m_bytes;
    std::size_t m_signals;
};

void ReadUnits(const SignalFields& fields, std::size_t at, EdfSignal& signal, UselessLimits& useless) {
    const Field physical = fields.At(104, 8, at);
    const std::optional<double> physicalMinimum = ParseEdfNumber(physical.text);
    const std::optional<double> physicalMaximum = ParseEdfNumber(fields.At(112, 8, at).text);
    const std::optional<double> digitalMinimum = ParseEdfNumber(fields.At(120, 8, at).text);
    const std::optional<double> digitalMaximum = ParseEdfNumber(fields.At(128, 8, at).text);
    std::optional<LinearUnits> units;
    if (physicalMinimum && physicalMaximum && digitalMinimum && digitalMaximum)
        units = UnitsOfLimits(*physicalMinimum, *physicalMaximum, *digitalMinimum, *digitalMaximum);
    if (!units) return useless.Add(signal.label, physical.place);
    signal.unitsPerSample = units->perSample;
    signal.unitsOffset = units->offset;
}

void ReadSignals(const SignalFields& fields, std::size_t count, EdfHeader& header) {
    UselessLimits useless;
    for (std::size_t at = 0; at < count; ++at) {
        EdfSignal signal;
        const std::string_view label = Trim(fields.At(0, 16, at).text);
        signal.label = FromUtf8OrLatin1(label);
        signal.unit = fields.At(96, 8, at).Shown();
        const Field samples = fields.At(216, 8, at);
        const std::optional<std::int64_t> perRecord = ParseWhole(samples.text);
        if (!perRecord || *perRecord < 1 || *perRecord > kBlockSamples) {
            RefuseField(u"samples per record", u"число отсчётов в записи", samples);
        }
        signal.samplesPerRecord = static_cast<std::uint64_t>(*perRecord);
        signal.partBytes = signal.samplesPerRecord * header.sampleBytes;
        signal.offset = header.recordBytes;
        header.recordBytes += signal.partBytes;
        const bool annotations = label == "EDF Annotations" || label == "BDF Annotations";
        if (!annotations) ReadUnits(fields, at, signal, useless);
        (annotations ? header.annotations : header.signals).push_back(std::move(signal));
    }
    if (Bilingual remark = useless.Remark(); !remark.english.empty()) header.notes.push_back(std::move(remark));
}

void ReadRecordCount(const Field& field, std::uint64_t fileSize, EdfHeader& header) {
    RecordCount records = CountRecords(fileSize, header.dataStart, header.recordBytes,
                                       {ParseWhole(field.text), field.Shown(), field.place});
    header.records = records.count;
    const std::uint64_t left = fileSize - header.dataStart - header.records * header.recordBytes;
    if (records.stated && left > 0) records.remark = RemarkOnRest(left);
    if (!records.remark.english.empty()) header.notes.push_back(std::move(records.remark));
}

void ReadNames(std::string_view patient, std::string_view recording, bool plus, EdfHeader& header) {
    constexpr std::string_view device = "ADC: ";
    constexpr std::string_view block = "Kelvara Block: ";
    if (patient.starts_with(block)) header.blockName = FromUtf8OrLatin1(Trim(patient.substr(block.size())));
    if (recording.starts_with(device)) {
        header.deviceName = FromUtf8OrLatin1(Trim(recording.substr(device.size())));
        return;
    }
    if (!plus || !recording.starts_with("Startdate ")) return;
    // "Startdate", the date, the investigation's code, the investigator's code, the equipment.
    std::string_view rest = recording;
    for (int skipped = 0; skipped < 4; ++skipped) {
        const std::size_t blank = rest.find(' ');
        if (blank == std::string_view::npos) return;
        rest = Trim(rest.substr(blank));
    }
    const std::string_view equipment = rest.substr(0, rest.find(' '));
    if (equipment != "X") header.deviceName = FromUtf8OrLatin1(equipment);
}

/// Subfields behind the equipment are free in EDF+.
void ReadSamplesTold(std::string_view recording, EdfHeader& header) {
    constexpr std::string_view name = " Samples:";
    const std::size_t place = recording.rfind(name);
    if (!recording.starts_with("Startdate ") || place == std::string_view::npos) return;
    const std::string_view rest = recording.substr(place + name.size());
    const std::optional<std::int64_t> samples = ParseWhole(rest.substr(0, rest.find(' ')));
    if (samples && *samples > 0) header.samplesTold = static_cast<std::uint64_t>(*samples);
}

void ReadStart(std::string_view fixed, std::string_view recording, EdfHeader& header) {
    const Field date{fixed.substr(168, 8), 168};
    const Field clock{fixed.substr(176, 8), 176};
    const EdfStart start = ParseEdfStart(date.text, clock.text, recording);
    if (!start.date) {
        header.notes.push_back(Say(u"start date '%1' at byte 168 cannot be read",
                                   u"дата начала «%1», байт 168, не читается", {date.Shown()}));
        return;
    }
    if (!start.clock) {
        header.notes.push_back(Say(u"start time '%1' at byte 176 cannot be read",
                                   u"время начала «%1», байт 176, не читается", {clock.Shown()}));
    }
    // The earliest time of the short form is used for an unknown start.
    if (Trim(date.text) == "01.01.85" && start.clock == 0.0) {
        header.notes.push_back(Say(u"start not known", u"начало неизвестно"));
        return;
    }
    constexpr double secondsPerDay = 86400.0;
    header.startDate = *start.date + start.clock.value_or(0.0) / secondsPerDay;
}

/// Everything in front of the signals' part but the counts.
void ReadFixed(std::string_view fixed, EdfHeader& header) {
    const std::string_view reserved = Trim(fixed.substr(192, 44));
    const bool bdf = header.sampleBytes == 3;
    const std::string_view family = bdf ? "BDF" : "EDF";
    const bool plus = reserved.starts_with(std::string(family) + "+");
    header.format = FromLatin1(family);
    if (plus) {
        const std::string_view kind = reserved.substr(family.size(), 2);
        header.discontinuous = kind == "+D";
        header.format += header.discontinuous ? u"+D" : kind == "+C" ? u"+C" : u"+";
    }
    const std::string_view recording = Trim(fixed.substr(88, 80));
    ReadNames(Trim(fixed.substr(8, 80)), recording, plus, header);
    if (plus) ReadSamplesTold(recording, header);
    ReadStart(fixed, plus ? recording : std::string_view(), header);
}

std::string ReadText(ByteSource& source, std::uint64_t offset, std::size_t count) {
    std::string bytes(count, '\0');
    source.ReadExactly(offset, bytes.data(), count);
    return bytes;
}

}  // namespace

bool LooksLikeEdf(std::span<const std::uint8_t> start) {
    constexpr std::string_view edf = "0       ";
    constexpr std::string_view bdf = "\377BIOSEMI";
    const auto begins = [&](std::string_view version) {
        return start.size() >= version.size() &&
               std::equal(version.begin(), version.end(), start.begin(),
                          [](char wanted, std::uint8_t there) { return static_cast<std::uint8_t>(wanted) == there; });
    };
    return begins(edf) || begins(bdf);
}

std::optional<double> ParseEdfNumber(std::string_view field) {
    field = Trim(field);
    std::string digits(field);
    std::replace(digits.begin(), digits.end(), ',', '.');
    std::string_view text = digits;
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
    return number;
}

std::u16string PlainNumber(double number) {
    const bool whole = std::nearbyint(number) == number && std::abs(number) <= kLargestWhole;
    return whole ? Decimal(static_cast<std::int64_t>(number)) : ShortestDecimal(number);
}

EdfHeader ReadEdfHeader(ByteSource& source) {
    const std::uint64_t size = source.Size();
    if (size < kFixedBytes) RefuseCutHeader(size, kFixedBytes);
    const std::string fixed = ReadText(source, 0, kFixedBytes);
    const std::vector<std::uint8_t> start(fixed.begin(), fixed.end());
    const std::string_view all = fixed;
    if (!LooksLikeEdf(start))
        RefuseField(u"not EDF or BDF: version", u"не EDF и не BDF: версия", {all.substr(0, 8), 0});

    EdfHeader header;
    header.sampleBytes = start.front() == 0xFF ? 3 : 2;
    ReadFixed(all, header);
    const Field count{all.substr(252, 4), 252};
    const std::optional<std::int64_t> signals = ParseWhole(count.text);
    // Four digits is what the field holds; other spellings of a number ("33e3") could ask for far more signals than
    // blocks can be numbered.
    if (!signals || *signals < 1 || *signals > 9999) RefuseField(u"signal count", u"число сигналов", count);
    const auto signalCount = static_cast<std::size_t>(*signals);
    // The count has four characters; a count that exceeds the file is reported as a truncated header.
    header.dataStart = kFixedBytes + signalCount * kPerSignalBytes;
    if (size < header.dataStart) RefuseCutHeader(size, header.dataStart);

    const std::string perSignal = ReadText(source, kFixedBytes, signalCount * kPerSignalBytes);
    const Field length{all.substr(184, 8), 184};
    if (ParseWhole(length.text) != static_cast<std::int64_t>(header.dataStart)) {
        header.notes.push_back(Say(u"header length '%1' at byte 184 taken as %2",
                                   u"длина заголовка «%1», байт 184, принята за %2",
                                   {length.Shown(), Number(header.dataStart)}));
    }
    ReadSignals(SignalFields(perSignal, signalCount), signalCount, header);
    const Field seconds{all.substr(244, 8), 244};
    const std::optional<double> duration = ParseEdfNumber(seconds.text);
    // Records of annotations only last as long as the writer likes, 0 included.
    const double shortest = header.signals.empty() ? 0.0 : kShortestRecord;
    if (!duration || *duration < shortest || *duration > kLongestRecord) {
        RefuseField(u"record duration", u"длительность записи", seconds);
    }
    header.recordSeconds = *duration;
    ReadRecordCount({all.substr(236, 8), 236}, size, header);
    return header;
}

}  // namespace quillon
