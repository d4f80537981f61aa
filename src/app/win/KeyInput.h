#pragma once

#include <cstdint>
#include <functional>

#include "app/GraphKeys.h"
#include "base/win/Win32.h"
#include "view/GraphGestures.h"

namespace quillon {

/// Decides what a key or the wheel does before the focused control sees it: which command a key is depends on where the
/// focus is, and the wheel goes to the control under the pointer.
class KeyInput {
  public:
    /// Notifications to the window (WM_COMMAND) for a box that has the keyboard: what was typed is to be taken, or not.
    static constexpr int kEntered = 0x7001;
    static constexpr int kCancelled = 0x7002;

    // To be set by the owner.
    std::function<void(int command)> onCommand;
    std::function<void(HWND control)> onFocus;  ///< the Tab key leads there
    std::function<void()> onPathList;           ///< a key opens it
    std::function<void()> onContextMenu;        ///< a key opens it, at the corner of the graph
    /// A letter is typed in the list of folders or of files, at a time in milliseconds.
    std::function<void(int list, char16_t letter, std::uint32_t time)> onLetter;
    std::function<void()> onRelease;  ///< the key that shows raw signals is not held any longer
    std::function<void(int delta, GraphZone zone, const GraphPointer& pointer)> onWheel;

    /// The main window; null before it is made and after it is gone.
    void SetWindow(HWND window) { m_window = window; }
    /// True when the message must not be dispatched further.
    [[nodiscard]] bool Translate(const MSG& message);
    /// The window has lost the focus.
    void Deactivated() {
        m_altUsed = false;
        ReleaseRaw();
    }

  private:
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_window, id); }
    /// True when a list finds a name by the letter.
    [[nodiscard]] bool TranslateLetter(const MSG& message);
    [[nodiscard]] bool TranslateKey(const MSG& message);
    /// True when the key is one that a box with the keyboard does not get.
    [[nodiscard]] bool TranslateInBox(HWND focus, WPARAM code) const;
    void ReleaseRaw();
    [[nodiscard]] bool RouteWheel(const MSG& message);
    [[nodiscard]] KeyPlace FocusPlace() const;

    HWND m_window = nullptr;
    bool m_holdsRaw = false;  ///< the key that shows raw signals is held
    bool m_altUsed = false;   ///< the Alt key that is down was part of a gesture
};

}  // namespace quillon
