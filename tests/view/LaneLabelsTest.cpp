#include "view/LaneLabels.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <set>

#include "base/Text.h"
#include "data/UnitGroups.h"
#include "support/ViewFixture.h"
#include "view/LaneLayout.h"
#include "view/LaneSettings.h"
#include "view/ScaleSteps.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

struct Box {
    std::int32_t left, top, right, end;
    std::size_t lane;
};

void Add(std::vector<Box>& boxes, const StripText& text, std::size_t lane) {
    if (!text.text.empty())
        boxes.push_back({text.x, text.y, text.x + text.size.width, text.y + text.size.height, lane});
}

class LaneLabelsTest : public EmptyViewFixture {
  protected:
    void LoadAny(std::size_t channels, std::mt19937& random) {
        auto block = std::make_shared<FakeBlock>();
        for (std::size_t at = 0; at < channels; ++at) {
            block->samples.emplace_back(2000);
            for (auto& code : block->samples.back()) code = static_cast<std::int16_t>(random() % 2000);
            std::u16string title;
            for (std::size_t left = 1 + random() % 20; left > 0; --left)
                title += random() % 5 == 0 ? u"\U0001F600" : u"w";
            block->titles.push_back(title);
            block->units.emplace_back(std::array{u"\u00B5V", u"mV", u"%", u"very long unit", u""}[random() % 5]);
            block->scales.push_back(static_cast<float>(std::pow(10.0, static_cast<int>(random() % 9) - 6)));
        }
        m_view.SetLanes(true);
        Load(block);
    }
};

