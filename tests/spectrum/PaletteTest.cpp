#include "spectrum/Palette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "spectrum/FrequencyScale.h"

namespace quillon {
namespace {

std::array<int, 3> Rgb(std::int16_t kind, std::size_t index) {
    const PaletteColor color = BuildPalette(kind)[index];
    return {color.red, color.green, color.blue};
}

TEST(PaletteTest, LandmarksOfEveryPaletteAndOfTheBar) {
    EXPECT_EQ(Rgb(2, 128), (std::array{128, 128, 128}));
    // Halves but for the quotient's rounding to a single: 76.5 lies above, 229.5 below.
    EXPECT_EQ(Rgb(1, 60), (std::array{0, 77, 0}));
    EXPECT_EQ(Rgb(1, 180), (std::array{89, 229, 89}));
    EXPECT_EQ(BarIndex(100, 300), 85);
    EXPECT_EQ(BarIndex(1, 512), 0) << "halves to even";
    EXPECT_EQ(BarIndex(511, 512), 255) << "would be 256";
}

TEST(PaletteTest, ColorIsTheHueCircleByItsOtherFormula) {
    // A component is v - v s max(0, min(k, 4 - k, 1)) with k = (n + hue / 60) mod 6, n = 5, 3, 1 for red, green, blue.
    for (std::size_t i = 0; i < 256; ++i) {
        const auto index = static_cast<double>(i);
        const double value = std::min(index / 155.0, 1.0);
        const double depth = value * std::min((255.0 - index) / 100.0, 1.0);
        for (std::size_t part = 0; part < 3; ++part) {
            const double k = std::fmod(5.0 - 2.0 * static_cast<double>(part) + (index + 205.0) / 60.0, 6.0);
            const double share = value - depth * std::clamp(std::min(k, 4.0 - k), 0.0, 1.0);
            EXPECT_NEAR(Rgb(0, i)[part], 255.0 * share, 0.5 + 1e-9) << i;
        }
    }
}

TEST(FrequencyScaleTest, RowsTextsAndUnitAreOfOneStep) {
    const FormatOptions options{.unitScaling = false, .decimalSeparator = u','};  // there is a prefix all the same
    const FrequencyScaleMarks marks = FrequencyMarks(200, 48000.0, options);
    std::u16string found;
    for (const FrequencyTick& tick : marks.ticks) found += tick.text + u" ";
    EXPECT_EQ(found, u"5 10 15 20 ");
    EXPECT_EQ(marks.ticks.back().row, 33);
    EXPECT_EQ(FrequencyCaption(u"Channel", 3, marks.unit), u"Channel 3, kHz");
    EXPECT_EQ(FrequencyMarks(300, 3000.0, options).ticks.front().text, u"0,1");
    for (double rate : {0.0, -1.0, std::nan(""), HUGE_VAL}) EXPECT_TRUE(FrequencyMarks(99, rate, {}).ticks.empty());
}

TEST(FrequencyScaleTest, LabelsNeverOverlapAndNeverLackAtAnyRateAndHeight) {
    for (int height = 20; height <= 2000; height += height < 120 ? 1 : 37) {
        for (double rate = 0.01; rate <= 1e6; rate *= 1.11) {
            std::int32_t below = height;
            bool labelled = height < 40;
            for (const FrequencyTick& tick : FrequencyMarks(height, rate, {}).ticks) {
                ASSERT_GE(below - tick.row, kFrequencyLabelSpacing) << height << " rows at " << rate;
                ASSERT_GE(tick.row, tick.text.empty() ? 0 : kFrequencyLabelRise);
                below = tick.row;
                labelled |= !tick.text.empty();
            }
            ASSERT_TRUE(labelled) << height << " rows at " << rate;
        }
    }
}

}  // namespace
}  // namespace quillon
