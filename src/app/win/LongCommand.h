#pragma once

#include <exception>
#include <functional>

#include "base/win/Win32.h"

namespace quillon {

/// Runs long work that no other command may interrupt. Messages are pumped meanwhile, but keyboard and mouse input is
/// dropped, except what closes or minimizes a window. Esc stops the work; a request to close the window does so after
/// asking, and is carried out at the end.
class LongCommand {
  public:
    // To be set by the owner.
    std::function<void()> onEnd;    ///< a command has ended
    std::function<bool()> onClose;  ///< asks whether to stop the work and close the window

    /// The window whose commands these are; null once it is gone.
    void SetWindow(HWND window) { m_window = window; }
    [[nodiscard]] HWND Window() const { return m_window; }
    [[nodiscard]] bool IsGone() const { return m_window == nullptr; }
    [[nodiscard]] bool IsBusy() const { return m_busy; }

    /// Runs a command, which may be a dialog with work in parts. Returns the exception that it has thrown, if any.
    std::exception_ptr Run(const std::function<void()>& work);
    /// Runs a command to its end, in which the window closes if that was asked for meanwhile. Throws what it throws.
    void RunWhole(const std::function<void()>& work);
    /// Runs a part of it that can be stopped by itself. What is typed and clicked meanwhile is dropped, also what
    /// is repeated by the key that stopped it, for as long as that is held.
    void RunPart(const std::function<void()>& part);
    /// Runs a command that is one such part, under the pointer of waiting.
    void RunWaiting(const std::function<void()>& work);
    /// To be called periodically by the work. False when it is to stop, and then at every call.
    bool StayAlive();
    /// Stops the work without asking.
    void Stop() { m_stopped = m_busy; }
    /// Handles the messages that are waiting. False when the window is gone.
    [[nodiscard]] bool RunPending() const;

    /// Whether the window may close now. While a command runs or a dialog is open it may not, and closes afterwards
    /// unless the user decides to go on with the work.
    [[nodiscard]] bool MayClose();
    [[nodiscard]] bool IsCloseAsked() const { return m_closeAsked; }
    /// To be called when a command or a dialog has ended.
    void CloseIfAsked();

  private:
    /// Handles messages other than input; keeps in mind that Esc was pressed.
    void Pump();
    /// Drops the input that is waiting, and leaves other messages.
    void DropInput();

    HWND m_window = nullptr;
    bool m_busy = false;
    bool m_stopped = false;
    bool m_asking = false;  ///< onClose is running
    bool m_closeAsked = false;
    ULONGLONG m_lastPump = 0;  ///< milliseconds since the system's start
};

}  // namespace quillon
