#include "norvik/private/WaveReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "base/DateTime.h"
#include "norvik/BlockChecks.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using namespace ::quillon::testing;
using namespace std::string_view_literals;

FileBytes Format(int tag, int channels, int bits, int frameBytes, std::uint32_t rate = 8000) {
    FileBytes format;
    format.U16(static_cast<std::uint16_t>(tag)).U16(static_cast<std::uint16_t>(channels)).U32(rate);
    return format.U32(0).U16(static_cast<std::uint16_t>(frameBytes)).U16(static_cast<std::uint16_t>(bits));
}

FileBytes Form(const FileBytes& chunks, std::string_view id = "RIFF") {
    return FileBytes().Text(id).U32(static_cast<std::uint32_t>(chunks.Size() + 4)).Text("WAVE").Add(chunks);
}

FileBytes File(const FileBytes& format, const FileBytes& data) {
    return Form(FileBytes().Chunk("fmt ", format).Chunk("data", data));
}

/// A file of the samples 0, 1, 2, ... in one channel of 16 bits, with chunks before and after the data.
FileBytes Ramp(std::size_t samples, const FileBytes& before = {}, const FileBytes& after = {}) {
    FileBytes data;
    for (std::size_t at = 0; at < samples; ++at) data.U16(static_cast<std::uint16_t>(at));
    return Form(FileBytes().Chunk("fmt ", Format(1, 1, 16, 2)).Add(before).Chunk("data", data).Add(after));
}

constexpr std::size_t kRampDataSize = 40;

std::shared_ptr<FileBlock> OnlyBlock(const FileBytes& file) {
    const RecordingContent content = ReadWave(SourceOf(file));
    EXPECT_EQ(content.blocks.size(), 1U);
    content.blocks.at(0)->Prepare();
    return content.blocks.at(0);
}

using Coding = std::tuple<int, int, std::size_t>;  // format tag, bits of a sample, its bytes

/// A file of random samples is read to the nearest code, and alike by every call.
void ExpectNearest(const Coding& coding, std::size_t channels, std::size_t frames, bool extensible) {
    const auto [tag, bits, bytes] = coding;
    const int container = static_cast<int>(8 * bytes);
    // A frame may be longer than its samples where these fill their bytes.
    const std::size_t padding = extensible && bits > container - 8 ? 1 : 0;
    std::mt19937_64 random(channels);
    std::vector<std::vector<double>> values(channels);
    FileBytes data;
    for (std::size_t at = 0; at < frames * channels; ++at) {
        const auto raw = static_cast<std::int64_t>(random()) >> (64 - container);
        double value = std::ldexp(static_cast<double>(raw), 1 - container);
        const auto single = static_cast<float>(value);
        if (tag == 3 && bytes == 4) value = static_cast<double>(single);
        values[at % channels].push_back(value);
        const auto whole = static_cast<std::uint64_t>(bytes == 1 ? raw + 128 : raw);
        data.Add(tag == 1     ? FileBytes().Number(whole, bytes)
                 : bytes == 4 ? FileBytes().Float(single)
                              : FileBytes().Double(value));
        if (at % channels == channels - 1) data.Number(0x55, padding);
    }
    FileBytes format = Format(extensible ? 0xFFFE : tag, static_cast<int>(channels), bits,
                              static_cast<int>(channels * bytes + padding));
    if (extensible)
        format.U16(22).U16(16).U32(0).U32(static_cast<std::uint32_t>(tag)).U32(0x00100000).U64(0x719B3800AA000080);
    const RecordingContent content = ReadWave(SourceOf(File(format, data)));
    ASSERT_EQ(content.blocks.size(), (channels + 31) / 32);
    std::size_t ordinal = 0;
    for (const auto& block : content.blocks) {
        std::vector<Codes> codes;
        for (std::int16_t channel = 1; channel <= block->ChannelCount(); ++channel, ++ordinal) {
            codes.push_back(AllCodes(*block, channel));
            const auto scale = static_cast<double>(block->ChannelScale(channel));
            const auto offset = static_cast<double>(block->ChannelOffset(channel));
            // Half a code, and 32000 codes times the rounding of the scale to single precision.
            const double allowed = scale * (0.5 + 32000.0 * 0x1p-24) + std::abs(offset) * 0x1p-24;
            for (std::size_t at = 0; at < codes.back().size(); ++at)
                ASSERT_NEAR(codes.back()[at] * scale + offset, values[ordinal][at], allowed) << at;
            EXPECT_EQ(block->ChannelNumber(channel), static_cast<int>(ordinal % 32));
            EXPECT_EQ(block->InputNumber(channel), static_cast<int>(ordinal + 1));
            EXPECT_EQ(block->ChannelUnit(channel), u"FS");
        }
        ExpectReads(*block, codes);
    }
}

