#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include "app/win/DialogUser.h"
#include "app/win/MainWindowFixture.h"
#include "app/win/WinServices.h"
#include "base/Text.h"
#include "dialogs/win/ColorChooser.h"
#include "dialogs/win/dlgOptions.h"

namespace quillon::testing {
namespace {

/// The dialog as a user sees it, driven from another thread through its own controls.
class OptionsUser {
  public:
    explicit OptionsUser(HWND dialog) : m_dialog(dialog) {}
    [[nodiscard]] HWND Control(int id) const { return FindChild(m_dialog, id); }
    void Click(int id) const { SendMessageW(Control(id), BM_CLICK, 0, 0); }
    [[nodiscard]] bool IsTicked(int id) const { return SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED; }
    [[nodiscard]] int Position(int id) const { return static_cast<int>(SendMessageW(Control(id), CB_GETCURSEL, 0, 0)); }
    void SetPosition(int id, int position) const { ChooseLine(Control(id), position); }
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
    [[nodiscard]] HWND Dialog() const { return m_dialog; }

  private:
    HWND m_dialog;
};

class OptionsDialog : public ::testing::Test {
  protected:
    /// Opens the dialog and lets the user act on it.
    std::optional<OptionChanges> Show(const std::function<void(const OptionsUser&)>& act,
                                      Language language = Language::English, double sampleRate = 250.0) {
        const WinServices services(language);
        dlgOptions dialog(services, m_calls, {}, sampleRate);
        const DialogAnswer answer([&](HWND window) {
            act(OptionsUser(window));
            // A test that has failed must not wait for ever.
            PostMessageW(window, WM_COMMAND, cmdCancel, 0);
        });
        return dialog.Show(nullptr, m_values);
    }

