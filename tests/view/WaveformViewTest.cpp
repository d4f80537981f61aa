#include "view/WaveformView.h"

#include <gtest/gtest.h>

#include <random>

#include "support/ViewFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

using WaveformViewTest = ViewFixture;

TEST_F(WaveformViewTest, BackReturnsToEarlierViews) {
    const auto first = Seen();
    m_view.Select(101, 200);
    EXPECT_TRUE(m_view.FitBlock().newPlace);
    EXPECT_EQ(m_axis.Visible().count, 100000);
    m_view.FitSelection();
    EXPECT_EQ(m_axis.ZoomIndex(), 0) << "it fits at 1:1";
    const auto selected = Seen();
    m_view.ZoomY(1);
    m_view.Back();
    EXPECT_EQ(Seen(), selected);
    m_view.Back();
    EXPECT_TRUE(m_view.Back().redraw);
    EXPECT_EQ(Seen(), first);
    EXPECT_FALSE(m_view.HasHistory());
    EXPECT_FALSE(m_view.Back().redraw);
    m_view.ZoomY(-1);  // the coarsest scale already
    EXPECT_FALSE(m_view.Back().redraw) << "the present view is no way back";
}

/// Whatever is done, a redraw is reported for every change that scrolling alone does not explain, and Back returns to
/// each view that a jump or zoom has left.
TEST_F(WaveformViewTest, ChangesAreReportedAndEveryJumpCanBeUndone) {
    std::mt19937 random(6);
    const auto any = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    for (int round = 0; round < 5000; ++round) {
        const auto before = Seen();
        const WaveformView::State state = m_view.Keep();
        ViewChange change;
        const int command = any(13);
        switch (command) {
            case 0: change = m_view.ScrollBy(any(2000) - 1000); break;
            case 1: change = m_view.SetScrollValue(any(TimeAxis::kScrollMax + 1)); break;
            case 2: change = m_view.Move(any(41) - 20, any(3) * 10 - 10); break;
            case 3: change = m_view.GoToPage(any(2) * 3); break;
            case 4: change = m_view.SelectZoomX(any(TimeAxis::kMenuZoomCount)); break;
            case 5: change = m_view.ZoomX(any(2) == 0); break;
            case 6: change = m_view.ZoomAbout(any(7) - 3, any(500)); break;
            case 7: change = m_view.ZoomY(any(7) - 3); break;
            case 8: change = m_view.SelectScaleY(any(AmplitudeScale::kScaleCount)); break;
            case 9: change = any(2) == 0 ? m_view.SetBipolar() : m_view.FindData(); break;
            case 10: change = any(2) == 0 ? m_view.FitBlock() : m_view.GoTo(1 + any(100000)); break;
            case 11: change = m_view.Select(1 + any(100000), 1 + any(100000)); break;
            default: change = m_view.Selected().active ? m_view.MoveSelectionEnd(any(3) - 1) : ViewChange{};
        }
        auto explained = before;
        std::get<1>(explained) += change.scrolled;
        ASSERT_TRUE(change.redraw || Seen() == explained) << command;
        ASSERT_TRUE(change.scrolled == 0 || change.newPlace) << command;
        if (command < 3 || command > 10) continue;
        const bool left = Seen() != before;
        if (left) {
            m_view.Back();
            ASSERT_EQ(Seen(), before) << command;
        }
        m_view.Restore(state);
    }
}

TEST_F(WaveformViewTest, TheNextMarkIsSoughtFromTheMiddleOrTheLastOne) {
    const auto middle = [&] { return SampleUnder(m_axis, m_axis.Width() / 2); };
    for (const std::int32_t mark : {30001, 70001}) {
        ASSERT_EQ(m_view.MarkFrom(true), mark);
        m_view.GoTo(mark);
        EXPECT_EQ(middle(), mark);
    }
    EXPECT_EQ(m_view.MarkFrom(true), std::nullopt);
    EXPECT_EQ(m_view.MarkFrom(false), 30001);
    m_view.GoTo(20);
    EXPECT_EQ(m_axis.FirstColumn(), 0) << "which cannot be in the middle";
    EXPECT_EQ(m_view.MarkFrom(false), std::nullopt);
    m_view.GoTo(30001);
    EXPECT_EQ(m_view.MarkFrom(false), std::nullopt);
    m_view.ScrollBy(1);
    EXPECT_EQ(m_view.MarkFrom(false), 30001) << "the view has changed, so its middle counts";
}

TEST_F(WaveformViewTest, StepsGoFromColumnToColumnAndTakeTheViewAlong) {
    EXPECT_EQ(m_view.StepFrom(490, 20).scrolled, 10) << "no further than needed";
    EXPECT_EQ(m_view.GoneTo(), 510);
    m_view.SelectZoomX(3);
    EXPECT_EQ(m_view.StepFrom(m_view.GoneTo(), -1).scrolled, 0);
    EXPECT_EQ(m_view.GoneTo(), 500) << "ten samples a column";
    m_view.ZoomY(1);
    EXPECT_EQ(m_view.GoneTo(), 500) << "the same samples are shown";
    EXPECT_EQ(m_view.MarkFrom(true), 30001);
    m_view.StepFrom(500, -60);
    EXPECT_EQ(m_view.GoneTo(), 1);
    m_view.StepFrom(99999, 20);
    EXPECT_EQ(m_view.GoneTo(), 100000);
    EXPECT_EQ(m_axis.LastColumnOf(99999), m_axis.Width() - 1);
    m_view.FitSamples({0, 1000});
    EXPECT_EQ(m_view.GoneTo(), 0);
}

