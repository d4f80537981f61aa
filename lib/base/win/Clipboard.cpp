#include "base/win/Clipboard.h"

namespace quillon {

ClipboardScope::ClipboardScope() {
    for (int attempt = 0; attempt < 50 && !m_open; ++attempt) {
        if (attempt > 0) Sleep(20);
        m_open = OpenClipboard(m_owner.Handle()) != FALSE;
    }
    if (m_open) EmptyClipboard();
}

ClipboardScope::~ClipboardScope() {
    if (m_open) CloseClipboard();
}

bool ClipboardScope::Put(UINT format, HANDLE data) const {
    return m_open && SetClipboardData(format, data) != nullptr;
}

}  // namespace quillon
