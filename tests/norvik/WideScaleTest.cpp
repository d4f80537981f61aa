#include "norvik/WideScale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quillon {
namespace {

TEST(WideScale, ASpanOfSixteenBitsIsKeptExactly) {
    const double units = 0.5;
    for (const double minimum : {-32768.0, 0.0, 1.0, -1.0, 1835008.0, -8388608.0, 2147418112.0}) {
        for (const double span : {1.0, 65534.0, 65535.0}) {
            const WideScale scale = ChooseWideScale(minimum, minimum + span, true, units, 3.0);
            EXPECT_EQ(scale.step, 1.0);
            for (const double sample : {minimum, minimum + 1.0, minimum + span}) {
                EXPECT_EQ(scale.Code(sample) + scale.shift, sample) << minimum << ' ' << span;
            }
            EXPECT_EQ(scale.scale, 0.5F);
            EXPECT_EQ(scale.offset, static_cast<float>(scale.shift * units + 3.0));
        }
    }
    EXPECT_EQ(ChooseWideScale(-32768, 32767, true, 1, 0).shift, 0.0) << "what fits is not moved";
}

TEST(WideScale, AWiderSpanReachesBothEndsAndKeepsValuesWithinHalfAStep) {
    for (const bool whole : {true, false}) {
        const double minimum = whole ? -8388608.0 : -0.001;
        const double maximum = whole ? 8388607.0 : 1.7;
        const WideScale scale = ChooseWideScale(minimum, maximum, whole, 0.25, 10.0);
        EXPECT_EQ(scale.Code(minimum), -32000);
        EXPECT_EQ(scale.Code(maximum), 32000);
        for (int part = 0; part <= 1000; ++part) {
            const double sample = minimum + (maximum - minimum) * part / 1000.0;
            const double value =
                scale.Code(sample) * static_cast<double>(scale.scale) + static_cast<double>(scale.offset);
            ASSERT_NEAR(value, sample * 0.25 + 10.0, static_cast<double>(scale.scale) * 0.51);
        }
    }
    EXPECT_EQ(ChooseWideScale(0, 65536, true, 1, 0).Code(0), -32000) << "one too many for 16 bits";
}

TEST(WideScale, HalvesGoToTheEvenCode) {
    const WideScale scale{0.0, 2.0, 2.0F, 0.0F};
    EXPECT_EQ(scale.Code(1.0), 0);
    EXPECT_EQ(scale.Code(3.0), 2);
    EXPECT_EQ(scale.Code(-5.0), -2);
}

TEST(WideScale, EqualSamplesAndNoneGiveCodeZero) {
    const WideScale constant = ChooseWideScale(7.25, 7.25, false, 2.0, 1.0);
    EXPECT_EQ(constant.Code(7.25), 0);
    EXPECT_EQ(constant.offset, 15.5F);
    const double infinity = std::numeric_limits<double>::infinity();
    const WideScale none = ChooseWideScale(infinity, -infinity, false, 2.0, 1.0);
    EXPECT_EQ(none.Code(0.0), 0);
    EXPECT_EQ(none.scale, 2.0F);
    EXPECT_EQ(none.offset, 1.0F);
}

TEST(WideScale, SamplesThatAreNoNumbersAndHugeOnesStayInRange) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double huge = std::numeric_limits<double>::max();
    const WideScale scale = ChooseWideScale(-1.0, 1.0, false, 1.0, 0.0);
    EXPECT_EQ(scale.Code(infinity), 32767);
    EXPECT_EQ(scale.Code(-infinity), -32768);
    EXPECT_EQ(scale.Code(std::nan("")), 0);
    EXPECT_EQ(ChooseWideScale(5.0, 100000.0, false, 1.0, 0.0).Code(std::nan("")), -32003) << "the code of 0";
    EXPECT_EQ(ChooseWideScale(1e6, 1e6 + 1, false, 1.0, 0.0).Code(std::nan("")), -32768);

    const WideScale widest = ChooseWideScale(-huge, huge, false, 1e10, 0.0);
    EXPECT_EQ(widest.Code(huge), 32000);
    EXPECT_TRUE(std::isfinite(widest.scale));
    const double smallest = std::numeric_limits<double>::denorm_min();
    const WideScale narrowest = ChooseWideScale(0.0, smallest, false, 1.0, 0.0);
    EXPECT_EQ(narrowest.Code(0.0), 0) << "a span too small for a step is none";
}

}  // namespace
}  // namespace quillon
