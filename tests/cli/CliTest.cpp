#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>

#include "RecordingWriters.h"
#include "SampleRecordings.h"
#include "base/LittleEndian.h"
#include "cli/Cli.h"
#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/OutputTarget.h"
#include "cli/SpectrumCommand.h"
#include "norvik/SystemBytes.h"
#include "norvik/TemporaryFolder.h"
#include "support/FakeRecording.h"

namespace quillon::cli {
namespace {

namespace fs = std::filesystem;
using testing::Answer;
using testing::Contents;
using testing::RunLine;

/// A command line that is refused with that code and an error that holds `part`, and gives nothing else.
void ExpectRefusal(const Answer& answer, int code, const std::string& part) {
    EXPECT_EQ(answer.code, code) << answer.error;
    EXPECT_EQ(answer.out, "");
    EXPECT_NE(answer.error.find(part), std::string::npos) << answer.error;
}

/// A folder with one small recording: two channels, samples 0 to 4 are 10*i and -i, scale 0.5 and offset 1.
class CliTest : public ::testing::Test {
  protected:
    CliTest() {
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(250.0F, "Device", {{"A \"1\"", "mV", 0.5F, 1.0F}, {"B\\", "", 0.1F, 0.0F}}, 5));
        bytes.Codes({0, 0, 10, -1, 20, -2, 30, -3, 40, -4});
        m_recording = m_folder.Write(u"запись.bin", bytes.Get());
    }

    /// Runs a command on the recording, which is the first "%".
    [[nodiscard]] Answer Run(const std::string& line, const fs::path& other = {}) const {
        return RunLine(line, {m_recording, other});
    }
    void ExpectRefused(int code, const std::string& line, const std::string& part, const fs::path& other = {}) const {
        ExpectRefusal(Run(line, other), code, part);
    }

    testing::TemporaryFolder m_folder;
    fs::path m_recording;
    const std::string m_codes = samples::Bytes().Codes({0, 10, 20, 30, 40}).Get();  ///< of the first channel
};

TEST_F(CliTest, InfoIsOneJsonDocument) {
    const Answer answer = Run("info %");
    const std::string expected =
        "{\"number\":1,\"title\":\"\",\"start\":\"2011-04-04T12:57:02.000\",\"rate\":250,\"samples\":5,\"channels\":["
        "{\"number\":1,\"acquisition\":0,\"title\":\"A \\\"1\\\"\",\"unit\":\"mV\",\"scale\":0.5,\"offset\":1},"
        "{\"number\":2,\"acquisition\":1,\"title\":\"B\\\\\",\"unit\":\"\",\"scale\":0.1,\"offset\":0}],\"marks\":[]}"
        "\n]}\n";
    EXPECT_TRUE(answer.out.ends_with(expected)) << answer.out << answer.error;
    EXPECT_TRUE(answer.out.starts_with("{\"file\":" + JsonText(m_recording.u16string()) + ",\"format\":\""));
    EXPECT_EQ(JsonText(u"\u0001\t\n\"\\ж\U0001D11E"), "\"\\u0001\\t\\n\\\"\\\\\u0436\U0001D11E\"");
    EXPECT_EQ(JsonNumber(1.0 / 0.0), "null");
    const fs::path music = m_folder.Write(u"sample", samples::MusicFile());
    EXPECT_NE(RunLine("info %", {music}).out.find("\"marks\":[{\"position\":0,\"text\":\"Intro\"},"),
              std::string::npos);
}

TEST_F(CliTest, SamplesAreRawLittleEndian) {
    EXPECT_EQ(Run("codes % 1 2").out, samples::Bytes().Codes({0, -1, -2, -3, -4}).Get());
    EXPECT_EQ(Run("codes % 1 1 3").out, samples::Bytes().Codes({30, 40}).Get());
    EXPECT_EQ(Run("values % 1 1 1 2").out, samples::Bytes().Float(6.0F).Float(11.0F).Get());
    EXPECT_EQ(Run("codes % 1 1 4 0").code, kDone);
    const std::string ecg = samples::EcgFile();  // several pieces of three channels
    std::string third;
    for (std::size_t at = 376 + 4; at < ecg.size(); at += 6) third += ecg.substr(at, 2);
    EXPECT_TRUE(RunLine("codes % 1 3", {m_folder.Write(u"ecg", ecg)}).out == third);
}

TEST_F(CliTest, RangesOutsideTheRecordingAreRefusedWithTheRange) {
    using Case = std::pair<std::string, std::string>;
    for (const auto& [words, range] :
         {Case("0 1", "blocks 1 to 1"), Case("2 1", "blocks 1 to 1"), Case("65537 1", "blocks 1 to 1"),
          Case("1 3", "channels 1 to 2"), Case("1 -1", "channels 1 to 2"), Case("1 1 5", "samples 0 to 4"),
          Case("1 1 -1", "samples 0 to 4"), Case("1 1 4294967296", "samples 0 to 4"),
          Case("1 1 2 4", "counts 0 to 3")}) {
        ExpectRefused(kRefused, "codes % " + words, range);
        EXPECT_EQ(Run("codes % " + words + " --language ru").error.find(range), std::string::npos)
            << "reported in Russian";
    }
    ExpectRefused(kRefused, "info none.edf", "none.edf: ");
}

TEST_F(CliTest, WrongCommandLinesNameTheWrongWord) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [line, named] :
         {Case("", "no command"), Case("inform x", "'inform'"), Case("info", "'info'"), Case("info a b", "'b'"),
          Case("info a --colour", "'--colour'"), Case("info a --out", "'--out'"), Case("info a --out=", "'--out'"),
          Case("info a --force=1", "'--force'"), Case("info a --force --force", "'--force'"),
          Case("info a --language de", "'de'"), Case("codes % 1x 1", "'1x'"), Case("codes % 1 ''", "CHANNEL"),
          Case("export a.bin ''", "OUT"), Case("codes % 1 1 99999999999999999999", "FIRST")})
        ExpectRefused(kUsage, line, named);
    EXPECT_EQ(Run("info -- --out").code, kRefused) << "after \"--\" a word is no option";
}

