#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "support/FakeRecording.h"
#include "view/DataRange.h"
#include "view/PositionInput.h"
#include "view/Readout.h"
#include "view/Statistics.h"

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
    ReadoutSource lanes = Source();
    lanes.titles = true;
    EXPECT_EQ(HoverReadout(lanes, 3), u"X:\t0.02 s\r\nCh1:\t-2 mV\r\nCh5:\t 2\r\n");
    EXPECT_EQ(ReadoutValue(lanes, 2, 0.0) + ReadoutValue(lanes, 2, -12345.0), u"0-12345");
    slots[4].shown = false;
    rawCodes = true;
    format.sampleIndexes = true;
    EXPECT_EQ(HoverReadout(Source(), 3), u"X:\t3\r\nCh1:\t-6\r\n");
    format.sampleIndexes = false;
    format.timeOfDay = true;
    fake->failing = {"ReadCodes"};
    EXPECT_EQ(HoverReadout(Source(), 2), u"X:\t12:00:00.01\r\nCh1:\t\r\n");
    slots[0].title = u"F3\tA2";
    ReadoutSource source = Source();
    source.titles = true;
    EXPECT_EQ(HoverReadout(source, 2), u"X:\t12:00:00.01\r\nF3 A2:\t\r\n");
    slots[0].title.clear();
    EXPECT_EQ(HoverReadout(source, 2), u"X:\t12:00:00.01\r\nCh1:\t\r\n");
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

TEST_F(ReadoutTest, APinnedSampleTellsTimeRateAndChangesFromThere) {
    format.timeOfDay = true;
    EXPECT_EQ(PinnedReadout(Source(), 4, 2),
              u"X:\t12:00:00.01\r\ndX:\t-0.02 s\r\n1/dX:\t50 Hz\r\nCh1:\t 3 mV\t-2 mV\r\nCh5:\t 2.5 V\t 2 V\r\n");
    EXPECT_EQ(MeasuredTime(Source(), 2, 4), u"0.02 s, 50 Hz");
    const std::vector<MeasuredSignal> signals = MeasuredSignals(Source(), 4, 2);
    ASSERT_EQ(signals.size(), 2U);
    EXPECT_EQ(signals[0].change, u"-2 mV");
    EXPECT_EQ(signals[1].change, u"+2 V");
    EXPECT_EQ(signals[1].pinned, 0.5);
    EXPECT_EQ(signals[1].value, 2.5);
    slots[4].shown = false;
    format.sampleIndexes = true;
    rawCodes = true;
    EXPECT_EQ(PinnedReadout(Source(), 2, 4), u"X:\t4\r\ndX:\t2\r\n1/dX:\t50 Hz\r\nCh1:\t 8\t 4\r\n");
    EXPECT_EQ(PinnedReadout(Source(), 2, 2), u"X:\t2\r\ndX:\t0\r\nCh1:\t 4\t 0\r\n");
    fake->failing = {"ReadCodes"};
    EXPECT_EQ(PinnedReadout(Source(), 2, 2), u"X:\t2\r\ndX:\t0\r\nCh1:\t\r\n");
    EXPECT_TRUE(MeasuredSignals(Source(), 4, 2).empty());
}

TEST_F(ReadoutTest, StatisticsEqualTheirDefinitions) {
    std::mt19937 random(3);
    for (auto& channel : fake->samples) {
        channel.resize(70000);
        for (std::int16_t& code : channel) code = static_cast<std::int16_t>(random() % 3000);
    }
    block.sampleCount = 70000;
    const auto statistics = StatisticsOf(Source(), {1000, 68000});
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
    EXPECT_TRUE(StatisticsOf(Source(), {0, 10}).empty());
    // The same where whole frames are read, and of a constant without an error of rounding below zero.
    fake->failing.clear();
    fake->framed = true;
    const auto again = StatisticsOf(Source(), {1000, 68000});
    for (std::size_t at = 0; at < 2; ++at)
        EXPECT_EQ(std::tuple(again[at].mean, again[at].rms, again[at].minimum, again[at].maximum),
                  std::tuple(statistics[at].mean, statistics[at].rms, statistics[at].minimum, statistics[at].maximum));
    fake->samples.assign(2, std::vector<std::int16_t>(70000, 31111));
    EXPECT_EQ(StatisticsOf(Source(), {0, 69999})[0].deviation, 0.0);
}

