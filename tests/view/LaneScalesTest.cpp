#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

#include "base/Text.h"
#include "view/LaneLayout.h"
#include "view/LaneSettings.h"
#include "view/ScaleSteps.h"
#include "view/UnitGroups.h"

namespace quillon {
namespace {

TEST(ScaleSteps, AreTheDecimalsAndFoundAgain) {
    EXPECT_EQ(StepValue(0), 1.0);
    EXPECT_EQ(StepValue(-1), 0.5);
    EXPECT_EQ(StepValue(-12), 1e-4);
    EXPECT_EQ(StepValue(1000), StepValue(kMostStep));
    for (int step = -kMostStep; step <= kMostStep; ++step) {
        const double value = StepValue(step);
        // Ten steps of three are ten powers of ten, without an error that adds up.
        const int power = static_cast<int>(std::floor(step / 3.0));
        const std::string text = std::to_string(std::array{1, 2, 5}[static_cast<std::size_t>(step - 3 * power)]);
        EXPECT_EQ(value, std::strtod((text + "e" + std::to_string(power)).c_str(), nullptr));
        EXPECT_EQ(StepHolding(value), step);
        EXPECT_EQ(StepWithin(value), step);
        if (step == kMostStep || step == -kMostStep) continue;
        EXPECT_EQ(StepHolding(value * 1.001), step + 1);
        EXPECT_EQ(StepWithin(value * 0.999), step - 1);
    }
    EXPECT_EQ(StepHolding(0.0), -kMostStep);
    EXPECT_EQ(StepHolding(HUGE_VAL), kMostStep);
    EXPECT_EQ(StepWithin(0.0), -kMostStep);
}

TEST(UnitGroups, UnitsThatDifferByAPrefixAreOneGroup) {
    struct Unit {
        const char16_t* unit;
        const char16_t* name;
        double factor;
    };
    // Prefixes count in front of base units only: minutes, molar, millimetres of mercury and parts are none.
    for (const Unit& unit :
         {Unit{u"uV", u"V", 1e-6},   {u" \u00B5V ", u"V", 1e-6}, {u"\u03BCV", u"V", 1e-6}, {u"mV", u"V", 1e-3},
          {u"V", u"V", 1.0},         {u"kV", u"V", 1e3},         {u"m", u"m", 1.0},        {u"mm", u"m", 1e-3},
          {u"Pa", u"Pa", 1.0},       {u"kPa", u"Pa", 1e3},       {u"ms", u"s", 1e-3},      {u"kOhm", u"Ohm", 1e3},
          {u"M\u03A9", u"Ohm", 1e6}, {u"nS", u"S", 1e-9},        {u"min", u"min", 1.0},    {u"M", u"M", 1.0},
          {u"mmHg", u"mmHg", 1.0},   {u"ppm", u"ppm", 1.0},      {u"%", u"%", 1.0},        {u"", u"", 1.0},
          {u"MV", u"V", 1e6},        {u"mv", u"mv", 1.0},        {u"uu", u"uu", 1.0},      {u"m/s2", u"m/s2", 1.0}}) {
        EXPECT_EQ(GroupOf(unit.unit).name, unit.name) << Utf8(unit.unit);
        EXPECT_EQ(GroupOf(unit.unit).factor, unit.factor) << Utf8(unit.unit);
    }
    const auto text = [](const char16_t* unit, int step) {
        return Utf8(GroupValueText(GroupOf(unit), StepValue(step), u','));
    };
    EXPECT_EQ(text(u"uV", -12), "100 uV");
    EXPECT_EQ(text(u"\u00B5V", -14), "20 \u00B5V");
    EXPECT_EQ(text(u"mV", -9), "1 mV");
    EXPECT_EQ(text(u"V", -37), "0,5 pV");
    EXPECT_EQ(text(u"Hz", 33), "100 GHz");
    EXPECT_EQ(text(u"%", -1), "0,5 %");
    EXPECT_EQ(text(u"", 8), "500");
    // Whatever the step, the text is that of a step.
    for (int step = -36; step <= 27; ++step) {
        const std::string number = text(u"V", step).substr(0, text(u"V", step).find(' '));
        EXPECT_TRUE(std::string("125").find(number[0]) != std::string::npos && number.size() <= 3) << number;
    }
}

TEST(LaneLayout, LanesTileTheGraphAndNoneIsCut) {
    std::mt19937 random(3);
    const auto some = [&](int below) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(below)); };
    for (int round = 0; round < 20000; ++round) {
        const std::int32_t count = some(33);
        const std::int32_t height = some(900);
        const int dpi = 96 + 48 * some(3);
        const LaneLayout layout(count, height, dpi, some(40) - 2);
        const std::int32_t least = LaneLayout::kLeastHeight * dpi / 96;
        ASSERT_EQ(layout.Count(), count);
        ASSERT_EQ(layout.Visible() == count, count < 2 || count * least <= height);
        ASSERT_TRUE(layout.First() >= 0 && layout.First() + layout.Visible() <= count);
        ASSERT_TRUE(layout.Visible() == count || (layout.Visible() + 1) * least > height) << "as many as fit";
        ASSERT_EQ(layout.Top(0), 0);
        ASSERT_TRUE(count == 0 || layout.Top(layout.Visible()) == height);
        for (std::int32_t lane = 0; layout.Visible() > 1 && lane < layout.Visible(); ++lane)
            ASSERT_GE(layout.Top(lane + 1) - layout.Top(lane), least);
    }
}

TEST(LaneOrder, IsOneSequenceForAllBlocks) {
    const auto block = [](std::initializer_list<const char16_t*> keys) {
        std::vector<LaneChannel> channels;
        for (const char16_t* key : keys) channels.push_back({.title = key, .key = key, .group = {}});
        return channels;
    };
    using Positions = std::vector<std::size_t>;
    std::vector<std::u16string> order;
    const auto first = block({u"a", u"b", u"c"});
    EXPECT_EQ(LaneOrder(first, order), (Positions{0, 1, 2}));
    SetLaneOrder(first, {2, 0, 1}, order);
    EXPECT_EQ(LaneOrder(first, order), (Positions{2, 0, 1}));
    // Unknown ones stay where they are, the known ones share the places between them.
    const auto second = block({u"x", u"b", u"y", u"c"});
    EXPECT_EQ(LaneOrder(second, order), (Positions{0, 3, 2, 1}));
    SetLaneOrder(second, {3, 2, 0, 1}, order);
    EXPECT_EQ(LaneOrder(second, order), (Positions{3, 2, 0, 1}));
    EXPECT_EQ(LaneOrder(first, order)[0], 2U) << "c stays above b";
    EXPECT_EQ(order.size(), 5U);
}

}  // namespace
}  // namespace quillon