TEST_F(CliTest, OutWritesAFileAndReplacesOneOnlyWithForce) {
    const fs::path target = m_folder.File(u"коды.raw");
    EXPECT_EQ(Run("codes % 1 1 --out %", target).out, "");
    EXPECT_EQ(Contents(target), m_codes);

    m_folder.Write(u"коды.raw", "kept");
    ExpectRefused(kRefused, "codes % 1 1 --out %", "--force", target);
    // A command that is refused for another reason does not change the file even with --force.
    ExpectRefused(kRefused, "codes % 9 1 --force --out %", "blocks", target);
    EXPECT_EQ(Contents(target), "kept");
    EXPECT_EQ(Run("codes % 1 1 --force --out=%", target).code, kDone);
    EXPECT_EQ(Contents(target), m_codes);
    ExpectRefused(kRefused, "codes % 1 1 --out %", "x", m_folder.File(u"no") / "x");
}

TEST_F(CliTest, OutFollowsALinkOnlyWithForce) {
    const fs::path link = m_folder.File(u"link.raw");
    std::error_code error;
    fs::create_symlink(m_folder.File(u"nowhere"), link, error);
    if (!error) {
        ExpectRefused(kRefused, "codes % 1 1 --out %", "--force", link);
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_EQ(Run("codes % 1 1 --force --out %", link).code, kDone);
        EXPECT_EQ(Contents(m_folder.File(u"nowhere")), m_codes);
        EXPECT_TRUE(fs::is_symlink(link)) << "what it leads to was meant";
    }
}

TEST_F(CliTest, AFileCreatedMeanwhileIsKept) {
    const fs::path place = m_folder.File(u"codes.raw");
    std::ostringstream standard;
    {
        OutputTarget target(standard, {{}, {{u"--out", place.u16string()}}}, m_recording.u16string(),
                            Language::English);
        target.Write(std::string_view("new"));
        m_folder.Write(u"codes.raw", "kept");
        EXPECT_THROW(target.Finish(), Refusal);
    }
    EXPECT_EQ(Contents(place), "kept");
    EXPECT_EQ(std::distance(fs::directory_iterator(place.parent_path()), fs::directory_iterator()), 2);
}

