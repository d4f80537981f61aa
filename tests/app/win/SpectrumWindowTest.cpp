#include "app/win/SpectrumWindow.h"

#include <gmock/gmock.h>

#include <cmath>
#include <tuple>

#include "app/win/MainWindowFixture.h"
#include "view/QL_ChUtils.h"

namespace quillon::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class SpectrumWindowTest : public MainWindowTest {
  protected:
    /// Tones of 125 Hz with a harmonic, and of 250 Hz in the second channel, in a little noise.
    void StartWithTones() {
        std::vector<std::vector<std::int16_t>> frames = Noise(30000, 2);
        for (std::size_t at = 0; at < frames.size(); ++at) {
            const double turn = static_cast<double>(at) * 0.785398163397;
            frames[at][0] =
                static_cast<std::int16_t>(frames[at][0] + 3000.0 * std::sin(turn) + 300 * std::sin(2 * turn));
            frames[at][1] = static_cast<std::int16_t>(frames[at][1] + 2000.0 * std::sin(2.0 * turn));
        }
        m_folder.Write(u"a.bin", BinRecording(1000.0F, frames));
        m_folder.Write(u"b.bin", SawRecording());
        Start();
    }
    void Open() {
        Command(mnuSpectrum);
        m_window = FindWindowW(L"QuillonSpectrum", nullptr);
        ASSERT_NE(m_window, nullptr);
        ASSERT_TRUE(IsComplete());
    }
    [[nodiscard]] HWND Of(int id) const { return GetDlgItem(m_window, id); }
    [[nodiscard]] std::wstring Cell(int list, int row, int column) const {
        wchar_t text[100] = {};
        ListView_GetItemText(Of(list), row, column, text, 100);
        return text;
    }
    [[nodiscard]] bool IsComplete() const {
        return WaitFor([this] { return Rows(SpectrumWindow::kPeaks) > 0; });
    }
    [[nodiscard]] int Rows(int list) const { return ListView_GetItemCount(Of(list)); }
    void ChooseIn(std::size_t box, int line) {
        ChooseLine(Of(SpectrumWindow::kBox + static_cast<int>(box)), line);
        Pump();
    }
    [[nodiscard]] Pixels Picture() const { return PixelsOf(Of(SpectrumWindow::kPlot)); }
    void Press(WPARAM key, std::initializer_list<int> held = {}) const {
        BYTE state[256] = {};
        for (const int other : held) state[other] = 0x80;
        SetKeyboardState(state);
        PostMessageW(Of(SpectrumWindow::kPeaks), WM_KEYDOWN, key, 0);
        Pump();
        BYTE none[256] = {};
        SetKeyboardState(none);
    }

    HWND m_window = nullptr;
};

TEST_F(SpectrumWindowTest, PeaksHarmonicsAndCurvesFollowTheChoices) {
    for (const Language language : {Language::English, Language::Russian}) {
        m_language = language;
        StartWithTones();
        Command(mnuSelect);
        Open();
        ExpectNamesAndOrder(m_window);
        ExpectRoomForTexts(m_window);
        EXPECT_EQ(Cell(SpectrumWindow::kPeaks, 0, 0), L"125 Hz");
        const Pixels both = Picture();
        EXPECT_GT(both.Count(TraceColor(0)), 100);
        EXPECT_GT(both.Count(TraceColor(1)), 100);
        ListView_SetItemState(Of(SpectrumWindow::kPeaks), 0, LVIS_SELECTED, LVIS_SELECTED);
        EXPECT_EQ(Rows(SpectrumWindow::kHarmonics), 3);
        EXPECT_EQ(Cell(SpectrumWindow::kHarmonics, 1, 0), L"\u00D72");
        EXPECT_EQ(Cell(SpectrumWindow::kHarmonics, 1, 1), L"250 Hz");
        EXPECT_THAT(WindowText(Of(SpectrumWindow::kHarmonicsTitle)), AllOf(HasSubstr(L"125 Hz"), HasSubstr(L"%")));
        EXPECT_FALSE(Picture() == both);
        for (const int line : {1, 2}) {
            ChooseIn(4, line);
            EXPECT_NE(Cell(SpectrumWindow::kPeaks, 0, 1).find(L"V/\u221AHz"), std::wstring::npos);
            EXPECT_GT(Picture().Count(TraceColor(0)), 100);
        }
        Press('C', {VK_CONTROL});
        EXPECT_THAT(ClipboardText(), HasSubstr(L"Hz\tSignal 1, V/sqrt(Hz)\tSignal 2, V/sqrt(Hz)\r\n0\t"));
        Press('C', {VK_CONTROL, VK_SHIFT});
        EXPECT_GT(ClipboardBytes(CF_DIB).size(), 100000U);
        ChooseIn(3, 1);
        EXPECT_GT(Picture().Count(TraceColor(0)), 50);
        // The second channel alone.
        ChooseIn(0, 2);
        ASSERT_TRUE(WaitFor([this] { return Cell(SpectrumWindow::kPeaks, 0, 0) == L"250 Hz"; }));
        EXPECT_EQ(Picture().Count(TraceColor(0)), 0);
        Press(VK_ESCAPE);
        EXPECT_FALSE(IsWindow(m_window));
        MainWindowTest::TearDown();
    }
}

