#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/Text.h"
#include "view/PositionInput.h"
#include "view/Readout.h"

namespace quillon {
namespace {

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
    EXPECT_EQ(Parse(u"23:00:00"), 1) << "the nearer end";
    EXPECT_EQ(Parse(u"0:30:00"), 20000) << "the nearer end";
    EXPECT_EQ(Parse(u"24:00:00"), -1);
    // Of several such times in a long block the one next to the present place.
    block.sampleCount = 100 * 86400 * 3;
    for (const std::int32_t day : {0, 1, 2})
        EXPECT_EQ(ParsePosition(u"23:59:51", block, format, 4000000 + 8640000 * day), 101 + 8640000 * day);
    EXPECT_EQ(ParsePosition(u"23:59:50", block, format, 8640000 * 2 + 5), 1 + 8640000 * 2);
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

}  // namespace
}  // namespace quillon
