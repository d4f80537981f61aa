#include "base/Rounding.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(Rounding, HalvesGoToTheEvenNeighbour) {
    EXPECT_EQ(RoundHalfEven(0.5), 0);
    EXPECT_EQ(RoundHalfEven(1.5), 2);
    EXPECT_EQ(RoundHalfEven(2.5), 2);
    EXPECT_EQ(RoundHalfEven(-0.5), 0);
    EXPECT_EQ(RoundHalfEven(-1.5), -2);
    EXPECT_EQ(RoundHalfEven(0.49999999999999994), 0);
    EXPECT_EQ(RoundHalfEven(2.5000000000000004), 3);
}

TEST(Rounding, WhatDoesNotFitIsAnError) {
    EXPECT_EQ(RoundHalfEven(2147483647.4), 2147483647);
    EXPECT_THROW(static_cast<void>(RoundHalfEven(2147483647.5)), std::range_error);
    EXPECT_EQ(RoundHalfEven(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    EXPECT_THROW(static_cast<void>(RoundHalfEven(-2147483649.0)), std::range_error);
    EXPECT_EQ(RoundHalfEven<std::int16_t>(32767.4), 32767);
    EXPECT_THROW(static_cast<void>(RoundHalfEven<std::int16_t>(32767.5)), std::range_error);
    EXPECT_THROW(static_cast<void>(RoundHalfEven<std::uint8_t>(-1.0)), std::range_error);
    EXPECT_THROW(static_cast<void>(RoundHalfEven(std::numeric_limits<double>::quiet_NaN())), std::range_error);
    EXPECT_THROW(static_cast<void>(RoundHalfEven(std::numeric_limits<double>::infinity())), std::range_error);
}

}  // namespace
}  // namespace quillon
