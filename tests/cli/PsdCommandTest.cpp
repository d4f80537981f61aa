#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "RecordingWriters.h"
#include "cli/CommandLine.h"
#include "norvik/TemporaryFolder.h"

namespace quillon {
namespace {

using testing::RunLine;

/// The cells of the lines of a table.
std::vector<std::vector<std::string>> TableOf(const std::string& text) {
    std::vector<std::vector<std::string>> table;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream cells(line);
        table.emplace_back();
        for (std::string cell; std::getline(cells, cell, '\t');) table.back().push_back(cell);
    }
    return table;
}

TEST(PsdCommandTest, ASineHasItsDensityInEveryWindowAndIsLeftOutOfOtherTimes) {
    const testing::TemporaryFolder folder;
    constexpr double amplitude = 2000.0;  // of 0.5 uV, for the second half of 20 s
    samples::Bytes bytes;
    bytes.Text(samples::BinHeader(256.0F, "", {{"A", "uV", 0.5F, 7.0F}, {"B", "", 1.0F, 0.0F}}, 5120));
    for (int i = 0; i < 5120; ++i) {
        const double sine = i < 2560 ? 0.0 : amplitude * std::sin(2.0 * std::numbers::pi * 32.0 * i / 256.0);
        bytes.Codes({static_cast<std::int16_t>(std::lround(sine)), static_cast<std::int16_t>(i % 2 * 100)});
    }
    const std::filesystem::path recording = folder.Write(u"sine.bin", bytes.Get());
    const auto run = [&](const std::string& options) { return RunLine("psd % " + options, {recording}); };

    // Equivalent noise bandwidths of the windows, in bins; those of the periodic ones, nearly.
    for (const auto& [window, bandwidth] :
         {std::pair("blackman", 1.7268), {"triangular", 1.3333}, {"hann", 1.5}, {"hamming", 1.3628}}) {
        const auto table = TableOf(run(std::string("--from=10 --length=1024 --channels=2,1 --window=") + window).out);
        ASSERT_EQ(table.size(), 514U);
        EXPECT_EQ(table[0], (std::vector<std::string>{"Hz", "B, 1/sqrt(Hz)", "A, uV/sqrt(Hz)"}));
        EXPECT_EQ(table[129][0], "32");
        const double expected = 0.5 * amplitude / std::sqrt(2.0) / std::sqrt(bandwidth * 0.25);
        EXPECT_NEAR(std::stod(table[129][2]) / expected, 1.0, 2e-3) << window;
        const auto levels = TableOf(run(std::string("--from=10 --length=1024 --db --window=") + window).out);
        EXPECT_EQ(levels[0][1], "A, dB re 1 uV/sqrt(Hz)");
        EXPECT_NEAR(std::stod(levels[129][1]), 20.0 * std::log10(expected), 0.02);
    }
    EXPECT_EQ(TableOf(run("--to=10 --channels=1").out)[5][1], "0");
    EXPECT_EQ(TableOf(run("--to=10").out).size(), 130U) << "shorter segments in a shorter range";
    EXPECT_LT(std::stod(TableOf(run("--from=10 --length=1024 --low-pass=3 --order=4").out)[129][1]), 1.0);

    for (const char* wrong :
         {"--length=1000", "--length=128", "--length=131072", "--window=kaiser", "--from=x", "--channels=a"})
        EXPECT_EQ(run(wrong).code, 2) << wrong;
    for (const char* refused :
         {"--from=19.5", "--to=20.1", "--from=-1", "--from=5 --to=4", "--length=8192", "--channels=3", "--block=2"})
        EXPECT_EQ(run(refused).code, 1) << refused;
}

}  // namespace
}  // namespace quillon
