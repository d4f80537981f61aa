#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <limits>
#include <random>

#include "RecordingWriters.h"
#include "base/DateTime.h"
#include "base/FilePath.h"
#include "norvik/BlockChecks.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"
#include "norvik/private/BinReader.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

TEST(RecordingLibrary, OpensByContentUnderAnyNameAndLeavesTheFileFree) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Write(u"Запись.edf", samples::WaveFile(1, 100, {11, 22}, {}));
    const auto library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
    EXPECT_EQ(recording->FileName(), path);
    EXPECT_EQ(recording->FormatName(), u"WAVE");
    EXPECT_EQ(recording->FileInfo(),
              u"WAVE, PCM 16 bit, 1 channel at 100 Hz, 2 samples; start taken from the file's time");
    ASSERT_EQ(recording->BlockCount(), 1);
    EXPECT_THROW(static_cast<void>(recording->GetBlock(0)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(recording->GetBlock(2)), std::out_of_range);
    const auto block = recording->GetBlock(1);
    block->Prepare();
    EXPECT_GT(block->StartTime(), DateFromCivil({2020, 1, 1, 0, 0, 0, 0})) << "the file's own time";

    const std::filesystem::path renamed = folder.File(u"renamed.wav");
    std::filesystem::rename(path, renamed);
    std::int16_t codes[2]{};
    block->ReadCodes(1, 0, 2, codes);
    EXPECT_EQ(codes[1], 22);
    EXPECT_THROW(block->ReadCodes(1, 1, 2, codes), std::out_of_range);
    std::filesystem::resize_file(renamed, 46);
    EXPECT_THROW(block->ReadCodes(1, 0, 2, codes), ReadError) << "cut while open";
}

TEST(RecordingLibrary, FailuresAreInTheLanguageOfTheLibrary) {
    const TemporaryFolder folder;
    const auto reason = [](Language language, const std::u16string& path) {
        const auto library = MakeRecordingLibrary(language);
        std::shared_ptr<Recording> recording;
        EXPECT_FALSE(library->OpenRecording(path, recording) || recording);
        return library->LastErrorText();
    };
    const std::u16string empty = folder.Write(u"empty.edf", "");
    EXPECT_EQ(reason(Language::English, empty), u"the file is empty");
    EXPECT_EQ(reason(Language::Russian, empty), u"файл пуст");
    EXPECT_FALSE(reason(Language::English, folder.File(u"missing.wav").u16string()).empty());
    EXPECT_FALSE(reason(Language::English, folder.Path()).empty()) << "a folder";
}

TEST(RecordingLibrary, TheExtensionChoosesTheReaderOfAnUnrecognisedFile) {
    using Case = std::pair<std::u16string_view, std::string>;
    for (const auto& [name, part] :
         {Case(u"A.EDF", "3 of 256"), Case(u"a.bdf", "3 of 256"), Case(u"a.Rf64", "3 of 12"),
          Case(u"a.bin", "3 of 128"), Case(u"a.TSV", "no table of numbers"),
          Case(u"a.xyz", "not a recording of a known format (the file begins with 01 02 03)")})
        ExpectRefusal(SourceOf(FileBytes().Text("\x01\x02\x03")), name, part);
}

TEST(RecordingLibrary, FilesBesideARecordingAreOpenedByPlainNamesOnly) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Write(u"a.hea", "header");
    folder.Write(u"a.dat", "samples");
    std::filesystem::create_directory(folder.File(u"sub"));
    folder.Write(u"sub/b.dat", "elsewhere");
    const Companions beside = FilesBeside(path, Language::English);
    Bilingual error;
    const auto source = beside.Open(u"a.dat", error);
    ASSERT_TRUE(source) << Utf8(error.english);
    EXPECT_EQ(source->Size(), 7U);
    EXPECT_TRUE(beside.Open(u"A.Dat", error)) << "as systems find it that do not tell letter cases apart";
    EXPECT_FALSE(beside.Open(u"missing.dat", error));
    EXPECT_FALSE(error.english.empty());

    int asked = 0;
    const Companions any([&](const std::u16string&, Bilingual&) { return ++asked, source; });
    for (const std::u16string name : {u"", u".", u"..", u".. ", u"sub/b.dat", u"sub\\b.dat", u"../a.dat",
                                      u"/etc/passwd", u"\\\\host\\share", u"C:a.dat", u"a.dat:stream", u"a\n.dat",
                                      u"a.dat.", u"a.dat ", u"CON", u"nul.dat", u"Aux .x", u"com1", u"LPT\u00B2.dat"}) {
        error = {};
        EXPECT_FALSE(any.Open(name, error) || error.english.empty() || error.russian.empty()) << Utf8(name);
    }
    EXPECT_FALSE(any.Open(std::u16string_view(u"a.dat\0b", 7), error));
    EXPECT_EQ(asked, 0) << "nothing is asked of the system";
    for (const std::u16string name : {u"..a", u"Запись 1.dat", u"console.dat", u"com.dat", u"com10", u".dat"})
        EXPECT_TRUE(any.Open(name, error)) << Utf8(name);
}

