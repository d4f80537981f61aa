#include "view/DataRange.h"

#include <gtest/gtest.h>

#include <random>

#include "data/ChannelSelection.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// Two shown channels of scale 0.5 and -1.
class RangeTest : public ::testing::Test {
  protected:
    RangeTest() { fake->samples = {{1, -7, 3, 4}, {10, 20, 30, 40}}; }
    static void Expect(const std::optional<ValueRange>& range, float minimum, float maximum) {
        ASSERT_TRUE(range);
        EXPECT_EQ(std::pair(range->minimum, range->maximum), std::pair(minimum, maximum));
    }
    std::shared_ptr<FakeBlock> fake = std::make_shared<FakeBlock>();
    ViewBlock block{.block = fake,
                    .sampleCount = 4,
                    .channelCount = 2,
                    .channelNumbers = {0, 1},
                    .invScale = {2.0F, -1.0F},
                    .offsets = {1.0F, 0.0F},
                    .marks = {}};
    ChannelSlots slots;
};

TEST_F(RangeTest, RecordsTakeTheShownChannelsInTheirUnitsAndKeepThem) {
    RangeRecords records;
    for (const bool onePass : {true, false}) {
        fake->offersExtremes = onePass;
        records.Reset();
        slots[1].shown = true;
        Expect(records.Of(block, ShownChannels(block, slots)), -40.0F, 3.0F);
        slots[1].shown = false;
        Expect(records.Of(block, ShownChannels(block, slots)), -2.5F, 3.0F);
    }
    Expect(records.Of(block, 2), -40.0F, -10.0F);
    for (const std::int16_t none : {std::int16_t{0}, std::int16_t{3}}) EXPECT_FALSE(records.Of(block, none));
    fake->failing = {"ReadCodes", "ColumnExtremes"};
    Expect(records.Of(block, ShownChannels(block, slots)), -2.5F, 3.0F);  // read once per channel, and kept
    records.Reset();
    EXPECT_FALSE(records.Of(block, ShownChannels(block, slots)).has_value());
    EXPECT_EQ(records.Failure(), "ColumnExtremes");
    fake->failing.clear();
    Expect(records.Of(block, ShownChannels(block, slots)), -2.5F, 3.0F);
    EXPECT_EQ(records.Failure(), "");
    // A scale so large that values overflow: no range, and Find Data leaves the scale alone.
    block.invScale[0] = 1e-38F;
    records.Reset();
    EXPECT_FALSE(records.Of(block, ShownChannels(block, slots)));
}

TEST_F(RangeTest, WhatCannotBeReadIsLeftOutUntilItCanBe) {
    block.sampleCount = 300000;
    fake->samples.assign(2, std::vector<std::int16_t>(300000, 0));
    const auto put = [&](int at, std::int16_t code) { fake->samples[0][static_cast<std::size_t>(at)] = code; };
    put(150000, 2000);  // the only one that is lost at first
    put(149999, 200);
    put(150001, -300);
    put(299999, 600);
    fake->holeFrom = 150000;
    fake->holeTo = 150001;
    RangeRecords records;
    for (const bool onePass : {true, false}) {
        fake->offersExtremes = onePass;
        records.Reset();
        Expect(records.Of(block, 1), -149.0F, 301.0F);
        EXPECT_EQ(records.Failure(), "hole");
    }
    // Whatever is lost, nothing that lies far from it is.
    fake->holeFrom = 70000;
    fake->holeTo = 280000;
    Expect(records.Of(block, 1), 1.0F, 301.0F);
    fake->holeTo = 0;
    Expect(records.Of(block, 1), -149.0F, 1001.0F);
    EXPECT_EQ(records.Failure(), "");
}

TEST_F(RangeTest, TheCentralOneLeavesOutArtefactsOfOneHundredthButNoPeaks) {
    std::mt19937 random(4);
    for (const int count : {1, 2, 100, 199, 200, 1000, 1999}) {
        std::vector<std::vector<TracePoint>> points(2);
        std::vector<float> values;
        for (int at = 0; at < count; ++at) {
            // One in 300 is an artefact, one in 7 a peak.
            const std::int32_t height = at % 300 == 299 ? 32 : at % 7 == 0 ? 2 : 1;
            const auto code = (static_cast<std::int32_t>(random() % 2000) - 1000) * height + 200;
            points[static_cast<std::size_t>(at % 2)].push_back({at, code});
            values.push_back(at % 2 == 0 ? static_cast<float>(code) / 2.0F + 1.0F : static_cast<float>(-code));
        }
        std::sort(values.begin(), values.end());
        const std::size_t outside = values.size() / 200;
        const std::vector<std::int16_t> channels{1, 2};
        const float low = values[outside];
        const float high = values[values.size() - 1 - outside];
        const bool whole = values.back() - values.front() <= 2 * (high - low);
        EXPECT_EQ(whole, count < 300);
        Expect(CentralRange(block, channels, points, false), whole ? values.front() : low,
               whole ? values.back() : high);
    }
    const std::vector<std::int16_t> one{1};
    std::vector<std::vector<TracePoint>> points{std::vector<TracePoint>(1000, {0, 10})};
    points[0][7].y = 2000;
    Expect(CentralRange(block, one, points, true), 0.01F, 2.0F);
    points[0].clear();
    EXPECT_FALSE(CentralRange(block, one, points, false));
}

}  // namespace
}  // namespace quillon
