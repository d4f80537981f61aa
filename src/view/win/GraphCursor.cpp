#include "view/win/GraphCursor.h"

#include <cstdlib>

namespace quillon {

namespace {

HCURSOR MakeCursor(std::size_t style, SIZE size) {
    const CursorPicture picture = DrawCursor(style, size.cx, size.cy);
    return CreateCursor(GetModuleHandleW(nullptr), size.cx / 2, size.cy / 2, size.cx, size.cy, picture.kept.data(),
                        picture.white.data());
}

}  // namespace

HCURSOR GraphCursor::Get(int style) {
    const std::size_t index = static_cast<std::size_t>(std::abs(style % kCursorStyles));
    WinHandle<CursorTraits>& cursor = m_cursors[index];
    if (!cursor) cursor.Reset(MakeCursor(index, Size()));
    return cursor ? cursor.Get() : LoadCursorW(nullptr, IDC_CROSS);
}

void GraphCursor::Forget() {
    const HCURSOR shown = GetCursor();
    for (WinHandle<CursorTraits>& cursor : m_cursors) {
        // The one that is shown must not be destroyed.
        if (cursor && cursor.Get() == shown) SetCursor(LoadCursorW(nullptr, IDC_CROSS));
        cursor.Reset();
    }
}

void GraphCursor::Draw(HDC dc, int x, int y, int style) {
    DrawIconEx(dc, x, y, Get(style), 0, 0, 0, nullptr, DI_NORMAL);
}

}  // namespace quillon
