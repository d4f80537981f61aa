#include <gtest/gtest.h>

#include <random>

#include "support/ViewFixture.h"
#include "view/GraphGestures.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// In lanes: 100 000 samples of two channels at 100 Hz in 500 columns.
class FreeViewTest : public ViewFixture {
  protected:
    FreeViewTest() {
        m_view.SetLanes(true);
        EXPECT_TRUE(m_axis.IsFree());
    }
    [[nodiscard]] SampleSpan Visible() const { return m_axis.Visible(); }
    std::mt19937 m_random{41};
};

TEST_F(FreeViewTest, ChangingBetweenOneAxisAndLanesKeepsThePlace) {
    for (int zoom = 0; zoom < TimeAxis::kZoomCount; ++zoom) {
        m_view.SetLanes(false);
        ASSERT_FALSE(m_axis.IsFree());
        m_view.SelectZoomX(zoom);
        m_view.ScrollBy(static_cast<std::int32_t>(m_random() % 1000));
        const auto table = std::pair(m_axis.FirstColumn(), Visible());
        m_view.SetLanes(true);
        ASSERT_EQ(std::pair(m_axis.FirstColumn(), Visible()), table) << "nothing jumps";
        ASSERT_EQ(m_axis.ZoomIndex(), zoom);
        m_view.Arrange(440, 400);  // the titles of lanes take room
        ASSERT_EQ(std::pair(m_axis.FirstColumn(), m_axis.ZoomIndex()), std::pair(table.first, zoom));
        m_view.Arrange(500, 400);
        m_view.SetLanes(false);
        ASSERT_EQ(std::pair(m_axis.FirstColumn(), Visible()), table);
    }
    m_view.SelectZoomX(0);
    m_view.SetLanes(true);
    m_view.SelectPage(18.0);
    m_view.GoTo(50001);
    EXPECT_EQ(m_axis.ZoomIndex(), -1);
    m_view.SetLanes(false);
    EXPECT_EQ(m_axis.SamplesPerPixel(), 5) << "the nearest to 3.6";
    EXPECT_NEAR(SampleUnder(m_axis, 250), 50001, 5);
}

TEST_F(FreeViewTest, APageComesBackFromOneAxis) {
    for (int round = 0; round < 50; ++round) {
        m_view.Arrange(440, 400);
        m_view.SelectPage(3.0 + static_cast<double>(m_random() % 400) / 7.0);
        m_view.ScrollBy(static_cast<std::int32_t>(m_random() % 3000) - m_axis.FirstColumn());
        const TimeAxis::Place page = m_axis.GetPlace();
        const auto changeAxis = [this](bool lanes) {
            m_view.SetLanes(lanes);
            m_view.Arrange(lanes ? 440 : 500, 400);  // the titles of lanes take room
        };
        changeAxis(false);
        changeAxis(true);
        ASSERT_EQ(m_axis.GetPlace(), page) << round;
        changeAxis(false);
        m_view.ScrollBy(777);
        const std::int32_t middle = SampleUnder(m_axis, 250);
        m_view.SetLanes(true);
        ASSERT_NEAR(m_axis.PageSeconds(), page.chosen, 1e-6);
        const double columns = m_axis.SamplesPerPixel() + m_axis.Grid().SamplesPerColumn();
        ASSERT_NEAR(SampleUnder(m_axis, 250), middle, 1.0 + columns) << "of what is seen now";
    }
    m_view.SetLanes(false);
    m_view.ZoomX(true);
    const SampleSpan zoomed = Visible();
    m_view.SetLanes(true);
    EXPECT_EQ(Visible(), zoomed);
}

TEST_F(FreeViewTest, PagesAreExactAndEpochsStayEpochs) {
    for (const double rate : {100.0, 199.98, 1.0, 4096.5}) {
        Load(Sevens(2, 100000, rate));
        const double seconds = 30.0;
        m_view.SelectPage(seconds);
        const double page = std::min(seconds * rate, 100000.0);
        EXPECT_NEAR(m_axis.PageSeconds(), page / rate, 1e-9);
        for (int epoch = 0; epoch * page < 100000; ++epoch) {
            ASSERT_EQ(Visible().first, static_cast<std::int32_t>(std::floor(epoch * page + 1e-6))) << rate;
            m_view.Arrange(333 + epoch % 7 * 100, 400);  // the window's width does not matter
            m_view.GoToPage(2);
        }
        const std::int32_t last = Visible().first;
        EXPECT_GE(last + page, 100000.0);
        EXPECT_EQ(m_view.GoToPage(2).scrolled, 0) << "no page behind the last one";
        m_view.GoToPage(0);
        m_view.GoToPage(3);
        EXPECT_EQ(Visible().first, last);
        m_view.Arrange(500, 400);
    }
}

