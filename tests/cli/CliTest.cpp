#include "cli/Cli.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "RecordingWriters.h"
#include "SampleRecordings.h"
#include "base/Text.h"
#include "cli/Json.h"
#include "cli/OutputTarget.h"
#include "norvik/SystemBytes.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

namespace fs = std::filesystem;

struct Answer {
    int code = 0;
    std::string out;
    std::string error;
};

std::string FileBytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A folder with one small recording: two channels, samples 0 to 4 are 10*i and -i, scale 0.5 and offset 1.
class CliTest : public ::testing::Test {
  protected:
    CliTest() {
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(250.0F, "Device", {{"A \"1\"", "mV", 0.5F, 1.0F}, {"B\\", "", 0.1F, 0.0F}}, 5));
        bytes.Codes({0, 0, 10, -1, 20, -2, 30, -3, 40, -4});
        m_recording = Write(u"запись.bin", bytes.Get());
    }

    [[nodiscard]] fs::path Write(const std::u16string& name, const std::string& bytes) const {
        std::ofstream(m_folder.File(name), std::ios::binary | std::ios::trunc) << bytes;
        return m_folder.File(name);
    }
    [[nodiscard]] static Answer Run(const std::vector<std::u16string>& arguments) {
        std::ostringstream out;
        std::ostringstream error;
        CliIo io{out, error};
        const int code = RunCli(arguments, io);
        return {code, out.str(), error.str()};
    }
    /// A command line that is refused with that code and an error that holds `part`, and gives nothing else.
    static void ExpectRefused(int code, const std::vector<std::u16string>& arguments, const std::string& part) {
        const Answer answer = Run(arguments);
        EXPECT_EQ(answer.code, code) << part;
        EXPECT_EQ(answer.out, "");
        EXPECT_NE(answer.error.find(part), std::string::npos) << answer.error;
    }
    [[nodiscard]] std::u16string Recording() const { return m_recording.u16string(); }
    /// The command "codes" on the recording.
    [[nodiscard]] std::vector<std::u16string> Codes(const std::vector<std::u16string>& words) const {
        std::vector<std::u16string> all{u"codes", Recording()};
        all.insert(all.end(), words.begin(), words.end());
        return all;
    }

    quillon::testing::TemporaryFolder m_folder;
    fs::path m_recording;
};

TEST_F(CliTest, InfoIsOneJsonDocument) {
    const Answer answer = Run({u"info", Recording()});
    EXPECT_EQ(answer.code, kDone) << answer.error;
    const std::string expected =
        "{\"number\":1,\"title\":\"\",\"start\":\"2011-04-04T12:57:02.000\",\"rate\":250,\"samples\":5,\"channels\":["
        "{\"number\":1,\"title\":\"A \\\"1\\\"\",\"unit\":\"mV\",\"scale\":0.5,\"offset\":1},"
        "{\"number\":2,\"title\":\"B\\\\\",\"unit\":\"\",\"scale\":0.1,\"offset\":0}],\"marks\":[]}\n]}\n";
    EXPECT_TRUE(answer.out.ends_with(expected)) << answer.out;
    EXPECT_TRUE(answer.out.starts_with("{\"file\":" + JsonText(Recording()) + ",\"format\":\"")) << answer.out;
    EXPECT_EQ(JsonText(u"\u0001\t\n\"\\ж\U0001D11E"), "\"\\u0001\\t\\n\\\"\\\\\u0436\U0001D11E\"");
    EXPECT_EQ(JsonNumber(0.1F), "0.1");
    EXPECT_EQ(JsonNumber(1.0 / 0.0), "null");
}

TEST_F(CliTest, SamplesAreRawLittleEndian) {
    EXPECT_EQ(Run(Codes({u"1", u"2"})).out, samples::Bytes().Codes({0, -1, -2, -3, -4}).Get());
    EXPECT_EQ(Run(Codes({u"1", u"1", u"3"})).out, samples::Bytes().Codes({30, 40}).Get());
    EXPECT_EQ(Run({u"values", Recording(), u"1", u"1", u"1", u"2"}).out,
              samples::Bytes().Float(6.0F).Float(11.0F).Get());
    const Answer nothing = Run(Codes({u"1", u"1", u"4", u"0"}));
    EXPECT_EQ(nothing.code, kDone);
    EXPECT_EQ(nothing.out, "");
    // Long enough for several pieces.
    std::vector<std::int16_t> codes(150001);
    for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<std::int16_t>(i * 7919 % 65536 - 32768);
    samples::Bytes bytes;
    bytes.Text(samples::BinHeader(250.0F, "", {{"A", "", 1.0F, 0.0F}}, 150001)).Codes(codes);
    EXPECT_EQ(Run({u"codes", Write(u"long.bin", bytes.Get()).u16string(), u"1", u"1"}).out,
              samples::Bytes().Codes(codes).Get());
}

