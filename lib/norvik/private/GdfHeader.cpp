#include "norvik/private/GdfHeader.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

#include "base/DateTime.h"
#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/Refusals.h"

namespace quillon {

namespace {

constexpr std::uint64_t kFixedBytes = 256;
constexpr std::uint64_t kPerChannelBytes = 256;
constexpr std::uint64_t kMostRecordBytes = (std::uint64_t{1} << 31) - 1;
constexpr std::uint32_t kMostChannels = 65535;
constexpr double kShortestRecord = 1e-9;  // seconds
constexpr double kLongestRecord = 1e9;    // seconds, some 30 years
/// Versions from here on follow the rules of the second edition.
constexpr int kSecondEdition = 191;
/// From here on the duration of a record is a float.
constexpr int kFloatDuration = 221;

/// Up to the first zero, without blanks around.
std::u16string TextOf(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    return FromUtf8OrLatin1(Trim(text.substr(0, text.find('\0'))));
}

/// "GDF 2.10"
void ReadVersion(const std::uint8_t* fixed, GdfHeader& header) {
    header.version = TextOf(fixed + 4, 4);
    const auto digit = [&](std::size_t at) { return header.version[at] >= u'0' && header.version[at] <= u'9'; };
    const std::u16string& text = header.version;
    const bool readable = text.size() >= 3 && digit(0) && text[1] == u'.' && digit(2) && (text.size() == 3 || digit(3));
    if (!readable) RefuseField(u"GDF version", u"версия GDF", u"'" + text + u"'", 4);
    header.hundredths = (text[0] - u'0') * 100 + (text[2] - u'0') * 10 + (text.size() == 3 ? 0 : text[3] - u'0');
}

/// None where the header has no date, or one that no recording can be of.
std::optional<double> StartOf(const std::uint8_t* fixed, bool second) {
    constexpr double earliest = -36522.0;  // the year 1800
    constexpr double latest = 401769.0;    // the year 3000
    double date = 0.0;
    if (second) {
        // Days since the year 0, of which 719529 is 1 January 1970, with 32 bits of the day.
        constexpr double epoch = 693960.0;
        date = std::ldexp(static_cast<double>(Le64(fixed + 168)), -32) - epoch;
    } else {
        const std::u16string text = FromLatin1({reinterpret_cast<const char*>(fixed + 168), 16});
        const std::optional<CivilTime> time = CivilFromDigits(text.substr(0, 14));
        const auto isDigit = [](char16_t letter) { return letter >= u'0' && letter <= u'9'; };
        if (!time || !isDigit(text[14]) || !isDigit(text[15])) return std::nullopt;
        CivilTime exact = *time;
        exact.millisecond = ((text[14] - u'0') * 10 + (text[15] - u'0')) * 10;
        date = DateFromCivil(exact);
    }
    if (date < earliest || date > latest) return std::nullopt;
    return date;
}

void ReadDuration(const std::uint8_t* fixed, GdfHeader& header) {
    if (header.hundredths >= kFloatDuration) {
        header.durationNumerator = LeDouble(fixed + 244);
    } else {
        header.durationNumerator = Le32(fixed + 244);
        header.durationDenominator = Le32(fixed + 248);
    }
    const double seconds = header.RecordSeconds();
    if (seconds >= kShortestRecord && seconds <= kLongestRecord) return;
    const std::u16string shown = header.hundredths >= kFloatDuration
                                     ? (std::isfinite(seconds) ? ShortestDecimal(seconds) : u"?")
                                     : Number(Le32(fixed + 244)) + u"/" + Number(Le32(fixed + 248));
    RefuseField(u"record duration", u"длительность записи", shown, 244);
}

/// The codes of ISO/IEEE 11073: 5 bits of prefix below the unit. None where either is not known.
std::optional<std::u16string> UnitOfCode(std::uint16_t code) {
    struct Entry {
        std::uint16_t code;
        std::u16string_view text;
    };
    constexpr Entry prefixes[] = {{0, u""},   {3, u"k"},  {4, u"M"},  {16, u"d"}, {17, u"c"},
                                  {18, u"m"}, {19, u"µ"}, {20, u"n"}, {21, u"p"}};
    constexpr Entry units[] = {{512, u""},      {544, u"%"},  {736, u"°"},  {2496, u"Hz"},
                               {3872, u"mmHg"}, {4256, u"V"}, {4288, u"Ω"}, {4384, u"K"}};
    const auto find = [](std::span<const Entry> entries, int wanted) {
        const auto is = [&](const Entry& entry) { return entry.code == wanted; };
        const auto found = std::find_if(entries.begin(), entries.end(), is);
        return found == entries.end() ? nullptr : &*found;
    };
    const Entry* const prefix = find(prefixes, code % 32);
    const Entry* const unit = find(units, code - code % 32);
    if (prefix == nullptr || unit == nullptr) return std::nullopt;
    return std::u16string(prefix->text) + std::u16string(unit->text);
}

std::optional<SampleKind> KindOfType(std::uint32_t type) {
    switch (type) {
        case 1: return SampleKind::Int8;
        case 2: return SampleKind::Uint8;
        case 3: return SampleKind::Int16;
        case 4: return SampleKind::Uint16;
        case 5: return SampleKind::Int32;
        case 6: return SampleKind::Uint32;
        case 7: return SampleKind::Int64;
        case 8: return SampleKind::Uint64;
        case 16: return SampleKind::Float32;
        case 17: return SampleKind::Float64;
        case 255 + 24: return SampleKind::Int24;
        case 511 + 24: return SampleKind::Uint24;
        default: return std::nullopt;
    }
}

/// The channels' part of the header: the first field of every channel, then the second field of every channel, ...
class ChannelFields {
  public:
    ChannelFields(std::vector<std::uint8_t> bytes, std::size_t channels)
        : m_bytes(std::move(bytes)), m_channels(channels) {}