TEST(WaveReader, EveryCodingIsReadAlikeByEveryCallAndToTheNearestCode) {
    for (const Coding& coding :
         {Coding(1, 8, 1), Coding(1, 16, 2), Coding(1, 12, 2), Coding(1, 24, 3), Coding(1, 20, 3), Coding(1, 24, 4),
          Coding(1, 32, 4), Coding(3, 32, 4), Coding(3, 64, 8)}) {
        for (const std::size_t channels : {1U, 2U, 3U, 8U, 40U}) {
            SCOPED_TRACE(::testing::PrintToString(coding));
            ExpectNearest(coding, channels, channels == 2 ? 70000 : 1500, channels == 3);
        }
    }
}

TEST(WaveReader, FloatsMadeFromSixteenBitsComeBackAsThem) {
    FileBytes floats;
    for (const int code : {-32768, -3, 0, 32767}) floats.Float(static_cast<float>(code) / 32768.0F);
    floats.Float(std::numeric_limits<float>::quiet_NaN());
    const auto read = [&] { return OnlyBlock(File(Format(3, 1, 32, 4), floats)); };
    EXPECT_EQ(AllCodes(*read(), 1), (Codes{-32768, -3, 0, 32767, 0}));
    EXPECT_EQ(read()->ChannelScale(1), 1.0F / 32768);
    EXPECT_FALSE(read()->FillsCodes(1));
    floats.Float(0.1F);
    EXPECT_EQ(AllCodes(*read(), 1).front(), -32000) << "one odd sample and they do not";
    EXPECT_TRUE(read()->FillsCodes(1));
}

TEST(WaveReader, SamplesThatAreNoNumbersAndHugeOnesStayInRange) {
    const double huge = std::numeric_limits<double>::max();
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    using Case = std::pair<std::vector<double>, Codes>;
    for (const auto& [samples, codes] :
         {Case({-huge, huge, nan}, {-32000, 32000, 0}),
          Case({5.0, 100000.0, nan, infinity, -infinity}, {-32000, 32000, -32003, 32767, -32768}),
          Case({0.0, 5e-324}, {0, 0}),  // a span too small for a step is none
          Case({7.25, 7.25}, {0, 0}), Case({nan, infinity}, {0, 32767})}) {
        FileBytes data;
        for (const double sample : samples) data.Double(sample);
        const auto block = OnlyBlock(File(Format(3, 1, 64, 8), data));
        EXPECT_EQ(AllCodes(*block, 1), codes) << samples[0];
        EXPECT_TRUE(std::isfinite(block->ChannelScale(1)));
    }
}

