#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <sstream>

#include "RecordingWriters.h"
#include "base/Text.h"
#include "cli/Cli.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

namespace fs = std::filesystem;

std::string Bytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A recording of one channel at 50 Hz whose samples are their own indexes.
class SplitCommand : public ::testing::Test {
  protected:
    SplitCommand() {
        std::vector<std::int16_t> codes(1000);
        std::iota(codes.begin(), codes.end(), std::int16_t{0});
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(50.0F, "", {{"A", "mV", 1.0F, 0.0F}}, 1000)).Codes(codes);
        std::ofstream(m_recording, std::ios::binary) << bytes.Get();
    }
    int Run(std::vector<std::u16string> options, const fs::path& folder) {
        options.insert(options.begin(), {u"split", m_recording.u16string(), u"--folder", folder.u16string()});
        return Run(options);
    }
    int Run(const std::vector<std::u16string>& arguments) {
        std::ostringstream out;
        std::ostringstream error;
        CliIo io{out, error};
        const int code = RunCli(arguments, io);
        m_out = out.str();
        m_error = error.str();
        return code;
    }
    /// First code of a piece and number of codes.
    std::pair<int, std::size_t> Codes(const fs::path& piece) {
        EXPECT_EQ(Run({u"codes", piece.u16string(), u"1", u"1"}), kDone) << m_error;
        if (m_out.size() < 2) return {-1, 0};
        return {static_cast<unsigned char>(m_out[0]) + 256 * static_cast<unsigned char>(m_out[1]), m_out.size() / 2};
    }

    testing::TemporaryFolder m_folder;
    fs::path m_recording = m_folder.File(u"Ночь.d.bin");
    fs::path m_pieces = m_folder.File(u"Части 1") / u"2";
    std::string m_out;
    std::string m_error;
};

TEST_F(SplitCommand, WritesAndListsThePieces) {
    ASSERT_EQ(Run({u"--size=300", u"--step=200", u"--names=samples", u"--base=Сон"}, m_pieces), kDone) << m_error;
    EXPECT_EQ(m_out,
              "Сон_0000-0299.bin\t1\t300\nСон_0200-0499.bin\t201\t300\n"
              "Сон_0400-0699.bin\t401\t300\nСон_0600-0899.bin\t601\t300\n");
    EXPECT_EQ(Codes(m_pieces / u"Сон_0600-0899.bin"), std::pair(600, std::size_t{300}));
    EXPECT_EQ(Codes(m_pieces / u"Сон_0000-0299.bin"), std::pair(0, std::size_t{300}));
    ASSERT_EQ(Run({u"--size=2,5", u"--seconds"}, m_pieces), kDone) << m_error;
    EXPECT_EQ(m_out.substr(0, 13), "1.bin\t1\t125\n2");
    EXPECT_EQ(Codes(m_pieces / u"8.bin"), std::pair(875, std::size_t{125}));
    EXPECT_EQ(std::distance(fs::directory_iterator(m_pieces), fs::directory_iterator()), 12);
    ASSERT_EQ(Run({u"--size=1050", u"--step=100"}, m_folder.File(u"one")), kDone) << m_error;
    EXPECT_EQ(m_out, "1.bin\t1\t1000\n");
}

TEST_F(SplitCommand, ReplacesNothingUnaskedAndTheRecordingNever) {
    fs::create_directories(m_pieces);
    std::ofstream(m_pieces / "07.bin") << "kept";
    EXPECT_EQ(Run({u"--size=100"}, m_pieces), kRefused);
    EXPECT_NE(m_error.find("07.bin: the file exists"), std::string::npos) << m_error;
    EXPECT_EQ(Bytes(m_pieces / "07.bin"), "kept");
    EXPECT_FALSE(fs::exists(m_pieces / "01.bin"));
    EXPECT_EQ(Run({u"--size=100", u"--force"}, m_pieces), kDone) << m_error;
    EXPECT_EQ(Codes(m_pieces / "07.bin"), std::pair(600, std::size_t{100}));

    const std::string recording = Bytes(m_recording);
    fs::remove(m_pieces / "07.bin");
    fs::create_hard_link(m_recording, m_pieces / "07.bin");
    EXPECT_EQ(Run({u"--size=100", u"--force"}, m_pieces), kRefused);
    EXPECT_NE(m_error.find("the recording itself"), std::string::npos) << m_error;
    EXPECT_EQ(Bytes(m_recording), recording);
    EXPECT_EQ(Run({u"--size=100"}, m_recording), kRefused);
    EXPECT_NE(m_error.find("not a folder"), std::string::npos) << m_error;
    EXPECT_EQ(Bytes(m_recording), recording);
}

TEST_F(SplitCommand, WritesIntoNoFolderAndThroughNoLink) {
    fs::create_directories(m_pieces / "07.bin");
    for (const char* kind : {"folder", "link"}) {
        for (const char16_t* option : {u"--step=100", u"--force"}) {
            EXPECT_EQ(Run({u"--size=100", option}, m_pieces), kRefused) << kind;
            EXPECT_NE(m_error.find("07.bin: "), std::string::npos) << m_error;
            EXPECT_FALSE(fs::exists(m_pieces / "01.bin")) << "told before anything is written";
        }
        EXPECT_FALSE(fs::exists(m_folder.File(u"elsewhere.bin")));
        fs::remove(m_pieces / "07.bin");
        std::error_code error;
        fs::create_symlink(m_folder.File(u"elsewhere.bin"), m_pieces / "07.bin", error);
        if (error) break;  // links need a privilege here
    }
}

TEST_F(SplitCommand, TheListOfThePiecesReplacesNone) {
    for (const fs::path& list : {m_pieces / "07.bin", m_pieces / ".." / "2" / "07.BIN"}) {
        EXPECT_EQ(Run({u"--size=100", u"--force", u"--out", list.u16string()}, m_pieces / ""), kRefused);
        EXPECT_NE(m_error.find("the place of a piece"), std::string::npos) << m_error;
        EXPECT_FALSE(fs::exists(m_pieces));
    }
    const fs::path beside = m_folder.File(u"07.bin");
    EXPECT_EQ(Run({u"--size=100", u"--out", beside.u16string()}, m_pieces), kDone) << m_error;
    EXPECT_EQ(Bytes(beside).substr(0, 9), "01.bin\t1\t");
}

TEST_F(SplitCommand, RefusesWhatItCannotDo) {
    const std::tuple<std::vector<std::u16string>, int, std::string> cases[] = {
        {{}, kUsage, "--size"},
        {{u"--size=0"}, kUsage, "'0'"},
        {{u"--size=abc", u"--seconds"}, kUsage, "'abc'"},
        {{u"--size=1.5"}, kUsage, "whole number for --size"},
        {{u"--size=5", u"--step=-1"}, kUsage, "--step"},
        {{u"--size=5", u"--step=99999999999"}, kUsage, "too large"},
        {{u"--size=5", u"--names=both"}, kUsage, "'both'"},
        {{u"--size=5", u"--base=../x"}, kUsage, "'../x'"},
        {{u"--size=5", u"--block=2"}, kRefused, "blocks 1 to 1"},
        {{u"--size=1100", u"--step=100"}, kRefused, "it has 1000"},
    };
    for (const auto& [options, code, part] : cases) {
        EXPECT_EQ(Run(options, m_pieces), code) << part;
        EXPECT_NE(m_error.find(part), std::string::npos) << m_error;
        EXPECT_FALSE(fs::exists(m_pieces));
    }
}

}  // namespace
}  // namespace quillon::cli