TEST_F(CliTest, RangesOutsideTheRecordingAreRefusedWithTheRange) {
    const std::pair<std::vector<std::u16string>, std::string> cases[] = {
        {{u"0", u"1"}, "blocks 1 to 1"},
        {{u"2", u"1"}, "blocks 1 to 1"},
        {{u"65537", u"1"}, "blocks 1 to 1"},
        {{u"1", u"3"}, "channels 1 to 2"},
        {{u"1", u"-1"}, "channels 1 to 2"},
        {{u"1", u"1", u"5"}, "samples 0 to 4"},
        {{u"1", u"1", u"-1"}, "samples 0 to 4"},
        {{u"1", u"1", u"4294967296"}, "samples 0 to 4"},
        {{u"1", u"1", u"2", u"4"}, "counts 0 to 3"}};
    for (auto [words, range] : cases) {
        ExpectRefused(kRefused, Codes(words), range);
        words.insert(words.end(), {u"--language", u"ru"});
        EXPECT_EQ(Run(Codes(words)).error.find(range), std::string::npos) << "told in Russian";
    }
    ExpectRefused(kRefused, {u"info", m_folder.File(u"none.edf").u16string()}, "none.edf: ");
}

TEST_F(CliTest, WrongCommandLinesNameTheWrongWord) {
    const std::pair<std::vector<std::u16string>, std::string> cases[] = {
        {{}, "no command"},
        {{u"inform", u"x"}, "'inform'"},
        {{u"info"}, "'info'"},
        {{u"info", u"a", u"b"}, "'b'"},
        {{u"info", u"a", u"--colour"}, "'--colour'"},
        {{u"info", u"a", u"--out"}, "'--out'"},
        {{u"info", u"a", u"--out="}, "'--out'"},
        {{u"info", u"a", u"--force=1"}, "'--force'"},
        {{u"info", u"a", u"--force", u"--force"}, "'--force'"},
        {{u"info", u"a", u"--language", u"de"}, "'de'"},
        {Codes({u"1x", u"1"}), "'1x'"},
        {Codes({u"1", u""}), "CHANNEL"},
        {{u"export", u"a.bin", u""}, "OUT"},
        {Codes({u"1", u"1", u"99999999999999999999"}), "FIRST"}};
    for (const auto& [words, named] : cases) ExpectRefused(kUsage, words, named);
    // After "--" a word is no option, even if it looks like one.
    EXPECT_EQ(Run({u"info", u"--", u"--out"}).code, kRefused);
}

TEST_F(CliTest, OutWritesAFileAndReplacesNoneUnasked) {
    const std::string expected = samples::Bytes().Codes({0, 10, 20, 30, 40}).Get();
    const fs::path target = m_folder.File(u"коды.raw");
    const Answer first = Run(Codes({u"1", u"1", u"--out", target.u16string()}));
    EXPECT_EQ(first.code, kDone) << first.error;
    EXPECT_EQ(first.out, "");
    EXPECT_EQ(FileBytes(target), expected);

    ASSERT_EQ(Write(u"коды.raw", "kept"), target);
    ExpectRefused(kRefused, Codes({u"1", u"1", u"--out", target.u16string()}), "--force");
    // A command that is refused for another reason leaves the file alone even with --force.
    ExpectRefused(kRefused, Codes({u"9", u"1", u"--force", u"--out", target.u16string()}), "blocks");
    EXPECT_EQ(FileBytes(target), "kept");
    EXPECT_EQ(Run(Codes({u"1", u"1", u"--force", u"--out=" + target.u16string()})).code, kDone);
    EXPECT_EQ(FileBytes(target), expected);
    ExpectRefused(kRefused, Codes({u"1", u"1", u"--out", (m_folder.File(u"no") / "x").u16string()}), "x");
}

