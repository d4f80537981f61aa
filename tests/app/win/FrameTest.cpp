#include <gmock/gmock.h>

#include "base/win/Win32.h"
// After windows.h, on which it depends.
#include <process.h>
#include <shlobj.h>

#include <cstring>

#include "app/KV_Resources.h"
#include "app/win/MainWindowFixture.h"
#include "view/win/GDI_Utils.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

using FrameTest = MainWindowTest;

TEST_F(FrameTest, ASplitterMovesWhatLiesOnBothSidesUntilTheButtonIsUp) {
    Start();
    const RECT list = Place(lvCh);
    const RECT graph = Place(pbGraph);
    POINT between{(list.right + Place(pbScaleY).left) / 2, list.top + 30};
    ScreenToClient(m_form->Window(), &between);
    const auto mouse = [&](UINT message, int dx) {
        SendMessageW(m_form->Window(), message, MK_LBUTTON, MAKELPARAM(between.x + dx, between.y));
    };
    mouse(WM_LBUTTONDOWN, 0);
    for (const int dx : {40, 4000, 40}) mouse(WM_MOUSEMOVE, dx);  // and back from beyond its limit
    mouse(WM_LBUTTONUP, 40);
    mouse(WM_MOUSEMOVE, 0);
    EXPECT_NEAR(Place(lvCh).right - list.right, 40, 4);
    EXPECT_NEAR(Place(pbGraph).left - graph.left, 40, 4);
    EXPECT_GT(m_global.settings.window.listWidth, 0);
}

/// A thumb of a scroll bar is held at a position.
void HoldThumb(HWND window, HWND bar, UINT message, int position) {
    SetScrollPos(bar, SB_CTL, position, FALSE);
    SendMessageW(window, message, SB_THUMBTRACK, reinterpret_cast<LPARAM>(bar));
}

TEST_F(FrameTest, ThumbsTheWheelAndTheButtonsOfTheZoomControlMoveTheView) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(100000)));
    Start();
    HoldThumb(m_form->Window(), Control(scScaleX), WM_HSCROLL, 8192);
    EXPECT_EQ(m_global.view->Axis().FirstColumn(), 25001);
    Command(mnuBaseLine);
    HoldThumb(m_form->Window(), Control(scScaleY), WM_VSCROLL, 100);
    EXPECT_EQ(m_global.view->BaseLineShift(), -100);
    // The wheel turns what lies under the pointer, wherever the focus is: not the graph over a list.
    for (const auto& [over, column] : {std::pair<int, int>{lstFile, 25001}, {pbGraph, 25101}}) {
        const RECT place = Place(over);
        const LPARAM point = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
        PostMessageW(Control(tabPath), WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA)), point);
        Pump();
        EXPECT_EQ(m_global.view->Axis().FirstColumn(), column);
    }
    // Minus below left, plus below right.
    RECT zoom{};
    GetClientRect(Control(btnZoomX), &zoom);
    for (const int expected : {1, 0}) {
        Click(btnZoomX, expected == 1 ? 4 : static_cast<int>(zoom.right) - 4, static_cast<int>(zoom.bottom) - 4);
        EXPECT_EQ(m_global.view->Axis().ZoomIndex(), expected);
    }
}

