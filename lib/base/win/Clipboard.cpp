#include "base/win/Clipboard.h"

namespace quillon {

ClipboardScope::ClipboardScope()
    : m_owner(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, GetModuleHandleW(nullptr),
                              nullptr)) {
    for (int attempt = 0; attempt < 50 && !m_open; ++attempt) {
        if (attempt > 0) Sleep(20);
        m_open = OpenClipboard(m_owner) != FALSE;
    }
    if (m_open) EmptyClipboard();
}

ClipboardScope::~ClipboardScope() {
    if (m_open) CloseClipboard();
    if (m_owner != nullptr) DestroyWindow(m_owner);
}

bool ClipboardScope::Put(UINT format, HANDLE data) const {
    return m_open && SetClipboardData(format, data) != nullptr;
}

}  // namespace quillon
