#include "base/Rounding.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(Rounding, HalvesGoToTheEvenNeighbourAndWhatDoesNotFitIsAnError) {
    const std::pair<double, std::int32_t> cases[] = {{0.5, 0},
                                                     {1.5, 2},
                                                     {2.5, 2},
                                                     {-0.5, 0},
                                                     {-1.5, -2},
                                                     {0.49999999999999994, 0},
                                                     {2.5000000000000004, 3},
                                                     {2147483647.4, 2147483647},
                                                     {-2147483648.5, std::numeric_limits<std::int32_t>::min()}};
    for (const auto& [number, expected] : cases) EXPECT_EQ(RoundHalfEven(number), expected) << number;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double number : {2147483647.5, -2147483649.0, nan, std::numeric_limits<double>::infinity()}) {
        EXPECT_THROW(static_cast<void>(RoundHalfEven(number)), std::range_error) << number;
    }
    EXPECT_EQ(RoundHalfEven<std::int16_t>(32767.4), 32767);
    EXPECT_THROW(static_cast<void>(RoundHalfEven<std::int16_t>(32767.5)), std::range_error);
}

}  // namespace
}  // namespace quillon
