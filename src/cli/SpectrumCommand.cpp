#include "cli/SpectrumCommand.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "view/DataRange.h"

namespace quillon::cli {

namespace {

constexpr std::int32_t kMostColumns = 32768;

/// What the options ask for.
struct Request {
    std::int64_t block = 1;
    std::int64_t channel = 1;
    SpectrumRequest picture;
};

float RealOption(const ParsedArguments& parsed, std::u16string_view name, float otherwise, float least, float most) {
    if (!parsed.Has(name)) return otherwise;
    const float number = SingleNumber(parsed.Value(name), name);
    if (number < least || number > most) throw UsageError(OutOfRange(parsed, name));
    return number;
}

std::optional<ValueRange> Limits(const ParsedArguments& parsed) {
    constexpr std::u16string_view name = u"--limits";
    if (!parsed.Has(name)) return std::nullopt;
    const std::u16string value = parsed.Value(name);
    const std::size_t comma = value.find(u',');
    if (comma == std::u16string::npos) throw UsageError(u"'" + value + u"' is not LO,HI for --limits");
    const ValueRange limits{SingleNumber(value.substr(0, comma), name), SingleNumber(value.substr(comma + 1), name)};
    if (!(limits.minimum < limits.maximum)) throw UsageError(u"'" + value + u"' is an empty range for --limits");
    return limits;
}

Request ParseRequest(const ParsedArguments& parsed) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t any = std::numeric_limits<std::int64_t>::max();
    Request request;
    request.block = WholeOption(parsed, u"--block", 1, -any, any);
    request.channel = WholeOption(parsed, u"--channel", 1, -any, any);
    SpectrumRequest& picture = request.picture;
    SpectrumSettings& settings = picture.settings;
    settings.type = static_cast<std::int16_t>(Choice(parsed, kSpectrumOptions, u"--type"));
    settings.palette = static_cast<std::int16_t>(Choice(parsed, kSpectrumOptions, u"--palette"));
    settings.window = static_cast<std::int16_t>(Choice(parsed, kSpectrumOptions, u"--window"));
    settings.order = static_cast<std::int32_t>(
        WholeOption(parsed, u"--order", settings.order, QL_FFT::kLeastOrder, QL_FFT::kMostOrder));
    settings.decibelRange = RealOption(parsed, u"--range", settings.decibelRange, 10.0F, 200.0F);
    settings.amplitudeScale = RealOption(parsed, u"--amplitude", settings.amplitudeScale,
                                         std::numeric_limits<float>::min(), std::numeric_limits<float>::max());
    picture.limits = Limits(parsed);
    picture.samplesPerColumn =
        static_cast<std::int32_t>(WholeOption(parsed, u"--samples-per-column", 1 << (settings.order - 1), 1, most));
    picture.firstColumn = static_cast<std::int32_t>(WholeOption(parsed, u"--first-column", 0, 0, most));
    if (parsed.Has(u"--columns")) {
        picture.columns = static_cast<std::int32_t>(WholeOption(parsed, u"--columns", 1, 1, kMostColumns));
    }
    return request;
}

/// Extremes of what can be read of a channel, over the whole block; `failure` is why some of it cannot. Throws Refusal
/// where none of it can.
ValueRange WholeRange(const BlockChannel& source, std::u16string& failure) {
    RecordingBlock& block = *source.block;
    if (block.SampleCount() < 1) return {};
    const ReadableExtremes extremes = ReadableExtremeCodes(block, std::array{source.channel}, {0, block.SampleCount()});
    failure = Utf16(extremes.failure);
    if (!extremes.codes.front()) throw Refusal(failure);
    const auto value = [&](std::int16_t code) {
        return static_cast<float>(code) * block.ChannelScale(source.channel) + block.ChannelOffset(source.channel);
    };
    const auto [low, high] = std::minmax({value(extremes.codes.front()->first), value(extremes.codes.front()->second)});
    return {low, high};
}

/// The headers and the colour table of an uncompressed bitmap of 8 bits per pixel whose rows go upwards.
std::vector<char> BitmapHeader(std::int32_t width, std::int32_t height, std::uint32_t rowBytes, const Palette& colors) {
    constexpr std::uint32_t headers = 14 + 40;
    constexpr auto entries = static_cast<std::uint32_t>(std::tuple_size_v<Palette>);
    const std::uint32_t pixelBytes = rowBytes * static_cast<std::uint32_t>(height);
    const std::uint32_t pixelsAt = headers + 4 * entries;
    std::vector<char> bytes{'B', 'M'};
    for (const std::uint32_t field : {pixelsAt + pixelBytes, 0U, pixelsAt, 40U, static_cast<std::uint32_t>(width),
                                      static_cast<std::uint32_t>(height)}) {
        AppendLittleEndian(bytes, field, 4);
    }
    AppendLittleEndian(bytes, 1, 2);
    AppendLittleEndian(bytes, 8, 2);
    for (const std::uint32_t field : {0U, pixelBytes, 0U, 0U, entries, entries}) AppendLittleEndian(bytes, field, 4);
    for (const PaletteColor& color : colors) {
        for (const std::uint8_t part : {color.blue, color.green, color.red, color.reserved}) {
            bytes.push_back(static_cast<char>(part));
        }
    }
    return bytes;
}

void WriteBitmap(OutputTarget& target, const QL_FFT& spectrum, std::int32_t columns) {
    const auto rowBytes = static_cast<std::size_t>((columns + 3) / 4 * 4);
    target.Write(BitmapHeader(columns, spectrum.BinCount(), static_cast<std::uint32_t>(rowBytes), spectrum.Colors()));
    const auto width = static_cast<std::size_t>(spectrum.ImageWidth());
    std::vector<char> row(rowBytes, 0);
    for (std::size_t bin = 0; bin < static_cast<std::size_t>(spectrum.BinCount()); ++bin) {
        const auto pixels = spectrum.Image().subspan(bin * width, static_cast<std::size_t>(columns));
        std::copy(pixels.begin(), pixels.end(), row.begin());
        target.Write(row);
    }
}

}  // namespace

