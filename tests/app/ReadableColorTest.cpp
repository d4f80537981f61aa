#include "view/ReadableColor.h"

#include <gtest/gtest.h>

#include "app/Commands.h"
#include "app/ToolbarIcons.h"

namespace quillon {
namespace {

TEST(ReadableColor, ContrastIsThatOfTheStandard) {
    EXPECT_DOUBLE_EQ(Contrast(0x000000, 0xFFFFFF), 21);
    EXPECT_DOUBLE_EQ(Contrast(0xFFFFFF, 0x000000), 21);
    EXPECT_DOUBLE_EQ(Contrast(0x336699, 0x336699), 1);
    // The darkest grey that is enough for text on white.
    EXPECT_GT(Contrast(0x767676, 0xFFFFFF), 4.5);
    EXPECT_LT(Contrast(0x777777, 0xFFFFFF), 4.5);
}

TEST(ReadableColor, EveryColorIsReadableOnEveryBackgroundAndChangesNoMoreThanItMust) {
    for (std::uint32_t background = 0; background <= 0xFFFFFF; background += 0x0F0A33) {
        for (std::uint32_t color = 0; color <= 0xFFFFFF; color += 0x110733) {
            const std::uint32_t readable = Readable(color, background, 4.5);
            ASSERT_GE(Contrast(readable, background), 4.5) << std::hex << color << " on " << background;
            ASSERT_TRUE(readable == color || Contrast(color, background) < 4.5);
        }
    }
    // Hue stays: a blue on black is a lighter blue.
    const std::uint32_t blue = Readable(0x14305A, 0, 4.5);
    EXPECT_GT(blue & 0xFF, blue >> 16);
}

TEST(ReadableColor, EveryButtonIsSeenOnLightAndDarkBackgrounds) {
    for (const std::uint32_t background : {0xF0F0F0U, 0xFFFFFFU, 0xD4D0C8U, 0x202020U, 0U}) {
        for (int icon = 0; icon < static_cast<int>(Icon::Count); ++icon) {
            int seen = 0;
            for (const std::uint32_t pixel : DrawIcon(static_cast<Icon>(icon), 16, background)) {
                const std::uint32_t shown = Mixed(background, pixel & 0xFFFFFF, static_cast<double>(pixel >> 24) / 255);
                if (Contrast(shown, background) >= 3) ++seen;
            }
            EXPECT_GT(seen, 20) << icon << " on " << std::hex << background;
        }
    }
}

}  // namespace
}  // namespace quillon