    /// The bytes of a field; `before` is the width of all fields that come before it.
    [[nodiscard]] const std::uint8_t* At(std::size_t before, std::size_t width, std::size_t channel) const {
        return m_bytes.data() + before * m_channels + width * channel;
    }
    [[nodiscard]] std::uint64_t Place(const std::uint8_t* field) const {
        return kFixedBytes + static_cast<std::uint64_t>(field - m_bytes.data());
    }

  private:
    std::vector<std::uint8_t> m_bytes;
    std::size_t m_channels;
};

std::u16string UnitOf(const ChannelFields& fields, std::size_t channel, bool second) {
    if (!second) return TextOf(fields.At(96, 8, channel), 8);
    const std::uint16_t code = Le16(fields.At(102, 2, channel));
    return UnitOfCode(code).value_or(TextOf(fields.At(96, 6, channel), 6));
}

std::optional<LinearUnits> UnitsOf(const ChannelFields& fields, std::size_t channel, bool second) {
    const auto digital = [&](std::size_t before) {
        const std::uint8_t* const bytes = fields.At(before, 8, channel);
        return second ? LeDouble(bytes) : static_cast<double>(static_cast<std::int64_t>(Le64(bytes)));
    };
    return UnitsOfLimits(LeDouble(fields.At(104, 8, channel)), LeDouble(fields.At(112, 8, channel)), digital(120),
                         digital(128));
}

void ReadSignals(const ChannelFields& fields, std::size_t channels, GdfHeader& header) {
    const bool second = header.hundredths >= kSecondEdition;
    UselessLimits useless;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        GdfSignal signal;
        signal.label = TextOf(fields.At(0, 16, channel), 16);
        header.labels.push_back(signal.label);
        signal.samplesPerRecord = Le32(fields.At(216, 4, channel));
        if (signal.samplesPerRecord == 0) continue;
        const std::uint8_t* const typeField = fields.At(220, 4, channel);
        const std::uint32_t type = Le32(typeField);
        const std::optional<SampleKind> kind = KindOfType(type);
        if (!kind) {
            throw FormatError(Say(u"type %1 of channel %2 at byte %3 is not supported",
                                  u"тип %1 канала %2, байт %3, не поддерживается",
                                  {Number(type), Number(channel + 1), Number(fields.Place(typeField))}));
        }
        signal.kind = *kind;
        signal.channel = channel;
        signal.unit = UnitOf(fields, channel, second);
        if (const auto units = UnitsOf(fields, channel, second)) {
            signal.units = *units;
        } else {
            useless.Add(signal.label, fields.Place(fields.At(104, 8, channel)));
        }
        signal.offset = header.recordBytes;
        header.recordBytes += signal.samplesPerRecord * SampleBytes(signal.kind);
        header.signals.push_back(std::move(signal));
    }
    if (header.signals.empty()) {
        throw FormatError(Say(u"no samples: each of the %1 channels has 0 of them in a record",
                              u"нет отсчётов: у каждого из каналов (%1) их 0 в записи", {Number(channels)}));
    }
    if (header.recordBytes > kMostRecordBytes) {
        throw FormatError(Say(u"records of %1 bytes are too long", u"записи по %1 байт слишком длинны",
                              {Number(header.recordBytes)}));
    }
    if (const std::size_t sparse = channels - header.signals.size(); sparse > 0) {
        header.notes.push_back(Say(u"%1 channels without regular samples left out",
                                   u"пропущено каналов без равномерных отсчётов: %1", {Number(sparse)}));
    }
    if (Bilingual remark = useless.Remark(); !remark.english.empty()) header.notes.push_back(std::move(remark));
}

}  // namespace

