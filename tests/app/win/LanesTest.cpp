#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using namespace ::quillon::testing;

/// A window over one recording, in lanes.
class LanesTest : public MainWindowTest {
  protected:
    void StartWith(int channels) {
        static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, Noise(5000, channels))));
        Start();
        Key('L');
    }
    [[nodiscard]] const WaveformView& View() const { return *m_global.view; }
    [[nodiscard]] const Lane& At(std::size_t lane) const { return View().GetLanes().at(lane); }
    [[nodiscard]] std::vector<std::int16_t> Order() const { return View().LanesOfChannels().Order(); }
    /// A place of the strip: in the title of a lane, or below it in its scale.
    [[nodiscard]] POINT Title(std::size_t lane) const { return {8, At(lane).top + 8}; }
    [[nodiscard]] POINT Scale(std::size_t lane) const { return {8, At(lane).End() - 4}; }
    void Mouse(int control, UINT message, POINT at, WPARAM keys = 0) const {
        SendMessageW(Control(control), message, keys, MAKELPARAM(at.x, at.y));
    }
    void Drag(POINT from, POINT to) const {
        Mouse(pbScaleY, WM_LBUTTONDOWN, from, MK_LBUTTON);
        Mouse(pbScaleY, WM_MOUSEMOVE, to, MK_LBUTTON);
        Mouse(pbScaleY, WM_LBUTTONUP, to);
        Pump();
    }
    void DoubleClick(POINT at) const {
        Drag(at, at);
        Mouse(pbScaleY, WM_LBUTTONDBLCLK, at, MK_LBUTTON);
        Mouse(pbScaleY, WM_LBUTTONUP, at);
        Pump();
    }
};

TEST_F(LanesTest, TitlesAndScalesAreWorkedByTheMouse) {
    StartWith(4);
    ASSERT_EQ(View().GetLanes().size(), 4U);
    EXPECT_TRUE(m_global.settings.window.lanes) << "remembered";
    const Pixels strip = Capture(pbScaleY);
    for (std::int16_t channel = 1; channel <= 4; ++channel) {
        const Lane& lane = At(static_cast<std::size_t>(channel - 1));
        int inLane = 0;
        for (int y = lane.top; y < lane.End(); ++y) {
            for (int x = 4; x < strip.width; ++x)
                inLane += strip.At(x, y) == TraceColor(static_cast<std::int16_t>(channel - 1)) ? 1 : 0;
        }
        EXPECT_GT(inLane, 20) << "title of channel " << channel;
    }
    // A click chooses, in the strip as in the graph; the list follows.
    Drag(Title(2), Title(2));
    EXPECT_EQ(m_global.document->CurrentChannel(), 3);
    EXPECT_EQ(ListView_GetNextItem(Control(lvCh), -1, LVNI_SELECTED), 2);
    const POINT second{100, At(1).top + 20};
    Mouse(pbGraph, WM_LBUTTONDOWN, second, MK_LBUTTON);
    Mouse(pbGraph, WM_LBUTTONUP, second);
    EXPECT_EQ(m_global.document->CurrentChannel(), 2);
    EXPECT_THAT(Status(StatusPanel::Scale), HasSubstr(L" / lane"));
    // A drag of a title orders, one of a scale moves.
    Drag(Title(0), Title(2));
    EXPECT_THAT(Order(), ElementsAre(2, 3, 1, 4));
    const std::int64_t still = At(0).zeroRow;
    const std::int64_t moved = At(1).zeroRow;
    Drag(Scale(1), {8, Scale(1).y - 30});
    EXPECT_EQ(At(1).zeroRow, moved - 30);
    EXPECT_EQ(At(0).zeroRow, still);
    DoubleClick(Scale(1));
    EXPECT_NE(At(1).zeroRow, moved - 30) << "fitted";
    DoubleClick(Title(1));
    EXPECT_THAT(Order(), ElementsAre(3)) << "alone";
    DoubleClick(Title(0));
    EXPECT_THAT(Order(), ElementsAre(2, 3, 1, 4));
    // Values are told by titles.
    Point(pbGraph, 50, 50);
    Mouse(pbGraph, WM_MOUSEMOVE, {50, 50});
    EXPECT_THAT(Wide(m_form->ValuesText()), HasSubstr(L"Signal 1:"));
}

