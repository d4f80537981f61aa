#pragma once

#include <array>

#include "base/win/Win32.h"
#include "base/win/WinHandle.h"
#include "view/CursorPicture.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

struct CursorTraits {
    using Handle = HCURSOR;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle handle) { DestroyCursor(handle); }
};

/// The pointers of the graph, see DrawCursor, of the system's cursor size and with the hot spot in their middle. Each
/// is created on first use and must no longer be in use when this object is destroyed.
class GraphCursor {
  public:
    /// `density` must outlive this object.
    explicit GraphCursor(const ScreenDensity& density) : m_density(density) {}

    /// A style is taken by its magnitude modulo kCursorStyles. The system's cross where a cursor cannot be made.
    [[nodiscard]] HCURSOR Get(int style);
    /// Draws the picture with its left top corner at that place.
    void Draw(HDC dc, int x, int y, int style);
    /// Pixels of the picture.
    [[nodiscard]] SIZE Size() const { return {m_density.Metric(SM_CXCURSOR), m_density.Metric(SM_CYCURSOR)}; }
    /// The density has changed.
    void Forget();

  private:
    const ScreenDensity& m_density;
    std::array<WinHandle<CursorTraits>, kCursorStyles> m_cursors;
};

}  // namespace quillon
