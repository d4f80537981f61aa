#include <gmock/gmock.h>

#include <random>

#include "view/AmplitudeScale.h"
#include "view/ScaleLabels.h"
#include "view/TimeAxis.h"

namespace quillon {
namespace {

TimeAxis Axis(std::int32_t samples, std::int32_t width) {
    TimeAxis axis;
    axis.SetWidth(width);
    axis.SetBlock(samples);
    return axis;
}

TEST(TimeAxis, ZoomKeepsTheMiddleSample) {
    TimeAxis axis = Axis(1000000, 1000);
    EXPECT_FALSE(axis.SelectZoom(0));
    axis.ScrollBy(500000);
    EXPECT_TRUE(axis.SelectZoom(3));  // 10 samples per pixel
    EXPECT_EQ(axis.FirstColumn(), 50050 - 500);
    EXPECT_EQ(axis.StripLength(), 100000);
    EXPECT_TRUE(axis.SelectZoom(0));
    EXPECT_EQ(axis.FirstColumn(), 500000);
}

TEST(TimeAxis, ZoomingIntoAShortStripDoesNotLoseIt) {
    TimeAxis axis = Axis(5000, 1000);
    axis.SelectZoom(10);
    EXPECT_EQ(axis.StripLength(), 3);
    EXPECT_TRUE(axis.SelectZoom(4));
    EXPECT_EQ(axis.FirstColumn(), 0) << "the strip ends left of the middle: there is no sample to keep there";
    EXPECT_EQ(axis.Visible().Count(), 5000);
}

TEST(TimeAxis, PagesAndEndsStopAtTheStrip) {
    TimeAxis axis = Axis(1000, 250);
    EXPECT_EQ(axis.PageShift(2), 200);
    EXPECT_EQ(axis.ScrollBy(axis.PageShift(1)), 0);
    EXPECT_EQ(axis.ScrollBy(axis.PageShift(3)), 1000);
    EXPECT_EQ(axis.Visible().Count(), 0);
    EXPECT_EQ(axis.ScrollBy(axis.PageShift(1)), -200);
    EXPECT_EQ(axis.Visible().first, 801);
    EXPECT_EQ(axis.Visible().last, 1000);
    EXPECT_EQ(axis.ScrollBy(-2147483647 - 1), -800);
    EXPECT_EQ(Axis(1, 250).ScrollBy(1), 0) << "a strip of one column cannot be scrolled";
}

TEST(TimeAxis, RandomWalkStaysOnTheStripAndTheScrollBarFollows) {
    std::mt19937 random(11);
    for (const std::int32_t samples : {0, 1, 2, 999, 100000, 2147483647}) {
        TimeAxis axis = Axis(samples, 777);
        for (int step = 0; step < 2000; ++step) {
            switch (random() % 4) {
                case 0: axis.SelectZoom(static_cast<int>(random() % TimeAxis::kZoomCount)); break;
                case 1: axis.ScrollBy(static_cast<std::int32_t>(random())); break;
                case 2: axis.ScrollBy(axis.PageShift(static_cast<int>(random() % 4))); break;
                default: axis.SetScrollValue(static_cast<std::int32_t>(random() % 40000)); break;
            }
            ASSERT_GE(axis.FirstColumn(), 0);
            ASSERT_LE(axis.FirstColumn(), axis.StripLength());
            ASSERT_GE(axis.ScrollValue(), 0);
            ASSERT_LE(axis.ScrollValue(), TimeAxis::kScrollMax);
            const VisibleRange visible = axis.Visible();
            if (visible.Count() > 0) {
                ASSERT_GE(visible.first, 1);
                ASSERT_LE(visible.last, samples);
            }
        }
    }
}

TEST(AmplitudeScale, StepsKeepTheBaseLineValue) {
    AmplitudeScale scale;
    scale.SetGraph(400, 200);
    EXPECT_EQ(scale.UnitsPerDivision(), 1000.0F);
    EXPECT_EQ(AmplitudeScale::TableEntry(5), 20.0F);
    EXPECT_EQ(AmplitudeScale::TableEntry(18), 0.001F);
    scale.MoveBaseLine(40);  // one division: 1000 units
    scale.ZoomY(1);
    EXPECT_EQ(scale.Shift(), 80);
    scale.SelectScale(2);
    EXPECT_EQ(scale.Shift(), 200);
    scale.ZoomY(-100);
    EXPECT_EQ(scale.Index(), 0);
    EXPECT_EQ(scale.Shift(), 40);
    for (int step = 0; step < 40; ++step) scale.ZoomY(1);
    EXPECT_EQ(scale.Index(), 18);
    scale.SetBipolar();
    EXPECT_EQ(scale.ZeroRow(), 200);
}

TEST(AmplitudeScale, FindDataTakesTheFinestScaleThatHoldsTheRange) {
    AmplitudeScale scale;
    scale.SetGraph(402, 201);  // ten divisions
    scale.FindData(ValueRange{-5.0F, 5.0F});
    EXPECT_EQ(scale.UnitsPerDivision(), 1.0F);
    EXPECT_EQ(scale.Shift(), 0);
    scale.FindData(ValueRange{10.0F, 20.5F});
    EXPECT_EQ(scale.UnitsPerDivision(), 2.0F);
    EXPECT_EQ(scale.Shift(), 305) << "15.25 units are 305 rows: the middle of the data lies in the middle";
    EXPECT_TRUE(scale.Shows({10.0F, 20.5F}));
    EXPECT_FALSE(scale.Shows({100.0F, 120.0F}));
    EXPECT_FALSE(scale.Shows({15.0F, 15.1F}));
    EXPECT_FALSE(scale.Shows({10.0F, 40.0F})) << "most of it lies above the graph";
    scale.FindData(ValueRange{-1e9F, 1e9F});
    EXPECT_EQ(scale.Index(), 0);
    scale.SelectScale(7);
    scale.MoveBaseLine(33);
    scale.FindData(ValueRange{4.0F, 4.0F});
    EXPECT_EQ(scale.Index(), 7);
    EXPECT_EQ(scale.Shift(), 0);
}

TEST(ScaleLabels, StandAtTheirDivisions) {
    TimeAxis axis = Axis(100000, 250);
    ViewBlock block;
    block.sampleCount = 100000;
    block.sampleRate = 500.0;
    axis.ScrollBy(130);
    const std::vector<ScaleLabel> times = TimeLabels(axis, block, {});
    ASSERT_EQ(times.size(), 3U);
    EXPECT_EQ(times[0].position, -30);
    EXPECT_EQ(times[0].text, u"0.2");
    EXPECT_EQ(times[2].position, 170);
    EXPECT_EQ(times[2].text, u"0.6");

    AmplitudeScale scale;
    scale.SetGraph(100, 50);
    scale.SelectScale(10);  // 0.5 units per division
    for (const std::int32_t rows : {0, 17, 5000, -7003}) {
        scale.SetBipolar();
        scale.MoveBaseLine(rows);
        for (const ScaleLabel& label : AmplitudeLabels(scale, false, u'.')) {
            const double value = (scale.ZeroRow() + 1 - label.position) / 40.0 * 0.5;
            EXPECT_NEAR(std::stod(std::string(label.text.begin(), label.text.end())), value, 1e-9);
            EXPECT_GE(label.position, -40);
        }
        EXPECT_GE(AmplitudeLabels(scale, false, u'.').size(), 3U);
    }
}

TEST(VisibleMarks, LieInTheirColumnsAndLookTheSameWhereverTheyLie) {
    TimeAxis axis = Axis(100000, 100);
    axis.SelectZoom(3);
    axis.ScrollBy(axis.PageShift(0));
    axis.ScrollBy(50);  // samples 501 to 1500, 10 per column
    ViewBlock block;
    block.sampleCount = 100000;
    block.marks = {{9, u"text reaches in"}, {1499, u"last"},  {500, u"first"},
                   {505, u"same column"},   {1520, u"after"}, {60000, u"far"}};
    std::vector<MarkLine> lines = VisibleMarks(axis, block);
    ASSERT_EQ(lines.size(), 3U) << "one line stands for both marks of the first column";
    EXPECT_EQ(lines[0].column, -50);
    EXPECT_EQ(lines[0].textWidth, 50);
    EXPECT_EQ(lines[1].column, 0);
    EXPECT_EQ(lines[1].markIndex, 2);
    EXPECT_EQ(lines[1].textWidth, 99);
    EXPECT_EQ(lines[2].column, 99);
    EXPECT_EQ(lines[2].textWidth, 3) << "up to the next one, though it is out of view";
    axis.ScrollBy(60);
    lines = VisibleMarks(axis, block);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[3].textWidth, kMarkTextWidth);
}

}  // namespace
}  // namespace quillon
