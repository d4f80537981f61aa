#include "view/TimeTicks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/Text.h"

namespace quillon {
namespace {

ViewBlock Block(std::int32_t samples, double rate, double start) {
    ViewBlock block;
    block.sampleCount = samples;
    block.sampleRate = rate;
    block.startTime = start;
    return block;
}

TimeAxis Axis(const ViewBlock& block, std::int32_t width, double page) {
    TimeAxis axis;
    axis.SetWidth(width);
    axis.SetBlock(block.sampleCount, block.sampleRate, true);
    axis.SelectPage(page, 0, 1);
    return axis;
}

std::string Majors(const TimeAxis& axis, const ViewBlock& block, const FormatOptions& format) {
    std::string all;
    for (const TimeTick& tick : TimeTicks(axis, block, format)) {
        if (tick.major) all += std::to_string(tick.column) + ' ' + Utf8(tick.text) + '|';
    }
    return all;
}

TEST(TimeTicks, AreRoundInEveryFormatAndTellTheDateWhereItChanges) {
    // Starts 0.4 s before midnight between 15 and 16 March 2023.
    const ViewBlock block = Block(500 * 7200, 500.0, 45000.0 + 86399.6 / 86400.0);
    FormatOptions format;
    TimeAxis axis = Axis(block, 500, 2.0);
    EXPECT_EQ(Majors(axis, block, format), "0 0:00:00|125 0:00:00.5|250 0:00:01|375 0:00:01.5|");
    format.timeOfDay = true;
    EXPECT_EQ(Majors(axis, block, format), "100 2023-03-16|225 0:00:00.5|350 0:00:01|475 0:00:01.5|");
    format.sampleIndexes = true;
    EXPECT_EQ(Majors(axis, block, format), "99 200|199 400|299 600|399 800|499 1000|")
        << "sample 200 is the second one of its column";
    format = {.timeOfDay = true};
    axis.SelectPage(1200.0, 0, 1);
    EXPECT_EQ(Majors(axis, block, format), "0 2023-03-16|125 0:05|250 0:10|375 0:15|");
    format = {.timeUnit = 2};
    EXPECT_EQ(Majors(axis, block, format), "0 0|125 5|250 10|375 15|");
    format = {.timeUnit = 3};
    EXPECT_EQ(Majors(axis, block, format), "0 0|125 300|250 600|375 900|");
    format = {};
    EXPECT_EQ(Majors(axis, block, format), "0 0:00:00|125 0:05:00|250 0:10:00|375 0:15:00|");
    axis.SelectPage(0.02, 0, 1);
    EXPECT_EQ(Majors(axis, block, format), "0 0:00:00|125 0:00:00.005|250 0:00:00.01|375 0:00:00.015|");
    const ViewBlock shortBlock = Block(500 * 10, 500.0, 45000.0);
    EXPECT_EQ(Majors(Axis(shortBlock, 500, 2.0), shortBlock, format), "0 0|125 0.5|250 1|375 1.5|");
    const ViewBlock timeless = Block(5000, 0.0, 45000.0);
    EXPECT_EQ(Majors(Axis(timeless, 500, 1000.0), timeless, {.timeOfDay = true}),
              "99 200|199 400|299 600|399 800|499 1000|");
}

/// At any zoom and place: where a mark lies and what it says is the same in every view, marks lie where their times are
/// and are as far apart as they should be.
TEST(TimeTicks, DoNotDependOnWhatIsShown) {
    std::mt19937 random(31);
    const auto any = [&](std::int32_t below) {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(below));
    };
    std::uniform_real_distribution<double> share(0.0, 1.0);
    for (int round = 0; round < 600; ++round) {
        const std::array<double, 6> rates{1.0 / 30.0, 1.0, 100.0, 256.0, 199.98, 44100.0};
        const ViewBlock block =
            Block(1000 + any(50000000), rates[static_cast<std::size_t>(any(6))], 45000.0 + share(random));
        FormatOptions format;
        format.timeOfDay = round % 3 == 1;
        format.sampleIndexes = round % 3 == 2;
        format.timeUnit = any(6);
        const std::int32_t width = 200 + any(1500);
        const double shortest = width / 50.0;
        const double page = shortest * std::pow(block.sampleCount / shortest, share(random));
        TimeAxis axis = Axis(block, width, page / block.sampleRate);
        const int dpi = round % 2 == 0 ? 96 : 192;
        axis.ScrollBy(any(std::max(axis.StripLength() - width, 1)));
        const std::vector<TimeTick> seen = TimeTicks(axis, block, format, dpi);
        std::int32_t last = -1;
        std::int32_t lastMajor = -1;
        for (const TimeTick& tick : seen) {
            ASSERT_TRUE(tick.column >= 0 && tick.column < width && tick.column > last);
            ASSERT_TRUE(last < 0 || tick.column - last >= 6 * dpi / 96) << "told apart";
            last = tick.column;
            ASSERT_NE(tick.major, tick.text.empty());
            if (!tick.major) continue;
            if (lastMajor >= 0) {
                const auto letters = static_cast<std::int32_t>(tick.text.size());
                ASSERT_GE(tick.column - lastMajor, (std::max(55, 5 * letters) * dpi) / 96);
                ASSERT_LE(tick.column - lastMajor, std::max(141, 3 * (6 * letters + 16)) * dpi / 96)
                    << Utf8(tick.text) << ' ' << page;
            }
            lastMajor = tick.column;
        }
        const std::int32_t shift = axis.ScrollBy(any(width) - width / 2);
        std::vector<TimeTick> expected;
        for (TimeTick tick : seen) {
            tick.column -= shift;
            if (tick.column >= 0 && tick.column < width) expected.push_back(tick);
        }
        std::vector<TimeTick> now = TimeTicks(axis, block, format, dpi);
        std::erase_if(now,
                      [&](const TimeTick& tick) { return tick.column + shift < 0 || tick.column + shift >= width; });
        ASSERT_EQ(now, expected) << round;
    }
}

}  // namespace
}  // namespace quillon
