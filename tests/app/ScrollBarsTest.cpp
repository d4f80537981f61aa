#include "app/ScrollBars.h"

#include <gtest/gtest.h>

#include "support/ViewFixture.h"

namespace quillon {
namespace {

class ScrollBarsTest : public ::quillon::testing::ViewFixture {
  protected:
    ScrollBars m_bars{m_view};
};

TEST_F(ScrollBarsTest, TheTimeBarReachesBothEndsAndShowsWhereTheViewIs) {
    using enum ScrollAction;
    for (const auto& [action, thumb, column] : {std::tuple{LineOn, 0, 20},
                                                {PageOn, 0, 520},
                                                {LineBack, 0, 500},
                                                {PageBack, 0, 0},
                                                {PageBack, 0, 0},
                                                {End, 0, 100000},
                                                {ThumbDragged, TimeAxis::kScrollMax / 2, 49998},
                                                {ThumbSet, TimeAxis::kScrollMax, 100000},
                                                {Start, 9, 0}}) {
        const std::int32_t before = m_axis.FirstColumn();
        EXPECT_EQ(m_bars.ScrollTime(action, thumb).scrolled, column - before);
        EXPECT_EQ(m_axis.FirstColumn(), column);
        EXPECT_NEAR(m_bars.Time().position, column * 0.32767, 0.5);
    }
    m_view.Arrange(560, 400);
    m_bars.ScrollTime(PageOn, 0);
    EXPECT_EQ(m_axis.FirstColumn(), 500) << "whole divisions";
    EXPECT_EQ(m_bars.Time().page, 183) << "the share of the block that is seen";
    m_view.FitBlock();
    EXPECT_EQ(m_bars.Time().page, TimeAxis::kScrollMax);
}

TEST_F(ScrollBarsTest, TheAmplitudeBarIsRelativeToABaseLineOutOfItsReach) {
    using enum ScrollAction;
    constexpr int reach = ScrollBars::kBaseLineReach;
    const auto moved = [&](ScrollAction action, int thumb) {
        m_bars.ScrollAmplitude(action, thumb);
        return m_view.BaseLineShift();
    };
    m_view.SetBipolar();
    EXPECT_EQ(m_bars.Amplitude(), (ScrollBarValues{-reach, reach, 400, 0}));
    EXPECT_EQ(moved(ThumbDragged, 100), -100);
    EXPECT_EQ(m_bars.Amplitude().position, 100);
    EXPECT_EQ(moved(LineBack, 0), -80);
    EXPECT_EQ(moved(PageOn, 0), -480);
    EXPECT_EQ(moved(ThumbSet, -reach), reach);
    EXPECT_EQ(m_bars.Amplitude().position, -reach) << "just in reach";
    // Beyond it the bar starts anew in its middle, and a drag goes on from there.
    EXPECT_EQ(moved(LineBack, 0), reach + 20);
    EXPECT_EQ(m_bars.Amplitude().position, 0);
    EXPECT_EQ(moved(ThumbDragged, -30), reach + 50);
    EXPECT_EQ(m_bars.Amplitude().position, -30);
    EXPECT_EQ(moved(ThumbDragged, 60), reach - 40);
    EXPECT_EQ(m_bars.Amplitude().position, 40 - reach) << "in reach again, the bar is about zero";
}

}  // namespace
}  // namespace quillon