std::u16string WriteSpectrum(const BlockChannel& source, SpectrumRequest request, OutputTarget& target,
                             Language language) {
    const std::int32_t lastColumn = std::max(source.block->SampleCount() - 1, 0) / request.samplesPerColumn;
    if (request.firstColumn > lastColumn) {
        RefuseRange(language, u"there is no column %1 (columns %2 to %3)", u"нет столбца %1 (столбцы с %2 по %3)",
                    request.firstColumn, 0, lastColumn);
    }
    const std::int32_t columns =
        request.columns.value_or(std::min(lastColumn - request.firstColumn, kMostColumns - 1) + 1);

    // Report a target that cannot be written before doing the work.
    target.Open();
    source.block->Prepare();
    std::u16string lost;
    const ValueRange limits = request.limits ? *request.limits : WholeRange(source, lost);
    QL_FFT spectrum(request.settings);
    spectrum.FFT_Init(columns);
    // Number 0 for both: this object is given one block and one channel only.
    spectrum.FFT_SetChannel(source.block.get(), 0, static_cast<std::int16_t>(source.channel - 1), limits);
    spectrum.FFT_Update(request.firstColumn, columns, request.samplesPerColumn, true);
    std::int32_t unread = 0;
    for (std::int32_t column = 0; column < columns; ++column) unread += spectrum.IsRead(column) ? 0 : 1;
    if (unread == columns) throw Refusal(Utf16(spectrum.ReadFailure()));
    WriteBitmap(target, spectrum, columns);
    if (unread > 0) {
        return Say(u"%1 of %2 columns are blank: %3", u"пустые столбцы: %1 из %2: %3",
                   {Decimal(unread), Decimal(columns), Utf16(spectrum.ReadFailure())})
            .In(language);
    }
    if (lost.empty()) return {};
    return Say(u"the range leaves out what cannot be read: %1", u"в диапазоне не учтено то, что не читается: %1",
               {lost})
        .In(language);
}

void RunSpectrum(const CommandContext& context) {
    const Request request = ParseRequest(context.parsed);
    const OpenFile file(context.parsed.words[1], context.language);
    const BlockChannel source = FindChannel(file.Get(), request.block, request.channel, context.language);
    const std::u16string lost = WriteSpectrum(source, request.picture, context.target, context.language);
    if (!lost.empty()) context.error << "quillon-cli: " << Utf8(context.parsed.words[1]) << ": " << Utf8(lost) << '\n';
}

}  // namespace quillon::cli
