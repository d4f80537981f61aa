#pragma once

#include <functional>
#include <optional>

#include "base/win/Win32.h"

namespace quillon {

/// Mouse capture during a hover readout: the picture under the pointer captures the mouse, so that the readout ends
/// when the pointer leaves it.
class HoverCapture {
  public:
    /// The readout has ended: its band has to be removed.
    std::function<void()> onEnd;

    /// Whether the pointer is over a picture, which then captures the mouse; else the readout ends. `pointer` is the
    /// shape of the pointer there.
    [[nodiscard]] bool StaysIn(HWND picture, HCURSOR pointer, POINT point);
    void End();
    /// The picture may have lost the mouse to another window.
    void Lose(HWND picture);
    /// The readout of a selection stays until the mouse is moved; letting the button go makes a move of no length.
    void HoldUntilMoved() { GetCursorPos(&m_heldAt.emplace()); }
    /// The picture of the current readout; null when there is none.
    [[nodiscard]] HWND Picture() const { return m_picture; }
    /// Where the pointer was in it last.
    [[nodiscard]] POINT Point() const { return m_point; }

  private:
    HWND m_picture = nullptr;
    POINT m_point{};
    std::optional<POINT> m_heldAt;  ///< on the screen
};

}  // namespace quillon
