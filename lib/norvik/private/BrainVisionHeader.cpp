#include "norvik/private/BrainVisionHeader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

#include "base/Text.h"
#include "norvik/private/EdfHeader.h"
#include "norvik/private/SectionedText.h"

namespace quillon {

namespace {

constexpr std::uint64_t kMostChannels = 65535;
// Microseconds; a rate beyond these is no rate of samples, and times computed from it would not be finite.
constexpr double kShortestInterval = 1e-6;
constexpr double kLongestInterval = 1e15;

struct Value {
    std::string_view text;
    std::size_t line = 0;
    [[nodiscard]] std::u16string Shown() const { return FromUtf8OrLatin1(text); }
};

/// The values of a header by section and key; the last of several with one name.
class Values {
  public:
    explicit Values(std::string_view text) {
        ForEachEntry(text, [this](const TextEntry& entry) {
            m_values.insert_or_assign({std::u16string(entry.section), entry.key}, Value{entry.value, entry.line});
        });
    }
    /// Null where there is none, or an empty one.
    [[nodiscard]] const Value* Find(std::u16string_view section, std::u16string_view key) const {
        const auto found = m_values.find({LowerCase(section), LowerCase(key)});
        return found == m_values.end() || found->second.text.empty() ? nullptr : &found->second;
    }
    [[nodiscard]] const Value& Get(std::u16string_view section, std::u16string_view key) const {
        if (const Value* value = Find(section, key)) return *value;
        throw FormatError(
            Say(u"[%1] has no %2", u"в разделе [%1] нет %2", {std::u16string(section), std::u16string(key)}));
    }