TEST_F(ReadoutTest, TheNearestTraceIsThatOfTheLeastDistanceInRows) {
    Lanes lanes(1);
    lanes[0].height = 400;
    lanes[0].channels = {1, 2};
    lanes[0].zeroRow = 200;
    lanes[0].unitsPerDivision = 1.0;
    // At sample 3 the values are -2 and 2, at rows 280 and 120; the codes -6 and 0.
    for (const int row : {0, 119, 199}) EXPECT_EQ(ChannelNear(Source(), lanes, 3, row), 2) << row;
    for (const int row : {201, 280, 399}) EXPECT_EQ(ChannelNear(Source(), lanes, 3, row), 1) << row;
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 200), 1) << "of two as near the upper one in the list";
    rawCodes = true;
    lanes[0].unitsPerDivision = 0.001;  // a code per division: rows 440 and 200
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 319), 2);
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 321), 1);
    lanes[0].channels.clear();
    EXPECT_EQ(ChannelNear(Source(), lanes, 3, 321), 0);
}

/// 100 samples a second for 200 s from ten seconds before midnight.
class PositionInputTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::int32_t Parse(std::u16string_view text) const {
        return ParsePosition(text, block, format).value_or(-1);
    }
    PositionInputTest() {
        block.sampleCount = 20000;
        block.sampleRate = 100.0;
        block.startTime = 45000.0 + 86390.0 / 86400.0;
    }
    ViewBlock block;
    FormatOptions format;
};

TEST_F(PositionInputTest, UnderstandsSamplesUnitsAndClockTimes) {
    for (const auto* text : {u" # 151 ", u"1,5", u"1.50 S", u"1.5с", u"1500 ms", u"1500\u00A0мс", u"15E5 mks",
                             u"1500000us", u"1500000 МКС", u" 0,025 min", u".025 мин", u"0:01.5", u"0 : 00 : 01,5"})
        EXPECT_EQ(Parse(text), 151) << Utf8(text);
    for (const auto* text : {u"0.01 h", u"0.01ч", u"#3601"}) EXPECT_EQ(Parse(text), 3601);
    EXPECT_EQ(Parse(u"#0"), 1);
    EXPECT_EQ(Parse(u"#9000000000"), 20000);
    for (const auto* text :
         {u"",      u"#",       u"s",     u".",      u"-1",      u"#-1",    u"+1",    u"NaN",  u"inf",
          u"1e999", u"1e308 h", u"1 000", u"1.2.3",  u"1 m",     u"1 s s",  u"#1 s",  u"#1.5", u"1:60",
          u"1:-5",  u"1:",      u":1",    u"1.5:00", u"1:2:3:4", u"1:02 s", u"1:1e1", u"1e",   u"0x10"})
        EXPECT_EQ(Parse(text), -1) << Utf8(text);
    format.sampleIndexes = true;
    EXPECT_EQ(Parse(u"150"), 150);
    EXPECT_EQ(Parse(u"1.5"), -1) << "between two samples";
    EXPECT_EQ(Parse(u"1.5 s"), 151);
    format = {};
    format.timeOfDay = true;
    EXPECT_EQ(Parse(u"23:59:51"), 101);
    EXPECT_EQ(Parse(u"0:00:01"), 1101) << "past midnight";
    EXPECT_EQ(Parse(u"0:03:10"), 20000) << "the end of the block";
    block.startTime = 45000.5;
    EXPECT_EQ(Parse(u"0:03:15"), 19501) << "no time of day of the block, so from its start";
    block.startTime = 45000.0 + 86390.0 / 86400.0;
    EXPECT_EQ(Parse(u"23:00:00"), -1);
    EXPECT_EQ(Parse(u"0:30:00"), -1) << "neither way";
    const auto range = [&](std::u16string_view text) { return ParseRange(text, block, format); };
    EXPECT_EQ(range(u"23:59:51..0:00:01"), (PositionRange{101, 1100}));
    EXPECT_EQ(range(u" 1.5 s .. .5 s"), (PositionRange{51, 150}));
    EXPECT_EQ(range(u"0 s .. 200 s"), (PositionRange{1, 20000})) << "the end of the block is behind its last sample";
    EXPECT_EQ(range(u"199 s .. 500 s"), (PositionRange{19901, 20000}));
    EXPECT_EQ(range(u"1 s .. 1 s"), (PositionRange{101, 101}));
    EXPECT_EQ(range(u"#5 .. 1 s"), (PositionRange{5, 100}));
    EXPECT_EQ(range(u"#5..#7"), (PositionRange{5, 7}));
    for (const auto* text : {u"5", u"..", u"1..", u"..2", u"1..x", u"0:30:00..1"})
        EXPECT_FALSE(range(text)) << Utf8(text);
    EXPECT_EQ(Parse(u"24:00:00"), -1);
    // Of several such times in a long block the one next to the present place.
    block.sampleCount = 100 * 86400 * 3;
    for (const std::int32_t day : {0, 1, 2})
        EXPECT_EQ(ParsePosition(u"23:59:51", block, format, 4000000 + 8640000 * day), 101 + 8640000 * day);
    EXPECT_EQ(ParsePosition(u"23:59:50", block, format, 8640000 * 2 + 5), 1 + 8640000 * 2);
}

