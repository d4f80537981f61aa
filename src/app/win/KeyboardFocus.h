#pragma once

#include "base/win/Win32.h"

namespace quillon {

/// Which control of the main window has the keyboard. After a click on a list it returns to the graph, so that keys
/// move the view.
class KeyboardFocus {
  public:
    /// Posted to the window, which has to call Return.
    static constexpr UINT kReturnMessage = WM_APP;

    /// The main window; null once it is gone.
    void SetWindow(HWND window) { m_window = window; }
    /// Draws the frame round the list or graph that has the focus anew.
    void Show() const { InvalidateRect(m_window, nullptr, TRUE); }
    /// Gives the graph the keyboard, if there is one yet.
    void ToGraph() const;
    void Return() const;
    /// A control was clicked: returns the keyboard where it has no use for it.
    void Clicked(int control) const;
    /// The window was deactivated; Restore gives the keyboard to the control that had it.
    void Keep();
    void Restore() const;

  private:
    HWND m_window = nullptr;
    HWND m_last = nullptr;  ///< control that had the keyboard when the window was deactivated
};

}  // namespace quillon