bool LooksLikeGdf(std::span<const std::uint8_t> start) {
    constexpr std::string_view letters = "GDF ";
    return start.size() >= letters.size() && std::equal(letters.begin(), letters.end(), start.begin());
}

GdfHeader ReadGdfHeader(ByteSource& source) {
    const std::uint64_t size = source.Size();
    if (size < kFixedBytes) RefuseCutHeader(size, kFixedBytes);
    std::vector<std::uint8_t> fixed(kFixedBytes);
    source.ReadExactly(0, fixed.data(), fixed.size());
    if (!LooksLikeGdf(fixed)) throw FormatError(Say(u"no \"GDF\" at byte 0", u"нет \"GDF\" в байте 0"));
    GdfHeader header;
    ReadVersion(fixed.data(), header);
    const bool second = header.hundredths >= kSecondEdition;

    const std::uint32_t channels = second ? Le16(fixed.data() + 252) : Le32(fixed.data() + 252);
    if (channels == 0 || channels > kMostChannels) RefuseField(u"channel count", u"число каналов", channels, 252);
    header.dataStart = second ? std::uint64_t{256} * Le16(fixed.data() + 184) : Le64(fixed.data() + 184);
    const std::uint64_t needed = kFixedBytes + channels * kPerChannelBytes;
    if (header.dataStart < needed) RefuseField(u"header length", u"длина заголовка", header.dataStart, 184);
    if (size < header.dataStart || size < needed) RefuseCutHeader(size, header.dataStart);

    std::vector<std::uint8_t> perChannel(channels * kPerChannelBytes);
    source.ReadExactly(kFixedBytes, perChannel.data(), perChannel.size());
    ReadDuration(fixed.data(), header);
    ReadSignals(ChannelFields(std::move(perChannel), channels), channels, header);
    const auto stated = static_cast<std::int64_t>(Le64(fixed.data() + 236));
    RecordCount records = CountRecords(size, header.dataStart, header.recordBytes, {stated, Decimal(stated), 236});
    header.records = records.count;
    header.recordsStated = records.stated;
    if (!records.remark.english.empty()) header.notes.push_back(std::move(records.remark));
    if (const auto start = StartOf(fixed.data(), second)) {
        header.startDate = *start;
    } else {
        header.notes.push_back(Say(u"start not known", u"начало неизвестно"));
    }
    return header;
}

}  // namespace quillon
