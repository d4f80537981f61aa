#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "EegRecording.h"
#include "norvik/BlockChecks.h"
#include "norvik/private/EdfReader.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// All values of a channel (from 1), in order of size.
std::vector<float> SortedValues(RecordingBlock& block, std::int16_t channel) {
    Codes codes = AllCodes(block, channel);
    std::sort(codes.begin(), codes.end());
    EXPECT_GT(codes.front(), -32768) << "cut off, channel " << channel;
    EXPECT_LT(codes.back(), 32767) << "cut off, channel " << channel;
    std::vector<float> values;
    for (const std::int16_t code : codes)
        values.push_back(static_cast<float>(code) * block.ChannelScale(channel) + block.ChannelOffset(channel));
    return values;
}

/// How often a channel comes to `level` from below after it was under `rearm`.
int Rises(RecordingBlock& block, std::int16_t channel, float rearm, float level) {
    int rises = 0;
    bool armed = false;
    for (const std::int16_t code : AllCodes(block, channel)) {
        const float value = static_cast<float>(code) * block.ChannelScale(channel) + block.ChannelOffset(channel);
        if (armed && value >= level) ++rises;
        armed = value < rearm || (armed && value < level);
    }
    return rises;
}

TEST(SampleEeg, IsOneBlockOfThreeUnitsWithAllItsMarksAndNothingCutOff) {
    const RecordingContent content = ReadEdf(SourceOf(samples::Bytes().Text(samples::EegFile())));
    ASSERT_EQ(content.blocks.size(), 1U);
    RecordingBlock& block = *content.blocks[0];
    ASSERT_EQ(block.ChannelCount(), 21);
    std::vector<std::string> marks;
    for (const samples::EegEvent& event : samples::EegEvents(240.0))
        marks.push_back(std::to_string(std::lround(event.time * 256.0)) + " " + event.text);
    EXPECT_EQ(Marks(block), marks);
    std::int16_t channel = 1;
    for (const samples::Electrode& electrode : samples::kElectrodes) {
        EXPECT_EQ(Utf8(block.ChannelTitle(channel)), electrode.label);
        EXPECT_EQ(block.ChannelUnit(channel), u"uV");
        const auto values = SortedValues(block, channel++);
        EXPECT_NEAR(values[values.size() / 2], electrode.offset, 5.0) << electrode.label;
        EXPECT_GT(values[values.size() * 99 / 100] - values[values.size() / 100], 40.0F) << electrode.label;
        EXPECT_LT(values.back() - values.front(), 340.0F) << electrode.label;
    }
    EXPECT_EQ(block.ChannelUnit(20), u"mV");
    EXPECT_NEAR(SortedValues(block, 20).back(), 1.2, 0.1);
    EXPECT_NEAR(Rises(block, 20, 0.3F, 0.7F), 4 * 70, 8) << "beats in four minutes";
    EXPECT_EQ(block.ChannelUnit(21), u"%");
    static_cast<void>(SortedValues(block, 21));
    EXPECT_NEAR(Rises(block, 21, 45.0F, 55.0F), 4 * 15, 4) << "breaths in four minutes";
}

}  // namespace
}  // namespace quillon