TEST_F(LanesTest, MeasuringFromAPinnedSampleStandsUntilEsc) {
    StartWith(4);
    const Pixels before = Capture(pbGraph);
    const auto readOut = [this](LONG x) {
        Point(pbGraph, static_cast<int>(x), 50);
        Mouse(pbGraph, WM_MOUSEMOVE, {x, 50});
        Pump();
    };
    readOut(50);
    Command(mnuPin);
    EXPECT_EQ(m_global.view->Pinned(), SampleNear(m_global.view->Axis(), 50));
    EXPECT_THAT(Wide(m_form->ValuesText()), HasSubstr(L"dX:\t0"));
    readOut(150);
    const std::wstring told = Wide(m_form->ValuesText());
    EXPECT_THAT(told, HasSubstr(L"1/dX:\t"));
    const Pixels measured = Capture(pbGraph);
    // Beside the graph, and where the pinned sample is not visible any more.
    Point(pbScaleX, 10, 5);
    Mouse(pbGraph, WM_MOUSEMOVE, {-50, 50});
    Pump();
    EXPECT_EQ(Wide(m_form->ValuesText()), told);
    Command(mnuGoTo + 3);
    EXPECT_EQ(Wide(m_form->ValuesText()), told);
    Command(mnuGoTo);
    Command(mnuCopyReadout);
    EXPECT_EQ(ClipboardText(), told);
    Command(mnuSelect + 2);
    EXPECT_EQ(m_global.view->Pinned(), 0);
    EXPECT_THAT(Wide(m_form->ValuesText()), Not(HasSubstr(L"dX:")));
    EXPECT_TRUE(Capture(pbGraph) == before);
    EXPECT_FALSE(measured == before);
}

TEST_F(LanesTest, ADragOfATitleEndsWithoutAnEffectByEscAndWithTheLanes) {
    StartWith(4);
    for (const WPARAM key : {WPARAM{VK_ESCAPE}, WPARAM{'L'}}) {
        Mouse(pbScaleY, WM_LBUTTONDOWN, Title(0), MK_LBUTTON);
        Mouse(pbScaleY, WM_MOUSEMOVE, Title(2), MK_LBUTTON);
        const Pixels dragged = Capture(pbScaleY);
        Key(key);
        EXPECT_NE(Capture(pbScaleY), dragged) << "shows no longer where it would be dropped";
        Mouse(pbScaleY, WM_LBUTTONUP, {8, 200});
        Pump();
        EXPECT_THAT(Order(), ElementsAre(1, 2, 3, 4)) << key;
        EXPECT_EQ(GetCapture(), nullptr);
        Mouse(pbGraph, WM_LBUTTONDOWN, {50, 50}, MK_LBUTTON);
        Mouse(pbGraph, WM_MOUSEMOVE, {90, 50}, MK_LBUTTON);
        Mouse(pbGraph, WM_LBUTTONUP, {90, 50});
        EXPECT_TRUE(View().Selected().active) << "the next drag selects";
        Key(VK_ESCAPE);
        EXPECT_FALSE(View().Selected().active);
    }
}

TEST_F(LanesTest, WhatDoesNotFitIsReachedByBarKeysAndWheel) {
    const auto range = [&] {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_ALL;
        GetScrollInfo(Control(scScaleY), SB_CTL, &info);
        return std::pair{info.nMax, info.nPos};
    };
    StartWith(32);
    const auto visible = static_cast<int>(View().GetLanes().size());
    ASSERT_LT(visible, 32);
    EXPECT_EQ(range(), (std::pair{31, 0}));
    Key(VK_DOWN);
    EXPECT_EQ(View().LanesOfChannels().Layout().First(), 1);
    SendMessageW(m_form->Window(), WM_VSCROLL, SB_PAGEDOWN, 0);
    EXPECT_EQ(View().LanesOfChannels().Layout().First(), std::min(1 + visible, 32 - visible));
    EXPECT_EQ(range().second, View().LanesOfChannels().Layout().First());
    const int wide = Capture(pbScaleY).width;
    Key('L');
    EXPECT_EQ(View().GetLanes().size(), 1U);
    EXPECT_LT(Capture(pbScaleY).width, wide) << "numbers need less room than titles";
    Key(VK_BACK);
    EXPECT_EQ(View().GetLanes().size(), static_cast<std::size_t>(visible)) << "the previous view had lanes";
    EXPECT_EQ(Capture(pbScaleY).width, wide);
    EXPECT_TRUE(m_global.settings.window.lanes);
}

TEST_F(LanesTest, TheUserIsToldOnce) {
    static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, Noise(500, 2))));
    static_cast<void>(m_folder.Write(u"b.bin", BinRecording(100.0F, Noise(500, 4))));
    static_cast<void>(m_folder.Write(u"c.bin", BinRecording(100.0F, Noise(500, 5))));
    Start();
    EXPECT_EQ(Status(), L"");
    ClickLine(lstFile, 1);
    EXPECT_THAT(Status(), HasSubstr(L"L"));
    ClickLine(lstFile, 2);
    EXPECT_EQ(Status(), L"");
}

}  // namespace
}  // namespace quillon