TEST_F(FreeViewTest, ThePageIsRememberedAcrossBlocksAndFiles) {
    EXPECT_NEAR(m_axis.ChosenPage(), 5.0, 1e-9) << "taken over from one sample per column";
    m_view.SelectPage(10.0);
    const auto page = [&](std::size_t channels, std::int32_t samples, double rate) {
        Load(Sevens(channels, samples, rate));
        return m_axis.PageSeconds();
    };
    EXPECT_EQ(page(2, 100000, 256.0), 10.0);
    EXPECT_EQ(page(2, 100000, 20000.0), 5.0) << "all that there is";
    EXPECT_EQ(Visible().count, 100000);
    EXPECT_EQ(page(1, 100000, 256.0), 10.0) << "one channel as well";
    EXPECT_EQ(page(3, 100000, 256.0), 10.0);
    m_view.FitBlock();
    EXPECT_EQ(page(3, 50000, 256.0), 10.0) << "what fitted one block is not meant for others";
    m_view.ZoomX(true);
    EXPECT_EQ(page(3, 100000, 100.0), 8.0);
    WaveformView another(m_document);
    another.SetLanes(true);
    another.SelectPage(20.0);  // of the settings, before there is a graph
    another.BlockLoaded();
    another.Arrange(300, 200);
    EXPECT_EQ(another.Axis().PageSeconds(), 20.0);
}

TEST_F(FreeViewTest, FitsAreExact) {
    m_view.FitBlock();
    EXPECT_EQ(Visible(), (SampleSpan{0, 100000}));
    EXPECT_EQ(m_axis.StripLength(), 500);
    EXPECT_FALSE(m_view.ZoomX(false).redraw);
    EXPECT_FALSE(m_axis.CanZoom(false));
    for (int round = 0; round < 500; ++round) {
        const auto first = static_cast<std::int32_t>(1 + m_random() % 99000);
        const auto count = static_cast<std::int32_t>(1 + m_random() % (round % 2 == 0 ? 40 : 900));
        m_view.Select(first, first + count - 1);
        m_view.FitSelection();
        const SampleSpan seen = Visible();
        ASSERT_LE(seen.first, first - 1);
        ASSERT_GE(seen.End(), first - 1 + count);
        if (count < 10) continue;  // fifty columns per sample leave room
        const double columns = 1.0 / m_axis.Grid().SamplesPerColumn();
        const auto band = BandOf(m_axis, {first - 1, count});
        ASSERT_TRUE(band->left <= 1 + columns && band->right >= 498 - columns) << count;
    }
    Load(Sevens(2, 3, 100.0));
    m_view.FitBlock();
    EXPECT_EQ(Visible(), (SampleSpan{0, 3}));
    EXPECT_EQ(m_axis.StripLength(), 500) << "the whole block, even at more than fifty columns per sample";
}

TEST_F(FreeViewTest, ZoomingKeepsASampleInPlaceAndReturnsExactly) {
    GraphGestures gestures(m_view);
    m_view.SelectPage(10.0);
    for (int round = 0; round < 300; ++round) {
        m_view.SelectPage(round % 2 == 0 ? 10.0 : 0.5);
        m_view.ScrollBy(static_cast<std::int32_t>(m_random() % 40000) - m_axis.FirstColumn());
        const auto column = static_cast<std::int32_t>(m_random() % 500);
        // In the middle of the column.
        const auto sample = static_cast<std::int32_t>(
            1 + std::floor((m_axis.FirstColumn() + column + (m_axis.Grid().ShowsEverySample() ? 0.0 : 0.5)) *
                           m_axis.Grid().SamplesPerColumn()));
        if (sample >= m_axis.SampleCount() || m_axis.FirstColumn() < 2000) continue;
        const ColumnGrid grid = m_axis.Grid();
        const std::int32_t first = m_axis.FirstColumn();
        for (const int turn : {1, 1, 1, -1, -1, -1}) {
            gestures.Wheel(turn * GraphGestures::kNotch, GraphZone::TimeScale, {.x = column});
            if (turn < 0) continue;
            const auto band = BandOf(m_axis, {sample - 1, 1});
            ASSERT_TRUE(band && band->left <= column + 1 && column - 1 <= band->right);
        }
        ASSERT_EQ(m_axis.Grid(), grid);
        ASSERT_NEAR(m_axis.FirstColumn(), first, grid.ShowsEverySample() ? 1 : 0);
    }
    // By keys: the sample gone to, else the hovered one, else the middle.
    m_view.SelectPage(10.0);
    m_view.GoTo(50001);
    m_view.ScrollBy(100);
    m_view.GoTo(50001);
    for (const bool in : {true, true, true, true, false, false}) {
        const std::int32_t before = m_axis.ColumnOf(50000);
        m_view.ZoomX(in, 50100);
        ASSERT_EQ(m_axis.ColumnOf(50000), before);
    }
    m_view.ScrollBy(3);
    const std::int32_t hovered = m_axis.ColumnOf(50019);
    m_view.ZoomX(true, 50020);
    EXPECT_EQ(m_axis.ColumnOf(50019), hovered);
    m_view.ScrollBy(3);
    const std::int32_t middle = SampleUnder(m_axis, 250);
    m_view.ZoomX(false, 90000);
    EXPECT_NEAR(SampleUnder(m_axis, 250), middle, 1) << "the hovered one is not visible";
}