TEST_F(PositionInputTest, LengthsAreWrittenAsTimesAre) {
    const auto length = [&](std::u16string_view text) { return ParseLength(text, format).value_or(-1.0); };
    for (const auto& [text, seconds] : {std::pair{u"12.5 s", 12.5},
                                        {u" 12,5\u0441", 12.5},
                                        {u"10", 10.0},
                                        {u"1:30", 90.0},
                                        {u"2 min", 120.0},
                                        {u"0.5 h", 1800.0},
                                        {u"2 d", 172800.0},
                                        {u"20 ms", 0.02}})
        EXPECT_DOUBLE_EQ(length(text), seconds) << Utf8(text);
    for (const auto* text : {u"", u"0", u"0 s", u"-1 s", u"#5", u"5 x", u"1e999", u"1:60"})
        EXPECT_EQ(length(text), -1.0) << Utf8(text);
}

TEST_F(PositionInputTest, ReadsBackEveryTextOfThePosition) {
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        block.sampleRate = std::pow(10.0, static_cast<double>(random() % 70000) / 10000.0 - 1.0);
        block.startTime = 45000.0 + static_cast<double>(random()) / 4294967296.0;
        format.timeUnit = static_cast<int>(random() % 6);
        format.timeOfDay = random() % 4 == 0;
        format.sampleIndexes = random() % 8 == 0;
        format.decimalSeparator = random() % 2 == 0 ? u'.' : u',';
        // A block of more than a day has times of day twice.
        block.sampleCount =
            static_cast<std::int32_t>(std::min(format.timeOfDay ? 86000.0 * block.sampleRate : 2e9, 2e9));
        const std::int32_t sample = static_cast<std::int32_t>(random() % static_cast<unsigned>(block.sampleCount)) + 1;
        const std::u16string text = PositionText(block, sample, random() % 2 == 0 ? u"" : u" ", format);
        const double unit = format.timeUnit == 2 ? 60.0 : 1.0;
        const double number = std::max((sample - 1) / block.sampleRate / unit, 1e-30);
        double half = 0.5 * unit * std::pow(10.0, std::floor(std::log10(number)) - 5.0);  // six digits
        if (text.find(u':') != std::u16string::npos) half = 0.5e-4 + 0.5e-9;
        if (format.sampleIndexes) half = 0.0;
        ASSERT_LE(std::fabs(1.0 * Parse(text) - sample), half * block.sampleRate * (1.0 + 1e-9) + 0.5)
            << Utf8(text) << " at " << block.sampleRate;
    }
}

/// Two shown channels of scale 0.5 and -1.
class RangeTest : public ReadoutTest {
  protected:
    RangeTest() {
        fake->samples = {{1, -7, 3, 4}, {10, 20, 30, 40}};
        block.sampleCount = 4;
        block.channelNumbers = {0, 1};
        block.invScale = {2.0F, -1.0F};
        block.offsets = {1.0F, 0.0F};
    }
    static void Expect(const std::optional<ValueRange>& range, float minimum, float maximum) {
        ASSERT_TRUE(range);
        EXPECT_EQ(std::pair(range->minimum, range->maximum), std::pair(minimum, maximum));
    }
};

const std::array<std::int16_t, 1> kFirst{1};
const std::array<std::int16_t, 1> kSecond{2};

