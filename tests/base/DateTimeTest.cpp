#include "base/DateTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillon {
namespace {

TEST(DateTime, KnownDaysOfTheAutomationCalendar) {
    EXPECT_EQ(DateFromCivil({1899, 12, 30, 0, 0, 0, 0}), 0.0);
    EXPECT_EQ(DateFromCivil({1899, 12, 29, 0, 0, 0, 0}), -1.0);
    EXPECT_EQ(DateFromCivil({1900, 3, 1, 0, 0, 0, 0}), 61.0);
    EXPECT_EQ(DateFromCivil({2000, 1, 1, 12, 0, 0, 0}), 36526.5);
    EXPECT_EQ(DateFromCivil({1970, 1, 1, 0, 0, 0, 0}), 25569.0);
}

TEST(DateTime, EveryMillisecondSurvivesTheRoundTrip) {
    for (const int year : {1, 1600, 1899, 1900, 1985, 2000, 2084, 2100, 9999}) {
        for (const int month : {1, 2, 12}) {
            const CivilTime time{year, month, 28, 23, 59, 59, 999};
            const CivilTime back = CivilFromDate(DateFromCivil(time));
            EXPECT_EQ(Iso8601(DateFromCivil(back)), Iso8601(DateFromCivil(time)));
            EXPECT_EQ(back.year, year);
            EXPECT_EQ(back.month, month);
            EXPECT_EQ(back.day, 28);
            EXPECT_EQ(back.hour * 10000 + back.minute * 100 + back.second, 235959);
            EXPECT_EQ(back.millisecond, 999);
        }
    }
    EXPECT_EQ(Iso8601(-0.25), "1899-12-29T18:00:00.000") << "time runs forward before the first day too";
    EXPECT_EQ(Iso8601(DateFromCivil({2084, 12, 31, 0, 0, 0, 1})), "2084-12-31T00:00:00.001");
}

TEST(DateTime, FieldsBeyondTheirRangeCarryOver) {
    EXPECT_EQ(DateFromCivil({2023, 14, 1, 0, 0, 0, 0}), DateFromCivil({2024, 2, 1, 0, 0, 0, 0}));
    EXPECT_EQ(DateFromCivil({2024, 3, 0, 0, 0, 0, 0}), DateFromCivil({2024, 2, 29, 0, 0, 0, 0}));
    EXPECT_EQ(DateFromCivil({2023, 12, 31, 23, 59, 60, 0}), DateFromCivil({2024, 1, 1, 0, 0, 0, 0}));
}

TEST(DateTime, DatesThatCannotBeToldDoNotHarm) {
    EXPECT_EQ(CivilFromDate(std::numeric_limits<double>::quiet_NaN()).year, 1899);
    EXPECT_EQ(CivilFromDate(std::numeric_limits<double>::infinity()).year, 1899);
    EXPECT_GT(CivilFromDate(1e300).year, 30000);
    EXPECT_LT(CivilFromDate(-1e300).year, -30000);
}

}  // namespace
}  // namespace quillon