TEST_F(LaneLabelsTest, NothingLiesOverAnotherAndTheHitTestAgrees) {
    std::mt19937 random(17);
    const auto some = [&](int below) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(below)); };
    std::size_t bars = 0, cut = 0, factors = 0;
    for (int round = 0; round < 100; ++round) {
        LoadAny(static_cast<std::size_t>(2 + some(25)), random);
        LaneStrip strip;
        strip.dpi = 96 + 48 * some(3);
        strip.width = round % 7 == 0 ? some(40) : 40 + some(160);
        strip.rawCodes = round % 4 == 0;
        strip.barsBeside = round % 3 == 0;
        const std::int32_t font = round % 9 == 0 ? 1 + some(60) : 12 * strip.dpi / 96 + some(6);
        strip.sizeOf = [&](const std::u16string& text) {
            std::int32_t width = 0;
            for (const char16_t letter : text) width += letter == u'w' ? font : font / 2;
            return TextSize{width, font};
        };
        m_view.SetDpi(strip.dpi);
        m_view.SetRawCodes(strip.rawCodes);
        const std::int32_t height = 30 + some(800);
        m_view.Arrange(300, height);
        for (int step = 0; step < 4; ++step) m_view.ZoomChannel(static_cast<std::size_t>(some(8)), some(9) - 4);
        m_view.ZoomY(some(60) - 30);
        const Lanes& lanes = m_view.GetLanes();
        const auto labels = LaneLabels(m_view.LanesOfChannels(), lanes, strip);
        ASSERT_EQ(labels.size(), lanes.size());
        std::vector<Box> boxes;
        for (std::size_t at = 0; at < labels.size(); ++at) {
            const LaneLabel& label = labels[at];
            ASSERT_EQ(label.channel, lanes[at].channels[0]);
            const bool room = lanes[at].height > font && strip.width > 12 * font;
            ASSERT_TRUE(!room || !label.title.text.empty());
            cut += label.title.text.ends_with(u'\u2026') ? 1U : 0U;
            // A pair of units that stands for one character is never separated.
            ASSERT_EQ(Utf8(label.title.text).find("\xEF\xBF\xBD"), std::string::npos);
            factors += label.factor.text.empty() ? 0U : 1U;
            Add(boxes, label.title, at);
            Add(boxes, label.factor, at);
            ASSERT_TRUE(label.bar || lanes[at].height < 4 * font + 20 || strip.width < 20 * font + 40) << round;
            if (!label.bar) continue;
            ++bars;
            Add(boxes, label.bar->text, at);
            boxes.push_back({label.bar->x, label.bar->top, label.bar->x + 1, label.bar->end, at});
            // The bar is as high as its value in the lane, and at most 60 % of it.
            const std::int32_t rows = label.bar->end - label.bar->top;
            ASSERT_LE(rows, lanes[at].height * 0.6 + 0.5);
            const LaneChannel channel =
                m_view.LanesOfChannels().Channels()[static_cast<std::size_t>(label.channel - 1)];
            const double units = rows / static_cast<double>(AmplitudeScale::kDivision) * lanes[at].unitsPerDivision *
                                 (strip.rawCodes ? 1000.0 : 1.0) * channel.group.factor;
            const double value = StepValue(StepHolding(units * 0.97));
            ASSERT_NEAR(units, value, value * 0.6 / rows);
            ASSERT_TRUE(strip.rawCodes || label.bar->text.text == GroupValueText(channel.group, value, u'.'));
        }
        for (std::size_t a = 0; a < boxes.size(); ++a) {
            const Box& box = boxes[a];
            ASSERT_TRUE(box.left >= 0 && box.right <= strip.width) << round;
            ASSERT_TRUE(box.top > lanes[box.lane].top && box.end <= lanes[box.lane].End()) << round;
            for (std::size_t b = 0; b < a; ++b) {
                const bool apart = box.right <= boxes[b].left || boxes[b].right <= box.left ||
                                   box.end <= boxes[b].top || boxes[b].end <= box.top;
                ASSERT_TRUE(apart) << round;
            }
        }
        for (const LaneLabel& label : labels) {
            const StripText& title = label.title;
            if (!title.text.empty()) {
                ASSERT_TRUE(IsOnTitle(labels, title.x, title.y));
                ASSERT_EQ(m_view.LaneAt(title.y), static_cast<std::size_t>(&label - labels.data()));
                ASSERT_FALSE(IsOnTitle(labels, title.x, title.y - 1)) << "the edge of a lane is its scale";
            }
            if (!label.bar) continue;
            ASSERT_FALSE(IsOnTitle(labels, label.bar->x, label.bar->top));
            ASSERT_FALSE(IsOnTitle(labels, label.bar->text.x, label.bar->text.y));
        }
        if (const std::int32_t width = WantedWidth(m_view.LanesOfChannels(), strip); lanes[0].height > font) {
            strip.width = width;
            strip.barsBeside = false;
            for (const LaneLabel& label : LaneLabels(m_view.LanesOfChannels(), lanes, strip))
                ASSERT_FALSE(label.title.text.ends_with(u'\u2026'));
        }
    }
    EXPECT_GT(bars, 30U);
    EXPECT_GT(cut, 30U);
    EXPECT_GT(factors, 30U);
}

TEST_F(LaneLabelsTest, LanesOfOneScaleLookAlikeThoughTheirHeightsDifferByARow) {
    std::mt19937 random(5);
    const auto sizeOf = [](const std::u16string& text) {
        return TextSize{static_cast<std::int32_t>(6 * text.size()), 13};
    };
    LoadAny(8, random);
    m_view.SetRawCodes(true);
    m_view.Arrange(300, 400);
    const ChannelLanes& channels = m_view.LanesOfChannels();
    for (std::size_t lane = 0; lane < 8; ++lane)
        m_view.ZoomChannel(lane, -channels.Scales().OwnOf(channels.Channels()[lane]).step);
    std::set<std::size_t> with;
    for (std::int32_t height = 240; height < 560; ++height) {
        m_view.Arrange(300, height);
        std::set<std::u16string> bars;
        for (const LaneLabel& label :
             LaneLabels(channels, m_view.GetLanes(), {.width = 150, .rawCodes = true, .sizeOf = sizeOf}))
            bars.insert(label.bar ? label.bar->text.text : std::u16string());
        EXPECT_EQ(bars.size(), 1U) << height;
        with.insert(bars.begin()->size());
    }
    EXPECT_GT(with.size(), 1U) << "lanes with and without bars";
}

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
