#include <gmock/gmock.h>

#include <random>

#include "app/win/MainWindowFixture.h"
#include "base/Text.h"
#include "view/InvertLightness.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace ::quillon::testing;

/// A window over one recording.
class WaveformViewTest : public MainWindowTest {
  protected:
    void StartWith(const std::vector<std::vector<std::int16_t>>& frames) {
        static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, frames)));
        Start();
    }
    void Mouse(UINT message, int x, int y = 50, WPARAM keys = 0) const {
        SendMessageW(Control(pbGraph), message, keys, MAKELPARAM(x, y));
    }
    void Drag(int from, int to, WPARAM keys = 0) const {
        Mouse(WM_LBUTTONDOWN, from, 50, MK_LBUTTON | keys);
        Mouse(WM_MOUSEMOVE, (from + to) / 2, 50, MK_LBUTTON | keys);
        Mouse(WM_MOUSEMOVE, to, 50, MK_LBUTTON | keys);
        Mouse(WM_LBUTTONUP, to, 50, keys);
        Pump();
    }
    void Point(int x, int y) const { MainWindowTest::Point(pbGraph, x, y); }
    [[nodiscard]] std::wstring Values() const { return Wide(m_form->ValuesText()); }
    /// The same view drawn anew.
    [[nodiscard]] Pixels Redrawn() const {
        // A size that it has already is nothing to draw for, but coming back from an icon is.
        for (const WPARAM state : {WPARAM{SIZE_MINIMIZED}, WPARAM{SIZE_RESTORED}})
            SendMessageW(m_form->Window(), WM_SIZE, state, 0);
        return Capture(pbGraph);
    }
};

TEST_F(WaveformViewTest, ScrollingByCopyingEqualsDrawingAnew) {
    StartWith(Noise(60000, 3));
    std::mt19937 random(10);
    // Marks, a selection and a dotted grid take part.
    m_global.settings.display.gridStyle = 2;
    std::vector<BlockMark> marks;
    for (int mark = 0; mark < 300; ++mark)
        marks.push_back({mark * 200 + static_cast<std::int32_t>(random() % 200), u"Mark " + Decimal(mark)});
    SetMarks(std::move(marks));
    Command(mnuScaleX + 3);
    Drag(100, 180);
    for (int round = 0; round < 80; ++round) {
        if (round == 60) Command(mnuLanes);
        if (round == 70) Command(mnuClipToLanes);
        if (round % 6 == 0) Command(mnuScaleX + static_cast<int>(random() % 8));
        const int command =
            round % 5 == 0 ? mnuGoTo + static_cast<int>(random() % 4) : mnuMove + static_cast<int>(random() % 6);
        Command(command);
        const Pixels scrolled = Capture(pbGraph);
        ASSERT_TRUE(scrolled == Redrawn())
            << "round " << round << ", zoom " << m_global.view->Axis().ZoomIndex() << ", command " << command;
    }
}

