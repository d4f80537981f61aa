#include "norvik/WideScale.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(WideScale, ASpanOfSixteenBitsIsKeptExactlyAndHalvesGoToTheEvenCode) {
    for (const double minimum : {-32768.0, 0.0, 1.0, -1.0, 1835008.0, -8388608.0, 2147418112.0}) {
        for (const double span : {1.0, 65534.0, 65535.0}) {
            const WideScale scale = ChooseWideScale(minimum, minimum + span, true, 0.5, 3.0);
            for (const double sample : {minimum, minimum + 1.0, minimum + span}) {
                EXPECT_EQ(scale.Code(sample) + scale.shift, sample) << minimum << ' ' << span;
            }
            EXPECT_EQ(scale.scale, 0.5F);
            EXPECT_EQ(scale.offset, static_cast<float>(scale.shift * 0.5 + 3.0));
        }
    }
    EXPECT_EQ(ChooseWideScale(-32768, 32767, true, 1, 0).shift, 0.0) << "what fits is not moved";
    EXPECT_EQ(ChooseWideScale(0, 65536, true, 1, 0).Code(0), -32000) << "one too many for 16 bits";
    const WideScale halves{0.0, 2.0, 2.0F, 0.0F};
    EXPECT_EQ(halves.Code(1.0), 0);
    EXPECT_EQ(halves.Code(3.0), 2);
}

}  // namespace
}  // namespace quillon
