#pragma once

#include <array>

#include "base/win/Win32.h"
#include "base/win/WinHandle.h"

namespace quillon {

struct CursorTraits {
    using Handle = HCURSOR;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle handle) { DestroyCursor(handle); }
};

/// The pointers of the graph, black with a white outline, of the system's cursor size and with the hot spot in their
/// middle: 0 a cross with a gap in the middle, 1 a target, 2 a target with an empty middle, 3 a square with a dot. Each
/// is made on first use and must not be in use any more when its owner goes.
class GraphCursor {
  public:
    static constexpr int kStyles = 4;

    /// A style is taken by its magnitude modulo kStyles. The system's cross where a cursor cannot be made.
    [[nodiscard]] HCURSOR Get(int style);
    /// Draws the picture with its left top corner at that place.
    void Draw(HDC dc, int x, int y, int style);
    /// Pixels of the picture.
    [[nodiscard]] static SIZE Size();

  private:
    std::array<WinHandle<CursorTraits>, kStyles> m_cursors;
};

}  // namespace quillon