TEST(WaveReader, CuesBecomeMarksInOrderWithTheirTexts) {
    FileBytes cues = FileBytes().U32(0xFFFF);
    for (const auto& [id, position, offset] :
         {std::tuple{1U, 0U, 30U}, {2U, 9U, 9U}, {7U, 12U, 0U}, {8U, 99U, 99U}, {8U, 50U, 50U}, {9U, 0U, 100U}})
        cues.U32(id).U32(position).Text("data").U32(0).U32(0).U32(offset);
    FileBytes texts = FileBytes().Text("adtl");
    using Text = std::tuple<const char*, std::uint32_t, std::string_view>;
    for (const auto& [kind, id, text] : {Text("note", 2, "note of 2\0"sv), Text("labl", 1, "one \0hidden"sv),
                                         Text("labl", 1, "late"), Text("note", 1, "no"), Text("labl", 8, "\xEF")})
        texts.Chunk(kind, FileBytes().U32(id).Text(text));
    const FileBytes lists = FileBytes().Chunk("LIST", FileBytes().Text("INFOlabl")).Chunk("LIST", texts);
    EXPECT_THAT(Marks(*OnlyBlock(Ramp(100, FileBytes().Chunk("cue ", cues), lists))),
                ElementsAre("9 note of 2", "12 7", "30 one", "50 8", "99 \u00EF"))
        << "a text is handed out once";
    const FileBytes playlist = FileBytes().Chunk("plst", FileBytes().U32(0)).Chunk("cue ", cues);
    EXPECT_THAT(Marks(*OnlyBlock(Ramp(20, playlist))), ElementsAre("0 7", "9 2"))
        << "with a playlist, positions count in playing order";
}

TEST(WaveReader, TheBroadcastExtensionTellsTheStart) {
    const auto started = [](std::string_view date, std::string_view time) {
        const FileBytes extension = FileBytes().Zeros(320).Text(date, 10).Text(time, 8).Zeros(264);
        const RecordingContent content = ReadWave(SourceOf(Ramp(4, FileBytes().Chunk("bext", extension))));
        const double start = content.blocks.front()->StartTime();
        EXPECT_EQ(content.info.english.ends_with(u"; start taken from the file's time"), start == 0.0);
        return start;
    };
    EXPECT_EQ(Iso8601(started("1999_12_31", "01-02-03")), "1999-12-31T01:02:03.000");
    EXPECT_EQ(Iso8601(started("2024-02-29", "")), "2024-02-29T00:00:00.000");
    for (const std::string_view date : {"0000-00-00", "2024-13-01"}) EXPECT_EQ(started(date, "10:00:00"), 0.0);
    EXPECT_EQ(OnlyBlock(Ramp(4, FileBytes().Chunk("bext", FileBytes().Zeros(330))))->StartTime(), 0.0) << "cut short";
}

TEST(WaveReader, ChunksAreFoundInAnyOrderAndWithoutPadding) {
    const FileBytes format = FileBytes().Chunk("fmt ", Format(1, 1, 16, 2));
    const FileBytes data = FileBytes().Chunk("data", FileBytes().U16(5).U16(6));
    const FileBytes odd = FileBytes().Text("123456789");
    const FileBytes second = FileBytes().Chunk("fmt ", Format(1, 7, 8, 7));
    for (const FileBytes& chunks : {FileBytes(data).Add(format), FileBytes().Chunk("junk", odd).Add(format).Add(data),
                                    FileBytes().Text("junk").U32(9).Add(odd).Add(format).Add(data),
                                    FileBytes(format).Add(second).Add(data).Chunk("data", odd)})
        EXPECT_EQ(AllCodes(*OnlyBlock(Form(chunks)), 1), (Codes{5, 6}));
}

TEST(WaveReader, WrongSizesAreLimitedToTheFile) {
    const FileBytes list = FileBytes().Chunk("LIST", FileBytes().Text("INFOxxxx"));
    const FileBytes plain = Ramp(50);
    const std::pair<FileBytes, int> cases[] = {
        {FileBytes(plain).Patch(4, 0, 4), 50},  // the size of the form is not needed
        {FileBytes(plain).Patch(kRampDataSize, 31, 4), 15},
        {FileBytes(plain).Patch(kRampDataSize, 0, 4), 50},      // a stream that was not closed
        {Ramp(50, {}, list).Patch(kRampDataSize, 101, 4), 50},  // an odd rest is no sample
        {Ramp(0, {}, list), 0},
        {Ramp(50, FileBytes().Text("LIST").U32(0)), 50}};
    for (const auto& test : cases)
        EXPECT_EQ(OnlyBlock(test.first)->SampleCount(), test.second) << "case " << &test - cases;
    const RecordingContent cut = ReadWave(SourceOf(FileBytes(plain).CutTo(plain.Size() - 33)));
    EXPECT_EQ(cut.info.english,
              u"WAVE, PCM 16 bit, 1 channel at 8000 Hz, 33 samples; cut short: 33 of 50 samples"
              u"; start taken from the file's time");
    const FileBytes hugeCue = FileBytes().Text("cue ").U32(0x7FFFFFFF).U32(0x7FFFFFFF).Zeros(30);
    EXPECT_EQ(OnlyBlock(Ramp(50, {}, hugeCue))->MarkCount(), 1);
}

