#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <sstream>

#include "app/win/MainWindowFixture.h"
#include "app/win/TableWindow.h"
#include "app/win/WinServices.h"
#include "base/Text.h"
#include "dialogs/OptionsLayout.h"
#include "dialogs/win/ColorChooser.h"
#include "dialogs/win/dlgOptions.h"
#include "view/ScaleLabels.h"

namespace quillon::testing {
namespace {

/// The dialog as a user sees it: scripts run in another thread, act on its controls, and close it at their end.
class OptionsDialog : public ::testing::Test {
  protected:
    std::optional<OptionChanges> Show(const std::function<void()>& script, Language language = Language::English) {
        const WinServices services(language);
        dlgOptions dialog(services, m_calls, {}, 250.0);
        const DialogAnswer answer([&](HWND window) {
            m_dialog = window;
            script();
            // A test that has failed must not wait for ever.
            PostMessageW(window, WM_COMMAND, cmdCancel, 0);
        });
        return dialog.Show(nullptr, {m_display, m_text, m_spectrum});
    }
    [[nodiscard]] HWND Control(int id) const { return FindChild(m_dialog, id); }
    void Click(int id) const { SendMessageW(Control(id), BM_CLICK, 0, 0); }
    [[nodiscard]] bool IsTicked(int id) const { return SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED; }
    void Type(int id, const wchar_t* text) const { SendPointer(Control(id), WM_SETTEXT, 0, text); }
    [[nodiscard]] std::wstring Text(int id) const { return WindowText(Control(id)); }
    void Press(int button) const { PostMessageW(m_dialog, WM_COMMAND, static_cast<WPARAM>(button), 0); }
    /// A key of the keyboard, with a modifier or 0.
    static void Key(BYTE key, BYTE modifier = 0) {
        if (modifier != 0) keybd_event(modifier, 0, 0, 0);
        for (const DWORD flags : {0UL, DWORD{KEYEVENTF_KEYUP}}) keybd_event(key, 0, flags, 0);
        if (modifier != 0) keybd_event(modifier, 0, KEYEVENTF_KEYUP, 0);
    }
    [[nodiscard]] bool IsShown(int page) const { return IsWindowVisible(GetDlgItem(m_dialog, pbTab + page)) != FALSE; }
    [[nodiscard]] HWND Focus() const { return FocusOf(m_dialog); }

