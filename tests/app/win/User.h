#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "app/win/MainWindowFixture.h"

namespace quillon::testing {

/// Someone at the keyboard and mouse, in a thread of their own.
class User {
  public:
    explicit User(std::function<void(User&)> acts) : m_thread([this, acts = std::move(acts)] { Run(acts); }) {}
    ~User() { m_thread.join(); }

    [[nodiscard]] HWND Window() const { return m_window; }
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_window, id); }
    [[nodiscard]] std::wstring Caption() const { return WindowText(m_window); }
    [[nodiscard]] LRESULT Files() const { return SendMessageW(Control(lstFile), LB_GETCOUNT, 0, 0); }
    void Command(int id) const { SendMessageW(m_window, WM_COMMAND, static_cast<WPARAM>(id), 0); }
    /// Commands that open a dialog come back only after it.
    void PostCommand(int id) const { PostMessageW(m_window, WM_COMMAND, static_cast<WPARAM>(id), 0); }
    void Key(WPARAM key) const { PostMessageW(Control(pbGraph), WM_KEYDOWN, key, 0); }
    void Choose(int list, const wchar_t* text, int notification) const {
        // Folders are indented.
        wchar_t entry[512] = {};
        LRESULT line = SendMessageW(Control(list), LB_GETCOUNT, 0, 0) - 1;
        for (; line >= 0; --line) {
            SendPointer(Control(list), LB_GETTEXT, static_cast<WPARAM>(line), entry);
            if (std::wstring_view(entry).ends_with(text)) break;
        }
        SendMessageW(Control(list), LB_SETCURSEL, static_cast<WPARAM>(line), 0);
        SendMessageW(m_window, WM_COMMAND, MAKEWPARAM(list, notification), reinterpret_cast<LPARAM>(Control(list)));
    }
    /// The dialog that is open, once it is.
    HWND Dialog() {
        HWND dialog = nullptr;
        EXPECT_TRUE(WaitUntil([&] {
            dialog = GetLastActivePopup(m_window);
            return dialog != m_window && dialog != nullptr && IsWindowVisible(dialog);
        }));
        return dialog;
    }
    void Press(HWND dialog, int button) { PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0); }

    // At the real keyboard: the keys go to whatever has it.

    /// Presses a key while others are held.
    static void Strike(WORD key, std::initializer_list<WORD> held = {}) {
        for (const WORD modifier : held) Send(modifier, 0, 0);
        for (const DWORD flags : {0UL, DWORD{KEYEVENTF_KEYUP}}) Send(key, 0, flags);
        for (const WORD modifier : held) Send(modifier, 0, KEYEVENTF_KEYUP);
        Sleep(30);
    }
    static void Write(std::wstring_view text) {
        for (const wchar_t letter : text)
            for (const DWORD flags : {0UL, DWORD{KEYEVENTF_KEYUP}}) Send(0, letter, flags | KEYEVENTF_UNICODE);
        Sleep(30);
    }
    /// The number of the control that has the keyboard, or of the box whose line has it.
    [[nodiscard]] int Focus() const {
        const HWND focus = FocusOf(m_window);
        return GetDlgCtrlID(GetParent(focus) == m_window ? focus : GetParent(focus));
    }
    /// Strikes a key until something is so, if it comes to be; `observed` tells that the key has been taken, as that
    /// may last.
    [[nodiscard]] static bool StrikeUntil(WORD key, const std::function<LRESULT()>& observed,
                                          const std::function<bool()>& condition) {
        for (int times = 0; times < 30 && !condition(); ++times) {
            const LRESULT before = observed();
            Strike(key);
            for (int wait = 0; wait < 300 && observed() == before; ++wait) Sleep(10);
            for (int wait = 0; wait < 20 && !condition(); ++wait) Sleep(10);
        }
        return condition();
    }
    /// Goes on by Tab to a control, in the main window or in a dialog.
    [[nodiscard]] static bool TabTo(HWND window, const std::function<bool()>& condition) {
        return StrikeUntil(
            VK_TAB, [window] { return reinterpret_cast<LRESULT>(FocusOf(window)); }, condition);
    }
    [[nodiscard]] bool TabTo(int control) const {
        return TabTo(m_window, [&] { return Focus() == control; });
    }
    /// The dialog that is open and has the keyboard, once it is.
    HWND DialogWithKeys() {
        const HWND dialog = Dialog();
        EXPECT_TRUE(WaitUntil([&] { return GetForegroundWindow() == dialog; }));
        return dialog;
    }
    /// Chooses a command of the menu by F10 and the arrow keys.
    void StrikeMenu(int command) const {
        std::vector<int> places;
        ASSERT_TRUE(FindPlaces(GetMenu(m_window), command, places)) << command;
        Strike(VK_F10);
        for (int step = 0; step < places.back(); ++step) Strike(VK_RIGHT);
        for (auto place = places.rbegin() + 1; place != places.rend(); ++place) {
            Strike(place == places.rbegin() + 1 ? VK_DOWN : VK_RIGHT);
            EXPECT_TRUE(WaitUntil([] { return IsWindowVisible(FindWindowW(L"#32768", nullptr)) != FALSE; }));
            for (int step = 0; step < *place; ++step) Strike(VK_DOWN);
        }
        Strike(VK_RETURN);
        EXPECT_TRUE(WaitUntil([] { return FindWindowW(L"#32768", nullptr) == nullptr; }));
    }

  private:
    static void Send(WORD key, WORD letter, DWORD flags) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki = {key, letter, flags, 0, 0};
        SendInput(1, &input, sizeof(input));
    }
    /// Where a command is: its place among the lines of its menu that are no separators, that of its menu, and so on.
    static bool FindPlaces(HMENU menu, int command, std::vector<int>& places) {
        for (int line = 0, place = 0; line < GetMenuItemCount(menu); ++line) {
            const HMENU inner = GetSubMenu(menu, line);
            const bool found = inner != nullptr ? FindPlaces(inner, command, places)
                                                : GetMenuItemID(menu, line) == static_cast<UINT>(command);
            if (found) places.push_back(place);
            if (found) return true;
            if ((GetMenuState(menu, static_cast<UINT>(line), MF_BYPOSITION) & MF_SEPARATOR) == 0 || inner != nullptr)
                ++place;
        }
        return false;
    }
    void Run(const std::function<void(User&)>& acts) {
        EXPECT_TRUE(WaitUntil([&] {
            m_window = FindWindowW(L"frmQLMain", nullptr);
            // The controls get their names when all of them are made and filled.
            return m_window != nullptr && IsWindowVisible(m_window) && GetWindowTextLengthW(Control(pnValues)) > 0;
        }));
        acts(*this);
        PostCommand(mnuExit);
    }
    HWND m_window = nullptr;
    std::thread m_thread;
};

}  // namespace quillon::testing