TEST(WaveReader, LongSizesStandInForThoseOfAllOnes) {
    const auto samples = [](std::uint64_t dataBytes, std::uint32_t own) {
        const FileBytes sizes = FileBytes().U64(0).U64(dataBytes).U64(0).U32(1).Text("junk").U64(6);
        FileBytes chunks = FileBytes().Chunk("ds64", sizes).Chunk("fmt ", Format(1, 1, 16, 2));
        chunks.Text("junk").U32(0xFFFFFFFF).Text("abcdef").Text("data").U32(own);
        for (std::uint16_t at = 0; at < 20; ++at) chunks.U16(at);
        return OnlyBlock(Form(chunks, "BW64"))->SampleCount();
    };
    EXPECT_EQ(samples(24, 0xFFFFFFFF), 12);
    EXPECT_EQ(samples(24, 30), 15) << "a size of its own holds";
    EXPECT_EQ(samples(0, 0xFFFFFFFF), 20) << "not closed";
    EXPECT_EQ(samples(~std::uint64_t{0}, 0xFFFFFFFF), 20);
}

TEST(WaveReader, RefusalsNameWhatAndWhere) {
    const auto refused = [](const FileBytes& format, const std::string& part) {
        ExpectRefusal(SourceOf(File(format, FileBytes().Zeros(64))), u"a.wav", part);
    };
    using Case = std::tuple<int, int, int, int, std::string>;
    for (const auto& [tag, channels, bits, bytes, part] :
         {Case(2, 1, 4, 256, "compressed samples, ADPCM (2), at byte 20"),
          Case(1234, 1, 16, 2, "format tag 1234 at byte 20"), Case(0xFFFE, 1, 16, 2, "26 bytes"),
          Case(1, 0, 16, 2, "channel count 0 at byte 22"), Case(1, 1, 16, 0, "block align 0 at byte 32"),
          Case(1, 2, 16, 3, "for the channels: 3 at byte 32"), Case(1, 1, 64, 8, "bits per sample 64 at byte 34"),
          Case(3, 1, 16, 2, "bits per sample 16 at byte 34")})
        refused(Format(tag, channels, bits, bytes), part);
    refused(Format(1, 1, 16, 2, 0), "sample rate 0 at byte 24");
    refused(Format(0xFFFE, 1, 16, 2).U16(22).U16(16).U32(0).U16(85).Zeros(14), "MP3 (85), at byte 44");
    refused(FileBytes().U16(1).U16(1), "shorter than 16 bytes: 4 at byte 20");
    const std::pair<FileBytes, std::string> files[] = {
        {Form(FileBytes().Chunk("data", FileBytes().Zeros(8))), "no \"fmt \" chunk"},
        {Form(FileBytes().Chunk("fmt ", Format(1, 1, 16, 2))), "no \"data\" chunk from byte 12 to 36"},
        {Form({}, "RIFX"), "RIFX"},
        {FileBytes().Text("RIFF").U32(4), "the header ends at byte 8 of 12"},
        {FileBytes().Text("GIF87a and more"), "at byte 0"}};
    for (const auto& [file, part] : files) ExpectRefusal(SourceOf(file), u"a.WAV", part);
}

}  // namespace
}  // namespace quillon