    OptionValues m_values;
    OptionsCalls m_calls;
};

TEST_F(OptionsDialog, ShowsWhatIsStoredAndRefusesSilently) {
    m_values.waveformCursor = 6;
    m_calls.chooseFastFile = [](HWND, std::u16string& name) {
        name += u"\\fast.txt";
        return true;
    };
    for (const wchar_t* refused : {L"250", L"abc"}) {
        const auto changes = Show([&](const OptionsUser& user) {
            EXPECT_TRUE(user.IsTicked(optCursor + 2));
            EXPECT_EQ(user.Text(cboDBRange), L"120") << "the refused entry is gone";
            user.Type(cboDBRange, refused);
            user.Press(cmdOk);
        });
        EXPECT_EQ(changes, OptionChanges{});
    }
    const auto changes = Show([](const OptionsUser& user) {
        EXPECT_EQ(user.Text(lblFFTPersent), L"0.977 Hz");
        user.SetPosition(cboFFTSize, 6);
        EXPECT_EQ(user.Text(lblFFTPersent), L"0.122 Hz");
        EXPECT_FALSE(IsWindowEnabled(user.Control(optXFormat)));
        user.Click(chkXColumn);
        EXPECT_TRUE(IsWindowEnabled(user.Control(optXFormat)));
        user.Type(txtFastFile, L"C:");
        user.Click(cmdBrowse);
        user.Type(cboDBRange, L"10");
        user.Press(cmdOk);
    });
    EXPECT_EQ(changes, (OptionChanges{false, false, true, true}));
    EXPECT_EQ(m_values.exportFastFile, u"C:\\fast.txt");
    EXPECT_EQ(m_values.spectrum.decibelRange, 10.0F);
    EXPECT_EQ(m_values.waveformCursor, 6) << "left as it was shown";
}

TEST_F(OptionsDialog, SwatchOffersTheTraceColors) {
    HWND chooser = nullptr;
    const auto isOpen = [&] {
        chooser = FindWindowW(L"#32770", L"Select color");
        return chooser != nullptr && IsWindowVisible(chooser);
    };
    Show([&](const OptionsUser& user) {
        const HWND swatch = user.Control(pbGridColor);
        PostMessageW(swatch, WM_KEYDOWN, VK_RETURN, 0);
        ASSERT_TRUE(WaitUntil(isOpen)) << "Enter opens the colours, not OK";
        EXPECT_EQ(Descendants(chooser).size(), 16U);
        // Right, down, Enter: the second colour of the second row.
        const auto focused = [&](int color) {
            return WaitUntil([&] { return user.Focus() == GetDlgItem(chooser, kFirstColorButton + color); });
        };
        EXPECT_TRUE(focused(0));
        PostMessageW(user.Focus(), WM_KEYDOWN, VK_RIGHT, 0);
        EXPECT_TRUE(focused(1));
        PostMessageW(user.Focus(), WM_KEYDOWN, VK_DOWN, 0);
        EXPECT_TRUE(focused(9));
        PostMessageW(user.Focus(), WM_KEYDOWN, VK_RETURN, 0);
        EXPECT_TRUE(WaitUntil([&] { return !isOpen(); }));
        PostMessageW(swatch, WM_KEYDOWN, VK_RETURN, 0);
        ASSERT_TRUE(WaitUntil(isOpen));
        EXPECT_TRUE(focused(9)) << "the present one";
        PostMessageW(chooser, WM_COMMAND, IDCANCEL, 0);
        EXPECT_TRUE(WaitUntil([&] { return !isOpen(); }));
        user.Press(cmdOk);
    });
    EXPECT_EQ(m_values.gridColor, 9);
}

TEST_F(OptionsDialog, KeysAndTabsChangePagesAndHelpOpens) {
    std::atomic<int> asked = 0;
    m_calls.help = [&](HWND) { ++asked; };
    Show([&](const OptionsUser& user) {
        SetForegroundWindow(user.Dialog());
        ASSERT_TRUE(WaitUntil([&] { return GetForegroundWindow() == user.Dialog(); }));
        const auto isOn = [&](int page) {
            return WaitUntil([&] {
                return user.IsShown(page) && !user.IsShown((page + 1) % 3) && !user.IsShown((page + 2) % 3) &&
                       IsChild(GetDlgItem(user.Dialog(), pbTab + page), user.Focus()) &&
                       SendMessageW(user.Control(tabOptions), TCM_GETCURSEL, 0, 0) == page;
            });
        };
        EXPECT_TRUE(isOn(0));
        OptionsUser::Key(VK_TAB, VK_CONTROL);
        EXPECT_TRUE(isOn(1));
        OptionsUser::Key('N', VK_MENU);
        EXPECT_TRUE(WaitUntil([&] { return user.IsTicked(optSpectrumType + 1); })) << "mnemonics of the page shown";
        OptionsUser::Key(VK_NEXT, VK_CONTROL);
        EXPECT_TRUE(isOn(2));
        OptionsUser::Key(VK_NEXT, VK_CONTROL);
        EXPECT_TRUE(isOn(0));
        OptionsUser::Key(VK_PRIOR, VK_CONTROL);
        EXPECT_TRUE(isOn(2));
        RECT tab{};
        SendPointer(user.Control(tabOptions), TCM_GETITEMRECT, 1, &tab);
        const LPARAM place = MAKELPARAM((tab.left + tab.right) / 2, (tab.top + tab.bottom) / 2);
        PostMessageW(user.Control(tabOptions), WM_LBUTTONDOWN, MK_LBUTTON, place);
        PostMessageW(user.Control(tabOptions), WM_LBUTTONUP, 0, place);
        EXPECT_TRUE(WaitUntil([&] { return user.IsShown(1) && !user.IsShown(2); }));
        user.Press(cmdHelp);
        EXPECT_TRUE(WaitUntil([&] { return asked == 1; }));
        OptionsUser::Key(VK_F1);
        EXPECT_TRUE(WaitUntil([&] { return asked == 2; }));
        OptionsUser::Key(VK_ESCAPE);
        EXPECT_TRUE(WaitUntil([&] { return IsWindow(user.Dialog()) == FALSE; }));
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
            [&](const OptionsUser& user) {
                EXPECT_EQ(WindowText(user.Dialog()), language == Language::English ? L"Options" : L"Настройки");
                ExpectRoomForTexts(user.Dialog());
                for (int page = 0; page < kOptionPages; ++page) {
                    const HWND window = GetDlgItem(user.Dialog(), pbTab + page);
                    // The family's English captions share two letters; Alt with one goes from the first to the next.
                    EXPECT_EQ(RepeatedMnemonics(window), language == Language::English && page == 0 ? L"DS" : L"");
                }
            },
            language);
    }
}

}  // namespace
}  // namespace quillon::testing
