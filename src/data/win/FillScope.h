#pragma once

#include "app/win/Win32.h"

namespace quillon {

/// Suspends painting of a list while it is filled.
class FillScope {
  public:
    explicit FillScope(HWND list) : m_list(list) { SendMessageW(list, WM_SETREDRAW, FALSE, 0); }
    ~FillScope() {
        SendMessageW(m_list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(m_list, nullptr, TRUE);
    }
    FillScope(const FillScope&) = delete;
    FillScope& operator=(const FillScope&) = delete;

  private:
    HWND m_list;
};

}  // namespace quillon
