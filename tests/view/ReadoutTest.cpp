#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/FakeRecording.h"
#include "view/Readout.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// Two shown channels (acquisition numbers 0 and 4) of scale 0.5 and offset 1 and 2, 100 samples a second, noon.
class ReadoutTest : public ::testing::Test {
  protected:
    ReadoutTest() {
        fake->samples = {{2, 4, -6, 8, 10, 12}, {0, 1, 0, -3, 0, 0}};
        slots[0].unit = u"mV";
    }
    [[nodiscard]] ReadoutSource Source() const { return {block, slots, format, rawCodes}; }

    std::shared_ptr<FakeBlock> fake = std::make_shared<FakeBlock>();
    ViewBlock block{.block = fake,
                    .sampleCount = 6,
                    .sampleRate = 100.0,
                    .startTime = 45000.5,
                    .channelCount = 2,
                    .channelNumbers = {0, 4},
                    .invScale = {2.0F, 2.0F},
                    .offsets = {1.0F, 2.0F},
                    .marks = {}};
    ChannelSlots slots;
    FormatOptions format{false};
    bool rawCodes = false;
};

TEST_F(ReadoutTest, HoverTellsThePositionAndEveryShownValue) {
    EXPECT_EQ(HoverReadout(Source(), 3), u"X:\t0.02 s\r\nCh1:\t-2 mV\r\nCh5:\t 2 V\r\n");
    slots[4].shown = false;
    rawCodes = true;
    format.sampleIndexes = true;
    EXPECT_EQ(HoverReadout(Source(), 3), u"X:\t3\r\nCh1:\t-6\r\n");
    format.sampleIndexes = false;
    format.timeOfDay = true;
    fake->failing = {"ReadCodes"};
    EXPECT_EQ(HoverReadout(Source(), 2), u"X:\t12:00:00.01\r\nCh1:\t\r\n");
}

TEST_F(ReadoutTest, RangeTellsLengthExtremesAndChange) {
    const Selection leftwards{true, 1, 4, 2};
    const std::u16string expected =
        u"dX:\t0.02 s\r\nCh1:\t-2 mV\u2021 5 mV\t-2 mV\r\nCh5:\t 0.5 V\u2021 2.5 V\t 2 V\r\n1/dX:\t50 Hz\r\n";
    format.timeOfDay = true;
    EXPECT_EQ(RangeReadout(Source(), leftwards), expected) << "a length is no time of day";
    format.sampleIndexes = true;
    rawCodes = true;
    slots[4].shown = false;
    EXPECT_EQ(RangeReadout(Source(), {true, 1, 2, 4}), u"dX:\t2\r\nCh1:\t-6\u2021 8\t 4\r\n1/dX:\t50 Hz\r\n");
    block.sampleRate = 0.0;
    format = {};
    EXPECT_EQ(RangeReadout(Source(), {true, 1, 2, 4}), u"dX:\t2\r\nCh1:\t-6\u2021 8\t 4\r\n");
    EXPECT_EQ(HoverReadout(Source(), 3), u"X:\t3\r\nCh1:\t-6\r\n");
}

TEST_F(ReadoutTest, StatisticsEqualTheirDefinitions) {
    std::mt19937 random(3);
    for (auto& channel : fake->samples) {
        channel.resize(70000);
        for (std::int16_t& code : channel) code = static_cast<std::int16_t>(random() % 3000);
    }
    block.sampleCount = 70000;
    const auto statistics = StatisticsOf(Source(), 1001, 69000);
    ASSERT_EQ(statistics.size(), 2U);
    double sum = 0.0;
    double squares = 0.0;
    for (int at = 1000; at < 69000; ++at) {
        const double value = fake->samples[1][static_cast<std::size_t>(at)] * 0.5 + 2.0;
        sum += value;
        squares += value * value;
    }
    const double mean = sum / 68000;
    EXPECT_NEAR(statistics[1].mean, mean, 1e-9);
    EXPECT_NEAR(statistics[1].rms, std::sqrt(squares / 68000), 1e-6);
    EXPECT_NEAR(statistics[1].deviation, std::sqrt(squares / 68000 - mean * mean), 1e-6);
    EXPECT_EQ(std::pair(statistics[1].minimum, statistics[1].maximum), std::pair(2.0, 1501.5));
    fake->failing = {"ReadCodes"};
    EXPECT_TRUE(StatisticsOf(Source(), 1, 10).empty());
    // The same where whole frames are read, and of a constant without an error of rounding below zero.
    fake->failing.clear();
    fake->framed = true;
    const auto again = StatisticsOf(Source(), 1001, 69000);
    for (std::size_t at = 0; at < 2; ++at)
        EXPECT_EQ(std::tuple(again[at].mean, again[at].rms, again[at].minimum, again[at].maximum),
                  std::tuple(statistics[at].mean, statistics[at].rms, statistics[at].minimum, statistics[at].maximum));
    fake->samples.assign(2, std::vector<std::int16_t>(70000, 31111));
    EXPECT_EQ(StatisticsOf(Source(), 1, 69999)[0].deviation, 0.0);
}

TEST_F(ReadoutTest, TheNearestTraceIsThatOfTheLeastDistanceInRows) {
    Lanes lanes(1);
    lanes[0].height = 400;
    lanes[0].channels = {1, 2};
    AmplitudeScale& amplitude = lanes[0].scale;
    amplitude.SetGraph(400, 200);
    amplitude.SelectScale(9);  // one unit per division
    // At sample 3 the values are -2 and 2, at rows 280 and 120; the codes -6 and 0.
    for (const int row : {0, 119, 199}) EXPECT_EQ(ChannelNear(Source(), lanes, 3, row), 2) << row;
    for (const int row : {201, 280, 399}) EXPECT_EQ(ChannelNear(Source(), lanes, 3, row), 1) << row;
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 200), 1) << "of two as near the upper one in the list";
    rawCodes = true;
    amplitude.SelectScale(18);  // a code per division: rows 440 and 200
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 319), 2);
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 321), 1);
    lanes[0].channels.clear();
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 321), 0);
}

}  // namespace
}  // namespace quillon
