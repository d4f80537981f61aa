#pragma once

#include <functional>
#include <optional>

#include "base/win/Win32.h"

namespace quillon {

/// The mouse while values under the pointer are read out: the picture that the pointer is over holds it, so that the
/// readout ends when the pointer leaves.
class HoverCapture {
  public:
    /// The readout has ended: its band is to be taken away.
    std::function<void()> onEnd;

    /// Whether the pointer is over a picture, which then has the mouse; else the readout ends. `pointer` is the shape
    /// of the pointer there.
    [[nodiscard]] bool StaysIn(HWND picture, HCURSOR pointer, POINT point);
    void End();
    /// The picture may have lost the mouse to another window.
    void Lose(HWND picture);
    /// The readout of a selection stays until the mouse is moved; letting the button go makes a move of no length.
    void HoldUntilMoved() { GetCursorPos(&m_heldAt.emplace()); }
    /// The picture that is read out; null when none is.
    [[nodiscard]] HWND Picture() const { return m_picture; }
    /// Where the pointer was in it last.
    [[nodiscard]] POINT Point() const { return m_point; }

  private:
    HWND m_picture = nullptr;
    POINT m_point{};
    std::optional<POINT> m_heldAt;  ///< on the screen
};

}  // namespace quillon
