// W64, AIFF and AU files against WAVE files of the same samples, which tests of their own cover.
#include <array>
#include <bit>
#include <functional>

#include "SoundWriters.h"
#include "norvik/BlockChecks.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using namespace ::quillon::samples;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// How a sample is stored: bytes, the tag of WAVE files, the encoding of AU, the compression of AIFC ("" is AIFF).
struct Coding {
    std::size_t bytes;
    std::uint32_t tag;
    std::uint32_t au;
    std::string_view aifc;
};

constexpr Coding kCodings[] = {{1, 1, 2, ""},     {1, 1, 0, "NONE"}, {1, 1, 0, "raw "}, {1, 1, 0, "sowt"},
                               {2, 1, 3, ""},     {2, 1, 0, "twos"}, {2, 1, 0, "sowt"}, {3, 1, 4, "in24"},
                               {3, 1, 0, "sowt"}, {4, 1, 5, "in32"}, {4, 3, 6, "fl32"}, {4, 3, 0, "FL32"},
                               {8, 3, 7, "fl64"}};

FileBytes WaveFormatOf(const Coding& coding, std::size_t channels) {
    const auto frameBytes = static_cast<std::uint32_t>(coding.bytes * channels);
    FileBytes format;
    format.U16(coding.tag).U16(static_cast<std::uint32_t>(channels)).U32(8000).U32(8000 * frameBytes);
    return format.U16(frameBytes).U16(static_cast<std::uint32_t>(8 * coding.bytes));
}

void ExpectSame(const FileBytes& file, const FileBytes& wave) {
    const RecordingContent content = ReadRecording({SourceOf(file), u"a"});
    const RecordingContent expected = ReadRecording({SourceOf(wave), u"a.wav"});
    ASSERT_EQ(content.blocks.size(), expected.blocks.size());
    for (std::size_t at = 0; at < content.blocks.size(); ++at) {
        FileBlock& block = *content.blocks[at];
        FileBlock& other = *expected.blocks[at];
        EXPECT_EQ(block.SampleRate(), other.SampleRate());
        EXPECT_EQ(block.ChannelUnit(1), other.ChannelUnit(1));
        ASSERT_EQ(block.ChannelCount(), other.ChannelCount());
        std::vector<Codes> codes;
        for (std::int16_t channel = 1; channel <= other.ChannelCount(); ++channel) {
            codes.push_back(AllCodes(other, channel));
            block.Prepare();
            EXPECT_EQ(block.ChannelScale(channel), other.ChannelScale(channel));
            EXPECT_EQ(block.ChannelOffset(channel), other.ChannelOffset(channel));
        }
        ExpectReads(block, codes);
    }
}

TEST(SoundReaders, EveryCodingHasTheSamplesOfTheWaveFile) {
    std::mt19937 random(17);
    for (const Coding& coding : kCodings) {
        for (const std::size_t channels : {1U, 2U, 35U}) {
            SCOPED_TRACE(std::string(coding.aifc) + ' ' + std::to_string(coding.bytes) + ' ' +
                         std::to_string(channels));
            const std::size_t frames = 200 + random() % 300;
            FileBytes wave;
            FileBytes big;
            FileBytes aifc;
            for (std::size_t i = 0; i < frames * channels; ++i) {
                std::uint64_t sample = random();
                const double real = std::ldexp(static_cast<double>(static_cast<std::int32_t>(sample)), -31);
                if (coding.tag == 3) sample = std::bit_cast<std::uint64_t>(real);
                if (coding.tag == 3 && coding.bytes == 4)
                    sample = std::bit_cast<std::uint32_t>(static_cast<float>(real));
                // Only WAVE and "raw " have no sign in 8 bits.
                wave.Number(coding.bytes == 1 ? sample ^ 0x80U : sample, coding.bytes);
                big.Big(sample, coding.bytes);
                const bool little = coding.aifc == "sowt";
                const std::uint64_t stored = coding.aifc == "raw " ? sample ^ 0x80U : sample;
                little ? aifc.Number(stored, coding.bytes) : aifc.Big(stored, coding.bytes);
            }
            const FileBytes format = WaveFormatOf(coding, channels);
            FileBytes riff;
            riff.Text("RIFF").U32(0).Text("WAVE").Chunk("fmt ", format).Chunk("data", wave);
            ExpectSame(
                W64File(
                    W64Chunk("fmt ", format).Add(W64Chunk("levl", FileBytes().Zeros(13))).Add(W64Chunk("data", wave))),
                riff);
            const auto count = static_cast<std::uint32_t>(channels);
            if (coding.au > 0)
                ExpectSame(AuFile(coding.au, 8000, count, static_cast<std::uint32_t>(big.Size()), big), riff);
            // Markers before the samples move them to odd places.
            const FileBytes common = AiffCommon(count, static_cast<std::uint32_t>(frames),
                                                static_cast<std::uint32_t>(8 * coding.bytes), 8000, coding.aifc);
            ExpectSame(AiffFile(coding.aifc.empty() ? "AIFF" : "AIFC",
                                FileBytes()
                                    .Add(common)
                                    .Add(AiffChunk("NAME", FileBytes().Text("odd")))
                                    .Add(AiffChunk("SSND", FileBytes().Big(3, 4).Big(0, 4).Zeros(3).Add(aifc)))),
                       riff);
        }
    }
}