TEST_F(CliTest, OutTakesNoLinkUnaskedAndWritesDevicesWhereTheyAre) {
    const fs::path link = m_folder.File(u"link.raw");
    std::error_code error;
    fs::create_symlink(m_folder.File(u"nowhere"), link, error);
    if (!error) {
        ExpectRefused(kRefused, Codes({u"1", u"1", u"--out", link.u16string()}), "--force");
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_EQ(Run(Codes({u"1", u"1", u"--force", u"--out", link.u16string()})).code, kDone);
        EXPECT_FALSE(fs::exists(m_folder.File(u"nowhere")));
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(link)));
    }
    if (!fs::is_character_file("/dev/full", error)) return;
    EXPECT_EQ(Run({u"text", Recording(), u"/dev/null"}).code, kDone);
    ExpectRefused(kRefused, {u"text", Recording(), u"/dev/full"}, "writing failed");
    EXPECT_TRUE(fs::is_character_file("/dev/null") && fs::is_character_file("/dev/full"));
}

TEST_F(CliTest, WhatComesIntoThePlaceMeanwhileStays) {
    const fs::path place = m_folder.File(u"codes.raw");
    const ParsedArguments parsed{{}, {{u"--out", place.u16string()}}};
    std::ostringstream standard;
    {
        OutputTarget target(standard, parsed, Recording());
        target.Write(std::string_view("new"));
        ASSERT_EQ(Write(u"codes.raw", "kept"), place);
        EXPECT_THROW(target.Finish(), Refusal);
    }
    EXPECT_EQ(FileBytes(place), "kept");
    EXPECT_EQ(std::distance(fs::directory_iterator(place.parent_path()), fs::directory_iterator()), 2);
}

TEST_F(CliTest, ForeignLettersArriveAndOnlyATextFileIsMarkedAsUtf8) {
    samples::Bytes bytes;
    bytes.Text(samples::BinHeader(250.0F, "", {{"ЭЭГ", "V", 1.0F, 0.0F}}, 1)).Codes({0});
    const std::u16string recording = Write(u"eeg.bin", bytes.Get()).u16string();
    const fs::path file = m_folder.File(u"a.txt");
    EXPECT_EQ(Run({u"text", recording, u"-", u"--header=titles"}).out.substr(0, 8), "ЭЭГ\r\n");
    EXPECT_EQ(Run({u"text", recording, file.u16string(), u"--header=titles"}).code, kDone);
    EXPECT_EQ(FileBytes(file).substr(0, 9), "\xEF\xBB\xBFЭЭГ");
    const std::u16string copy = m_folder.File(u"copy.bin").u16string();
    EXPECT_EQ(Run({u"export", recording, copy}).code, kDone);
    const std::string title = Utf8(FromUtf8OrSystemBytes(SystemBytes(u"ЭЭГ", 32)));
    EXPECT_NE(Run({u"info", copy}).out.find("\"title\":\"" + title + '"'), std::string::npos);
}

TEST_F(CliTest, TheRecordingItselfIsNeverWrittenOver) {
    const std::string before = FileBytes(m_recording);
    const fs::path linked = m_folder.File(u"link.raw");
    std::error_code error;
    fs::create_hard_link(m_recording, linked, error);
    const fs::path detour = m_folder.File(u".") / ".." / m_recording.parent_path().filename() / m_recording.filename();
    for (const fs::path& path : {m_recording, detour, error ? m_recording : linked}) {
        ExpectRefused(kRefused, Codes({u"1", u"1", u"--force", u"--out", path.u16string()}), "recording itself");
        EXPECT_EQ(FileBytes(m_recording), before);
    }
}

TEST_F(CliTest, AFailedWriteIsRefused) {
    // A stream whose buffer takes nothing, as a closed pipe or a full disk.
    std::ostream closed(nullptr);
    std::ostringstream error;
    CliIo io{closed, error};
    EXPECT_EQ(RunCli({u"info", Recording()}, io), kRefused);
    EXPECT_NE(error.str().find("writing failed"), std::string::npos) << error.str();
    EXPECT_EQ(RunCli({u"--help"}, io), kRefused);
}

TEST_F(CliTest, SampleRecordingsOpen) {
    const std::pair<std::string, std::string> cases[] = {
        {samples::EegFile(), "\"samples\":61440"},
        {samples::MusicFile(), "\"marks\":[{\"position\":0,\"text\":\"Intro\"}"},
        {samples::EcgFile(), "\"samples\":150000"},
        {samples::VibrationFile(), "\"rate\":10000"}};
    for (const auto& [bytes, expected] : cases) {
        const Answer answer = Run({u"info", Write(u"sample", bytes).u16string()});
        EXPECT_NE(answer.out.find(expected), std::string::npos) << answer.error << answer.out;
    }
}

}  // namespace
}  // namespace quillon::cli