TEST_F(WaveformViewTest, ADragSelectsTheSamplesOfItsColumns) {
    StartWith(Noise(5000, 1));
    const Pixels before = Capture(pbGraph);
    const Selection& selection = m_global.view->Selected();
    Drag(100, 149);
    EXPECT_EQ(selection.Count(), 50) << "one sample per column";
    EXPECT_EQ(selection.start, 101);
    const Pixels selected = Capture(pbGraph);
    Pixels expected = before;
    for (int y = 0; y < before.height; ++y)
        InvertLightness({&expected.rgb[static_cast<std::size_t>(y * before.width + 100)], 50});
    EXPECT_TRUE(selected == expected);
    // Past the edge the view scrolls on while the button is held.
    Mouse(WM_LBUTTONDOWN, 100, 50, MK_LBUTTON);
    Mouse(WM_MOUSEMOVE, before.width + 60, 50, MK_LBUTTON);
    EXPECT_TRUE(WaitFor([&] { return m_global.view->Axis().FirstColumn() > 200; }));
    Mouse(WM_LBUTTONUP, before.width - 1);
    EXPECT_GT(selection.Count(), before.width - 100 + 200);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(WaveformViewTest, TheHoverReadsOutAndLeavesNoTrace) {
    m_global.settings.display.timeFormat = 1;
    StartWith({{10, -3}, {20, 5}, {30, 7}});
    ApplyDisplaySettings(m_global);
    const Pixels before = Redrawn();
    Point(1, 40);
    EXPECT_EQ(Values(), L"X:\t0.01 s\r\nCh1:\t 20 V\r\nCh2:\t 5 V\r\n");
    EXPECT_EQ(GetCapture(), Control(pbGraph));
    const Pixels band = Capture(pbGraph);
    EXPECT_NE(band.At(1, 3), before.At(1, 3));
    EXPECT_EQ(band.At(2, 3), before.At(2, 3));
    Point(300, 40);
    EXPECT_THAT(Values(), StartsWith(L"X:\t0.02 s\r\nCh1:\t 30 V")) << "right of the last sample";
    EXPECT_NE(Capture(pbGraph).At(2, 3), before.At(2, 3));
    // The pointer leaves the graph.
    Point(-300, 40);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_TRUE(Capture(pbGraph) == before);
    Point(1, 40);
    SendMessageW(Control(pbGraph), WM_CANCELMODE, 0, 0);
    EXPECT_EQ(GetCapture(), nullptr) << "given up for a dialog";
}

TEST_F(WaveformViewTest, ArrowsTellOfTracesOutOfSight) {
    StartWith(std::vector(5000, std::vector<std::int16_t>{0, -20000, 20000}));
    m_global.view->SetBipolar();
    m_global.view->SelectScaleY(3);
    const Pixels pixels = Redrawn();
    for (const auto& [channel, above, below] : {std::tuple{0, false, false}, {1, false, true}, {2, true, false}}) {
        const auto count = [&](int from) {
            int found = 0;
            for (int y = from; y < from + 12; ++y)
                for (int x = 0; x < 25; ++x)
                    found += pixels.At(x, y) == TraceColor(static_cast<std::int16_t>(channel)) ? 1 : 0;
            return found;
        };
        EXPECT_EQ(count(0) > 10, above) << channel;
        EXPECT_EQ(count(pixels.height - 12) > 10, below) << channel;
    }
}

TEST_F(WaveformViewTest, PlacesRangesAndPagesAreGoneTo) {
    StartWith(Noise(100000, 2));
    const TimeAxis& axis = m_global.view->Axis();
    // Two lines, the second one empty where it is not to be changed; what the box says against them before it is left.
    const auto type = [&](const wchar_t* place, const wchar_t* page) {
        std::wstring refusal;
        CommandWith(mnuGoToPlace, [&, place, page](HWND dialog) {
            SetDlgItemTextW(dialog, 101, place);
            if (*page != 0) SetDlgItemTextW(dialog, 111, page);
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
            refusal = WindowText(GetDlgItem(dialog, 99));
            if (!refusal.empty()) PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        });
        return refusal;
    };
    const auto middle = [&] { return SampleUnder(axis, axis.Width() / 2); };
    // The pointer rests over the graph, which the system tells when the dialog is gone.
    Point(10, 10);
    EXPECT_EQ(type(L"#50000", L""), L"");
    EXPECT_EQ(middle(), 50000);
    const std::wstring gone = Values();
    SendMessageW(Control(pbGraph), WM_MOUSEMOVE, 0, MAKELPARAM(10, 10));
    EXPECT_EQ(Values(), gone);
    Point(11, 10);
    SendMessageW(Control(pbGraph), WM_MOUSEMOVE, 0, MAKELPARAM(11, 10));
    EXPECT_NE(Values(), gone);
    EXPECT_THAT(type(L"somewhere", L""), HasSubstr(L"not understood"));
    EXPECT_THAT(type(L"#7..nowhere", L""), HasSubstr(L"not understood"));
    EXPECT_EQ(middle(), 50000);
    EXPECT_EQ(type(L"#80100 .. #80000", L""), L"");
    EXPECT_EQ(middle(), 80050);
    EXPECT_EQ(m_global.view->Selected().First(), 80000);
    EXPECT_EQ(m_global.view->Selected().Last(), 80100);
    Command(mnuLanes);
    EXPECT_EQ(type(L"#30000", L"12.5 s"), L"");
    EXPECT_DOUBLE_EQ(axis.PageSeconds(), 12.5);
    EXPECT_NEAR(middle(), 30000, 1);
    EXPECT_THAT(type(L"#40000", L"long"), HasSubstr(L"length"));
    EXPECT_NEAR(middle(), 30000, 1);
    Command(mnuPage + 3);
    EXPECT_DOUBLE_EQ(axis.PageSeconds(), 10.0);
}

TEST_F(WaveformViewTest, GesturesAndReadoutEndWithTheirBlock) {
    static_cast<void>(m_folder.Write(u"b.bin", FileBytes().Text("no recording")));
    StartWith(Noise(5000, 2));
    const auto refuse = [&] { ClickLine(lstFile, 1); };
    Point(100, 50);
    EXPECT_EQ(GetCapture(), Control(pbGraph));
    refuse();
    EXPECT_NE(GetCapture(), Control(pbGraph)) << "nothing is left to be read out";
    ClickLine(lstFile, 0);
    // Esc ends a drag under way.
    Mouse(WM_LBUTTONDOWN, 100, 50, MK_LBUTTON);
    Mouse(WM_MOUSEMOVE, 200, 50, MK_LBUTTON);
    Key(VK_ESCAPE);
    Mouse(WM_MOUSEMOVE, 250, 50, MK_LBUTTON);
    Mouse(WM_LBUTTONUP, 250);
    EXPECT_FALSE(m_global.view->Selected().active);
}

TEST_F(WaveformViewTest, WhatCannotBeReadAnyMoreIsTold) {
    StartWith(Noise(50000, 2));
    std::filesystem::resize_file(m_folder.File(u"a.bin"), 60000);
    Command(mnuScaleX + 5);
    EXPECT_THAT(Status(), StartsWith(L"a.bin: "));
    EXPECT_THAT(Status(), HasSubstr(L"shorter"));
    EXPECT_GT(Capture(pbGraph).Count(TraceColor(0)), 100) << "as far as it goes";
    Command(mnuScaleX);
    Command(mnuGoTo);
    Key(VK_ADD);
    EXPECT_EQ(Status(), L"");
}

}  // namespace
}  // namespace quillon
