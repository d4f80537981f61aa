#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numbers>

#include "RecordingWriters.h"
#include "cli/Cli.h"
#include "cli/CommandLine.h"
#include "norvik/TemporaryFolder.h"
#include "support/PngReader.h"
#include "view/GraphColors.h"

namespace quillon::cli {
namespace {

using testing::Answer;
using testing::ReadPicture;

constexpr int kSamples = 2000;
constexpr float kScale = 0.5F;
/// Rows of a heading in one line.
constexpr std::int32_t kHeading = 25;

/// Four channels of 20 s at 100 Hz that begin at 12:57:02: waves of 1, 3, 10 and 30 Hz around other levels.
std::vector<std::vector<std::int16_t>> Waves() {
    std::vector<std::vector<std::int16_t>> channels;
    for (const double hertz : {1.0, 3.0, 10.0, 30.0}) {
        auto& codes = channels.emplace_back();
        for (int at = 0; at < kSamples; ++at) {
            const double wave = std::sin(2.0 * std::numbers::pi * hertz * at / 100.0 + hertz);
            codes.push_back(static_cast<std::int16_t>(std::lround(100.0 * hertz + 800.0 * wave)));
        }
    }
    return channels;
}

class PictureTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::filesystem::path Store(const std::u16string& folder,
                                              const std::vector<std::vector<std::int16_t>>& channels) const {
        constexpr std::array titles{"Fp1", "F7", "T3", "O1"};
        std::vector<samples::BinChannel> described;
        for (std::size_t at = 0; at < channels.size(); ++at) described.push_back({titles[at], "uV", kScale, 0.0F});
        samples::Bytes bytes;
        const std::size_t frames = channels.empty() ? 0 : channels.front().size();
        bytes.Text(samples::BinHeader(100.0F, "Device", described, static_cast<std::uint32_t>(frames)));
        for (std::size_t frame = 0; frame < frames; ++frame) {
            for (const auto& codes : channels) bytes.Codes({codes[frame]});
        }
        std::filesystem::create_directories(m_folder.File(folder));
        return m_folder.Write(folder + u"/a.bin", bytes.Get());
    }
    [[nodiscard]] Answer Run(const std::string& line, const std::filesystem::path& from) const {
        return testing::RunLine("picture % - " + line, {from});
    }
    [[nodiscard]] ReadPicture Draw(const std::string& line, const std::filesystem::path& from) const {
        const Answer answer = Run(line, from);
        EXPECT_EQ(answer.code, kDone) << line << ": " << answer.error;
        EXPECT_EQ(answer.error, "") << line;
        return testing::PngReader::Read(answer.out);
    }
    [[nodiscard]] ReadPicture Draw(const std::string& line) const { return Draw(line, m_recording); }
    [[nodiscard]] ReadPicture DrawSmall(const std::string& line) const { return DrawSmall(line, m_recording); }
    [[nodiscard]] ReadPicture DrawSmall(const std::string& line, const std::filesystem::path& from) const {
        return Draw(line + " --width=500 --height=260", from);
    }

