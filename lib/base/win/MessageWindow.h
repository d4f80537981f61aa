#pragma once

#include <functional>

#include "base/win/Win32.h"

namespace quillon {

/// A window that is never shown and gets only the messages sent or posted to its handle: timers, devices and the
/// clipboard need one. Messages that are still queued for it go with it. It may be destroyed in its own handler.
class MessageWindow {
  public:
    /// Called on the thread that made the window, which has to handle its messages; must not throw. True for a message
    /// that needs nothing else done; the others are handled as usual.
    using Handler = std::function<bool(UINT message, WPARAM wParam)>;

    /// Where the system refuses a window, Handle is null and GetLastError says why.
    explicit MessageWindow(Handler handler = {});
    ~MessageWindow();
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;

    [[nodiscard]] HWND Handle() const { return m_window; }

  private:
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    Handler m_handler;
    HWND m_window;
};

}  // namespace quillon