TEST_F(FreeViewTest, BackRestoresViewsExactly) {
    std::uniform_real_distribution<double> share(0.0, 1.0);
    for (int round = 0; round < 300; ++round) {
        m_view.ScrollBy(static_cast<std::int32_t>(m_random() % 1000) - 500);
        const auto before = std::tuple(m_axis.Grid(), m_axis.FirstColumn(), m_axis.ChosenPage());
        bool changed = false;
        switch (round % 5) {
            case 0: changed = m_view.SelectPage(std::pow(1000.0, share(m_random)) / 3.0).redraw; break;
            case 1: changed = m_view.ZoomX(round % 2 == 0).redraw; break;
            case 2: changed = m_view.ZoomAbout(round % 3 - 1, 77).redraw; break;
            case 3: changed = m_view.SelectZoomX(round % 11).redraw; break;
            default: changed = m_view.SetLanes(false).redraw;
        }
        if (!changed) continue;
        m_view.Back();
        ASSERT_TRUE(m_axis.IsFree());
        ASSERT_EQ(std::tuple(m_axis.Grid(), m_axis.FirstColumn(), m_axis.ChosenPage()), before) << round;
        m_view.SelectPage(std::pow(1000.0, share(m_random)) / 3.0);
    }
    const WaveformView::State state = m_view.Keep();
    const auto seen = Visible();
    Load(std::static_pointer_cast<FakeBlock>(m_document.Block().block));
    m_view.Restore(state);
    EXPECT_EQ(Visible(), seen) << "after a reload";
    Load(Sevens(1));
    m_view.Restore(state);
    EXPECT_EQ(Visible().first, seen.first) << "the recording has one channel now";
    EXPECT_GT(Visible().count, 0);
}

TEST_F(FreeViewTest, TheScrollBarEndsWhereTheGraphIsFull) {
    m_view.FitBlock();
    EXPECT_FALSE(m_axis.CanScroll());
    EXPECT_EQ(m_view.ScrollBy(20).scrolled, 0);
    m_view.SelectPage(10.0);
    EXPECT_TRUE(m_axis.CanScroll());
    m_view.SetScrollValue(TimeAxis::kScrollMax);
    EXPECT_EQ(Visible().End(), 100000);
    EXPECT_EQ(m_axis.ScrollValue(), TimeAxis::kScrollMax);
    const double share = m_axis.ScrollPage() / static_cast<double>(m_axis.ScrollPage() + TimeAxis::kScrollMax);
    EXPECT_NEAR(share, static_cast<double>(m_axis.Width()) / m_axis.StripLength(), 1e-3);
    m_view.GoToPage(0);
    m_view.GoToPage(3);
    EXPECT_EQ(m_axis.FirstColumn() % m_axis.Width(), 0) << "pages stay pages";
    EXPECT_EQ(m_axis.ScrollValue(), TimeAxis::kScrollMax);
}

TEST_F(FreeViewTest, TheNearestPointIsRead) {
    m_view.SelectPage(0.5);  // 50 samples, of ten columns each
    EXPECT_EQ(SampleNear(m_axis, 34), 4);
    EXPECT_EQ(SampleNear(m_axis, 36), 5);
    EXPECT_EQ(SampleNear(m_axis, 499), 51);
    EXPECT_EQ(PointBand(m_axis, 5), (ColumnBand{40, 40}));
    EXPECT_EQ(PointBand(m_axis, 51), std::nullopt);
    m_view.SelectPage(100.0);
    EXPECT_EQ(SampleNear(m_axis, 36), SampleUnder(m_axis, 36));
    EXPECT_EQ(PointBand(m_axis, 741), BandOf(m_axis, {740, 1}));
}

TEST_F(FreeViewTest, ASelectionsEndMovesBySamplesAndStaysInView) {
    m_view.SelectPage(0.1);  // ten samples, of fifty columns each
    m_view.Select(5, 8);
    m_view.MoveSelectionEnd(1);
    EXPECT_EQ(m_view.Selected().end, 9) << "at least one";
    m_view.MoveSelectionEnd(100);
    EXPECT_EQ(m_view.Selected().end, 11);
    EXPECT_EQ(Visible().End(), 11);
    EXPECT_EQ(BandOf(m_axis, {10, 1})->right, 499) << "all of its columns";
    m_view.MoveSelectionEnd(-450);
    EXPECT_EQ(m_view.Selected().end, 2);
    EXPECT_EQ(m_axis.ColumnOf(1), 0);
}

}  // namespace
}  // namespace quillon