TEST_F(CliTest, ExportWritesAStretch) {
    const fs::path copy = m_folder.File(u"copy");
    for (const char* wrong : {"--first=0", "--first=6", "--count=6", "--block=2"})
        ExpectRefused(kRefused, "export % % --type=wav " + std::string(wrong), "", copy);
    ExpectRefused(kUsage, "export % % --type=mp3", "mp3", copy);
    EXPECT_EQ(Run("export % % --type=wav --first=2 --count=2", copy).code, kDone);
    EXPECT_EQ(Contents(copy).substr(44), samples::Bytes().Codes({10, -1, 20, -2}).Get());
}

TEST_F(CliTest, ExportReportsWhatTheFormatDoesNotKeep) {
    m_recording = m_folder.Write(
        u"slow.bin", samples::BinHeader(0.3333F, "", {{"A", "V", 1.0F, 0.0F}}, 400) + std::string(800, '\0'));
    const fs::path copy = m_folder.File(u"copy");
    const auto reported = [&](const std::string& options) {
        const Answer answer = Run("export % % --force " + options, copy);
        EXPECT_EQ(answer.code, kDone);
        const std::string start = "quillon-cli: " + Utf8(copy.u16string());
        return answer.error.starts_with(start) ? answer.error.substr(start.size()) : answer.error;
    };
    EXPECT_EQ(reported("--type=bin"), "");
    EXPECT_EQ(reported("--type=edf"), ": 333 of 400 samples (whole records), 0.333 Hz instead of 0.3333 Hz\n");
    EXPECT_EQ(reported("--type=edf --first=30 --count=333 --language=ru"),
              ": 0.333 Гц вместо 0.3333 Гц, время начала — от начала блока\n");
}

TEST_F(CliTest, NonAsciiTextsAreKeptAndOnlyATextFileIsMarkedAsUtf8) {
    const std::string header = samples::BinHeader(250.0F, "", {{"ЭЭГ", "V", 1.0F, 0.0F}}, 1);
    m_recording = m_folder.Write(u"eeg.bin", header + std::string(2, '\0'));
    const fs::path file = m_folder.File(u"a.txt");
    EXPECT_EQ(Run("text % - --header=titles").out.substr(0, 7), "ЭЭГ\n");
    EXPECT_EQ(Run("text % % --header=titles", file).code, kDone);
    EXPECT_EQ(Contents(file).substr(0, 9), "\xEF\xBB\xBFЭЭГ");
    const fs::path copy = m_folder.File(u"copy.bin");
    EXPECT_EQ(Run("export % %", copy).code, kDone);
    const std::string title = Utf8(FromUtf8OrSystemBytes(SystemBytes(u"ЭЭГ", 32)));
    EXPECT_NE(RunLine("info %", {copy}).out.find("\"title\":\"" + title + '"'), std::string::npos);
}

TEST_F(CliTest, TheRecordingItselfIsNeverWrittenOver) {
    const std::string before = Contents(m_recording);
    const fs::path linked = m_folder.File(u"link.raw");
    std::error_code error;
    fs::create_hard_link(m_recording, linked, error);
    const fs::path detour = m_folder.File(u".") / ".." / m_recording.parent_path().filename() / m_recording.filename();
    for (const fs::path& path : {m_recording, detour, error ? m_recording : linked}) {
        ExpectRefused(kRefused, "codes % 1 1 --force --out %", "recording itself", path);
        EXPECT_EQ(Contents(m_recording), before);
    }
}

TEST_F(CliTest, AFailedWriteIsRefused) {
    // A stream whose buffer takes nothing, as a closed pipe or a full disk.
    std::ostream closed(nullptr);
    std::ostringstream error;
    CliIo io{closed, error};
    EXPECT_EQ(RunCli({u"info", m_recording.u16string()}, io), kRefused);
    EXPECT_EQ(error.str(), "quillon-cli: standard output: writing failed\n");
}