TEST_F(FrameTest, NothingOverlapsAtThisResolutionAndAHigherOne) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    m_global.settings.window.spectrogramShown = true;
    Start();
    const int dpi = ScreenDpi();
    for (const int edge : {0, 1500}) {
        SetWindowPos(m_form->Window(), nullptr, 0, 0, edge, edge * 3 / 4, SWP_NOMOVE | SWP_NOZORDER);
        Pump();
        RECT client{};
        GetClientRect(m_form->Window(), &client);
        EXPECT_GE(client.right, MulDiv(540, dpi, 96));
        MapWindowPoints(m_form->Window(), nullptr, reinterpret_cast<POINT*>(&client), 2);
        std::vector<std::pair<int, RECT>> seen;
        for (const HWND window : Descendants(m_form->Window())) {
            RECT place{};
            GetWindowRect(window, &place);
            if (GetParent(window) != m_form->Window() || !IsWindowVisible(window) || IsRectEmpty(&place)) continue;
            RECT common{};
            EXPECT_TRUE(IntersectRect(&common, &place, &client) && EqualRect(&common, &place)) << GetDlgCtrlID(window);
            for (const auto& [id, other] : seen)
                EXPECT_FALSE(IntersectRect(&common, &place, &other)) << GetDlgCtrlID(window) << " overlaps " << id;
            seen.emplace_back(GetDlgCtrlID(window), place);
        }
        EXPECT_GT(seen.size(), 15U);
    }
    // A process takes the resolution of the screen at its start.
    const wchar_t* name = L"QUILLON_TEST_DPI";
    wchar_t given[8] = {};
    if (GetEnvironmentVariableW(name, given, 8) != 0) {
        EXPECT_EQ(dpi, 144);
        return;
    }
    const auto key = L"Control Panel\\Desktop";
    DWORD higher = 144;
    DWORD stored = 0;
    DWORD size = sizeof stored;
    const bool was = RegGetValueW(HKEY_CURRENT_USER, key, L"LogPixels", RRF_RT_DWORD, nullptr, &stored, &size) == 0;
    RegSetKeyValueW(HKEY_CURRENT_USER, key, L"LogPixels", REG_DWORD, &higher, sizeof higher);
    SetEnvironmentVariableW(name, L"144");
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    EXPECT_EQ(_wspawnl(_P_WAIT, program, L"win_tests",
                       L"--gtest_filter=FrameTest.NothingOverlaps*:FrameTest.BothLanguages*:*Fit*", nullptr),
              0);
    SetEnvironmentVariableW(name, nullptr);
    was ? RegSetKeyValueW(HKEY_CURRENT_USER, key, L"LogPixels", REG_DWORD, &stored, size)
        : RegDeleteKeyValueW(HKEY_CURRENT_USER, key, L"LogPixels");
}

TEST_F(FrameTest, BothLanguagesHoldTheSameStringsAndNoneIsTooLongForItsControl) {
    int strings = 0;
    for (int id = 1; id < 6000; ++id) {
        const std::u16string english = ResourceText(Language::English, id);
        const std::u16string russian = ResourceText(Language::Russian, id);
        EXPECT_EQ(english.empty(), russian.empty()) << id;
        EXPECT_EQ(english.find(u'\t') == std::u16string::npos, russian.find(u'\t') == std::u16string::npos) << id;
        strings += english.empty() ? 0 : 1;
    }
    EXPECT_GT(strings, 80);
    EXPECT_EQ(ResourceText(Language::Russian, 1010), u"Пожалуйста, переустановите программу.");
    for (const Language language : {Language::English, Language::Russian}) {
        m_language = language;
        Start();
        const auto expectInside = [&](int control, UINT ask, LRESULT item) {
            RECT last{};
            RECT client{};
            SendPointer(Control(control), ask, static_cast<WPARAM>(item), &last);
            GetClientRect(Control(control), &client);
            EXPECT_TRUE(last.right <= client.right && last.bottom <= client.bottom) << control;
        };
        for (const int tabs : {tabPath, tabFile}) expectInside(tabs, TCM_GETITEMRECT, 1);
        for (const int toolbar : {tbMain, tbGoTo})
            expectInside(toolbar, TB_GETITEMRECT, SendMessageW(Control(toolbar), TB_BUTTONCOUNT, 0, 0) - 1);
        TearDown();
    }
}

