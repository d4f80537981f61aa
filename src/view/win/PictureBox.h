#pragma once

#include <exception>

#include "base/win/Win32.h"

namespace quillon {

/// Callbacks of a picture box to its owner.
class PictureOwner {
  public:
    virtual ~PictureOwner() = default;
    /// Paints the content; `clip` is the part that is asked for, in client coordinates.
    virtual void PaintPicture(int id, HDC dc, const RECT& clip) = 0;
    /// A mouse message of the picture; true when it was handled.
    virtual bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) = 0;
    /// A key that the main window leaves to the picture that has the keyboard; true when it was handled.
    virtual bool PictureKey(WPARAM) { return false; }
    /// One of the above threw; no exception leaves a window procedure.
    virtual void PictureFailed(const std::exception& error) = 0;
};

/// A child window that shows a picture its owner paints. WM_PAINT and WM_PRINTCLIENT paint alike, so its pixels can be
/// obtained without a screen; WM_PRINTCLIENT returns 0 on failure. It can take the keyboard focus; most keys are
/// handled by the main window before they get here.
class PictureBox {
  public:
    PictureBox() = default;
    PictureBox(const PictureBox&) = delete;
    PictureBox& operator=(const PictureBox&) = delete;

    /// `owner` must outlive the window. False when the window cannot be made.
    [[nodiscard]] bool Create(HWND parent, int id, PictureOwner& owner, bool tabStop);
    [[nodiscard]] HWND Window() const { return m_window; }
    void Invalidate() const {
        // Without a window the system would draw the whole screen anew.
        if (m_window != nullptr) InvalidateRect(m_window, nullptr, FALSE);
    }

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void OnPaint();

    HWND m_window = nullptr;
    int m_id = 0;
    PictureOwner* m_owner = nullptr;
};

}  // namespace quillon
