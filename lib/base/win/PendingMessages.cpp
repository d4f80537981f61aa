#include "base/win/PendingMessages.h"

namespace quillon {

bool IsInput(UINT message) {
    return (message >= WM_KEYFIRST && message <= WM_KEYLAST) || (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) ||
           (message >= WM_NCMOUSEMOVE && message <= WM_NCXBUTTONDBLCLK);
}

bool RunPendingMessages(const std::function<bool(MSG& message)>& take) {
    // Handlers that post new messages must not keep the caller here for ever.
    constexpr int most = 1000;
    MSG message{};
    for (int count = 0; count < most && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE; ++count) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        if (take && take(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

}  // namespace quillon