TEST_F(WaveformViewTest, TheEndOfASelectionStaysInViewAndInTheBlock) {
    m_document.ChooseChannel(2);
    m_view.Select(400, 490);
    EXPECT_EQ(m_view.Selected().channel, 2);
    EXPECT_EQ(m_view.MoveSelectionEnd(20).scrolled, 10);
    EXPECT_EQ(m_view.Selected().end, 510);
    m_view.SelectZoomX(3);
    EXPECT_EQ(m_view.MoveSelectionEnd(-1).scrolled, 0);
    EXPECT_EQ(m_view.Selected().end, 500);
    m_view.MoveSelectionEnd(-60);
    EXPECT_EQ(m_view.Selected().First(), 1);
    m_view.ScrollBy(5000);
    EXPECT_LT(m_view.MoveSelectionEnd(0).scrolled, 0);
    EXPECT_EQ(m_axis.FirstColumn(), 0);
    m_view.SelectBlock();
    m_view.MoveSelectionEnd(1);
    EXPECT_EQ(m_view.Selected().Count(), 100000);
    m_view.Deselect();
    EXPECT_FALSE(m_view.Selected().active);
}

TEST_F(WaveformViewTest, AScaleIsKeptAsLongAsTheDataAreReadableAtIt) {
    const auto fit = [&](float least, float most) {
        m_view.FitScales(ValueRange{least, most});
        return AmplitudeScale::TableEntry(m_view.ScaleY());
    };
    m_view.FitScales(std::nullopt);
    EXPECT_FALSE(m_view.HasFittedScales());
    EXPECT_EQ(fit(-4.0F, 4.0F), 1.0);
    m_view.ZoomY(-1);
    EXPECT_EQ(fit(-4.0F, 4.0F), 2.0) << "the user's choice";
    EXPECT_EQ(fit(-90.0F, 90.0F), 20.0);
    // Find Data looks at the shown channels of the whole block, or at what codes can be.
    m_document.ShowAll(false);
    m_document.Show(2, true);
    m_view.Arrange(500, 400);
    EXPECT_EQ(m_view.GetLanes()[0].channels, std::vector<std::int16_t>{2});
    m_view.FindData();
    EXPECT_EQ(m_view.BaseLineShift(), 0) << "all its samples are the same";
    m_view.SelectScaleY(0);
    EXPECT_EQ(fit(0.0F, 0.0F), AmplitudeScale::TableEntry(0)) << "nothing to fit to";
    m_document.Show(1, true);
    m_view.Arrange(500, 400);
    m_view.FindData();
    EXPECT_EQ(AmplitudeScale::TableEntry(m_view.ScaleY()), 10.0) << "-49 to 4.5";
    m_view.SetRawCodes(true);
    m_view.FindData();
    EXPECT_EQ(AmplitudeScale::TableEntry(m_view.ScaleY()), 10.0) << "-32.767 to 32.767";
    EXPECT_EQ(m_view.BaseLineShift(), 0);
}

TEST_F(WaveformViewTest, BehindSilenceTheWholeBlockTellsTheScale) {
    const auto block = Sevens(1);
    for (std::size_t at = 50000; at < 100000; ++at)
        block->samples[0][at] = static_cast<std::int16_t>(static_cast<int>(at % 61) - 30);
    Load(block);
    const auto fit = [&] {
        m_view.FitScales(ValueRange{4.5F, 4.5F});
        return AmplitudeScale::TableEntry(m_view.ScaleY());
    };
    EXPECT_EQ(fit(), 5.0) << "15 to both sides";
    m_view.ZoomY(-1);
    EXPECT_EQ(fit(), 10.0) << "the user's choice";
}

TEST_F(WaveformViewTest, AReloadedRecordingKeepsItsView) {
    m_view.SelectZoomX(1);
    m_view.ScrollBy(40000);
    m_view.Select(60000, 90000);
    const auto before = Seen();
    const WaveformView::State state = m_view.Keep();
    Load(std::static_pointer_cast<FakeBlock>(m_document.Block().block));
    EXPECT_FALSE(m_view.Selected().active);
    m_view.Restore(state);
    EXPECT_EQ(Seen(), before);
    EXPECT_EQ(m_view.Selected().Last(), 90000);
    for (const std::int32_t samples : {70000, 300}) {
        Load(Sevens(1, samples));
        m_view.Restore(state);
        EXPECT_GT(m_axis.Visible().count, 0);
        EXPECT_EQ(m_view.Selected().active, samples == 70000);
        EXPECT_LE(m_view.Selected().Last(), samples);
    }
}

}  // namespace
}  // namespace quillon
