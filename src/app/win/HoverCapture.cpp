#include "app/win/HoverCapture.h"

#include <utility>

namespace quillon {

bool HoverCapture::StaysIn(HWND picture, HCURSOR pointer, POINT point) {
    POINT now{};
    GetCursorPos(&now);
    if (m_heldAt && m_heldAt->x == now.x && m_heldAt->y == now.y) return false;
    m_heldAt.reset();
    if (GetCapture() != picture) {
        // A dialog or another program's window may cover ours.
        const HWND window = GetParent(picture);
        if (!IsWindowEnabled(window) || GetActiveWindow() != window) return false;
        SetCapture(picture);
        SetCursor(pointer);
    }
    m_picture = picture;
    m_point = point;
    if (WindowFromPoint(now) == picture) return true;
    End();
    return false;
}

void HoverCapture::End() {
    onEnd();
    const HWND picture = std::exchange(m_picture, nullptr);
    if (picture == nullptr) return;
    if (GetCapture() == picture) ReleaseCapture();
    RedrawWindow(GetParent(picture), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void HoverCapture::Lose(HWND picture) {
    if (m_picture != picture || GetCapture() == picture) return;
    m_picture = nullptr;
    onEnd();
}

}  // namespace quillon