TEST(SpectrumCommandTest, WritesTheSineIntoItsRowAndReplacesFilesOnlyWithForce) {
    const testing::TemporaryFolder folder;
    const std::filesystem::path picture = folder.File(u"синус.bmp");
    samples::Bytes sine;  // 24 periods in 128 samples
    sine.Text(samples::BinHeader(256.0F, "", {{"A", "mV", 0.5F, 0.0F}}, 1000));
    for (int i = 0; i < 1000; ++i)
        sine.Codes({static_cast<std::int16_t>(std::lround(8000.0 * std::sin(std::numbers::pi * 0.375 * i)))});
    const std::filesystem::path recording = folder.Write(u"sine.bin", sine.Get());
    const auto run = [&](const std::string& options) {
        return RunLine("spectrum % % " + options, {recording, picture}).code;
    };
    for (const char* wrong : {"order=4", "order=12", "window=kaiser", "range=9", "range=nan", "amplitude=0", "limits=1",
                              "limits=2,1", "columns=0", "first-column=-1", "palette=gre", "out=x.bmp"})
        EXPECT_EQ(run(std::string("--") + wrong), kUsage) << wrong;
    EXPECT_EQ(run("--channel=2"), kRefused);
    EXPECT_EQ(run("--first-column=10 --samples-per-column=100"), kRefused);
    EXPECT_FALSE(exists(picture)) << "nothing is left behind";
    // At the sine's own extremes, which are the limits unless they are given, it has the top colour; 20 dB below, less.
    for (const auto& [limits, peak] : {std::pair("--range=100", 255), {"--limits=-40000,40000", 212}}) {
        ASSERT_EQ(run(std::string("--order=7 --samples-per-column=100 --columns=11 --palette=gray --force ") + limits),
                  kDone);
        const std::string content = Contents(picture);
        const auto* image = reinterpret_cast<const std::uint8_t*>(content.data());
        ASSERT_EQ(content.size(), 1078U + 65U * 12U);
        for (const auto& [at, value] : {std::pair(10, 1078), {18, 11}, {22, 65}, {28, 8}, {454, 0x646464}})
            EXPECT_EQ(Le32(image + at), static_cast<std::uint32_t>(value)) << at;
        const auto cell = [&](std::size_t row) { return image[1078 + row * 12 + 9]; };
        for (std::size_t row = 0; row < 65; ++row) EXPECT_LE(cell(row), cell(24)) << row;
        EXPECT_NEAR(cell(24), peak, 1);
        EXPECT_EQ(image[1078 + 24 * 12 + 10], 0) << "beyond the end";
    }
    EXPECT_EQ(run(""), kRefused) << "it exists and --force is not given";
}

TEST(SpectrumCommandTest, WhatCannotBeReadIsBlankAndReported) {
    const auto block = std::make_shared<testing::FakeBlock>();
    block->samples.resize(1);
    for (int i = 0; i < 3200; ++i) block->samples[0].push_back(static_cast<std::int16_t>(i % 7 * 100 - 300));
    SpectrumRequest request{{.order = 5}, {}, 32, 0, {}};
    std::u16string reported;
    const auto picture = [&] {
        std::ostringstream out;
        OutputTarget target(out, {}, u"", Language::English);
        reported = WriteSpectrum({block, 1}, request, target, Language::English);
        return out.str().substr(1078);
    };
    const std::string whole = picture();
    EXPECT_EQ(reported, u"");
    block->samples[0][1610] = 30000;  // would widen the range
    block->holeFrom = 1610;
    block->holeTo = 1612;
    std::string damaged = picture();
    EXPECT_EQ(reported, u"1 of 100 columns are blank: hole");
    for (std::size_t at = 50; at < damaged.size(); at += 100) EXPECT_EQ(std::exchange(damaged[at], whole[at]), 0) << at;
    EXPECT_TRUE(damaged == whole);
    block->holeFrom = 0;
    block->holeTo = 3200;
    EXPECT_THROW(picture(), Refusal) << "no sample can be read";
}

