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
class CliTest : public testing::Test {
  protected:
    void SetUp() override {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = fs::temp_directory_path() / (std::string("quillon_cli_") + test->name());
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(250.0F, "Device", {{"A \"1\"", "mV", 0.5F, 1.0F}, {"B\\", "", 0.1F, 0.0F}}, 5));
        bytes.Codes({0, 0, 10, -1, 20, -2, 30, -3, 40, -4});
        m_recording = m_folder / u"запись.bin";
        std::ofstream(m_recording, std::ios::binary) << bytes.Get();
    }
    void TearDown() override { fs::remove_all(m_folder); }

    [[nodiscard]] static Answer Run(const std::vector<std::u16string>& arguments) {
        std::ostringstream out;
        std::ostringstream error;
        CliIo io{out, error};
        const int code = RunCli(arguments, io);
        return {code, out.str(), error.str()};
    }
    [[nodiscard]] std::u16string Recording() const { return m_recording.u16string(); }

    fs::path m_folder;
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
    EXPECT_EQ(Run({u"codes", Recording(), u"1", u"2"}).out, samples::Bytes().Codes({0, -1, -2, -3, -4}).Get());
    EXPECT_EQ(Run({u"codes", Recording(), u"1", u"1", u"3"}).out, samples::Bytes().Codes({30, 40}).Get());
    EXPECT_EQ(Run({u"values", Recording(), u"1", u"1", u"1", u"2"}).out,
              samples::Bytes().Float(6.0F).Float(11.0F).Get());
    const Answer nothing = Run({u"codes", Recording(), u"1", u"1", u"4", u"0"});
    EXPECT_EQ(nothing.code, kDone);
    EXPECT_EQ(nothing.out, "");
}

TEST_F(CliTest, PiecesJoinWithoutSeams) {
    const fs::path file = m_folder / "long.bin";
    std::vector<std::int16_t> codes(150001);
    for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<std::int16_t>(i * 7919 % 65536 - 32768);
    samples::Bytes bytes;
    bytes.Text(samples::BinHeader(250.0F, "", {{"A", "", 1.0F, 0.0F}}, 150001)).Codes(codes);
    std::ofstream(file, std::ios::binary) << bytes.Get();
    EXPECT_EQ(Run({u"codes", file.u16string(), u"1", u"1"}).out, samples::Bytes().Codes(codes).Get());
}

TEST_F(CliTest, RangesOutsideTheRecordingAreRefusedWithTheRange) {
    struct Case {
        std::vector<std::u16string> words;
        std::string range;
    };
    const Case cases[] = {{{u"0", u"1"}, "blocks 1 to 1"},
                          {{u"2", u"1"}, "blocks 1 to 1"},
                          {{u"65537", u"1"}, "blocks 1 to 1"},
                          {{u"1", u"3"}, "channels 1 to 2"},
                          {{u"1", u"-1"}, "channels 1 to 2"},
                          {{u"1", u"1", u"5"}, "samples 0 to 4"},
                          {{u"1", u"1", u"-1"}, "samples 0 to 4"},
                          {{u"1", u"1", u"2", u"4"}, "counts 0 to 3"},
                          {{u"1", u"1", u"4294967296"}, "samples 0 to 4"}};
    for (const Case& test : cases) {
        std::vector<std::u16string> words{u"codes", Recording()};
        words.insert(words.end(), test.words.begin(), test.words.end());
        const Answer answer = Run(words);
        EXPECT_EQ(answer.code, kRefused);
        EXPECT_EQ(answer.out, "");
        EXPECT_NE(answer.error.find(test.range), std::string::npos) << answer.error;
        words.insert(words.end(), {u"--language", u"ru"});
        EXPECT_EQ(Run(words).error.find(test.range), std::string::npos);
    }
    const Answer missing = Run({u"info", (m_folder / "none.edf").u16string()});
    EXPECT_EQ(missing.code, kRefused);
    EXPECT_TRUE(missing.error.starts_with("quillon-cli: ")) << missing.error;
    EXPECT_NE(missing.error.find("none.edf: "), std::string::npos) << missing.error;
}