TEST(RecordingLibrary, TheOtherFilesOfARecordingAreTold) {
    const TemporaryFolder folder;
    const auto library = MakeRecordingLibrary(Language::English);
    const auto others = [&](const std::u16string& path) {
        std::shared_ptr<Recording> recording;
        EXPECT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        std::vector<std::pair<std::string, std::uint64_t>> files;
        for (const OtherFile& file : recording->OtherFiles()) {
            EXPECT_EQ(FolderOf(file.path), FolderOf(path));
            // Windows opens a file under a name in any letters.
            files.emplace_back(Utf8(LowerCase(FileNameOf(file.path))), file.size);
        }
        return files;
    };
    using Files = std::vector<std::pair<std::string, std::uint64_t>>;
    // Found, though the header states it in other letters.
    const std::u16string one = folder.Write(u"one.hea", "one 1 100\nONE.dat 16 200/mV\n");
    folder.Write(u"one.dat", std::string(600, 'x'));
    EXPECT_EQ(others(one), (Files{{"one.dat", 600}}));
    // Of many files the last ones, each once.
    std::string many = "many/20 1 100 2000\n";
    for (int part = 0; part < 20; ++part) {
        const std::string name = "part" + std::to_string(part);
        many += name + " 100\n";
        folder.Write(Utf16(name) + u".hea", name + " 1 100 100\n" + name + ".dat 16 200/mV\n");
        folder.Write(Utf16(name) + u".dat", std::string(200, 'x'));
    }
    const Files last = others(folder.Write(u"many.hea", many));
    EXPECT_EQ(last.size(), 16U);
    EXPECT_EQ(std::count(last.begin(), last.end(), std::pair(std::string("part19.dat"), std::uint64_t{200})), 1);
}

/// A file of random codes at 250 Hz.
struct BinFile {
    explicit BinFile(std::size_t channels, std::size_t frames = 4, float scale = 0.5F) : codes(channels) {
        const std::vector<samples::BinChannel> all(channels, {" Fp1 ", "\xB5V", scale, -1.0F});
        file.Text(samples::BinHeader(250.0F, "Board 7", all, static_cast<std::uint32_t>(frames)));
        std::mt19937 random(1);
        for (std::size_t at = 0; at < frames * channels; ++at) {
            codes[at % channels].push_back(static_cast<std::int16_t>(random()));
            file.U16(static_cast<std::uint16_t>(codes[at % channels].back()));
        }
    }
    BinFile& Input(std::size_t channel, std::uint32_t number) {
        file.Patch(132 + 80 * channel, number, 4);
        return *this;
    }
    [[nodiscard]] RecordingContent Read() const { return ReadBin(SourceOf(file)); }
    FileBytes file;
    std::vector<Codes> codes;
};

TEST(BinReader, AcquisitionNumbersAreKeptAndUnusableOnesReplacedByThePosition) {
    // Usable, repeated, beyond 32, senseless.
    for (const auto& [first, second] : {std::pair{4U, 2U}, {5U, 5U}, {0U, 32U}, {0xFFFFFFFFU, 32U}}) {
        const auto block = BinFile(2).Input(0, first).Input(1, second).Read().blocks.at(0);
        EXPECT_EQ(block->ChannelNumber(1), first == 4 ? 4 : 0);
        EXPECT_EQ(block->ChannelNumber(2), second == 2 ? 2 : 1);
        EXPECT_EQ(block->InputNumber(1), first < 32 ? first + 1 : 1);
        EXPECT_EQ(block->InputNumber(2), second + 1);
    }
}

