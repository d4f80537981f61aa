#include "base/DateTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillon {
namespace {

TEST(DateTime, KnownDaysAndFieldsThatCarryOver) {
    const std::pair<CivilTime, double> cases[] = {
        {{1899, 12, 29, 0, 0, 0, 0}, -1.0},   {{1900, 3, 1, 0, 0, 0, 0}, 61.0},
        {{2000, 1, 1, 12, 0, 0, 0}, 36526.5}, {{1970, 1, 1, 0, 0, 0, 0}, 25569.0},
        {{1999, 13, 1, 0, 0, 0, 0}, 36526.0}, {{2000, 1, 0, 23, 59, 60, 0}, 36526.0}};
    for (const auto& [time, date] : cases) EXPECT_EQ(DateFromCivil(time), date) << time.year << '-' << time.month;
}

TEST(DateTime, EveryMillisecondSurvivesTheRoundTrip) {
    for (const int year : {1, 1600, 1899, 1900, 2000, 2100, 9999}) {
        for (const int month : {1, 2, 12}) {
            char text[32];
            std::snprintf(text, sizeof text, "%04d-%02d-28T23:59:58.999", year, month);
            EXPECT_EQ(Iso8601(DateFromCivil({year, month, 28, 23, 59, 58, 999})), text);
        }
    }
    EXPECT_EQ(Iso8601(-0.25), "1899-12-29T18:00:00.000") << "time runs forward before the first day too";
    EXPECT_EQ(CivilFromDate(std::numeric_limits<double>::quiet_NaN()).year, 1899);
    EXPECT_GT(CivilFromDate(1e300).year, 30000);
    EXPECT_LT(CivilFromDate(-1e300).year, -30000);
}

}  // namespace
}  // namespace quillon