/// A recording of one channel at 50 Hz whose samples are their own indexes.
class SplitCommand : public ::testing::Test {
  protected:
    SplitCommand() {
        std::vector<std::int16_t> codes(1000);
        std::iota(codes.begin(), codes.end(), std::int16_t{0});
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(50.0F, "", {{"A", "mV", 1.0F, 0.0F}}, 1000)).Codes(codes);
        m_recording = m_folder.Write(u"Ночь.d.bin", bytes.Get());
    }
    [[nodiscard]] testing::Answer Split(const std::string& options, const fs::path& out = {}) const {
        return testing::RunLine("split % --folder % " + options, {m_recording, m_pieces, out});
    }
    void ExpectRefused(const std::string& options, const std::string& part, int code = kRefused,
                       const fs::path& out = {}) const {
        ExpectRefusal(Split(options, out), code, part);
    }
    /// A piece's codes, which are the indexes of its samples.
    static void ExpectPiece(const fs::path& piece, std::int16_t first, std::size_t count) {
        std::vector<std::int16_t> codes(count);
        std::iota(codes.begin(), codes.end(), first);
        EXPECT_EQ(testing::RunLine("codes % 1 1", {piece}).out, samples::Bytes().Codes(codes).Get());
    }

    testing::TemporaryFolder m_folder;
    fs::path m_recording;
    fs::path m_pieces = m_folder.File(u"Части 1") / u"2";
};

TEST_F(SplitCommand, WritesAndListsThePieces) {
    const testing::Answer samples = Split("--size=300 --step=200 --names=samples --base=Сон");
    EXPECT_EQ(samples.out,
              "Сон_0000-0299.bin\t1\t300\nСон_0200-0499.bin\t201\t300\n"
              "Сон_0400-0699.bin\t401\t300\nСон_0600-0899.bin\t601\t300\n")
        << samples.error;
    ExpectPiece(m_pieces / u"Сон_0600-0899.bin", 600, 300);
    EXPECT_EQ(Split("--size=2,5 --seconds").out.substr(0, 13), "1.bin\t1\t125\n2");
    ExpectPiece(m_pieces / u"8.bin", 875, 125);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_pieces), fs::directory_iterator()), 12);
}

TEST_F(SplitCommand, ReplacesFilesOnlyWithForceAndTheRecordingNever) {
    fs::create_directories(m_pieces);
    std::ofstream(m_pieces / "07.bin") << "kept";
    ExpectRefused("--size=100", "07.bin: the file exists");
    EXPECT_EQ(Contents(m_pieces / "07.bin"), "kept");
    EXPECT_FALSE(fs::exists(m_pieces / "01.bin"));
    EXPECT_EQ(Split("--size=100 --force").code, kDone);
    ExpectPiece(m_pieces / "07.bin", 600, 100);

    const std::string recording = Contents(m_recording);
    fs::remove(m_pieces / "07.bin");
    fs::create_hard_link(m_recording, m_pieces / "07.bin");
    ExpectRefused("--size=100 --force", "the recording itself");
    m_pieces = m_recording;
    ExpectRefused("--size=100", "not a folder");
    EXPECT_EQ(Contents(m_recording), recording);
}

TEST_F(SplitCommand, TheListOfThePiecesReplacesNone) {
    for (const fs::path& list : {m_pieces / "07.bin", m_pieces / ".." / "2" / "07.BIN"}) {
        ExpectRefused("--size=100 --force --out %", "the place of a piece", kRefused, list);
        EXPECT_FALSE(fs::exists(m_pieces));
    }
    const fs::path beside = m_folder.File(u"07.bin");
    EXPECT_EQ(Split("--size=100 --out %", beside).code, kDone);
    EXPECT_EQ(Contents(beside).substr(0, 9), "01.bin\t1\t");
}

}  // namespace
}  // namespace quillon::cli