TEST(SoundReaders, MarkersOfAiffAreMarks) {
    const FileBytes markers = AiffMarkers({{700, "late"}, {3, ""}, {0, "odd"}, {1, "even"}, {24000, "outside"}});
    const FileBytes chunks = FileBytes().Add(AiffCommon(1, 24000, 12, 8000)).Add(AiffSound(BigCodes(BellCodes())));
    const RecordingContent content = ReadRecording({SourceOf(AiffFile("AIFF", FileBytes(chunks).Add(markers))), u"a"});
    EXPECT_THAT(Marks(*content.blocks[0]), ElementsAre("0 odd", "1 even", "3 2", "700 late"));
    // 12 bits lie in the upper part of 16.
    EXPECT_EQ(Utf8(content.info.english),
              "AIFF, PCM 12 bit, 1 channel at 8000 Hz, 24000 samples; start taken from the file's time");
    EXPECT_EQ(AllCodes(*content.blocks[0], 1), BellCodes());
    // Cut inside a text.
    FileBytes cut = AiffFile("AIFF", FileBytes(chunks).Add(markers));
    cut.CutTo(cut.Size() - 6);
    EXPECT_EQ(ReadRecording({SourceOf(cut), u"a"}).blocks[0]->MarkCount(), 4);
}

struct Case {
    std::function<void(FileBytes&)> change;
    const char* expected;
};

/// Damages the file at one place each: it is read and the information says so, or refused for the reason.
void ExpectEach(const std::string& whole, std::span<const Case> cases) {
    for (const Case& one : cases) {
        FileBytes file = FileBytes().Text(whole);
        one.change(file);
        const std::string refusal = Refusal(SourceOf(file), u"a.au");
        if (refusal != "read") {
            EXPECT_THAT(refusal, HasSubstr(one.expected));
            continue;
        }
        const RecordingContent content = ReadRecording({SourceOf(file), u"a.au"});
        EXPECT_THAT(Utf8(content.info.english), HasSubstr(one.expected));
        Codes codes = AllCodes(*content.blocks[0], 1);
        Codes expected = BellCodes();
        expected.resize(codes.size());
        EXPECT_EQ(codes, expected) << one.expected;
    }
}

TEST(SoundReaders, DamagedW64) {
    // The format's chunk begins at byte 40, the data at 80 and 104.
    const Case cases[] = {
        {[](auto&) {}, "W64, PCM 16 bit, 1 channel at 8000 Hz, 24000 samples"},
        {[](auto& file) { file.CutTo(104 + 2001); }, "cut short: 1000 of 24000 samples"},
        {[](auto& file) { file.Patch(96, 0, 8); }, "24000 samples; length taken from the file's size"},
        {[](auto& file) { file.Patch(96, 24, 8); }, "24000 samples; length taken from the file's size"},
        {[](auto& file) { file.Patch(96, ~0ULL, 8); }, "cut short: 24000 of 9223372036854775795 samples"},
        {[](auto& file) { file.Patch(96, 23, 8); }, "chunk at byte 80 has a size below 24"},
        {[](auto& file) { file.Patch(56, 8, 8); }, "chunk at byte 40 has a size below 24"},
        {[](auto& file) { file.Patch(56, 30, 8); }, "the format chunk is shorter than 16 bytes: 6"},
        {[](auto& file) { file.Patch(40, 'x', 1); }, "no \"fmt \" chunk from byte 40 to 48104"},
        {[](auto& file) { file.Patch(80, 'x', 1); }, "no \"data\" chunk from byte 40"},
        {[](auto& file) { file.CutTo(80); }, "no \"data\" chunk"},
        {[](auto& file) { file.CutTo(39); }, "no \"fmt \" chunk"},
        {[](auto& file) { file.Patch(66, 0, 2); }, "channel count 0 at byte 66"},
        {[](auto& file) { file.Patch(64, 2, 2); }, "ADPCM"},
    };
    ExpectEach(BellW64(), cases);
    // What follows the data cannot make them unreadable.
    const std::string junk = BellW64() + std::string(24, '\0');
    EXPECT_EQ(ReadRecording({SourceOf(FileBytes().Text(junk)), u"a"}).blocks[0]->SampleCount(), 24000);
}

