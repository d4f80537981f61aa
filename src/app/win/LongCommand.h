#pragma once

#include <exception>
#include <functional>

#include "base/win/Win32.h"

namespace quillon {

/// Runs long work that no other command may interrupt. Messages are pumped meanwhile, but keyboard and mouse input is
/// dropped, and a request to close the window is carried out at the end.
class LongCommand {
  public:
    /// The window whose commands these are; null once it is gone.
    void SetWindow(HWND window) { m_window = window; }
    [[nodiscard]] HWND Window() const { return m_window; }
    [[nodiscard]] bool IsGone() const { return m_window == nullptr; }
    [[nodiscard]] bool IsBusy() const { return m_busy; }

    /// Returns the exception that the work has thrown, if any.
    std::exception_ptr Run(const std::function<void()>& work);
    /// To be called periodically by the work. False when the window is destroyed.
    bool StayAlive();
    /// Handles the messages that are waiting. False when the window is gone.
    [[nodiscard]] bool RunPending() const;

    /// Whether the window may close now. While a command runs or a dialog is open it may not, and closes afterwards.
    [[nodiscard]] bool MayClose();
    /// To be called when a command or a dialog has ended.
    void CloseIfAsked();

  private:
    HWND m_window = nullptr;
    bool m_busy = false;
    bool m_closeAsked = false;
    ULONGLONG m_lastPump = 0;  ///< milliseconds since the system's start
};

}  // namespace quillon
