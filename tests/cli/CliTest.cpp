#include "cli/Cli.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "RecordingWriters.h"
#include "SampleRecordings.h"
#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/OutputTarget.h"
#include "norvik/SystemBytes.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

namespace fs = std::filesystem;
using testing::Answer;
using testing::Contents;
using testing::RunLine;

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
    /// A command line that is refused with that code and an error that holds `part`, and gives nothing else.
    void ExpectRefused(int code, const std::string& line, const std::string& part, const fs::path& other = {}) const {
        const Answer answer = Run(line, other);
        EXPECT_EQ(answer.code, code) << line;
        EXPECT_EQ(answer.out, "");
        EXPECT_NE(answer.error.find(part), std::string::npos) << answer.error;
    }

    quillon::testing::TemporaryFolder m_folder;
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
        EXPECT_EQ(Run("codes % " + words + " --language ru").error.find(range), std::string::npos) << "told in Russian";
    }
    ExpectRefused(kRefused, "info none.edf", "none.edf: ");
}

TEST_F(CliTest, TheSystemsReasonsAreInTheLanguageChosen) {
    const fs::path folder = m_folder.File(u"folder");
    const fs::path none = m_folder.File(u"none") / "a.bin";
    fs::create_directory(folder);
    const auto reason = [&](const char* language, const std::string& line, const std::vector<fs::path>& paths) {
        const std::string error = RunLine(line + " --language " + language, paths).error;
        return error.substr(error.rfind(": ", error.size() - 2) + 2);
    };
    const auto isAscii = [](unsigned char letter) { return letter < 128; };
    for (const auto& [line, paths] : {std::pair<std::string, std::vector<fs::path>>("info %", {none}),
                                      {"info %", {folder}},
                                      {"export % %", {m_recording, none}},
                                      {"codes % 1 1 --out %", {m_recording, folder}},
                                      {"split % --size 2 --folder %", {m_recording, m_recording / "folder"}}}) {
        const std::string english = reason("en", line, paths);
        const std::string russian = reason("ru", line, paths);
        EXPECT_TRUE(std::all_of(english.begin(), english.end(), isAscii)) << line << ": " << english;
        EXPECT_FALSE(std::any_of(russian.begin(), russian.end(),
                                 [](unsigned char letter) { return letter < 128 && std::isalpha(letter) != 0; }))
            << line << ": " << russian;
        EXPECT_FALSE(std::all_of(russian.begin(), russian.end(), isAscii)) << line << ": " << russian;
    }
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

TEST_F(CliTest, OutWritesAFileAndReplacesNoneUnasked) {
    const fs::path target = m_folder.File(u"коды.raw");
    EXPECT_EQ(Run("codes % 1 1 --out %", target).out, "");
    EXPECT_EQ(Contents(target), m_codes);

    m_folder.Write(u"коды.raw", "kept");
    ExpectRefused(kRefused, "codes % 1 1 --out %", "--force", target);
    // A command that is refused for another reason leaves the file alone even with --force.
    ExpectRefused(kRefused, "codes % 9 1 --force --out %", "blocks", target);
    EXPECT_EQ(Contents(target), "kept");
    EXPECT_EQ(Run("codes % 1 1 --force --out=%", target).code, kDone);
    EXPECT_EQ(Contents(target), m_codes);
    ExpectRefused(kRefused, "codes % 1 1 --out %", "x", m_folder.File(u"no") / "x");
}

TEST_F(CliTest, OutTakesNoLinkUnasked) {
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

TEST_F(CliTest, WhatComesIntoThePlaceMeanwhileStays) {
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

TEST_F(CliTest, ExportTellsWhatTheFormatDoesNotKeep) {
    m_recording = m_folder.Write(
        u"slow.bin", samples::BinHeader(0.3333F, "", {{"A", "V", 1.0F, 0.0F}}, 400) + std::string(800, '\0'));
    const fs::path copy = m_folder.File(u"copy");
    const auto told = [&](const std::string& options) {
        const Answer answer = Run("export % % --force " + options, copy);
        EXPECT_EQ(answer.code, kDone);
        const std::string start = "quillon-cli: " + Utf8(copy.u16string());
        return answer.error.starts_with(start) ? answer.error.substr(start.size()) : answer.error;
    };
    EXPECT_EQ(told("--type=bin"), "");
    EXPECT_EQ(told("--type=edf"), ": 333 of 400 samples (whole records), 0.333 Hz instead of 0.3333 Hz\n");
    EXPECT_EQ(told("--type=edf --first=30 --count=333 --language=ru"),
              ": 0.333 Гц вместо 0.3333 Гц, время начала — от начала блока\n");
}

TEST_F(CliTest, ForeignLettersArriveAndOnlyATextFileIsMarkedAsUtf8) {
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
    EXPECT_EQ(RunCli({u"--help"}, io), kRefused);
}

}  // namespace
}  // namespace quillon::cli
