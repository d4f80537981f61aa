#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "RecordingWriters.h"
#include "base/LittleEndian.h"
#include "cli/CommandLine.h"
#include "cli/SpectrumCommand.h"
#include "norvik/TemporaryFolder.h"
#include "support/FakeRecording.h"

namespace quillon::cli {

TEST(SpectrumCommandTest, WritesTheSineIntoItsRowAndReplacesNothingUnasked) {
    const quillon::testing::TemporaryFolder folder;
    const std::filesystem::path picture = folder.File(u"синус.bmp");
    samples::Bytes sine;  // 24 periods in 128 samples
    sine.Text(samples::BinHeader(256.0F, "", {{"A", "mV", 0.5F, 0.0F}}, 1000));
    for (int i = 0; i < 1000; ++i)
        sine.Codes({static_cast<std::int16_t>(std::lround(8000.0 * std::sin(std::numbers::pi * 0.375 * i)))});
    const std::filesystem::path recording = folder.Write(u"sine.bin", sine.Get());
    const auto run = [&](const std::string& options) {
        return quillon::testing::RunLine("spectrum % % " + options, {recording, picture}).code;
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
        const std::string content = quillon::testing::Contents(picture);
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

TEST(SpectrumCommandTest, WhatCannotBeReadIsBlankAndTold) {
    const auto block = std::make_shared<quillon::testing::FakeBlock>();
    block->samples.resize(1);
    for (int i = 0; i < 3200; ++i) block->samples[0].push_back(static_cast<std::int16_t>(i % 7 * 100 - 300));
    SpectrumRequest request{{.order = 5}, {}, 32, 0, {}};
    std::u16string told;
    const auto picture = [&] {
        std::ostringstream out;
        OutputTarget target(out, {}, u"", Language::English);
        told = WriteSpectrum({block, 1}, request, target, Language::English);
        return out.str().substr(1078);
    };
    const std::string whole = picture();
    EXPECT_EQ(told, u"");
    block->samples[0][1610] = 30000;  // would widen the range
    block->holeFrom = 1610;
    block->holeTo = 1612;
    std::string holey = picture();
    EXPECT_EQ(told, u"1 of 100 columns are blank: hole");
    for (std::size_t at = 50; at < holey.size(); at += 100) EXPECT_EQ(std::exchange(holey[at], whole[at]), 0) << at;
    EXPECT_TRUE(holey == whole);
    request.columns = 50;
    EXPECT_EQ(picture()[5], whole[5]);
    EXPECT_EQ(told, u"the range leaves out what cannot be read: hole");
    request.limits = {-149.0F, 151.0F};
    EXPECT_EQ(picture()[5], whole[5]);
    EXPECT_EQ(told, u"");
    block->holeFrom = 0;
    EXPECT_THROW(picture(), Refusal) << "no column can be read";
    request.limits.reset();
    block->holeTo = 3200;
    EXPECT_THROW(picture(), Refusal) << "no sample can be read";
}

}  // namespace quillon::cli