TEST_F(FrameTest, TheKeyboardIsNeverLost) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    Start();
    SetFocus(Control(lstFile));
    Command(mnuTabFile + 1);
    EXPECT_EQ(GetFocus(), Control(pbGraph)) << "the list that had the focus is hidden";
    SetFocus(m_form->Window());
    EXPECT_EQ(GetFocus(), Control(pbGraph));
    // A click that has done its work gives it back; a list that was asked for keeps it, at any page.
    Command(mnuTabFile);
    const int lists[] = {lstDir, lvCh, lstFile, lstBlock};
    for (int list = 0; list < 4; ++list) {
        Command(mnuFocus + list);
        EXPECT_EQ(GetFocus(), Control(lists[list]));
        if (list == 0) continue;
        list == 1 ? ClickCheckBox(0) : ClickLine(lists[list], 0);
        EXPECT_EQ(GetFocus(), Control(pbGraph));
    }
    // The release of a key that was part of a command opens no menu, whichever way it is told.
    BYTE keys[256]{};
    keys[VK_MENU] = 0x80;
    SetKeyboardState(keys);
    EXPECT_TRUE(m_form->PreTranslate({Control(pbGraph), WM_SYSKEYDOWN, VK_RIGHT, 0, 0, {}}));
    EXPECT_TRUE(m_form->PreTranslate({Control(pbGraph), WM_KEYUP, VK_MENU, 0, 0, {}}));
    EXPECT_FALSE(m_form->PreTranslate({Control(pbGraph), WM_KEYUP, VK_MENU, 0, 0, {}}));
    // Nor that of a key which a box takes itself, as Alt+Down for its list.
    SetFocus(Control(cboFileType));
    EXPECT_FALSE(m_form->PreTranslate({Control(cboFileType), WM_SYSKEYDOWN, VK_DOWN, 0, 0, {}}));
    EXPECT_TRUE(m_form->PreTranslate({Control(cboFileType), WM_SYSKEYUP, VK_MENU, 0, 0, {}}));
    keys[VK_MENU] = 0;
    SetKeyboardState(keys);
    Command(mnuFocus + 5);
    EXPECT_EQ(GetFocus(), Control(pbGraph));
    // The window's own menu is left to the system.
    const HMENU system = GetSystemMenu(m_form->Window(), FALSE);
    const UINT before = GetMenuState(system, SC_CLOSE, MF_BYCOMMAND);
    SendMessageW(m_form->Window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(system), MAKELPARAM(0, TRUE));
    EXPECT_EQ(GetMenuState(system, SC_CLOSE, MF_BYCOMMAND), before);
}

TEST_F(FrameTest, SettingsAreKeptWhenTheSessionEnds) {
    int saved = 0;
    m_shutdown = [&] { ++saved; };
    m_global.settings.filesPath.clear();
    Start();
    SendMessageW(m_form->Window(), WM_ENDSESSION, FALSE, 0);
    EXPECT_EQ(saved, 0) << "called off";
    SendMessageW(m_form->Window(), WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(saved, 1);
    // A folder on a drive that is not there today is remembered, until the user has opened something in the one that
    // stands for it.
    TearDown();
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    const DocumentsScope documents(Wide(m_folder.Path()));
    for (const bool chosen : {false, true}) {
        Start(L"C:\\no such folder");
        EXPECT_EQ(m_global.document->Block().sampleCount, 2000);
        if (chosen) ClickLine(lstFile, 0);
        TearDown();
        EXPECT_EQ(m_global.settings.filesPath, chosen ? m_folder.Path() : u"C:\\no such folder");
    }
}

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class StartTest : public MainWindowTest {
  protected:
    /// Shows a window up to that many steps after the first waveform.
    void StartSteps(int steps) {
        m_global = {};
        Create(Wide(m_folder.Path()));
        m_form->Show(SW_SHOW);
        SetForegroundWindow(m_form->Window());
        EXPECT_EQ(m_global.document->Block().sampleCount, 5000) << "the waveform comes first";
        for (int step = 0; step < steps; ++step) EXPECT_TRUE(m_form->RunSlice());
    }
};

TEST_F(StartTest, TheGraphIsInItsPlaceBeforeTheOtherControlsCome) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(5000)));
    Create(Wide(m_folder.Path()));
    ASSERT_EQ(Control(lstFile), nullptr);
    const RECT before = Place(pbGraph);
    EXPECT_GT(before.bottom - before.top, 100);
    Show();
    ASSERT_TRUE(WaitFor([&] { return Control(lstFile) != nullptr; }));
    const RECT after = Place(pbGraph);
    EXPECT_TRUE(EqualRect(&before, &after))
        << before.top << ".." << before.bottom << ", then " << after.top << ".." << after.bottom;
}

/// What the shell sends with WM_DROPFILES for one file.
WPARAM DropOf(const std::u16string& path) {
    const std::size_t bytes = (path.size() + 2) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = TRUE;
    std::memcpy(drop + 1, path.data(), bytes - 2 * sizeof(wchar_t));
    GlobalUnlock(memory);
    return reinterpret_cast<WPARAM>(memory);
}

