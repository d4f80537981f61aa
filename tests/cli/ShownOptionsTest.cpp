#include <gtest/gtest.h>

#include <cstring>
#include <numbers>

#include "RecordingWriters.h"
#include "cli/Cli.h"
#include "cli/CommandLine.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

/// Four channels of 1000 samples at 100 Hz: a constant with a wave of 10 Hz, a half and a quarter of its codes, and a
/// channel of another unit.
class ShownOptionsTest : public ::testing::Test {
  protected:
    ShownOptionsTest() {
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(100.0F, "Device",
                                      {{"EEG Fp1-REF", "uV", 0.5F, 0.0F},
                                       {"EEG F7-REF", "uV", 0.5F, 0.0F},
                                       {"T3", "mV", 0.0005F, 0.0F},
                                       {"SpO2", "%", 1.0F, 0.0F}},
                                      kSamples));
        std::vector<std::int16_t> codes;
        for (int at = 0; at < kSamples; ++at) {
            const double wave = std::cos(2.0 * std::numbers::pi * 10.0 * at / 100.0);
            const auto code = [&](double factor) {
                return static_cast<std::int16_t>(std::lround(factor * (4000.0 + 8000.0 * wave)));
            };
            for (const double factor : {1.0, 0.5, 0.25, 1.0}) codes.push_back(code(factor));
        }
        bytes.Codes(codes);
        m_recording = m_folder.Write(u"a.bin", bytes.Get());
    }
    [[nodiscard]] testing::Answer Run(const std::string& line) const {
        return testing::RunLine("values % 1 " + line, {m_recording});
    }
    [[nodiscard]] std::vector<float> Values(const std::string& line) const {
        const testing::Answer answer = Run(line);
        EXPECT_EQ(answer.code, kDone) << line << answer.error;
        std::vector<float> values(answer.out.size() / sizeof(float));
        std::memcpy(values.data(), answer.out.data(), values.size() * sizeof(float));
        return values;
    }
    void ExpectRefused(int code, const std::string& line, const std::string& part) const {
        const testing::Answer answer = Run(line);
        EXPECT_EQ(answer.code, code) << line;
        EXPECT_EQ(answer.out, "") << line;
        EXPECT_NE(answer.error.find(part), std::string::npos) << answer.error;
    }

    static constexpr int kSamples = 1000;
    testing::TemporaryFolder m_folder;
    std::filesystem::path m_recording;
};

TEST_F(ShownOptionsTest, FiltersAreTheWindowsInEveryGroupOfUnits) {
    const std::vector<float> stored = Values("1");
    EXPECT_EQ(Values("1 --high-pass 0 --order=4 --both-ways"), stored) << "nothing to filter";
    // At the corner a filter run both ways halves a wave, and takes a constant out or leaves it.
    const auto peak = [&](const std::vector<float>& values) {
        return *std::max_element(values.begin() + 400, values.begin() + 600);
    };
    EXPECT_NEAR(peak(Values("1 --low-pass=10 --both-ways")), 2000.0F + 2000.0F, 60.0F);
    EXPECT_NEAR(peak(Values("1 --high-pass=10 --order=4 --both-ways")), 2000.0F, 60.0F);
    EXPECT_NEAR(peak(Values("1 --notch=10 --both-ways")), 2000.0F, 60.0F);
    EXPECT_NEAR(peak(Values("4 --low-pass=10 --both-ways")), 8000.0F, 120.0F) << "another unit";
    EXPECT_NE(Values("1 --low-pass=10"), Values("1 --low-pass=10 --order=1"));
    const std::vector<float> whole = Values("1 --high-pass=0.3 --low-pass=35");
    EXPECT_EQ(Values("1 700 200 --high-pass=0.3 --low-pass=35"),
              std::vector<float>(whole.begin() + 700, whole.begin() + 900));
}

TEST_F(ShownOptionsTest, ReferencesAndMontagesAreDifferences) {
    const std::vector<float> one = Values("1");
    const auto expectFactor = [&](const std::string& line, double factor, double tolerance) {
        const std::vector<float> values = Values(line);
        ASSERT_EQ(values.size(), one.size());
        for (std::size_t at = 0; at < one.size(); ++at)
            ASSERT_NEAR(values[at], factor * static_cast<double>(one[at]), tolerance) << line << " at " << at;
    };
    expectFactor("1 --reference F7", 0.5, 0.6);
    // In mV 0.0005 a code is as much as 0.5 in uV.
    expectFactor("3 --reference fp1", -0.00075, 0.0006);
    expectFactor("1 --reference=average", 1.0 - 1.75 / 3.0, 0.6);
    EXPECT_EQ(Values("4 --reference=Fp1"), Values("4")) << "another unit";
    expectFactor("2 --montage=Fp1-F7,F7-T7", 0.25, 0.6);
    expectFactor("1 --montage=Fp1-F7,F7-T3", 0.5, 0.6);
}

TEST_F(ShownOptionsTest, WhatCannotBeIsRefusedWithItsReason) {
    ExpectRefused(kUsage, "1 --low-pass=70", "70 Hz is not below half the rate of 100 Hz");
    ExpectRefused(kUsage, "1 --notch=50 --language=ru", "50 Гц");
    ExpectRefused(kUsage, "1 --high-pass=20 --low-pass=10", "20 Hz is not below the low pass of 10 Hz");
    ExpectRefused(kUsage, "1 --high-pass=-1", "--high-pass");
    ExpectRefused(kUsage, "1 --notch=nan", "--notch");
    ExpectRefused(kUsage, "1 --order=3 --low-pass=10", "--order");
    ExpectRefused(kUsage, "1 --montage=Fp1-F7,F7", "'F7'");
    ExpectRefused(kUsage, "1 --montage=,", "--montage");
    ExpectRefused(kRefused, "1 --reference=Cz", "Cz");
    ExpectRefused(kRefused, "2 --montage=Fp1-Cz,Fp1-F7", "Cz");
    ExpectRefused(kRefused, "3 --montage=Fp1-F7,F7-T3", "channels 1 to 2");
    EXPECT_EQ(testing::RunLine("codes % 1 1 --low-pass=10", {m_recording}).code, kUsage) << "codes are the stored ones";
}

}  // namespace
}  // namespace quillon::cli
