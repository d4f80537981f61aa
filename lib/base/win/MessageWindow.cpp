#include "base/win/MessageWindow.h"

#include <utility>

namespace quillon {

MessageWindow::MessageWindow(Handler handler) : m_handler(std::move(handler)) {
    // A class of its own: a first window of a system control's class would load the library of all of them.
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &MessageWindow::WindowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"NorvikMessages";
    RegisterClassW(&windowClass);  // fails harmlessly from the second window on
    m_window = CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                               windowClass.hInstance, nullptr);
    if (m_window != nullptr && m_handler) SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

MessageWindow::~MessageWindow() {
    if (m_window == nullptr) return;
    SetWindowLongPtrW(m_window, GWLP_USERDATA, 0);
    DestroyWindow(m_window);
}

LRESULT CALLBACK MessageWindow::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (const auto* self = reinterpret_cast<const MessageWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA))) {
        // A copy, because the call may destroy the window.
        const Handler handler = self->m_handler;
        if (handler(message, wParam)) return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace quillon
