#include "view/GraphGestures.h"

#include <gtest/gtest.h>

#include "support/ViewFixture.h"

namespace quillon {
namespace {

using Kind = GraphGestures::Kind;

class GraphGesturesTest : public ::quillon::testing::ViewFixture {
  protected:
    /// With the left button, from column to column.
    ViewChange Drag(std::int32_t from, std::int32_t to, bool shift = false) {
        m_gestures.Press(GraphButton::Left, GraphZone::Traces, {.x = from, .y = 50, .shift = shift});
        m_gestures.Move({.x = to, .y = 60, .shift = shift});
        return m_gestures.Release({.x = to, .y = 60, .shift = shift});
    }
    GraphGestures m_gestures{m_view};
    const Selection& m_selected = m_view.Selected();
};

TEST_F(GraphGesturesTest, TheLeftButtonSelectsTheSamplesOfItsColumns) {
    m_view.ScrollBy(1000);
    EXPECT_TRUE(Drag(100, 149).selection);
    EXPECT_EQ(m_selected.Count(), 50);
    EXPECT_EQ(m_selected.start, 1101);
    Drag(149, 100);
    EXPECT_EQ(m_selected.start, 1150);
    EXPECT_EQ(m_selected.end, 1101) << "leftwards the end lies before the start";
    Drag(119, 130, true);
    EXPECT_EQ(m_selected.start, 1150);
    EXPECT_EQ(m_selected.end, 1131) << "Shift moves the end";
    Drag(300, 300);
    EXPECT_FALSE(m_selected.active) << "a click drops the selection";
    Drag(300, 400, true);
    EXPECT_EQ(m_selected.start, 1301) << "without a selection Shift begins one";
    Drag(100, 9000);
    EXPECT_EQ(m_selected.end, 1500) << "a release beside the graph ends at its edge";
    // A gesture whose mouse is taken away stays as far as it came.
    m_gestures.Press(GraphButton::Left, GraphZone::Traces, {.x = 10});
    m_gestures.Move({.x = 40});
    EXPECT_FALSE(m_gestures.Press(GraphButton::Middle, GraphZone::Traces, {.x = 10}).redraw);
    EXPECT_EQ(m_gestures.Current(), Kind::Select) << "one at a time";
    m_gestures.Cancel();
    EXPECT_EQ(m_gestures.Current(), Kind::None);
    EXPECT_EQ(m_selected.Last(), 1041);
    EXPECT_FALSE(m_gestures.Move({.x = 90}).selection);
    // Another command drops the selection in mid-drag.
    m_gestures.Press(GraphButton::Left, GraphZone::Traces, {.x = 10});
    m_view.Deselect();
    m_gestures.Release({.x = 40});
    EXPECT_FALSE(m_selected.active);
}

TEST_F(GraphGesturesTest, BesideTheGraphTheViewScrollsOnToTheEndsOfTheBlock) {
    m_view.ScrollBy(50000);
    m_gestures.Press(GraphButton::Left, GraphZone::Traces, {.x = 100});
    EXPECT_FALSE(m_gestures.IsBeside());
    EXPECT_EQ(m_gestures.AutoScroll().scrolled, 0);
    for (const auto& [x, shift] : {std::pair(500, 1), {529, 30}, {5000, 100}, {-1, -1}, {-7000, -100}}) {
        m_gestures.Move({.x = x});
        EXPECT_TRUE(m_gestures.IsBeside());
        EXPECT_EQ(m_gestures.AutoScroll().scrolled, shift);
        EXPECT_EQ(m_selected.end, m_axis.FirstColumn() + (x < 0 ? 1 : 500));
    }
    while (m_gestures.AutoScroll().scrolled != 0) {
    }
    EXPECT_EQ(m_selected.First(), 1);
    m_gestures.Move({.x = 900});
    while (m_gestures.AutoScroll().scrolled != 0) {
    }
    EXPECT_EQ(m_axis.FirstColumn(), 99500) << "the last page stays full";
    EXPECT_EQ(m_selected.end, 100000);
    m_gestures.Release({.x = 200});
    EXPECT_FALSE(m_gestures.IsBeside());
    EXPECT_EQ(m_selected.end, 99701);
}

TEST_F(GraphGesturesTest, TheMiddleButtonDragsTheViewAndTheScaleItsBaseLine) {
    m_view.ScrollBy(1000);
    m_view.MoveBaseLine(7);
    m_gestures.Press(GraphButton::Middle, GraphZone::Traces, {.x = 300, .y = 200});
    EXPECT_EQ(m_gestures.Move({.x = 290, .y = 200}).scrolled, 10);
    EXPECT_TRUE(m_gestures.Move({.x = 310, .y = 170}).redraw);
    EXPECT_EQ(m_axis.FirstColumn(), 990);
    EXPECT_EQ(m_view.BaseLineShift(), -23);
    m_gestures.Move({.x = 5000, .y = 200});
    m_gestures.Release({.x = 300, .y = 200});
    EXPECT_EQ(m_axis.FirstColumn(), 0) << "as far as it was moved";
    EXPECT_EQ(m_gestures.Current(), Kind::None);
    m_gestures.Press(GraphButton::Left, GraphZone::AmplitudeScale, {.y = 100});
    EXPECT_EQ(m_gestures.Current(), Kind::BaseLine);
    m_gestures.Move({.x = 70, .y = 60});
    m_gestures.Release({.x = 70, .y = 60});
    EXPECT_EQ(m_view.BaseLineShift(), -33);
    EXPECT_EQ(m_axis.FirstColumn(), 0);
    for (const GraphZone zone : {GraphZone::TimeScale, GraphZone::Spectrogram}) {
        m_gestures.Press(GraphButton::Left, zone, {.x = 5});
        EXPECT_EQ(m_gestures.Current(), Kind::None);
    }
}

TEST_F(GraphGesturesTest, TheWheelActsOnWhatIsUnderThePointer) {
    struct Turn {
        GraphZone over;
        GraphPointer pointer;
        int columns, zooms, scales;
    };
    using enum GraphZone;
    const GraphPointer plain{.x = 250};
    const GraphPointer shift{.x = 250, .shift = true};
    const GraphPointer control{.x = 250, .control = true};
    const GraphPointer both{.x = 250, .shift = true, .control = true};
    const GraphPointer alt{.x = 250, .alt = true};
    for (const Turn& turn : {Turn{Traces, plain, 100, 0, 0}, Turn{Spectrogram, plain, 100, 0, 0},
                             Turn{Traces, shift, 20, 0, 0}, Turn{Traces, control, 0, 1, 0},
                             Turn{Traces, both, 0, 0, -1}, Turn{Traces, alt, 0, 0, -1}, Turn{TimeScale, plain, 0, 1, 0},
                             Turn{AmplitudeScale, plain, 0, 0, -1}, Turn{AmplitudeScale, control, 0, 0, -1}}) {
        m_view.SelectZoomX(2);
        m_view.SelectScaleY(8);
        m_view.ScrollBy(1000 - m_axis.FirstColumn());
        const std::int32_t under = SampleUnder(m_axis, 250);
        EXPECT_FALSE(m_gestures.Wheel(50, turn.over, turn.pointer).redraw) << "taken back by the reversal";
        EXPECT_FALSE(m_gestures.Wheel(-70, turn.over, turn.pointer).redraw);
        m_gestures.Wheel(-GraphGestures::kNotch + 70, turn.over, turn.pointer);
        EXPECT_EQ(m_axis.ZoomIndex(), 2 + turn.zooms);
        EXPECT_EQ(m_view.ScaleY(), 8 + turn.scales);
        EXPECT_EQ(SampleUnder(m_axis, 250), under + turn.columns * 5) << "the sample under the pointer stays there";
    }
    m_gestures.Wheel(3 * GraphGestures::kNotch, TimeScale, plain);
    EXPECT_EQ(m_axis.ZoomIndex(), 0);
}

}  // namespace
}  // namespace quillon