  private:
    std::map<std::pair<std::u16string, std::u16string>, Value> m_values;
};

constexpr std::u16string_view kCommon = u"Common Infos";
constexpr std::u16string_view kBinary = u"Binary Infos";
constexpr std::u16string_view kText = u"ASCII Infos";
constexpr std::u16string_view kChannels = u"Channel Infos";

/// "line 12: NumberOfChannels 'x'"
[[noreturn]] void RefuseValue(std::u16string_view key, const Value& value) {
    throw FormatError(Say(u"line %1: %2 '%3' is not supported", u"строка %1: %2 «%3» не поддерживается",
                          {Decimal(static_cast<std::int64_t>(value.line)), std::u16string(key), value.Shown()}));
}

std::optional<std::uint64_t> Whole(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// Numbers that are not there are 0; so are those that cannot be understood.
std::uint64_t WholeOr0(const Value* value) {
    return value == nullptr ? 0 : Whole(value->text).value_or(0);
}

/// Whether a value is `second`; `first` is what it is where it is missing.
bool IsSecond(const Values& values, std::u16string_view section, std::u16string_view key, std::u16string_view first,
              std::u16string_view second) {
    const Value* const value = values.Find(section, key);
    if (value == nullptr) return false;
    const std::u16string text = LowerCase(value->Shown());
    if (text == LowerCase(second)) return true;
    if (text != LowerCase(first)) RefuseValue(key, *value);
    return false;
}

void ReadNumberFormat(const Values& values, BrainVisionHeader& header) {
    struct Format {
        std::u16string_view name;
        SampleKind kind;
        bool isUnsigned;
    };
    constexpr Format formats[] = {{u"INT_16", SampleKind::Int16, false},
                                  {u"UINT_16", SampleKind::Int16, true},
                                  {u"INT_32", SampleKind::Int32, false},
                                  {u"IEEE_FLOAT_32", SampleKind::Float32, false},
                                  {u"IEEE_FLOAT_64", SampleKind::Float64, false}};
    header.bigEndian = IsSecond(values, kBinary, u"UseBigEndianOrder", u"NO", u"YES");
    header.numberFormat = u"INT_16";
    const Value* const value = values.Find(kBinary, u"BinaryFormat");
    if (value == nullptr) return;
    header.numberFormat = value->Shown();
    const std::u16string name = LowerCase(header.numberFormat);
    const auto* const format = std::find_if(std::begin(formats), std::end(formats),
                                            [&](const Format& known) { return LowerCase(known.name) == name; });
    if (format == std::end(formats)) RefuseValue(u"BinaryFormat", *value);
    header.kind = format->kind;
    header.isUnsigned = format->isUnsigned;
}

void ReadColumns(const Values& values, BrainVisionColumns& columns) {
    const Value* const point = values.Find(kText, u"DecimalSymbol");
    if (point != nullptr && point->text != "." && point->text != ",") RefuseValue(u"DecimalSymbol", *point);
    if (point != nullptr) columns.decimalPoint = point->text.front();
    columns.skippedLines = WholeOr0(values.Find(kText, u"SkipLines"));
    columns.skippedColumns = WholeOr0(values.Find(kText, u"SkipColumns"));
}

void ReadChannels(const Values& values, std::uint64_t count, BrainVisionHeader& header) {
    std::u16string replaced;
    for (std::uint64_t at = 1; at <= count; ++at) {
        const std::u16string number = Decimal(static_cast<std::int64_t>(at));
        CommaFields fields(values.Get(kChannels, u"Ch" + number).text);
        BrainVisionChannel channel;
        channel.title = fields.Next();
        if (channel.title.empty()) channel.title = u"Ch " + number;
        if (const std::u16string reference = fields.Next(); !reference.empty()) channel.title += u"-" + reference;
        const std::u16string resolution = fields.Next();
        channel.unit = fields.Next();
        if (channel.unit.empty()) channel.unit = u"\u00B5V";
        if (!resolution.empty()) {
            const std::optional<double> parsed = ParseEdfNumber(Utf8(resolution));
            if (!parsed) {
                throw FormatError(Say(u"Ch%1: resolution '%2'", u"Ch%1: разрешение «%2»", {number, resolution}));
            }
            // Blocks keep it, and the value of the largest code, in single precision.
            const bool usable =
                static_cast<float>(*parsed) != 0.0F && std::isfinite(static_cast<float>(*parsed * 65536.0));
            if (usable) channel.resolution = *parsed;
            if (!usable && replaced.empty()) replaced = number;
        }
        header.channels.push_back(std::move(channel));
    }
    if (!replaced.empty()) {
        header.notes.push_back(Say(u"no usable resolution in some channels, first in Ch%1: taken as 1",
                                   u"негодное разрешение у некоторых каналов, первый Ch%1: принято за 1", {replaced}));
    }
}

void ReadSegments(const Values& values, BrainVisionHeader& header) {
    const Value* const type = values.Find(kCommon, u"SegmentationType");
    if (type == nullptr || LowerCase(type->Shown()) == u"notsegmented") return;
    header.segmentSamples = WholeOr0(values.Find(kCommon, u"SegmentDataPoints"));
    if (header.segmentSamples == 0) {
        header.notes.push_back(Say(u"segments of unknown length are joined", u"сегменты неизвестной длины соединены"));
    }
    const Value* const averaged = values.Find(kCommon, u"Averaged");
    if (averaged != nullptr && LowerCase(averaged->Shown()) == u"yes")
        header.notes.push_back(Say(u"averaged", u"усреднено"));
}

/// In lower case.
std::u16string FirstLine(std::string_view text) {
    text = WithoutByteOrderMark(text);
    constexpr std::size_t longest = 200;
    return LowerCase(FromLatin1(Trim(text.substr(0, std::min({text.find('\n'), text.size(), longest})))));
}

bool IsHeaderLine(std::u16string_view line) {
    const bool named = line.starts_with(u"brain vision ") || line.starts_with(u"brainvision ");
    return named && line.find(u"header file") != std::u16string_view::npos;
}

}  // namespace

bool LooksLikeBrainVision(std::span<const std::uint8_t> start) {
    return IsHeaderLine(FirstLine({reinterpret_cast<const char*>(start.data()), start.size()}));
}

BrainVisionHeader ParseBrainVisionHeader(std::string_view text) {
    const std::u16string first = FirstLine(text);
    if (!IsHeaderLine(first)) {
        throw FormatError(Say(u"the first line is not that of a BrainVision header",
                              u"первая строка не такая, как в заголовке BrainVision"));
    }
    BrainVisionHeader header;
    header.extraChannel = first.find(u"v-amp") != std::u16string::npos;
    const std::size_t version = first.rfind(u"version ");
    if (version != std::u16string::npos) header.version = first.substr(version + 8, 8);

    const Values values(text);
    const Value& interval = values.Get(kCommon, u"SamplingInterval");
    const std::optional<double> microseconds = ParseEdfNumber(interval.text);
    if (!microseconds || *microseconds < kShortestInterval || *microseconds > kLongestInterval)
        RefuseValue(u"SamplingInterval", interval);
    header.rate = 1e6 / *microseconds;
    header.dataFile = values.Get(kCommon, u"DataFile").text;
    if (const Value* const markers = values.Find(kCommon, u"MarkerFile")) header.markerFile = markers->text;
    if (const Value* const type = values.Find(kCommon, u"DataType"))
        if (LowerCase(type->Shown()) != u"timedomain") RefuseValue(u"DataType", *type);
    header.isText = IsSecond(values, kCommon, u"DataFormat", u"BINARY", u"ASCII");
    header.vectorized = IsSecond(values, kCommon, u"DataOrientation", u"MULTIPLEXED", u"VECTORIZED");
    if (const Value* const points = values.Find(kCommon, u"DataPoints")) header.dataPoints = Whole(points->text);
    if (header.isText) {
        ReadColumns(values, header.columns);
    } else {
        ReadNumberFormat(values, header);
    }

    const Value& count = values.Get(kCommon, u"NumberOfChannels");
    const std::optional<std::uint64_t> channels = Whole(count.text);
    if (!channels || *channels < 1 || *channels > kMostChannels) RefuseValue(u"NumberOfChannels", count);
    ReadChannels(values, *channels, header);
    ReadSegments(values, header);
    return header;
}

}  // namespace quillon
