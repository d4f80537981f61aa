#pragma once

// The only include of windows.h. What single files need beyond it they include after this.
#include <windows.h>
// After windows.h, on which they depend.
#include <commctrl.h>
#include <shellapi.h>
#include <uxtheme.h>
#include <windowsx.h>

#include <string>
#include <string_view>

namespace quillon {

/// Text of the core as Windows takes it, and back.
[[nodiscard]] inline std::wstring Wide(std::u16string_view text) {
    return {text.begin(), text.end()};
}

[[nodiscard]] inline std::u16string Narrow16(std::wstring_view text) {
    return {text.begin(), text.end()};
}

/// Text of a window or control.
[[nodiscard]] inline std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
    if (!text.empty())
        text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1)));
    return text;
}

/// Sends a message whose argument is a pointer to text or a structure.
template <typename T>
LRESULT SendPointer(HWND window, UINT message, WPARAM wParam, T* pointer) {
    return SendMessageW(window, message, wParam, reinterpret_cast<LPARAM>(pointer));
}

}  // namespace quillon
