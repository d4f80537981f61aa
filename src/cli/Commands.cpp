#include "cli/Commands.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "base/DateTime.h"
#include "base/Text.h"
#include "cli/CommandSupport.h"
#include "cli/ExportCommand.h"
#include "cli/Json.h"
#include "cli/PictureCommand.h"
#include "cli/PsdCommand.h"
#include "cli/ShownOptions.h"
#include "cli/SpectrumCommand.h"
#include "cli/SplitCommand.h"
#include "cli/TextCommand.h"

namespace quillon::cli {

namespace {

constexpr std::int32_t kPieceSamples = 65536;

std::string JsonChannels(const RecordingBlock& block) {
    std::string json = "[";
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        if (channel > 1) json += ',';
        json += "{\"number\":" + std::to_string(channel);
        json += ",\"acquisition\":" + std::to_string(block.ChannelNumber(channel));
        json += ",\"title\":" + JsonText(block.ChannelTitle(channel));
        json += ",\"unit\":" + JsonText(block.ChannelUnit(channel));
        json += ",\"scale\":" + JsonNumber(block.ChannelScale(channel));
        json += ",\"offset\":" + JsonNumber(block.ChannelOffset(channel)) + '}';
    }
    return json + ']';
}

std::string JsonMarks(const RecordingBlock& block) {
    std::string json = "[";
    for (std::int32_t mark = 1; mark <= block.MarkCount(); ++mark) {
        if (mark > 1) json += ',';
        json += "{\"position\":" + std::to_string(block.MarkPosition(mark));
        json += ",\"text\":" + JsonText(block.MarkText(mark));
        if (block.MarkDuration(mark) > 0.0) json += ",\"duration\":" + JsonNumber(block.MarkDuration(mark));
        json += '}';
    }
    return json + ']';
}

std::string JsonBlock(std::int16_t number, const RecordingBlock& block) {
    std::string json = "{\"number\":" + std::to_string(number);
    json += ",\"title\":" + JsonText(block.Title());
    json += ",\"start\":" + JsonText(Utf16(Iso8601(block.StartTime())));
    json += ",\"rate\":" + JsonNumber(block.SampleRate());
    json += ",\"samples\":" + std::to_string(block.SampleCount());
    json += ",\"channels\":" + JsonChannels(block);
    return json + ",\"marks\":" + JsonMarks(block) + '}';
}

void RunInfo(const CommandContext& context) {
    const OpenFile file(context.parsed.words[1], context.language);
    Recording& recording = file.Get();
    std::string json = "{\"file\":" + JsonText(recording.FileName());
    json += ",\"format\":" + JsonText(recording.FormatName());
    json += ",\"fileInfo\":" + JsonText(recording.FileInfo()) + ",\"blocks\":[";
    const std::int16_t blocks = recording.BlockCount();
    for (std::int32_t number = 1; number <= blocks; ++number) {
        const auto block = static_cast<std::int16_t>(number);
        const std::shared_ptr<RecordingBlock> described = recording.GetBlock(block);
        described->Prepare();
        context.target.Write(json + (number > 1 ? ",\n" : "\n") + JsonBlock(block, *described));
        json.clear();
    }
    context.target.Write(json + "\n]}\n");
}

/// The samples that the words BLOCK CHANNEL [FIRST [COUNT]] name; all of them are inside the recording.
struct AskedRange {
    std::shared_ptr<RecordingBlock> block;
    std::int16_t channel = 1;
    SampleSpan samples;
};

/// `show` makes the block to read of the stored one.
template <typename Show>
AskedRange FindRange(const CommandContext& context, Recording& recording, Show show) {
    const auto& words = context.parsed.words;
    const Language language = context.language;
    const std::int64_t number = WholeNumber(words[2], u"BLOCK");
    const std::int64_t channel = WholeNumber(words[3], u"CHANNEL");
    const std::int64_t first = words.size() > 4 ? WholeNumber(words[4], u"FIRST") : 0;
    const std::shared_ptr<RecordingBlock> block = show(FindBlock(recording, number, language));
    const std::int16_t position = CheckChannel(*block, channel, language);
    const std::int64_t samples = block->SampleCount();
    if (first < 0 || first > std::max<std::int64_t>(samples - 1, 0)) {
        RefuseRange(language, u"there is no sample %1 (samples %2 to %3)", u"нет отсчёта %1 (отсчёты с %2 по %3)",
                    first, 0, samples - 1);
    }
    const std::int64_t count = words.size() > 5 ? WholeNumber(words[5], u"COUNT") : samples - first;
    if (count < 0 || count > samples - first) {
        RefuseRange(language, u"a count of %1 does not fit (counts %2 to %3 from there)",
                    u"количество %1 не помещается (отсюда от %2 до %3)", count, 0, samples - first);
    }
    return {block, position, {static_cast<std::int32_t>(first), static_cast<std::int32_t>(count)}};
}

/// `read(range, first, count)` fills `bytes` with one piece.
template <typename Show, typename Read>
void WriteSamples(const CommandContext& context, Show show, Read read) {
    const OpenFile file(context.parsed.words[1], context.language);
    const AskedRange range = FindRange(context, file.Get(), show);
    range.block->Prepare();
    std::vector<char> bytes;
    for (std::int32_t done = 0; done < range.samples.count;) {
        const std::int32_t size = std::min(kPieceSamples, range.samples.count - done);
        bytes.clear();
        read(range, range.samples.first + done, size, bytes);
        context.target.Write(bytes);
        done += size;
    }
}

void RunCodes(const CommandContext& context) {
    std::vector<std::int16_t> codes(kPieceSamples);
    const auto stored = [](std::shared_ptr<RecordingBlock> block) { return block; };
    const auto read = [&](const AskedRange& range, std::int32_t first, std::int32_t count, std::vector<char>& to) {
        range.block->ReadCodes(range.channel, first, count, codes.data());
        for (std::int32_t i = 0; i < count; ++i) {
            AppendLittleEndian(to, static_cast<std::uint16_t>(codes[static_cast<std::size_t>(i)]), 2);
        }
    };
    WriteSamples(context, stored, read);
}

void RunValues(const CommandContext& context) {
    std::vector<float> values(kPieceSamples);
    const ShownRequest request(context.parsed, context.language);
    const auto shown = [&](std::shared_ptr<RecordingBlock> block) { return request.Show(std::move(block)); };
    const auto read = [&](const AskedRange& range, std::int32_t first, std::int32_t count, std::vector<char>& to) {
        range.block->ReadValues(range.channel, first, count, values.data());
        for (std::int32_t i = 0; i < count; ++i) {
            AppendLittleEndian(to, std::bit_cast<std::uint32_t>(values[static_cast<std::size_t>(i)]), 4);
        }
    };
    WriteSamples(context, shown, read);
}

constexpr std::array kCommands = {
    Command{u"info", u"FILE", 1, 1,
            "      Describes the recording as one JSON document: format, blocks, channels and marks.\n",
            "  quillon-cli info night.edf\n", RunInfo},
    Command{u"codes", u"FILE BLOCK CHANNEL [FIRST [COUNT]]", 3, 5,
            "      Writes the stored samples as raw 16-bit integers, little-endian. Blocks and channels count from 1,\n"
            "      samples from 0; without FIRST and COUNT the samples run from 0 and to the end of the block.\n",
            "  quillon-cli codes night.edf 1 3 --out=channel3.raw\n", RunCodes},
    Command{
        u"values", u"FILE BLOCK CHANNEL [FIRST [COUNT]] [options]", 3, 5,
        "      As codes, but physical values as raw 32-bit floats, little-endian; as stored, or as the window shows\n"
        "      them with filters, a reference or a montage. See quillon-cli values --help.\n",
        "  quillon-cli values night.edf 1 3 25600 512 --high-pass=0.5 --low-pass=35 > piece.f32\n", RunValues,
        kShownOptions},
    Command{
        u"export", u"FILE OUT [options]", 2, 2,
        "      Writes a block or a stretch of it to a new file, all channels: .bin keeps samples, scales and "
        "names, .edf\n"
        "      whole records of them, .wav the samples only. --type=edf+ keeps marks and the start as well, of the\n"
        "      channels asked for, as stored or as the window shows them. See quillon-cli export --help.\n",
        "  quillon-cli export night.edf piece.bin --first=25601 --count=512\n"
        "  quillon-cli export night.edf piece.edf --type=edf+ --channels=1,3,Cz --low-pass=35\n",
        RunExport, kExportOptions, 2},
    Command{u"text", u"FILE OUT|- [options]", 2, 2,
            "      Writes samples as text in UTF-8, a line per sample, the channels in columns between tabs; - stands "
            "for\n"
            "      the standard output. See quillon-cli text --help.\n",
            "  quillon-cli text night.edf - --channels=1,3 --header=titles --x=time --first=25601 --count=512\n",
            RunText, kTextOptions, 2},
    Command{u"spectrum", u"FILE OUT.bmp [options]", 2, 2,
            "      Writes the spectrogram of one channel as a bitmap of 256 colours: a column per spectrum, a row per\n"
            "      frequency from 0 Hz at the bottom to half the sampling rate. See quillon-cli spectrum --help.\n",
            "  quillon-cli spectrum night.edf night.bmp --channel=3 --order=9 --palette=gray\n", RunSpectrum,
            kSpectrumOptions, 2},
    Command{u"picture", u"FILE OUT.png [options]", 2, 2,
            "      Draws the channels, one below the other, as the window does in lanes: titles and scales beside the\n"
            "      graph, the time below it. Places are as in Go To: 90 s, 1:30, 12:57:02 by the clock, #1000. See\n"
            "      quillon-cli picture --help.\n",
            "  quillon-cli picture night.edf page.png --from=0:10:00 --to=0:10:10 --low-pass=35 --reference=average\n",
            RunPicture, kPictureOptions, 2},
    Command{u"psd", u"FILE [options]", 1, 1,
            "      Writes the averaged spectrum of a block or a stretch of it as text: a line per frequency, the\n"
            "      channels in columns between tabs. See quillon-cli psd --help.\n",
            "  quillon-cli psd night.edf --channels=1,3 --from=60 --to=120 --length=1024 --db\n", RunPsd, kPsdOptions},
    Command{u"split", u"FILE --folder DIR --size S [options]", 1, 1,
            "      Cuts a block into pieces of equal length, each a file of its own: .wav where FILE is one and names "
            "go by\n"
            "      number, else .bin, or EDF+ with --type=edf+. A rest shorter than a piece is left out. Lists the "
            "files, each with its first "
            "sample\n"
            "      (from 1) and its samples per channel. See quillon-cli split --help.\n",
            "  quillon-cli split night.edf --folder=pieces --size=30 --seconds\n", RunSplitCommand, kSplitOptions},
};

}  // namespace

std::span<const Command> Commands() {
    return kCommands;
}

}  // namespace quillon::cli