    testing::TemporaryFolder m_folder;
    std::filesystem::path m_recording = Store(u"stored", Waves());
};

/// What is below the heading, which tells of the request.
bool SameBelow(const ReadPicture& one, const ReadPicture& other) {
    const auto skip = [](const ReadPicture& picture) { return picture.pixels.begin() + kHeading * picture.width; };
    return one.width == other.width && std::equal(skip(one), one.pixels.end(), skip(other), other.pixels.end());
}

TEST_F(PictureTest, SizesAreThoseAskedFor) {
    const auto expect = [&](const std::string& line, std::int32_t width, std::int32_t height, double dpi) {
        const ReadPicture picture = Draw(line);
        EXPECT_EQ(picture.width, width) << line;
        EXPECT_EQ(picture.height, height) << line;
        EXPECT_NEAR(picture.perMetre * 0.0254, dpi, 0.02) << line;
    };
    expect("", 1400, 700, 96.0);
    expect("--width=300 --height=150", 300, 150, 96.0);
    expect("--scale=3 --width 700 --height=450", 700, 450, 288.0);
    // Where the usual height is too low for the channels, the picture is higher.
    samples::Bytes bytes;
    bytes.Text(samples::BinHeader(100.0F, "D", std::vector<samples::BinChannel>(32, {"x", "V"}), 100));
    bytes.Codes(std::vector<std::int16_t>(3200));
    const ReadPicture picture = Draw("--width=300", m_folder.Write(u"many.bin", bytes.Get()));
    EXPECT_GT(picture.height, 32 * 28);
    EXPECT_LT(picture.height, 32 * 28 + 100);
}

TEST_F(PictureTest, DarkHasNoLightColorsAndAWiderLineMorePixels) {
    const ReadPicture light = DrawSmall("");
    const ReadPicture dark = DrawSmall("--dark");
    const ReadPicture wide = DrawSmall("--dark --line-width=3");
    const auto count = [](const ReadPicture& picture, std::uint32_t color) {
        return std::count(picture.pixels.begin(), picture.pixels.end(), color);
    };
    EXPECT_EQ(count(dark, kLightColors.paper), 0);
    EXPECT_EQ(count(dark, kDarkColors.paper), count(light, kLightColors.paper)) << "else the same picture";
    EXPECT_EQ(count(dark, kDarkColors.Trace(0)), count(light, kLightColors.Trace(0)));
    EXPECT_GT(count(wide, kDarkColors.Trace(0)), 2 * count(dark, kDarkColors.Trace(0)));
}

/// The picture of signals that are filtered, referenced or paired is that of a recording that stores these values.
TEST_F(PictureTest, SignalsAreThoseOfValues) {
    int number = 0;
    for (const std::string line : {"--low-pass=5", "--high-pass=2 --both-ways --order=4", "--notch=10",
                                   "--reference=average", "--reference=F7 --low-pass=20"}) {
        std::vector<std::vector<std::int16_t>> channels;
        for (const char* const channel : {"1", "2", "3", "4"}) {
            const Answer answer = testing::RunLine(std::string("values % 1 ") + channel + " " + line, {m_recording});
            ASSERT_EQ(answer.code, kDone) << answer.error;
            std::vector<float> values(kSamples);
            ASSERT_EQ(answer.out.size(), values.size() * sizeof(float));
            std::memcpy(values.data(), answer.out.data(), answer.out.size());
            auto& codes = channels.emplace_back();
            for (const float value : values) codes.push_back(static_cast<std::int16_t>(std::lround(value / kScale)));
        }
        const std::filesystem::path computed = Store(u"computed" + Utf16(std::to_string(++number)), channels);
        const ReadPicture drawn = DrawSmall(line + " --from=3 --to=9 --time=start");
        EXPECT_TRUE(SameBelow(drawn, DrawSmall("--from=3 --to=9 --time=start", computed))) << line;
        EXPECT_FALSE(SameBelow(drawn, DrawSmall("--from=3 --to=9 --time=start"))) << line;
        // An average is that of all channels, whichever are drawn.
        EXPECT_TRUE(SameBelow(DrawSmall(line + " --channels=3,1"), DrawSmall("--channels=3,1", computed))) << line;
    }
    const ReadPicture pairs = DrawSmall("--montage=Fp1-F7,F7-T3,Fp1-T3");
    EXPECT_TRUE(SameBelow(pairs, DrawSmall("--montage=Fp1-F7,F7-T3,Fp1-T3 --channels=1,2,3")));
    EXPECT_FALSE(SameBelow(pairs, DrawSmall("--montage=Fp1-F7,F7-T3,Fp1-T3 --channels=2,1,3")));
    EXPECT_FALSE(SameBelow(pairs, DrawSmall("--montage=Fp1-F7,F7-T3,T3-Fp1")));
}

TEST_F(PictureTest, PlacesMeanWhatTheySay) {
    const auto draw = [&](const std::string& line) { return DrawSmall(line).pixels; };
    const auto page = draw("--from=0:05 --to=0:10");
    for (const std::string line : {"--from=5 --to=10s", "--from=12:57:07 --to=12:57:12", "--from=#501 --to=#1000"})
        EXPECT_TRUE(page == draw(line)) << line;
    const auto samples = draw("--time=samples --from=501 --to=1000");
    EXPECT_TRUE(samples == draw("--time=samples --from=#501 --to=10s"));
    EXPECT_TRUE(draw("") == draw("--from=#1 --to=20"));
    EXPECT_TRUE(draw("") == draw("--block=1 --channels=1,2,3,4 --time=clock --to=#2000 --order=4"));
    EXPECT_TRUE(draw("--channels=2,1") == draw("--channels=2,2,1,2"));
    for (const std::string line : {"--from=0:06 --to=0:11", "--from=5 --to=10.01", "--from=5 --to=10 --time=start",
                                   "--from=5 --to=10 --reference=Fp1", "--from=5 --to=10 --scale=2"})
        EXPECT_FALSE(page == draw(line)) << line;
    EXPECT_EQ(DrawSmall("--channels=2").width, 500) << "one lane";
}

TEST_F(PictureTest, TheFileAppearsWholeOrNotAtAll) {
    const std::filesystem::path file = m_folder.File(u"картинка.png");
    const auto write = [&](const std::string& more) {
        return testing::RunLine("picture % % " + more, {m_recording, file});
    };
    EXPECT_EQ(write("--language=ru --width=600 --height=260").code, kDone);
    const std::string first = testing::Contents(file);
    EXPECT_EQ(testing::PngReader::Read(first).width, 600);
    EXPECT_EQ(write("--width=500").code, kRefused);
    EXPECT_EQ(write("--width=500 --force --channels=9").code, kRefused);
    EXPECT_EQ(testing::Contents(file), first);
    EXPECT_EQ(write("--width=500 --height=260 --force").code, kDone);
    EXPECT_EQ(testing::PngReader::Read(testing::Contents(file)).width, 500);
    EXPECT_EQ(testing::RunLine("picture % % --force", {m_recording, m_recording}).code, kRefused);
}

TEST_F(PictureTest, WhatCannotBeIsRefusedWithItsReason) {
    const auto expect = [&](int code, const std::string& line, const std::string& part) {
        const Answer answer = Run(line, m_recording);
        EXPECT_EQ(answer.code, code) << line;
        EXPECT_EQ(answer.out, "") << line;
        EXPECT_NE(answer.error.find(part), std::string::npos) << answer.error;
    };
    expect(kUsage, "--width=199", "'199' is out of range for --width");
    expect(kUsage, "--height=8193", "--height");
    expect(kUsage, "--scale=4", "--scale");
    expect(kUsage, "--time=day", "none of clock|start|samples");
    expect(kUsage, "--from=soon", "'soon' is no place in the block for --from");
    expect(kUsage, "--to=13:57:00", "'13:57:00' is no place");
    expect(kUsage, "--from=10 --to=10", "nothing of the block between");
    expect(kUsage, "--channels=1,x", "'x' is not a whole number");
    expect(kUsage, "--low-pass=50", "50 Hz is not below half the rate of 100 Hz");
    expect(kUsage, "--columns=5", "'picture' takes no option '--columns'");
    expect(kRefused, "--from=20", "there is no sample 2001 (samples 1 to 2000)");
    expect(kRefused, "--to=20.02 --language=ru", "нет отсчёта 2003");
    expect(kRefused, "--to=#2001", "2001");
    expect(kRefused, "--block=2", "there is no block 2");
    expect(kRefused, "--channels=5", "there is no channel 5");
    expect(kRefused, "--montage=Fp1-F7 --channels=2", "there is no channel 2");
    expect(kRefused, "--reference=Cz", "Cz");
    expect(kRefused, "--height=100 --scale=3", "no room in a height of 100 (at least ");
    EXPECT_NE(Run("", Store(u"empty", {{}})).error.find("the block has no samples"), std::string::npos);
}

}  // namespace
}  // namespace quillon::cli
