#include "view/win/cMemDC.h"

#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

cMemDC::cMemDC()
    : m_dc(CreateCompatibleDC(nullptr)),
      m_initialPen(GetCurrentObject(m_dc, OBJ_PEN)),
      m_initialBrush(GetCurrentObject(m_dc, OBJ_BRUSH)),
      m_initialFont(GetCurrentObject(m_dc, OBJ_FONT)),
      m_initialBitmap(GetCurrentObject(m_dc, OBJ_BITMAP)) {}

cMemDC::~cMemDC() {
    for (const HGDIOBJ initial : {m_initialPen, m_initialBrush, m_initialFont, m_initialBitmap}) {
        const HGDIOBJ owned = SelectObject(m_dc, initial);
        if (owned != nullptr && owned != initial) DeleteObject(owned);
    }
    DeleteDC(m_dc);
}

void cMemDC::Take(HGDIOBJ object, DWORD type, DWORD otherType, HGDIOBJ initial) const {
    const DWORD actual = GetObjectType(object);
    if (actual != type && actual != otherType) return;
    const HGDIOBJ previous = SelectObject(m_dc, object);
    if (previous != nullptr && previous != object && previous != initial) DeleteObject(previous);
}

HPEN cMemDC::Pen() const {
    return static_cast<HPEN>(GetCurrentObject(m_dc, OBJ_PEN));
}

HBRUSH cMemDC::Brush() const {
    return static_cast<HBRUSH>(GetCurrentObject(m_dc, OBJ_BRUSH));
}

HFONT cMemDC::Font() const {
    return static_cast<HFONT>(GetCurrentObject(m_dc, OBJ_FONT));
}

HBITMAP cMemDC::Bitmap() const {
    return static_cast<HBITMAP>(GetCurrentObject(m_dc, OBJ_BITMAP));
}

SIZE cMemDC::Size() const {
    BITMAP bitmap{};
    GetObjectW(Bitmap(), sizeof bitmap, &bitmap);
    return {bitmap.bmWidth, bitmap.bmHeight};
}

HBITMAP cMemDC::CopyBitmap() const {
    const SIZE size = Size();
    const WindowDC screen(nullptr);
    const MemoryDC target(CreateCompatibleDC(m_dc));
    const HBITMAP copy = CreateCompatibleBitmap(screen.Get(), size.cx, size.cy);
    if (copy != nullptr) {
        const SelectScope select(target.Get(), copy);
        BitBlt(target.Get(), 0, 0, size.cx, size.cy, m_dc, 0, 0, SRCCOPY);
    }
    return copy;
}

void cMemDC::Clear() const {
    const SIZE size = Size();
    PatBlt(m_dc, 0, 0, size.cx, size.cy, WHITENESS);
}

bool cMemDC::CreateBitmap(int width, int height) {
    const WindowDC screen(nullptr);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen.Get(), width, height);
    if (bitmap == nullptr) return false;
    Bitmap(bitmap);
    return true;
}

std::uint32_t* cMemDC::CreatePixels(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader = DibHeader(width, -height, 32);
    void* pixels = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (bitmap == nullptr) return nullptr;
    Bitmap(bitmap);
    return static_cast<std::uint32_t*>(pixels);
}

bool cMemDC::CreateMonochromeBitmap(int width, int height) {
    const HBITMAP bitmap = ::CreateBitmap(width, height, 1, 1, nullptr);
    if (bitmap == nullptr) return false;
    Bitmap(bitmap);
    return true;
}

}  // namespace quillon
