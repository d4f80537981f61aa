#include "view/ColumnGrid.h"

#include <gtest/gtest.h>

#include <random>

#include "base/Text.h"
#include "view/PageLength.h"

namespace quillon {
namespace {

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