TEST_F(CliTest, WrongCommandLinesNameTheWrongWord) {
    struct Case {
        std::vector<std::u16string> words;
        std::string named;
    };
    const Case cases[] = {{{}, "no command"},
                          {{u"inform", u"x"}, "'inform'"},
                          {{u"info"}, "'info'"},
                          {{u"info", u"a", u"b"}, "'b'"},
                          {{u"info", u"a", u"--colour"}, "'--colour'"},
                          {{u"info", u"a", u"--out"}, "'--out'"},
                          {{u"info", u"a", u"--out="}, "'--out'"},
                          {{u"info", u"a", u"--force=1"}, "'--force'"},
                          {{u"info", u"a", u"--force", u"--force"}, "'--force'"},
                          {{u"info", u"a", u"--language", u"de"}, "'de'"},
                          {{u"codes", Recording(), u"1x", u"1"}, "'1x'"},
                          {{u"codes", Recording(), u"1", u""}, "CHANNEL"},
                          {{u"codes", Recording(), u"1", u"1", u"99999999999999999999"}, "FIRST"}};
    for (const Case& test : cases) {
        const Answer answer = Run(test.words);
        EXPECT_EQ(answer.code, kUsage) << test.named;
        EXPECT_EQ(answer.out, "");
        EXPECT_NE(answer.error.find(test.named), std::string::npos) << answer.error;
    }
    // After "--" a word is no option, even if it looks like one.
    EXPECT_EQ(Run({u"info", u"--", u"--out"}).code, kRefused);
}

TEST_F(CliTest, OutWritesAFileAndReplacesNoneUnasked) {
    const std::string expected = samples::Bytes().Codes({0, 10, 20, 30, 40}).Get();
    const fs::path target = m_folder / u"коды.raw";
    const std::vector<std::u16string> words{u"codes", Recording(), u"1", u"1", u"--out", target.u16string()};
    const Answer first = Run(words);
    EXPECT_EQ(first.code, kDone) << first.error;
    EXPECT_EQ(first.out, "");
    EXPECT_EQ(FileBytes(target), expected);

    std::ofstream(target, std::ios::binary | std::ios::trunc) << "kept";
    const Answer second = Run(words);
    EXPECT_EQ(second.code, kRefused);
    EXPECT_NE(second.error.find("--force"), std::string::npos) << second.error;
    EXPECT_EQ(FileBytes(target), "kept");

    // A command that is refused for another reason leaves the file alone even with --force.
    EXPECT_EQ(Run({u"codes", Recording(), u"9", u"1", u"--force", u"--out", target.u16string()}).code, kRefused);
    EXPECT_EQ(FileBytes(target), "kept");
    EXPECT_EQ(Run({u"codes", Recording(), u"1", u"1", u"--force", u"--out=" + target.u16string()}).code, kDone);
    EXPECT_EQ(FileBytes(target), expected);
    EXPECT_EQ(Run({u"codes", Recording(), u"1", u"1", u"--out", (m_folder / "no" / "x").u16string()}).code, kRefused);
}

TEST_F(CliTest, TheRecordingItselfIsNeverWrittenOver) {
    const std::string before = FileBytes(m_recording);
    const fs::path linked = m_folder / "link.raw";
    std::error_code error;
    fs::create_hard_link(m_recording, linked, error);
    const fs::path detour = m_folder / "." / ".." / m_folder.filename() / m_recording.filename();
    for (const fs::path& path : {m_recording, detour, error ? m_recording : linked}) {
        const Answer answer = Run({u"codes", Recording(), u"1", u"1", u"--force", u"--out", path.u16string()});
        EXPECT_EQ(answer.code, kRefused);
        EXPECT_NE(answer.error.find("recording itself"), std::string::npos) << answer.error;
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

TEST_F(CliTest, HelpNamesEverything) {
    const Answer help = Run({u"--help"});
    EXPECT_EQ(help.code, kDone);
    for (const char* word : {"info FILE", "codes FILE", "values FILE", "--out PATH", "--force", "--language en|ru",
                             "--help", "--version", "Exit codes", "Examples"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    const Answer one = Run({u"codes", u"--help"});
    EXPECT_EQ(one.code, kDone);
    EXPECT_NE(one.out.find("codes FILE"), std::string::npos);
    EXPECT_EQ(one.out.find("values FILE"), std::string::npos);
    EXPECT_TRUE(Run({u"--version"}).out.starts_with("quillon-cli "));
}

TEST_F(CliTest, SampleRecordingsOpen) {
    struct Case {
        std::u16string name;
        std::string bytes;
        std::string expected;
    };
    const Case cases[] = {{u"eeg", samples::EegFile(), "\"samples\":61440"},
                          {u"music", samples::MusicFile(), "\"marks\":[{\"position\":0,\"text\":\"Intro\"}"},
                          {u"ecg", samples::EcgFile(), "\"samples\":150000"},
                          {u"vibration", samples::VibrationFile(), "\"rate\":10000"}};
    for (const Case& sample : cases) {
        const fs::path file = m_folder / sample.name;
        std::ofstream(file, std::ios::binary) << sample.bytes;
        const Answer answer = Run({u"info", file.u16string()});
        EXPECT_EQ(answer.code, kDone) << answer.error;
        EXPECT_NE(answer.out.find(sample.expected), std::string::npos) << answer.out;
    }
}

}  // namespace
}  // namespace quillon::cli