TEST_F(RangeTest, RecordsTakeTheShownChannelsInTheirUnitsAndKeepThem) {
    ExtremesCache extremes;
    RangeRecords records(extremes);
    for (const bool onePass : {true, false}) {
        fake->offersExtremes = onePass;
        extremes.Reset();
        records.Reset();
        slots[1].shown = true;
        Expect(records.Of(block, ShownChannels(block, slots)), -40.0F, 3.0F);
        slots[1].shown = false;
        Expect(records.Of(block, ShownChannels(block, slots)), -2.5F, 3.0F);
    }
    Expect(records.Of(block, kSecond), -40.0F, -10.0F);
    fake->failing = {"ReadCodes", "ColumnExtremes"};
    Expect(records.Of(block, ShownChannels(block, slots)), -2.5F, 3.0F);  // read once per channel, and kept
    extremes.Reset();
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
    ExtremesCache extremes;
    RangeRecords records(extremes);
    for (const bool onePass : {true, false}) {
        fake->offersExtremes = onePass;
        extremes.Reset();
        records.Reset();
        Expect(records.Of(block, kFirst), -149.0F, 301.0F);
        EXPECT_EQ(records.Failure(), "hole");
    }
    // Whatever is lost, nothing that lies far from it is.
    fake->holeFrom = 70000;
    fake->holeTo = 280000;
    Expect(records.Of(block, kFirst), 1.0F, 301.0F);
    fake->holeTo = 0;
    Expect(records.Of(block, kFirst), -149.0F, 1001.0F);
    EXPECT_EQ(records.Failure(), "");
}

TEST_F(RangeTest, ReadInStepsOfAnyOrderTheyAreThoseOfAPlainPass) {
    std::mt19937 random(7);
    const auto some = [&](int below) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(below)); };
    const std::vector<std::vector<std::int16_t>> sets{{1}, {2}, {2, 1}};
    for (int round = 0; round < 60; ++round) {
        block.sampleCount = round % 10 == 0 ? 1 + some(4) : 1 + some(300000);
        for (auto& channel : fake->samples) {
            channel.resize(static_cast<std::size_t>(block.sampleCount));
            for (std::int16_t& code : channel) code = static_cast<std::int16_t>(random() % 1000);
            channel[static_cast<std::size_t>(some(block.sampleCount))] = static_cast<std::int16_t>(2000 + some(9));
            channel[static_cast<std::size_t>(some(block.sampleCount))] = static_cast<std::int16_t>(-some(9));
        }
        fake->framed = round % 2 == 0;
        fake->offersExtremes = round % 5 != 0;
        fake->pieceSamples = 1 + some(40000);
        ExtremesCache extremes(round % 3 == 0 ? 20000 : ExtremesCache::kDefaultLimit);
        RangeRecords records(extremes);
        const std::int64_t most = std::max(fake->pieceSamples, ExtremesCache::kCoarseCell) + 1;
        auto asked = static_cast<std::size_t>(some(3));
        for (int step = 0, more = 1; more != 0; ++step) {
            ASSERT_LT(step, 5000);
            // Another set of channels, or another view, takes over while a search is under way; what part of the range
            // of some samples is known by then is so.
            if (some(3) == 0 && step < 300) asked = static_cast<std::size_t>(some(3));
            const SampleSpan range{some(block.sampleCount), 1};
            const SampleSpan span{range.first, 1 + some(block.sampleCount - range.first)};
            if (const auto found = extremes.ExtremesOf(*fake, sets[2], span)) {
                const std::vector<RunExtremes> plain = ExtremeCodes(*fake, sets[2], span);
                for (std::size_t at = 0; at < 2; ++at) {
                    ASSERT_EQ(std::minmax({(*found)[at].first, (*found)[at].second}),
                              std::minmax({plain[at].first, plain[at].second}));
                }
            }
            fake->samplesRead = 0;
            more = records.ReadMissing(block, sets[asked], range) ? 1 : 0;
            ASSERT_LE(fake->samplesRead, 2 * most);
            ASSERT_LE(extremes.Bytes(), round % 3 == 0 ? 20000 : ExtremesCache::kDefaultLimit);
        }
        for (const std::int16_t channel : sets[asked]) {
            const auto [low, high] = std::minmax_element(fake->samples[static_cast<std::size_t>(channel - 1)].begin(),
                                                         fake->samples[static_cast<std::size_t>(channel - 1)].end());
            const float scale = channel == 1 ? 0.5F : -1.0F;
            const auto [least, greatest] =
                std::minmax({static_cast<float>(*low) * scale, static_cast<float>(*high) * scale});
            const float offset = block.offsets[static_cast<std::size_t>(channel - 1)];
            Expect(records.Found({&channel, 1}), least + offset, greatest + offset);
        }
    }
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
    // What stands for the data when raw codes are shown is the range of all of them.
    points[0] = {{0, -32767}, {1, 32767}};
    Expect(CentralRange(block, one, points, true), kRawCodesRange.minimum, kRawCodesRange.maximum);
    points[0].clear();
    EXPECT_FALSE(CentralRange(block, one, points, false));
}

}  // namespace
}  // namespace quillon
