#pragma once

#include <functional>

#include "app/GraphKeys.h"
#include "base/win/Win32.h"
#include "view/GraphGestures.h"

namespace quillon {

/// Decides what a key or the wheel does before the focused control sees it: which command a key is depends on where the
/// focus is, and the wheel goes to the control under the pointer.
class KeyInput {
  public:
    // To be set by the owner.
    std::function<void(int command)> onCommand;
    std::function<void(HWND control)> onFocus;  ///< the Tab key leads there
    std::function<void()> onPathList;           ///< a key opens it
    std::function<void()> onContextMenu;        ///< a key opens it, at the corner of the graph
    std::function<void(int delta, GraphZone zone, const GraphPointer& pointer)> onWheel;

    /// The main window; null before it is made and after it is gone.
    void SetWindow(HWND window) { m_window = window; }
    /// True when the message must not be dispatched further.
    [[nodiscard]] bool Translate(const MSG& message);
    /// The window has lost the focus.
    void Deactivated() { m_altUsed = false; }

  private:
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_window, id); }
    [[nodiscard]] bool TranslateKey(const MSG& message);
    [[nodiscard]] bool RouteWheel(const MSG& message);
    [[nodiscard]] KeyPlace FocusPlace() const;

    HWND m_window = nullptr;
    bool m_altUsed = false;  ///< the Alt key that is down was part of a gesture
};

}  // namespace quillon
