#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"
#include "view/win/GDI_Utils.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// The real window over a recording with a spike at its second third.
class OverviewTest : public MainWindowTest {
  protected:
    static constexpr int kSpike = 40000;
    void StartOver(std::size_t channels) {
        std::vector<std::vector<std::int16_t>> frames(60000, std::vector<std::int16_t>(channels));
        for (std::size_t at = kSpike; at < kSpike + 60; ++at) frames[at].back() = 9000;
        static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, frames)));
        Start();
    }
    [[nodiscard]] bool IsSeen() const { return Place(pbOverview).bottom > Place(pbOverview).top; }
    [[nodiscard]] const TimeAxis& Axis() const { return m_global.view->Axis(); }
    /// Pixels left of the strip.
    [[nodiscard]] int Margin() const { return static_cast<int>(Place(pbGraph).left - Place(pbOverview).left); }
    [[nodiscard]] int ColumnOf(std::int32_t sample) const {
        return static_cast<int>(std::int64_t{sample} * Axis().Width() / 60000);
    }
    void Drag(int from, int to) const {
        const auto at = [&](int column) { return MAKELPARAM(Margin() + column, 18); };
        SendMessageW(Control(pbOverview), WM_LBUTTONDOWN, MK_LBUTTON, at(from));
        EXPECT_EQ(GetCapture(), Control(pbOverview));
        SendMessageW(Control(pbOverview), WM_MOUSEMOVE, MK_LBUTTON, at(to));
        SendMessageW(Control(pbOverview), WM_LBUTTONUP, 0, at(to));
        Pump();
        EXPECT_EQ(GetCapture(), nullptr);
    }
    /// Whether a trace lies in the upper rows of the strip.
    [[nodiscard]] bool HasPeakAt(int column) const {
        const Pixels pixels = Capture(pbOverview);
        const std::uint32_t behind = pixels.At(Margin() + column, pixels.height - 1);
        for (int beside = -1; beside <= 1; ++beside) {
            if (pixels.At(Margin() + column + beside, 8) != behind) return true;
        }
        return false;
    }
};

TEST_F(OverviewTest, ComesWithLanesUntilTheUserChooses) {
    StartOver(1);
    const RECT alone = Place(pbGraph);
    EXPECT_FALSE(IsSeen());
    Key('L');
    EXPECT_TRUE(IsSeen()) << "also for a single channel, which has no titles";
    EXPECT_TRUE(m_form->State().overviewShown);
    Key('O');
    EXPECT_FALSE(IsSeen());
    EXPECT_EQ(m_global.settings.window.overview, 2);
    Key('L');
    Key('O');
    ASSERT_TRUE(IsSeen());
    const RECT graph = Place(pbGraph);
    const RECT strip = Place(pbOverview);
    EXPECT_EQ(graph.left, alone.left);
    EXPECT_LT(graph.bottom, alone.bottom);
    EXPECT_EQ(strip.right, graph.right);
    EXPECT_GE(strip.top, Place(scScaleX).bottom);
    // In a low window the pictures need the room; the choice stays.
    Key('G');
    SetWindowPos(m_form->Window(), nullptr, 0, 0, 560, 300, SWP_NOMOVE | SWP_NOZORDER);
    Pump();
    EXPECT_FALSE(IsSeen());
    EXPECT_TRUE(m_form->State().overviewShown);
}

TEST_F(OverviewTest, ShowsTheWholeBlockAndMovesTheView) {
    StartOver(3);
    Key('L');
    ASSERT_TRUE(IsSeen());
    ASSERT_TRUE(WaitFor([&] { return !m_form->RunSlice(); }));
    EXPECT_TRUE(HasPeakAt(ColumnOf(kSpike)));
    EXPECT_FALSE(HasPeakAt(ColumnOf(kSpike) - 40));
    // A click beside the window goes there; a drag takes it on, and its edge makes the page longer.
    const std::int32_t before = Axis().FirstColumn();
    const double page = Axis().PageSeconds();
    Drag(ColumnOf(kSpike), ColumnOf(kSpike));
    const SampleSpan there = Axis().Visible();
    EXPECT_NEAR(there.first + there.count / 2, kSpike, 120);
    EXPECT_TRUE(GetFocus() == Control(pbGraph));
    Drag(ColumnOf(kSpike), ColumnOf(kSpike) - 60);
    EXPECT_NEAR(Axis().Visible().first, there.first - 60 * 60000 / Axis().Width(), 120);
    EXPECT_DOUBLE_EQ(Axis().PageSeconds(), page);
    Drag(ColumnOf(Axis().Visible().End()), ColumnOf(Axis().Visible().End()) + 50);
    EXPECT_GT(Axis().PageSeconds(), page);
    Command(mnuView + 2);
    Command(mnuView + 2);
    EXPECT_EQ(Axis().FirstColumn(), before);
    // What is shown decides: without the channel of the spike there is none.
    ClickCheckBox(2);
    Pump();
    EXPECT_FALSE(HasPeakAt(ColumnOf(kSpike)));
    // A mark is a tick at the upper edge.
    const auto top = [&] { return Capture(pbOverview).At(Margin() + 200, 1); };
    const std::uint32_t none = top();
    SetMarks({{200 * 60000 / Axis().Width() + 1, u"here"}});
    EXPECT_NE(top(), none);
}

}  // namespace
}  // namespace quillon