    DisplaySettings m_display;
    TextExportSettings m_text;
    SpectrumSettings m_spectrum;
    OptionsCalls m_calls;
    HWND m_dialog = nullptr;
};

TEST_F(OptionsDialog, EntriesFollowEachOther) {
    m_calls.chooseFastFile = [](HWND, std::u16string& name) {
        name += u"\\fast.txt";
        return true;
    };
    Show([&] {
        EXPECT_EQ(Text(lblFFTPersent), L"0.977 Hz");
        ChooseLine(Control(cboFFTSize), 6);
        EXPECT_EQ(Text(lblFFTPersent), L"0.122 Hz");
        EXPECT_FALSE(IsWindowEnabled(Control(optXFormat)));
        Click(chkXColumn);
        EXPECT_TRUE(IsWindowEnabled(Control(optXFormat)));
        Type(txtFastFile, L"C:");
        Click(cmdBrowse);
        Press(cmdOk);
    });
    EXPECT_EQ(m_text.fastFile, u"C:\\fast.txt");
}

TEST_F(OptionsDialog, SwatchOffersTheTraceColors) {
    m_display.gridColor = 5;
    HWND chooser = nullptr;
    const auto isOpen = [&] {
        chooser = FindWindowW(L"#32770", L"Select color");
        return chooser != nullptr && IsWindowVisible(chooser);
    };
    Show([&] {
        const HWND swatch = Control(pbGridColor);
        PostMessageW(swatch, WM_KEYDOWN, VK_RETURN, 0);
        ASSERT_TRUE(WaitUntil(isOpen)) << "Enter opens the colours, not OK";
        // From the present colour: right, down, Enter.
        const auto focused = [&](int color) {
            return WaitUntil([&] { return Focus() == GetDlgItem(chooser, kFirstColorButton + color); });
        };
        EXPECT_TRUE(focused(5));
        PostMessageW(Focus(), WM_KEYDOWN, VK_RIGHT, 0);
        EXPECT_TRUE(focused(6));
        PostMessageW(Focus(), WM_KEYDOWN, VK_DOWN, 0);
        EXPECT_TRUE(focused(14));
        PostMessageW(Focus(), WM_KEYDOWN, VK_RETURN, 0);
        EXPECT_TRUE(WaitUntil([&] { return !isOpen(); }));
        Press(cmdOk);
    });
    EXPECT_EQ(m_display.gridColor, 14);
}

TEST_F(OptionsDialog, KeysAndTabsChangePagesAndHelpOpens) {
    std::atomic<int> asked = 0;
    m_calls.help = [&](HWND) { ++asked; };
    Show([&] {
        SetForegroundWindow(m_dialog);
        ASSERT_TRUE(WaitUntil([&] { return GetForegroundWindow() == m_dialog; }));
        const auto isOn = [&](int page) {
            return WaitUntil([&] {
                return IsShown(page) && !IsShown((page + 1) % 3) && !IsShown((page + 2) % 3) &&
                       IsChild(GetDlgItem(m_dialog, pbTab + page), Focus()) &&
                       SendMessageW(Control(tabOptions), TCM_GETCURSEL, 0, 0) == page;
            });
        };
        EXPECT_TRUE(isOn(0));
        Key(VK_TAB, VK_CONTROL);
        EXPECT_TRUE(isOn(1));
        Key('N', VK_MENU);
        EXPECT_TRUE(WaitUntil([&] { return IsTicked(optSpectrumType + 1); })) << "mnemonics of the page shown";
        Key(VK_NEXT, VK_CONTROL);
        EXPECT_TRUE(isOn(2));
        Key(VK_NEXT, VK_CONTROL);
        EXPECT_TRUE(isOn(0));
        Key(VK_PRIOR, VK_CONTROL);
        EXPECT_TRUE(isOn(2));
        RECT tab{};
        SendPointer(Control(tabOptions), TCM_GETITEMRECT, 1, &tab);
        const LPARAM place = MAKELPARAM((tab.left + tab.right) / 2, (tab.top + tab.bottom) / 2);
        PostMessageW(Control(tabOptions), WM_LBUTTONDOWN, MK_LBUTTON, place);
        PostMessageW(Control(tabOptions), WM_LBUTTONUP, 0, place);
        EXPECT_TRUE(WaitUntil([&] { return IsShown(1) && !IsShown(2); }));
        Press(cmdHelp);
        EXPECT_TRUE(WaitUntil([&] { return asked == 1; }));
        Key(VK_F1);
        EXPECT_TRUE(WaitUntil([&] { return asked == 2; }));
        Key(VK_ESCAPE);
        EXPECT_TRUE(WaitUntil([&] { return IsWindow(m_dialog) == FALSE; }));
    });
}

std::wstring RepeatedMnemonics(HWND page) {
    std::wstring seen;
    std::wstring repeated;
    for (const HWND window : Descendants(page)) {
        const std::wstring text = WindowText(window);
        const std::size_t mark = text.find(L'&');
        if (mark == std::wstring::npos) continue;
        wchar_t letter[2] = {text[mark + 1], L'\0'};
        CharUpperW(letter);
        (seen.find(letter[0]) == std::wstring::npos ? seen : repeated) += letter[0];
    }
    std::sort(repeated.begin(), repeated.end());
    return repeated;
}

TEST_F(OptionsDialog, CaptionsFitAndMnemonicsDiffer) {
    for (const Language language : {Language::English, Language::Russian}) {
        Show(
            [&] {
                EXPECT_EQ(WindowText(m_dialog), language == Language::English ? L"Options" : L"Настройки");
                ExpectRoomForTexts(m_dialog);
                for (int page = 0; page < kOptionPages; ++page) {
                    const HWND window = GetDlgItem(m_dialog, pbTab + page);
                    // The family's English captions share two letters; Alt with one goes from the first to the next.
                    EXPECT_EQ(RepeatedMnemonics(window), language == Language::English && page == 0 ? L"DS" : L"");
                }
            },
            language);
    }
}

class OptionsWindowTest : public MainWindowTest {
  protected:
    /// Sets one control of the options dialog as a user does and closes it by a button.
    void Set(int id, int position, int button = IDOK) {
        CommandWith(mnuOptions, [=](HWND dialog) {
            const HWND control = FindChild(dialog, id);
            position < 0 ? static_cast<void>(SendMessageW(control, BM_CLICK, 0, 0)) : ChooseLine(control, position);
            PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
        });
    }
    /// What the window shows that an option decides on.
    [[nodiscard]] std::map<std::string, std::string> Seen() {
        Pump();
        for (const int box : {pbGraph, pbFFT}) SendMessageW(Control(box), WM_CANCELMODE, 0, 0);
        m_global.view->Select(1, 101);
        Command(mnuMove + 5);
        const auto line = [](const std::u16string& text, std::size_t at) {
            std::istringstream lines(Utf8(text));
            std::string one;
            for (std::size_t skipped = 0; skipped <= at; ++skipped) std::getline(lines, one);
            return one.substr(0, one.find('\r'));
        };
        const std::u16string values = m_form->ValuesText();
        // The grid without what crosses it.
        Command(mnuChShow + 1);
        m_global.view->Deselect();
        const auto name = [&](int box) {
            const Pixels pixels = Capture(box);
            return std::to_string(std::hash<std::string_view>()(
                {reinterpret_cast<const char*>(pixels.rgb.data()), pixels.rgb.size() * 4}));
        };
        const std::string grid = name(pbGraph);
        Command(mnuChShow);
        return {
            {"time", Utf8(TimeLabels(m_global.view->Axis(), m_global.document->Block(), m_global.format).at(1).text)},
            {"amplitude",
             Utf8(AmplitudeLabels(m_global.view->GetLanes()[0], m_global.view->RawCodes(), u'.').at(0).text)},
            {"length", line(values, 0)},
            {"value", line(values, 1)},
            {"grid", grid},
            {"palette", name(pbPal)},
            {"spectrogram", name(pbFFT)}};
    }
};

TEST_F(OptionsWindowTest, EveryOptionIsSeenAtOnceAndCancelChangesNothing) {
    FileBytes recording = SawRecording(5000);
    recording.Patch(128 + 64, 0x3C4A2DB6, 4);  // a scale of 0.01234
    static_cast<void>(m_folder.Write(u"a.bin", recording));
    Start();
    ApplyDisplaySettings(m_global);
    Command(mnuSpectrogram);
    // The control, its position in a list or -1 for a button, what is seen.
    using Change = std::tuple<int, int, const char*>;
    for (const auto& [control, position, expected] : {
             Change{optTime + 1, -1, "time=1"},
             {cboTime, 4, "length=dX:\t1010 ms time=1000"},
             {cboDigits, 2, "value=Ch1:\t 0 V‡ 1.2 V\t 0.012 V"},
             {optDigits + 1, -1, "value=Ch1:\t 0 V‡ 1.22 V\t 0.01 V"},
             {optScale + 1, -1, "amplitude=120 grid value=Ch1:\t 0‡ 99\t 1"},
             {optGridStyle + 1, -1, "grid"},
             {optFFTPalette + 1, -1, "palette spectrogram"},
             {cboFFTWindow, 1, "spectrogram"},
             {cboFFTSize, 6, "spectrogram"},
             {cboDBRange, 1, "spectrogram"},
             {optSpectrumType + 1, -1, "spectrogram"},
             {cboAmpScale, 0, "spectrogram"},
         }) {
        SCOPED_TRACE(control);
        const auto before = Seen();
        Set(control, position, IDCANCEL);
        EXPECT_EQ(Seen(), before);
        Set(control, position);
        std::string changes;
        for (const auto& [name, value] : Seen()) {
            if (before.at(name) == value) continue;
            const bool picture = name == "grid" || name == "palette" || name == "spectrogram";
            changes += (changes.empty() ? "" : " ") + name + (picture ? "" : '=' + value);
        }
        EXPECT_EQ(changes, expected);
    }
}

TEST(TableWindow, ShowsAndCopiesTheTable) {
    const TextTable table{.title = u"T",
                          .columns = {u"Канал", u"Среднее значение", u"Единица"},
                          .close = u"Закрыть",
                          .copy = u"Копировать",
                          .numeric = true,
                          .rows = {{u"C3\tA1", u"-1.5", u"мкВ"}, {u"O2", u"20"}}};
    const std::wstring all = L"Канал\tСреднее значение\tЕдиница\r\nC3 A1\t-1.5\tмкВ\r\nO2\t20\t\r\n";
    for (const int key : {VK_ESCAPE, VK_RETURN}) {
        const DialogAnswer answer([&](HWND dialog) {
            const HWND list = GetDlgItem(dialog, 101);
            EXPECT_EQ(ListView_GetItemCount(list), 2);
            wchar_t text[32] = {};
            LVITEMW item{};
            item.iSubItem = 1;
            item.pszText = text;
            item.cchTextMax = 32;
            SendPointer(list, LVM_GETITEMTEXTW, 0, &item);
            EXPECT_STREQ(text, L"-1.5");
            LVCOLUMNW column{};
            column.mask = LVCF_FMT;
            SendPointer(list, LVM_GETCOLUMNW, 1, &column);
            EXPECT_EQ(column.fmt & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
            EXPECT_EQ(GetWindowLongW(list, GWL_STYLE) & (WS_HSCROLL | WS_VSCROLL), 0) << "all of it is seen";
            SendMessageW(dialog, WM_COMMAND, 102, 0);
            EXPECT_EQ(ClipboardText(), all);
            PostMessageW(list, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        });
        ShowTable(nullptr, table);
    }
}

}  // namespace
}  // namespace quillon::testing