TEST(BinReader, FurtherChannelsFormFurtherBlocks) {
    BinFile bin(70, 9000);
    bin.file.Patch(22, 500, 2);
    const RecordingContent content = bin.Read();
    ASSERT_EQ(content.blocks.size(), 3U);
    for (std::size_t at = 0; at < 3; ++at) {
        RecordingBlock& block = *content.blocks[at];
        block.Prepare();
        EXPECT_EQ(Utf8(block.Title()), (std::array{"1-32", "33-64", "65-70"}[at]));
        EXPECT_EQ(Iso8601(block.StartTime()), "2011-04-04T12:57:02.500");
        EXPECT_EQ(block.ChannelTitle(2), u"Fp1");
        EXPECT_EQ(block.ChannelUnit(2), u"\u00B5V");
        EXPECT_EQ(block.ChannelScale(2), 0.5F);
        EXPECT_EQ(block.ChannelOffset(2), -1.0F);
        EXPECT_EQ(block.InputNumber(6), static_cast<int>(32 * at + 6));
        const auto first = bin.codes.begin() + static_cast<std::ptrdiff_t>(32 * at);
        ExpectReads(block, {first, first + block.ChannelCount()});
    }
}

TEST(BinReader, TheDataSizeIsLimitedToTheFile) {
    const FileBytes whole = BinFile(2, 100).file;
    const std::string grown = "; length taken from the file's size";
    using Case = std::tuple<std::uint32_t, std::size_t, std::string>;  // declared size, bytes cut off, remark
    for (const auto& [declared, cut, samples] :
         {Case(400, 0, "100 samples"), Case(399, 0, "99 samples"), Case(40, 0, "10 samples"),
          Case(0, 0, "100 samples" + grown), Case(400, 400, "0 samples; cut short: 0 of 100 samples"),
          Case(400, 201, "49 samples; cut short: 49 of 100 samples"), Case(~0U, 1, "99 samples" + grown)}) {
        const RecordingContent content =
            ReadBin(SourceOf(FileBytes(whole).Patch(292, declared, 4).CutTo(whole.Size() - cut)));
        EXPECT_EQ(Utf8(content.info.english), "BIN, 2 channels at 250 Hz, " + samples);
        EXPECT_EQ(content.blocks.at(0)->SampleCount(), std::stoi(samples));
    }
}

TEST(BinReader, UnusableScalesAndDatesAreReplacedAndReported) {
    for (const float scale : {0.0F, std::numeric_limits<float>::infinity()}) {
        const RecordingContent content = BinFile(1, 4, scale).Read();
        content.blocks[0]->Prepare();
        EXPECT_EQ(content.blocks[0]->ChannelScale(1), 1.0F);
        EXPECT_THAT(Utf8(content.info.english), ::testing::EndsWith("; unusable scales replaced"));
    }
    // Year, month, day, hour, minute, second and millisecond: the least and the greatest, and what is beyond.
    for (const auto& [place, least, most] : {std::tuple{8U, 1U, 9999U},
                                             {10U, 1U, 12U},
                                             {14U, 1U, 31U},
                                             {16U, 0U, 23U},
                                             {18U, 0U, 59U},
                                             {20U, 0U, 60U},
                                             {22U, 0U, 999U}}) {
        for (const auto& [number, possible] :
             {std::pair{least, true}, {most, true}, {least - 1, false}, {most + 1, false}}) {
            const RecordingContent content = ReadBin(SourceOf(BinFile(1).file.Patch(place, number, 2)));
            EXPECT_EQ(content.blocks[0]->StartTime() != 0.0, possible) << place << ' ' << number;
            EXPECT_EQ(content.info.english.ends_with(u"; start taken from the file's time"), !possible);
        }
    }
}

TEST(BinReader, RefusalsNameThePlace) {
    const FileBytes good = BinFile(2).file;
    using Case = std::tuple<std::size_t, std::uint64_t, std::size_t, std::string>;  // place, number, its size, reason
    for (const auto& [place, number, size, part] :
         {Case(0, 'x', 1, "no \"ABIN\" at byte 0"), Case(32, 0, 2, "channel count 0 at byte 32"),
          Case(24, 0, 4, "sample rate 0 at byte 24"), Case(24, 0xBF800000, 4, "sample rate -1 at byte 24"),
          Case(24, 0x7F800000, 4, "sample rate inf at byte 24"), Case(208, 0, 1, "no \"ADCh\" at byte 208"),
          Case(288, 0, 1, "no \"data\" at byte 288"), Case(32, 0xFFFF, 2, "the header ends at byte 312 of 5242936")})
        ExpectRefusal(SourceOf(FileBytes(good).Patch(place, number, size)), u"a.bin", part);
    for (const auto& [size, of] : {std::pair{5U, "5 of 128"}, {127U, "127 of 128"}, {295U, "295 of 296"}})
        ExpectRefusal(SourceOf(FileBytes(good).CutTo(size)), u"a.bin", std::string("the header ends at byte ") + of);
}

}  // namespace
}  // namespace quillon
