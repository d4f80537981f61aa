#include <algorithm>

#include "app/win/MainControls.h"
#include "app/win/MainWindowFixture.h"
#include "view/ReadableColor.h"
#include "view/win/GDI_Utils.h"

namespace quillon::testing {
namespace {

/// Sets colours of the system for this process, and afterwards those that were.
class SystemColors {
  public:
    SystemColors(std::uint32_t face, std::uint32_t text) {
        for (const int index : kIndices) m_before.push_back(GetSysColor(index));
        const COLORREF colors[] = {ColorOf(face), ColorOf(face), ColorOf(text), ColorOf(text)};
        SetSysColors(4, kIndices, colors);
    }
    ~SystemColors() { SetSysColors(4, kIndices, m_before.data()); }
    SystemColors(const SystemColors&) = delete;
    SystemColors& operator=(const SystemColors&) = delete;

  private:
    static constexpr INT kIndices[] = {COLOR_BTNFACE, COLOR_WINDOW, COLOR_BTNTEXT, COLOR_WINDOWTEXT};
    std::vector<COLORREF> m_before;
};

class AccessibilityTest : public MainWindowTest {
  protected:
    /// Pixels that are read easily before the colour of the window.
    [[nodiscard]] int CountReadable(int id) const {
        const std::uint32_t face = SystemColor(COLOR_BTNFACE);
        const Pixels pixels = Capture(id);
        return static_cast<int>(std::count_if(pixels.rgb.begin(), pixels.rgb.end(),
                                              [&](std::uint32_t color) { return Contrast(color, face) >= 4; }));
    }
    /// The numbers of the controls that Tab goes to, from the graph back to it.
    [[nodiscard]] std::vector<int> TabOrder() const {
        std::vector<int> order;
        HWND control = Control(pbGraph);
        do {
            order.push_back(GetDlgCtrlID(control));
            control = GetNextDlgTabItem(m_form->Window(), control, FALSE);
        } while (control != Control(pbGraph) && order.size() < 20);
        return order;
    }
};

TEST_F(AccessibilityTest, WhatIsBesideTheGraphIsReadableInEveryScheme) {
    m_folder.Write(u"a.bin", BinRecording(100, Noise(2000, 3)));
    Start();
    for (const int view : {0, static_cast<int>(mnuLanes)}) {
        if (view != 0) Command(view);
        for (const auto& [face, text] : {std::pair{0xF0F0F0U, 0x000000U}, {0x202020U, 0xEBEBEBU}, {0U, 0xFFFFFFU}}) {
            const SystemColors scheme(face, text);
            SendMessageW(m_form->Window(), WM_SYSCOLORCHANGE, 0, 0);
            for (const int id : {pbScaleX, pbScaleY, btnZoomX, tbMain, tbGoTo})
                EXPECT_GT(CountReadable(id), 30) << id << " on " << std::hex << face << (view != 0 ? " in lanes" : "");
        }
    }
}

/// The events of this process that came for a window, in their order.
class WinEvents {
  public:
    explicit WinEvents(HWND window) {
        s_window = window;
        s_events.clear();
        m_hook = SetWinEventHook(EVENT_OBJECT_NAMECHANGE, EVENT_OBJECT_VALUECHANGE, nullptr, Take,
                                 GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
    }
    ~WinEvents() { UnhookWinEvent(m_hook); }
    WinEvents(const WinEvents&) = delete;
    WinEvents& operator=(const WinEvents&) = delete;
    [[nodiscard]] static bool Has(DWORD event, LONG child) {
        return std::find(s_events.begin(), s_events.end(), std::pair(event, child)) != s_events.end();
    }

  private:
    static void CALLBACK Take(HWINEVENTHOOK, DWORD event, HWND window, LONG object, LONG child, DWORD, DWORD) {
        if (window == s_window && object == OBJID_CLIENT) s_events.emplace_back(event, child);
    }
    static inline HWND s_window = nullptr;
    static inline std::vector<std::pair<DWORD, LONG>> s_events;
    HWINEVENTHOOK m_hook;
};

TEST_F(AccessibilityTest, StatusAndReadoutAreAnnounced) {
    m_folder.Write(u"a.bin", SawRecording());
    Start();
    {
        const WinEvents events(Control(sbInfo));
        m_services->SetStatus(u"something else");
        EXPECT_TRUE(WaitFor(
            [] { return WinEvents::Has(EVENT_OBJECT_NAMECHANGE, static_cast<LONG>(StatusPanel::Status) + 1); }));
    }
    const WinEvents events(Control(pnValues));
    Command(mnuPin);
    EXPECT_TRUE(WaitFor([] {
        return WinEvents::Has(EVENT_OBJECT_NAMECHANGE, CHILDID_SELF) &&
               WinEvents::Has(EVENT_OBJECT_VALUECHANGE, CHILDID_SELF);
    }));
    EXPECT_NE(WindowText(Control(pnValues)).find(L"X: "), std::wstring::npos) << WindowText(Control(pnValues)).c_str();
}

TEST_F(AccessibilityTest, ValuesThatHaveNoRoomAreReadByKeys) {
    m_folder.Write(u"a.bin", BinRecording(100, Noise(2000, 21)));
    Start();
    Command(mnuSelect);
    SetFocus(Control(pnValues));
    const auto after = [&](WPARAM key) {
        SendMessageW(Control(pnValues), WM_KEYDOWN, key, 0);
        return Capture(pnValues);
    };
    const Pixels first = Capture(pnValues);
    const Pixels last = after(VK_END);
    EXPECT_NE(last, first);
    EXPECT_EQ(after(VK_DOWN), last);
    EXPECT_NE(after(VK_UP), last);
    EXPECT_EQ(after(VK_DOWN), last);
    EXPECT_NE(after(VK_PRIOR), last);
    EXPECT_EQ(after(VK_HOME), first);
    EXPECT_EQ(after(VK_LEFT), first);
}

TEST_F(AccessibilityTest, MenusOpenByKeysWhereTheyOpenByTheMouse) {
    m_folder.Write(u"a.bin", SawRecording());
    Start();
    Command(mnuSpectrogram);
    Command(mnuTabFile + 2);
    SetMarks({{100, u"one"}});
    for (const int control : {pbGraph, pbFFT, lvCh, lvMarks}) {
        SetFocus(Control(control));
        if (control == lvCh) ListView_SetItemState(Control(lvCh), 1, LVIS_FOCUSED, LVIS_FOCUSED);
        std::atomic<bool> seen = false;
        std::thread user([&] {
            HWND menu = nullptr;
            seen = WaitUntil([&] { return (menu = FindWindowW(L"#32768", nullptr)) != nullptr; });
            if (menu != nullptr) PostMessageW(menu, WM_KEYDOWN, VK_ESCAPE, 0);
        });
        EXPECT_TRUE(m_form->PreTranslate({Control(control), WM_KEYDOWN, VK_APPS, 0, 0, {}})) << control;
        user.join();
        EXPECT_TRUE(seen) << control;
    }
}

TEST_F(AccessibilityTest, TabGoesFromListToListAsTheEyeDoes) {
    m_folder.Write(u"a.bin", SawRecording());
    Start();
    SelectPage(m_form->Window(), TabPages::Path, 0);
    SelectPage(m_form->Window(), TabPages::File, 0);
    EXPECT_EQ(TabOrder(), (std::vector<int>{pbGraph, tabPath, lstDrive, pbPathList, lstDir, tabFile, cboFileType,
                                            lstFile, pnValues}));
    SelectPage(m_form->Window(), TabPages::Path, 1);
    SelectPage(m_form->Window(), TabPages::File, 1);
    EXPECT_EQ(TabOrder(), (std::vector<int>{pbGraph, tabPath, lvCh, tabFile, lstBlock, pnValues}));
}

TEST_F(AccessibilityTest, EveryControlOfEveryWindowHasAName) {
    for (const Language language : {Language::English, Language::Russian}) {
        m_language = language;
        m_folder.Write(u"a.bin", SawRecording());
        Start();
        ExpectNamesAndOrder(m_form->Window());
        Command(mnuSelect);
        for (const int command :
             {+mnuGoToPlace, +mnuStatistics, +mnuKeysAndMouse, mnuFileOperation + 1, +mnuSplit, +mnuOptions})
            CommandWith(command, [](HWND dialog) {
                ExpectNamesAndOrder(dialog);
                PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            });
        MainWindowTest::TearDown();
    }
}

}  // namespace
}  // namespace quillon::testing
