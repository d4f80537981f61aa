#include "app/win/KeyboardFocus.h"

#include "app/ControlIds.h"
#include "app/GraphKeys.h"

namespace quillon {

void KeyboardFocus::ToGraph() const {
    if (const HWND graph = GetDlgItem(m_window, pbGraph)) SetFocus(graph);
}

void KeyboardFocus::Return() const {
    if (GetActiveWindow() == m_window) ToGraph();
    Show();
}

void KeyboardFocus::Clicked(int control) const {
    // Posted, so that the control has processed the click first.
    if (ReturnsKeyboard(control)) PostMessageW(m_window, kReturnMessage, 0, 0);
}

void KeyboardFocus::Keep() {
    m_last = GetFocus();
    Show();
}

void KeyboardFocus::Restore() const {
    if (m_last != nullptr) {
        SetFocus(m_last);
    } else {
        ToGraph();
    }
    Show();
}

}  // namespace quillon
