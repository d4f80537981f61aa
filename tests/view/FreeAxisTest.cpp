#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/Text.h"
#include "view/ColumnGrid.h"
#include "view/PageLength.h"
#include "view/TimeTicks.h"

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

/// Against the definition: column c begins at sample floor(c samples / parts).
TEST(ColumnGrid, SampleUnderAColumnAndColumnOfASampleAreInverse) {
    std::mt19937 random(17);
    for (int round = 0; round < 400; ++round) {
        const auto parts = static_cast<std::int64_t>(1 + random() % 60);
        const auto samples = static_cast<std::int64_t>(1 + random() % (round % 2 == 0 ? 40 : 900));
        if (samples * 50 < parts) continue;
        const ColumnGrid grid(samples, parts);
        const std::int64_t count = 300;
        std::int64_t next = 0;  // the first sample that no column has shown yet
        std::int64_t columns = 0;
        for (std::int64_t column = 0; next < count || grid.FirstSample(column) < count; ++column) {
            const SampleSpan shown = grid.Samples(column);
            ASSERT_EQ(grid.FirstSample(column), column * samples / parts);
            ASSERT_EQ(shown.first, column * samples / parts);
            if (samples > parts) {
                ASSERT_EQ(shown.first, next) << "each sample belongs to one column";
                ASSERT_EQ(shown.End(), (column + 1) * samples / parts);
            } else {
                ASSERT_EQ(shown.count, 1);
                ASSERT_TRUE(shown.first == next || shown.first == next - 1) << "no sample without a column";
            }
            for (std::int64_t sample = shown.first; sample < shown.End(); ++sample) {
                ASSERT_LE(grid.FirstColumn(sample), column);
                ASSERT_GE(grid.LastColumn(sample), column);
                if (sample < next) continue;
                ASSERT_EQ(grid.FirstColumn(sample), column);
                ASSERT_EQ(grid.ColumnOfPlace(static_cast<double>(sample)), column);
                next = sample + 1;
            }
            if (shown.first < count) columns = column + 1;
        }
        ASSERT_EQ(grid.ColumnCount(count), columns);
    }
    // The ends of the ranges.
    const std::int64_t last = 2147483646;
    for (const ColumnGrid& grid : {ColumnGrid(2147483647, ColumnGrid::kMostParts), ColumnGrid(1, 1),
                                   ColumnGrid(std::int64_t{2147483647} << 28, ColumnGrid::kMostParts - 1)}) {
        const SampleSpan shown = grid.Samples(grid.FirstColumn(last));
        EXPECT_TRUE(shown.first <= last && std::int64_t{shown.first} + shown.count > last);
    }
}

TEST(PageLength, PagesKeepTheirSecondsAtEveryRate) {
    std::mt19937 random(18);
    for (int round = 0; round < 2000; ++round) {
        const auto parts = static_cast<std::int64_t>(1 + random() % 8192);
        const auto samples = static_cast<std::int64_t>(1 + random() % 100000000);
        const PageSamples page = PageOf(static_cast<double>(samples) / static_cast<double>(parts));
        ASSERT_EQ(page.samples * parts, samples * page.parts) << samples << '/' << parts;
    }
    // Thirty seconds at 199.98 Hz stay thirty seconds for a day.
    EXPECT_EQ(PageOf(30.0 * 199.98), (PageSamples{29997, 5}));
    EXPECT_EQ(PageOf(1e-9).samples, 1);
    EXPECT_NEAR(PageOf(2147483647.0 / 3.0).Count(), 2147483647.0 / 3.0, 1e-3);
}

TEST(PageLength, StepsInAndOutReturnAndPassTheLengthsThatAreOffered) {
    std::vector<double> pages{1e-6};
    while (pages.back() < 1e6) pages.push_back(NextPage(pages.back(), true));
    for (std::size_t at = 1; at < pages.size(); ++at) {
        ASSERT_EQ(NextPage(pages[at], false), pages[at - 1]);
        ASSERT_LT(pages[at] / pages[at - 1], 1.34);
        ASSERT_GT(pages[at] / pages[at - 1], 1.19);
        ASSERT_LE(PageOf(pages[at] * 1e7).parts, 1) << pages[at];
    }
    std::string offered;
    for (const double page : {1.0, 2.0, 5.0, 10.0, 15.0, 20.0, 30.0, 60.0, 120.0, 300.0, 600.0, 1800.0, 3600.0}) {
        EXPECT_NE(std::find(pages.begin(), pages.end(), page), pages.end()) << page;
        offered += Utf8(PageCaption(page, u'.')) + '|';
    }
    EXPECT_EQ(offered, "1 s|2 s|5 s|10 s|15 s|20 s|30 s|1 min|2 min|5 min|10 min|30 min|1 h|");
    EXPECT_EQ(Utf8(PageCaption(0.05, u'.') + PageCaption(12.5, u',') + PageCaption(59.9999, u'.') +
                   PageCaption(100.0, u'.') + PageCaption(100000.0, u'.') + PageCaption(3.90625, u'.')),
              "50 ms12,5 s1 min100 s1.157 d3.906 s");
    EXPECT_EQ(NextPage(10.3, true), 12.0);
    EXPECT_EQ(NextPage(10.3, false), 8.0) << "a smaller step would hardly be seen";
}

}  // namespace
}  // namespace quillon