TEST_F(SpectrumWindowTest, ItTellsOfOtherRangesAndClosesWithTheRecording) {
    StartWithTones();
    Open();
    const HWND readout = Of(SpectrumWindow::kReadout);
    EXPECT_EQ(WindowText(readout), L"");
    const std::wstring heading = WindowText(Of(SpectrumWindow::kHeading));
    Command(mnuGoTo + 2);
    EXPECT_NE(WindowText(readout), L"");
    EXPECT_EQ(WindowText(Of(SpectrumWindow::kHeading)), heading);
    Press(VK_F5);
    EXPECT_EQ(WindowText(readout), L"");
    EXPECT_NE(WindowText(Of(SpectrumWindow::kHeading)), heading);
    // A selection is analysed once it is made; without it nothing is until that is asked for.
    const auto analysed = [&] { return WindowText(Of(SpectrumWindow::kHeading)); };
    Command(mnuSelect);
    EXPECT_NE(analysed().find(L"30000 "), std::wstring::npos);
    const std::wstring block = analysed();
    SendMessageW(Control(pbGraph), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 20));
    SendMessageW(Control(pbGraph), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(300, 20));
    EXPECT_EQ(analysed(), block);
    SendMessageW(Control(pbGraph), WM_LBUTTONUP, 0, MAKELPARAM(300, 20));
    const std::wstring dragged = analysed();
    EXPECT_NE(dragged, block);
    EXPECT_EQ(WindowText(readout), L"");
    Command(mnuSelect + 2);
    EXPECT_EQ(analysed(), dragged);
    EXPECT_NE(WindowText(readout), L"");
    Press(VK_F5);
    // Signals that are shown otherwise are analysed anew.
    ASSERT_TRUE(IsComplete());
    Command(mnuLowPass + 1);
    EXPECT_NE(WindowText(m_window).find(L"Hz"), std::wstring::npos);
    ASSERT_TRUE(WaitFor([this] { return Picture().Count(TraceColor(0)) > 0; }));
    // Not posted: the real pointer is elsewhere, which the system tells soon.
    SendMessageW(Of(SpectrumWindow::kPlot), WM_MOUSEMOVE, 0, MAKELPARAM(200, 100));
    EXPECT_NE(WindowText(readout).find(L"Hz, "), std::wstring::npos);
    Command(mnuRecording + 1);
    EXPECT_FALSE(IsWindow(m_window));
    Open();
    DestroyWindow(m_form->Window());
    EXPECT_FALSE(IsWindow(m_window));
}

TEST_F(SpectrumWindowTest, ADragZoomsAndPlaceSizeAndChoicesStay) {
    StartWithTones();
    Open();
    const HWND plot = Of(SpectrumWindow::kPlot);
    const auto send = [&](UINT message, int x) { SendMessageW(plot, message, 0, MAKELPARAM(x, 100)); };
    const auto drag = [&](int from, int to) {
        send(WM_LBUTTONDOWN, from);
        send(WM_MOUSEMOVE, to);
        const Pixels banded = Picture();
        send(WM_LBUTTONUP, to);
        return banded;
    };
    const Pixels whole = Picture();
    const Pixels banded = drag(150, 250);
    EXPECT_NE(banded.At(200, 5), whole.At(200, 5)) << "what is dragged over";
    const Pixels zoomed = Picture();
    EXPECT_FALSE(zoomed == whole);
    EXPECT_GT(zoomed.Count(TraceColor(0)), 50);
    send(WM_LBUTTONDBLCLK, 200);
    EXPECT_TRUE(Picture() == whole);
    // Esc leaves a drag without closing the window.
    send(WM_LBUTTONDOWN, 150);
    send(WM_MOUSEMOVE, 300);
    MSG escape{Of(SpectrumWindow::kPeaks), WM_KEYDOWN, VK_ESCAPE, 0, 0, {}};
    EXPECT_TRUE(m_form->PreTranslate(escape));
    send(WM_LBUTTONUP, 300);
    EXPECT_TRUE(IsWindow(m_window) && Picture() == whole);
    drag(150, 250);
    EXPECT_TRUE(Picture() == zoomed);
    // A peak that is chosen comes into view: 125 Hz is left of what is shown or in it.
    Press(VK_OEM_PLUS, {VK_CONTROL});
    EXPECT_FALSE(Picture() == zoomed);
    Press('F', {VK_CONTROL});
    EXPECT_TRUE(Picture() == whole);
    Press(VK_F1);
    EXPECT_EQ(Status().substr(0, 7), L"No help");
    ChooseIn(3, 1);
    ChooseIn(2, 3);
    SetWindowPos(m_window, nullptr, 50, 60, 700, 450, SWP_NOZORDER);
    Press(VK_ESCAPE);
    ASSERT_FALSE(IsWindow(m_window));
    const SpectrumWindowSettings& kept = m_global.settings.spectrumWindow;
    EXPECT_TRUE(kept.logFrequency && kept.window == 3);
    EXPECT_EQ(std::tuple(kept.place.left, kept.place.top, kept.place.width, kept.place.height),
              std::tuple(50, 60, 700, 450));
    // On a screen that is gone it is moved onto one that there is.
    m_global.settings.spectrumWindow.place.top = 20000;
    Open();
    RECT place{};
    GetWindowRect(m_window, &place);
    EXPECT_TRUE(place.top < 5000 && place.right - place.left == 700) << place.top;
}

}  // namespace
}  // namespace quillon::testing