TEST_F(StartTest, WhateverComesBetweenTheStepsFindsAWholeWindow) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(5000)));
    const std::u16string other = m_folder.Write(u"b.bin", SawRecording(3000));
    enum What { Key, Command, Menu, Drop, Size };
    for (const What what : {Key, Command, Menu, Drop, Size}) {
        bool last = false;
        for (int steps = 0; !last; ++steps) {
            SCOPED_TRACE("message " + std::to_string(what) + " after " + std::to_string(steps) + " steps");
            StartSteps(steps);
            last = m_form->IsComplete();
            const HWND window = m_form->Window();
            switch (what) {
                case Key: PostMessageW(Control(pbGraph), WM_KEYDOWN, VK_END, 0); break;
                case Command: PostMessageW(window, WM_COMMAND, mnuGoTo + 3, 0); break;
                case Menu: SendMessageW(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(GetMenu(window)), 0); break;
                case Drop: PostMessageW(window, WM_DROPFILES, DropOf(other), 0); break;
                case Size: SetWindowPos(window, nullptr, 0, 0, 900, 600, SWP_NOMOVE | SWP_NOZORDER); break;
            }
            Pump();
            EXPECT_TRUE(m_form->IsComplete() || what == Drop || what == Size);
            EXPECT_EQ(m_global.view->Axis().FirstColumn() > 0, what == Key || what == Command);
            CreateControls();
            EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin", L"b.bin"));
            EXPECT_EQ(SendMessageW(Control(lstFile), LB_GETCURSEL, 0, 0), what == Drop ? 1 : 0);
            EXPECT_EQ(ItemCount(), 2);
            EXPECT_EQ(TabCtrl_GetCurSel(Control(tabPath)), 1);
            EXPECT_THAT(Status(StatusPanel::Size), ::testing::HasSubstr(what == Drop ? L"3000" : L"5000"));
            const RECT graph = Place(pbGraph);
            EXPECT_TRUE(Place(pbScaleX).top >= graph.bottom && Place(sbInfo).top > graph.bottom);
            EXPECT_EQ(m_global.view->Axis().Width(), graph.right - graph.left);
            TearDown();
        }
    }
}

TEST_F(StartTest, AWindowThatIsClosedBetweenTheStepsEndsAsAnyOther) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(5000)));
    int saved = 0;
    m_shutdown = [&] { ++saved; };
    bool last = false;
    for (int steps = 0; !last; ++steps) {
        SCOPED_TRACE(std::to_string(steps) + " steps");
        StartSteps(steps);
        last = m_form->IsComplete();
        PostMessageW(m_form->Window(), WM_CLOSE, 0, 0);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT)
            DispatchMessageW(&message);
        EXPECT_EQ(message.message, UINT{WM_QUIT});
        EXPECT_EQ(m_form->Window(), nullptr);
        EXPECT_FALSE(m_form->RunSlice());
        EXPECT_EQ(m_global.settings.filesPath, m_folder.Path());
        EXPECT_EQ(saved, steps + 1);
        m_form->ThrowFailure();
    }
}

TEST_F(StartTest, AWindowThatStartsAsAnIconOpensTheFirstRecordingWhenItIsSeen) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(5000)));
    for (const int command : {SW_SHOWMINNOACTIVE, SW_SHOWMINIMIZED}) {
        m_global = {};
        Create(Wide(m_folder.Path()));
        m_form->Show(command);
        CreateControls();
        EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
        EXPECT_THAT(Lines(lstBlock), IsEmpty());
        ShowWindow(m_form->Window(), SW_RESTORE);
        SetForegroundWindow(m_form->Window());
        ASSERT_TRUE(WaitFor([&] { return !Lines(lstBlock).empty(); }));
        EXPECT_EQ(ItemCount(), m_global.document->Block().channelCount);
        EXPECT_GT(Capture(pbGraph).Count(TraceColor(0)), 200);
        EXPECT_LE(AmplitudeScale::TableEntry(m_global.view->ScaleY()), 20.0) << "fitted to the graph as it is seen";
        EXPECT_EQ(TabCtrl_GetCurSel(Control(tabPath)), 1);
        TearDown();
    }
}

}  // namespace
}  // namespace quillon