TEST(SoundReaders, DamagedAiff) {
    const std::string whole = BellAiff();
    const std::size_t sound = whole.find("SSND");
    const Case cases[] = {
        {[](auto&) {}, "AIFF, PCM 16 bit, 1 channel at 8000 Hz, 24000 samples"},
        {[&](auto& file) { file.CutTo(sound + 16 + 2001); }, "cut short: 1000 of 24000 samples"},
        {[](auto& file) { file.Patch(22, 0x01000000, 4); }, "1 channel at 8000 Hz, 1 sample"},
        {[](auto& file) { file.Patch(22, 0xFFFFFFFF, 4); }, "cut short: 24000 of 4294967295 samples"},
        {[](auto& file) { file.Patch(22, 0, 4); }, "24000 samples; length taken from the file's size"},
        {[&](auto& file) { file.Patch(sound + 4, 0, 4); }, "1 channel at 8000 Hz, 24000 samples"},
        {[&](auto& file) { file.Patch(sound + 4, 0xFFFFFFFF, 4); }, "24000 samples"},
        {[&](auto& file) { file.Patch(sound + 8, 0xFFFFFFFF, 4); }, "cut short: 0 of 24000"},
        {[&](auto& file) { file.CutTo(sound + 12); }, "the header ends at byte"},
        {[&](auto& file) { file.CutTo(sound); }, "no \"SSND\" chunk from byte 12"},
        {[](auto& file) { file.Patch(12, 'x', 1); }, "no \"COMM\" chunk from byte 12"},
        {[](auto& file) { file.Patch(20, 0, 2); }, "channel count 0 at byte 20"},
        {[](auto& file) { file.Patch(26, 0, 2); }, "bits per sample 0 at byte 26"},
        {[](auto& file) { file.Patch(27, 33, 1); }, "bits per sample 33 at byte 26"},
        {[](auto& file) { file.Patch(28, 0x80, 1); }, "sample rate"},
        {[](auto& file) { file.Patch(28, 0xFF7F, 2); }, "sample rate ? at byte 28"},
        {[](auto& file) { file.Patch(28, 0, 8).Patch(36, 0, 2); }, "sample rate 0 at byte 28"},
        {[](auto& file) { file.Patch(19, 17, 1); }, "shorter than 18 bytes: 17"},
        {[](auto& file) { file.Patch(11, 'C', 1); }, "shorter than 22 bytes: 18"},
    };
    ExpectEach(whole, cases);
    const auto aifc = [](std::string_view compression) {
        return AiffFile("AIFC",
                        FileBytes().Add(AiffCommon(1, 1, 16, 8000, compression)).Add(AiffSound(FileBytes().U16(0))));
    };
    ExpectRefusal(SourceOf(aifc("ima4")), u"a", "compressed samples, 'ima4', at byte 38");
    ExpectRefusal(SourceOf(aifc("ulaw")), u"a", "compressed samples, 'ulaw'");
}

TEST(SoundReaders, DamagedAu) {
    const Case cases[] = {
        {[](auto&) {}, "AU, PCM 16 bit, 1 channel at 8000 Hz, 24000 samples"},
        {[](auto& file) { file.CutTo(32 + 2001); }, "cut short: 1000 of 24000 samples"},
        {[](auto& file) { file.Patch(8, 0xFFFFFFFF, 4); }, "24000 samples; length taken from the file's size"},
        {[](auto& file) { file.Patch(8, 0, 4); }, "24000 samples; length taken from the file's size"},
        {[](auto& file) { file.Patch(8, 0x04000000, 4); }, "8000 Hz, 2 samples"},
        {[](auto& file) { file.CutTo(23); }, "the header ends at byte 23 of 24"},
        {[](auto& file) { file.Patch(7, 23, 1); }, "data offset 23 at byte 4"},
        {[](auto& file) { file.Patch(4, 0xFF, 1); }, "data offset 4278190112 at byte 4"},
        {[](auto& file) { file.Patch(15, 1, 1); }, "compressed samples, mu-law (1), at byte 12"},
        {[](auto& file) { file.Patch(15, 27, 1); }, "compressed samples, A-law (27), at byte 12"},
        {[](auto& file) { file.Patch(15, 23, 1); }, "encoding 23 at byte 12"},
        {[](auto& file) { file.Patch(16, 0, 4); }, "sample rate 0 at byte 16"},
        {[](auto& file) { file.Patch(20, 0, 4); }, "channel count 0 at byte 20"},
        {[](auto& file) { file.Patch(20, 0xFF, 1); }, "channel count 4278190081 at byte 20"},
        {[](auto& file) { file.Patch(0, 0x2E736E64, 4); }, "little-endian AU at byte 0"},
        {[](auto& file) { file.Patch(0, 'x', 1); }, "no \".snd\" at byte 0"},
    };
    ExpectEach(BellAu(), cases);
}

}  // namespace
}  // namespace quillon
