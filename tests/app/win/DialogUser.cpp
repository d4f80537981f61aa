#include "app/win/DialogUser.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/Text.h"
#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

namespace quillon::testing {

bool WaitUntil(const std::function<bool()>& condition) {
    for (const ULONGLONG end = GetTickCount64() + 10000; GetTickCount64() < end; Sleep(1))
        if (condition()) return true;
    return false;
}

bool PumpUntil(const std::function<bool()>& condition) {
    for (const ULONGLONG end = GetTickCount64() + 60000; GetTickCount64() < end;) {
        if (condition()) return true;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    return false;
}

std::vector<HWND> Descendants(HWND window) {
    std::vector<HWND> all;
    const auto add = [](HWND child, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
        return TRUE;
    };
    EnumChildWindows(window, add, reinterpret_cast<LPARAM>(&all));
    return all;
}

HWND FindChild(HWND dialog, int id) {
    const std::vector<HWND> all = Descendants(dialog);
    const auto found = std::find_if(all.begin(), all.end(), [id](HWND window) { return GetDlgCtrlID(window) == id; });
    return found == all.end() ? nullptr : *found;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

HWND FocusOf(HWND window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

void ChooseLine(HWND combo, int line) {
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(line), 0);
    SendMessageW(GetParent(combo), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(combo), CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(combo));
}

void ExpectRoomForTexts(HWND dialog) {
    for (const HWND window : Descendants(dialog)) {
        const bool isList = ClassOf(window) == L"ComboBox";
        // Names of the user's are cut short with dots.
        if (ClassOf(window) == L"Static" && (GetWindowLongW(window, GWL_STYLE) & SS_ELLIPSISMASK) != 0) continue;
        std::vector<std::wstring> texts{WindowText(window)};
        for (LRESULT line = isList ? SendMessageW(window, CB_GETCOUNT, 0, 0) : 0; line-- > 0;) {
            wchar_t text[64] = {};
            SendPointer(window, CB_GETLBTEXT, static_cast<WPARAM>(line), text);
            texts.emplace_back(text);
        }
        // A list's arrow, a button's box or edges.
        int used = ClassOf(window) == L"Button" ? MulDiv(18, ScreenDpi(), 96) : 0;
        if (isList) used = GetSystemMetrics(SM_CXVSCROLL) + MulDiv(8, ScreenDpi(), 96);
        RECT client{};
        GetClientRect(window, &client);
        const WindowDC dc(window);
        const SelectScope select(dc.Get(), reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0)));
        for (std::wstring& text : texts) {
            std::erase(text, L'&');
            if (text.empty()) continue;
            SIZE size{};
            GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
            EXPECT_LE(size.cx + used, client.right) << Utf8(Narrow16(text));
            EXPECT_LE(size.cy, client.bottom) << Utf8(Narrow16(text));
        }
    }
}

std::wstring ClipboardText() {
    std::wstring text;
    if (!OpenClipboard(nullptr)) return text;
    if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT)) {
        text = static_cast<const wchar_t*>(GlobalLock(memory));
        GlobalUnlock(memory);
    }
    CloseClipboard();
    return text;
}

}  // namespace quillon::testing
