#include "app/win/KeyInput.h"

#include <utility>

#include "app/Commands.h"
#include "app/ControlIds.h"

namespace quillon {

namespace {

Key KeyOf(WPARAM code) {
    if ((code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9')) return static_cast<Key>(code);
    if (code >= VK_NUMPAD0 && code <= VK_NUMPAD9) return static_cast<Key>('0' + code - VK_NUMPAD0);
    switch (code) {
        case VK_LEFT: return Key::Left;
        case VK_RIGHT: return Key::Right;
        case VK_UP: return Key::Up;
        case VK_DOWN: return Key::Down;
        case VK_PRIOR: return Key::PageUp;
        case VK_NEXT: return Key::PageDown;
        case VK_HOME: return Key::Home;
        case VK_END: return Key::End;
        case VK_ADD:
        case VK_OEM_PLUS: return Key::Plus;
        case VK_SUBTRACT:
        case VK_OEM_MINUS: return Key::Minus;
        case VK_OEM_COMMA: return Key::Comma;
        case VK_OEM_PERIOD: return Key::Point;
        case VK_SPACE: return Key::Space;
        case VK_RETURN: return Key::Enter;
        case VK_ESCAPE: return Key::Escape;
        case VK_BACK: return Key::Backspace;
        case VK_DELETE: return Key::Delete;
        case VK_F1: return Key::F1;
        case VK_F2: return Key::F2;
        case VK_F5: return Key::F5;
        default: return Key::None;
    }
}

/// Whether a key message repeats a key that is held.
bool IsRepeated(const MSG& message) {
    return (message.lParam & (1 << 30)) != 0;
}

/// Boxes of the row of filters.
bool IsFilterBox(int control) {
    return control >= lblFilterGroup && control <= cboFilterDirection;
}

/// Boxes in which something is typed keep its keys.
bool IsTypedInto(int control) {
    return IsFilterBox(control) || control == edtMarks;
}

}  // namespace

KeyPlace KeyInput::FocusPlace() const {
    const HWND focus = GetFocus();
    if (focus == m_window) return KeyPlaceOf(0);
    return GetParent(focus) == m_window ? KeyPlaceOf(GetDlgCtrlID(focus)) : KeyPlace::Everywhere;
}

void KeyInput::ReleaseRaw() {
    if (std::exchange(m_holdsRaw, false)) onRelease();
}

bool KeyInput::Translate(const MSG& message) {
    if (m_window == nullptr) return false;
    // Not by the message of its release, which a menu or a long command may have taken.
    if (m_holdsRaw && (GetKeyState(VK_CONTROL) >= 0 || GetKeyState('R') >= 0)) ReleaseRaw();
    if (message.message == WM_MOUSEWHEEL) return RouteWheel(message);
    if (message.message == WM_CHAR) return TranslateLetter(message);
    // After Alt with another key, the release of Alt must not open the menu.
    const bool released = message.message == WM_SYSKEYUP || message.message == WM_KEYUP;
    if (released && message.wParam == VK_MENU && std::exchange(m_altUsed, false)) return true;
    if (message.message == WM_SYSKEYDOWN && (message.wParam != VK_MENU || !IsRepeated(message)))
        m_altUsed = message.wParam != VK_MENU;
    if (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN) return false;
    return (message.hwnd == m_window || IsChild(m_window, message.hwnd)) && TranslateKey(message);
}

bool KeyInput::TranslateLetter(const MSG& message) {
    const int list = GetParent(message.hwnd) == m_window ? GetDlgCtrlID(message.hwnd) : 0;
    // A list box by itself takes one letter, and the blanks by which folders are indented for a part of their names.
    if ((list != lstDir && list != lstFile) || message.wParam < ' ') return false;
    onLetter(list, static_cast<char16_t>(message.wParam), message.time);
    return true;
}

bool KeyInput::TranslateKey(const MSG& message) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    // Shift is ignored for plus, which needs it on most keyboards.
    const bool shift = GetKeyState(VK_SHIFT) < 0 && message.wParam != VK_OEM_PLUS;
    const bool alt = GetKeyState(VK_MENU) < 0;
    const HWND focus = GetFocus();
    const WPARAM code = message.wParam;
    if (code == VK_TAB && !control && !alt) {
        // The line that is typed in is part of its box.
        const bool isPart = focus != m_window && GetParent(focus) != m_window;
        if (const HWND next = GetNextDlgTabItem(m_window, isPart ? GetParent(focus) : focus, shift)) onFocus(next);
        return true;
    }
    if (focus == Control(pbPathList) && (code == VK_RETURN || code == VK_SPACE || code == VK_DOWN)) {
        onPathList();
        return true;
    }
    if (code == VK_APPS || (code == VK_F10 && shift)) {
        if (focus != Control(pbGraph) && focus != Control(pbFFT) && focus != Control(lvCh) && focus != Control(lvMarks))
            return false;
        onContextMenu();
        return true;
    }
    const int box = GetDlgCtrlID(GetParent(focus) == m_window ? focus : GetParent(focus));
    const Key key = KeyOf(code);
    if (IsTypedInto(box) && IsKeyOfBox(key, control, shift, alt)) return TranslateInBox(focus, code);
    const int command = CommandOf(FocusPlace(), key, control, shift, alt);
    if (command == 0) return false;
    // The play key toggles; auto-repeat must not toggle again.
    if ((command == mnuSoundPlay || command == mnuShowRaw) && IsRepeated(message)) return true;
    if (command == mnuShowRaw) m_holdsRaw = true;
    onCommand(command);
    return true;
}

bool KeyInput::TranslateInBox(HWND focus, WPARAM code) const {
    const HWND box = GetParent(focus) == m_window ? focus : GetParent(focus);
    if (code != VK_RETURN && code != VK_ESCAPE) return false;
    // An open list takes the line that is chosen itself.
    if (code == VK_RETURN && SendMessageW(box, CB_GETDROPPEDSTATE, 0, 0) != 0) return false;
    SendMessageW(m_window, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(box), code == VK_RETURN ? kEntered : kCancelled),
                 reinterpret_cast<LPARAM>(box));
    return true;
}

bool KeyInput::RouteWheel(const MSG& message) {
    // The wheel goes to the control under the pointer, independent of the focus.
    HWND under = WindowFromPoint({GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)});
    if (under == nullptr || !IsWindowEnabled(m_window) || !IsChild(m_window, under)) return false;
    if (GetParent(under) != m_window && IsFilterBox(GetDlgCtrlID(GetParent(under)))) under = GetParent(under);
    const int id = GetDlgCtrlID(under);
    const std::optional<GraphZone> zone = WheelZoneOf(id);
    if (!zone) {
        // A closed drop-down list would choose another entry: it has to have the focus for that.
        const bool choice = id == lstDrive || id == cboFileType || IsFilterBox(id);
        const HWND focus = GetFocus();
        if (!choice || focus == under || IsChild(under, focus))
            SendMessageW(under, WM_MOUSEWHEEL, message.wParam, message.lParam);
        return true;
    }
    int delta = GET_WHEEL_DELTA_WPARAM(message.wParam);
    // Wheel messages queued while the last one was drawn are merged into one.
    MSG next{};
    while (PeekMessageW(&next, nullptr, WM_MOUSEWHEEL, WM_MOUSEWHEEL, PM_NOREMOVE) && next.hwnd == message.hwnd &&
           LOWORD(next.wParam) == LOWORD(message.wParam)) {
        PeekMessageW(&next, nullptr, WM_MOUSEWHEEL, WM_MOUSEWHEEL, PM_REMOVE);
        delta += GET_WHEEL_DELTA_WPARAM(next.wParam);
    }
    POINT point{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    ScreenToClient(Control(pbGraph), &point);
    const UINT keys = GET_KEYSTATE_WPARAM(message.wParam);
    const GraphPointer pointer{static_cast<std::int32_t>(point.x), static_cast<std::int32_t>(point.y),
                               (keys & MK_SHIFT) != 0, (keys & MK_CONTROL) != 0, GetKeyState(VK_MENU) < 0};
    // Otherwise the release of Alt would open the menu.
    if (pointer.alt) m_altUsed = true;
    onWheel(delta, *zone, pointer);
    return true;
}

}  // namespace quillon
