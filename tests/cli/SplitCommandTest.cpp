#include <gtest/gtest.h>

#include <numeric>

#include "RecordingWriters.h"
#include "cli/CommandLine.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

namespace fs = std::filesystem;
using testing::Contents;

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
        const testing::Answer answer = Split(options, out);
        EXPECT_EQ(answer.code, code) << options;
        EXPECT_NE(answer.error.find(part), std::string::npos) << answer.error;
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

TEST_F(SplitCommand, ReplacesNothingUnaskedAndTheRecordingNever) {
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

TEST_F(SplitCommand, RefusesWhatItCannotDo) {
    using Case = std::pair<std::string, std::string>;
    for (const auto& [options, part] :
         {Case("", "--size"), Case("--size=abc --seconds", "'abc'"), Case("--size=1.5", "whole number for --size"),
          Case("--size=5 --step=-1", "--step"), Case("--size=5 --step=99999999999", "too large"),
          Case("--size=5 --names=both", "'both'"), Case("--size=5 --base=../x", "'../x'")})
        ExpectRefused(options, part, kUsage);
    ExpectRefused("--size=5 --block=2", "blocks 1 to 1");
    ExpectRefused("--size=1100 --step=100", "it has 1000");
    EXPECT_FALSE(fs::exists(m_pieces));
}

}  // namespace
}  // namespace quillon::cli
