#include <gtest/gtest.h>

#include <map>
#include <random>

#include "base/Text.h"
#include "view/AmplitudeScale.h"
#include "view/ScaleLabels.h"
#include "view/Selection.h"
#include "view/TimeAxis.h"

namespace quillon {
namespace {

TimeAxis Axis(std::int32_t samples, std::int32_t width) {
    TimeAxis axis;
    axis.SetWidth(width);
    axis.SetBlock(samples);
    return axis;
}

TEST(TimeAxis, RandomWalkStaysOnTheStripAndKeepsTheSampleUnderThePointer) {
    std::mt19937 random(11);
    for (const std::int32_t samples : {0, 1, 2, 999, 100000, 2147483647}) {
        TimeAxis axis = Axis(samples, 777);
        for (int step = 0; step < 2000; ++step) {
            const int zoom = static_cast<int>(random() % TimeAxis::kZoomCount);
            const auto column = static_cast<std::int32_t>(random() % 777);
            const std::int32_t sample = SampleUnder(axis, column);
            const auto far = static_cast<std::int32_t>(random());
            switch (random() % 6) {
                case 0: axis.SelectZoom(zoom); break;
                case 1:
                case 2: {
                    const std::int32_t shift = random() % 2 == 0 ? far : axis.PageShift(static_cast<int>(far & 3));
                    const std::int32_t before = axis.FirstColumn();
                    const std::int64_t to =
                        std::clamp<std::int64_t>(std::int64_t{before} + shift, 0, axis.StripLength());
                    ASSERT_EQ(axis.ScrollBy(shift), axis.StripLength() > 1 ? to - before : 0);
                    break;
                }
                case 3: axis.SetScrollValue(static_cast<std::int32_t>(random() % 40000)); break;
                case 4:
                    // At the block's ends the strip cannot move further.
                    if (!axis.SelectZoomAbout(zoom, column) || axis.FirstColumn() == 0 || sample == samples) break;
                    ASSERT_EQ(BandOf(axis, {sample - 1, 1})->left, column);
                    break;
                default:
                    if (samples == 0) break;
                    const std::int32_t last =
                        sample + static_cast<std::int32_t>(
                                     std::int64_t{samples - sample} * static_cast<std::int64_t>(random()) >> 32);
                    axis.ShowSamples({sample - 1, last - sample + 1});
                    ASSERT_LT(axis.Visible().first, sample);
                    ASSERT_EQ(BandOf(axis, {0, samples})->left, 0);
                    ASSERT_GE(axis.Visible().End(), last);
                    ASSERT_TRUE(axis.ZoomIndex() == 0 ||
                                last - sample + 1 > 776LL * TimeAxis::TableEntry(axis.ZoomIndex() - 1))
                        << "no coarser than needed";
            }
            ASSERT_GE(axis.FirstColumn(), 0);
            ASSERT_LE(axis.FirstColumn(), axis.StripLength());
            ASSERT_GE(axis.ScrollValue(), 0);
            ASSERT_LE(axis.ScrollValue(), TimeAxis::kScrollMax);
            const SampleSpan visible = axis.Visible();
            ASSERT_TRUE(visible.count == 0 || (visible.first >= 0 && visible.count > 0 && visible.End() <= samples));
        }
        axis.Restore(TimeAxis::kZoomCount - 1, 1);
        axis.SetBlock(samples);
        EXPECT_EQ(std::pair(axis.ZoomIndex(), axis.FirstColumn()), std::pair(TimeAxis::kMenuZoomCount - 1, 0));
    }
}

TEST(AmplitudeScale, FindDataTakesTheFinestScaleThatHoldsTheRange) {
    AmplitudeScale scale;
    scale.SetGraph(402, 201);  // ten divisions
    scale.FindData(ValueRange{-5.0F, 5.0F});
    EXPECT_EQ(scale.UnitsPerDivision(), 1.0);
    EXPECT_EQ(scale.Shift(), 0);
    scale.FindData(ValueRange{10.0F, 20.5F});
    EXPECT_EQ(scale.UnitsPerDivision(), 2.0);
    EXPECT_EQ(scale.Shift(), 305) << "15.25 units are 305 rows: the middle of the data lies in the middle";
    // An eighth of the graph is 2.5 units; four fifths have to lie inside of 5.2 to 25.3.
    const std::pair<ValueRange, bool> seen[] = {
        {{10.0F, 20.5F}, true},   {{100.0F, 120.0F}, false}, {{15.0F, 15.1F}, false}, {{12.0F, 14.55F}, true},
        {{12.0F, 14.45F}, false}, {{15.6F, 27.6F}, true},    {{15.6F, 28.0F}, false}, {{10.0F, 40.0F}, false}};
    for (const auto& [range, shown] : seen) EXPECT_EQ(scale.Shows(range), shown) << range.minimum;
    // The middle of the data is that of the graph wherever the centre line is.
    scale.SetGraph(402, 150);
    scale.FindData(ValueRange{10.0F, 20.5F});
    EXPECT_EQ(scale.ZeroRow(), 201 + 305);
    scale.SetGraph(401, 200);  // nine divisions and a bit
    scale.FindData(ValueRange{-5.0F, 5.0F});
    EXPECT_EQ(scale.UnitsPerDivision(), 2.0);
    scale.FindData(ValueRange{-1e9F, 1e9F});
    EXPECT_EQ(scale.Index(), 0);
    scale.SelectScale(7);
    scale.MoveBaseLine(33);
    scale.FindData(ValueRange{4.0F, 4.0F});
    EXPECT_EQ(scale.Index(), 7);
    EXPECT_EQ(scale.Shift(), 0);
}

TEST(TimeLabels, StandAtTheirDivisionsAndTellTimesOfDayAcrossMidnightAndSampleNumbers) {
    TimeAxis axis = Axis(100000, 250);
    ViewBlock block;
    block.sampleCount = 100000;
    block.sampleRate = 500.0;
    block.startTime = 45000.0 + 86399.6 / 86400.0;
    axis.ScrollBy(130);
    const auto labels = [&](const FormatOptions& format) {
        std::string all;
        for (const ScaleLabel& label : TimeLabels(axis, block, format))
            all += std::to_string(label.position) + ' ' + Utf8(label.text) + '|';
        return all;
    };
    FormatOptions format;
    EXPECT_EQ(labels(format), "-30 0.2|70 0.4|170 0.6|");
    format.timeOfDay = true;
    EXPECT_EQ(labels(format), "-30 23:59:59.8|70 0:00:00|170 0:00:00.2|");
    format.sampleIndexes = true;
    EXPECT_EQ(labels(format), "-30 101|70 201|170 301|");
    block.sampleRate = 0.0;
    EXPECT_EQ(labels({}), "-30 101|70 201|170 301|") << "without a rate there are no times";
}

TEST(AmplitudeLabels, StandAtTheirDivisions) {
    AmplitudeScale scale;
    scale.SetGraph(100, 50);
    scale.SelectScale(10);  // 0.5 units per division
    const auto labels = [&](bool rawCodes) {
        return AmplitudeLabels(
            Lane{.height = 100, .zeroRow = scale.ZeroRow(), .unitsPerDivision = scale.UnitsPerDivision()}, rawCodes,
            u'.');
    };
    // 3000000000 rows stand for 37.5 million units.
    for (const std::int64_t rows : {0LL, 17LL, 5000LL, -7003LL, 3000000000LL}) {
        scale.SetBipolar();
        scale.MoveBaseLine(rows);
        for (const ScaleLabel& label : labels(false)) {
            const double value = static_cast<double>(scale.ZeroRow() + 1 - label.position) / 40.0 * 0.5;
            EXPECT_NEAR(std::stod(std::string(label.text.begin(), label.text.end())), value, 1e-9);
            EXPECT_GE(label.position, -40);
        }
        EXPECT_GE(labels(false).size(), 3U);
    }
    // Codes count 1000 to a unit, in thousands and millions from 100 and 100 000 a division on.
    scale.SetBipolar();
    const auto codes = [&](int index) {
        scale.SelectScale(index);
        return Utf8(labels(true)[0].text + u"|" + ScaleCaption(index, true, u'.'));
    };
    EXPECT_EQ(codes(0), "2 M|1 M");
    EXPECT_EQ(codes(3), "0.2 M|0.1 M");
    EXPECT_EQ(codes(4), "100 k|50 k");
    EXPECT_EQ(codes(12), "0.2 k|0.1 k");
    EXPECT_EQ(codes(13), "100|50");
    EXPECT_EQ(ScaleCaption(16, false, u','), u"0,005");
    EXPECT_EQ(ZoomCaption(8) + ZoomCaption(9) + ZoomCaption(10), u"500:11k:12k:1");
}

TEST(VisibleMarks, LieInTheirColumnsAndLookTheSameWhereverTheyLie) {
    TimeAxis axis = Axis(100000, 100);
    axis.SelectZoom(3);
    axis.ScrollBy(axis.PageShift(0));
    axis.ScrollBy(50);  // samples 501 to 1500, 10 per column
    ViewBlock block;
    block.marks = {{9, u"text reaches in"}, {500, u"first"},  {505, u"same column"},
                   {1499, u"last"},         {1520, u"after"}, {60000, u"far"}};
    const auto lines = [&] {
        std::string all;
        for (const MarkLine& line : VisibleMarks(axis, block))
            all += Utf8(block.marks[static_cast<std::size_t>(line.markIndex)].text) + " at " +
                   std::to_string(line.column) + ", row " + std::to_string(line.row) + ", " +
                   std::to_string(line.textWidth) + " wide|";
        return all;
    };
    // One line stands for both marks of the first column; texts near each other are in rows, and a text ends at the
    // next mark of its row, though that is out of view.
    EXPECT_EQ(lines(),
              "text reaches in at -50, row 0, 149 wide|first at 0, row 1, 102 wide|last at 99, row 0, 300 wide|");
}

TEST(VisibleMarks, RowsDoNotDependOnThePlace) {
    TimeAxis axis = Axis(100000, 300);
    axis.SelectZoom(3);
    ViewBlock block;
    block.sampleCount = 100000;
    for (std::int32_t mark = 0, at = 0; at < 99000; at += 10 + 97 * mark % 1200, ++mark)
        block.marks.push_back({at, Decimal(mark)});
    std::map<std::int32_t, std::pair<std::int32_t, std::int32_t>> known;
    for (int step = 0; step < 60; ++step) {
        for (const MarkLine& line : VisibleMarks(axis, block)) {
            const std::pair looks(line.row, line.textWidth);
            EXPECT_EQ(known.try_emplace(line.markIndex, looks).first->second, looks) << line.markIndex;
        }
        axis.ScrollBy(37);
    }
    EXPECT_GT(known.size(), 30U);
}

TEST(VisibleMarks, SpansAreCutAndJoined) {
    TimeAxis axis = Axis(100000, 100);
    axis.SelectZoom(3);
    axis.ScrollBy(axis.PageShift(0));
    axis.ScrollBy(50);  // samples 501 to 1500, 10 per column
    ViewBlock block;
    block.sampleRate = 100.0;
    block.sampleCount = 100000;
    block.marks = {{0, u"epoch", 6.0},  {0, u"over", 2.0},    {590, u"in it", 0.2},  {700, u"no length"},
                   {800, u"next", 1.0}, {900, u"joins", 0.5}, {1400, u"cut", 900.0}, {1600, u"behind", 1.0}};
    std::string all;
    for (const MarkSpan& span : VisibleSpans(axis, block))
        all += std::to_string(span.first) + "-" + std::to_string(span.last) + " ";
    EXPECT_EQ(all, "0-10 30-44 90-99 ");
}

}  // namespace
}  // namespace quillon
