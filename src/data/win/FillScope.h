#pragma once

#include "base/win/Win32.h"

namespace quillon {

/// Suspends painting of a window and what lies in it while it is filled.
class FillScope {
  public:
    explicit FillScope(HWND window) : m_window(window) { SendMessageW(window, WM_SETREDRAW, FALSE, 0); }
    ~FillScope() {
        SendMessageW(m_window, WM_SETREDRAW, TRUE, 0);
        RedrawWindow(m_window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    }
    FillScope(const FillScope&) = delete;
    FillScope& operator=(const FillScope&) = delete;

  private:
    HWND m_window;
};

}  // namespace quillon
