#pragma once

#include <cstdint>

#include "base/win/Win32.h"

namespace quillon {

/// A memory device context compatible with the screen, together with the bitmap, pen, brush and font it was given.
///
/// It owns every object handed to it: giving it another of the same kind deletes the previous one, and so does the
/// destructor. A handle of the wrong kind is ignored; then the caller keeps it.
class cMemDC {
  public:
    cMemDC();
    ~cMemDC();
    cMemDC(const cMemDC&) = delete;
    cMemDC& operator=(const cMemDC&) = delete;

    /// Source of copies to the screen.
    [[nodiscard]] HDC Handle() const { return m_dc; }
    /// Kept for callers of the family's interface; the program itself does not use it.
    void MapMode(int mode) const { SetMapMode(m_dc, mode); }

    // Kept for callers of the family's interface; the program itself does not use these of pen, brush and font.
    [[nodiscard]] HPEN Pen() const;
    [[nodiscard]] HBRUSH Brush() const;
    [[nodiscard]] HFONT Font() const;
    void Pen(HPEN pen) { Take(pen, OBJ_PEN, OBJ_EXTPEN, m_initialPen); }
    void Brush(HBRUSH brush) { Take(brush, OBJ_BRUSH, OBJ_BRUSH, m_initialBrush); }
    void Font(HFONT font) { Take(font, OBJ_FONT, OBJ_FONT, m_initialFont); }
    void CreatePen(int style, int width, COLORREF color) { Pen(::CreatePen(style, width, color)); }
    void CreateBrush(COLORREF color) { Brush(::CreateSolidBrush(color)); }
    void CreateStockBrush(int stockObject) { Brush(static_cast<HBRUSH>(::GetStockObject(stockObject))); }
    void CreatePatternBrush(HBITMAP pattern) { Brush(::CreatePatternBrush(pattern)); }

    [[nodiscard]] HBITMAP Bitmap() const;
    void Bitmap(HBITMAP bitmap) { Take(bitmap, OBJ_BITMAP, OBJ_BITMAP, m_initialBitmap); }

    /// A bitmap of its own with the same content; the caller owns it.
    [[nodiscard]] HBITMAP CopyBitmap() const;
    /// Fills the whole bitmap white.
    void Clear() const;
    /// A bitmap compatible with the screen, of undefined content. False when there is no memory for it.
    bool CreateBitmap(int width, int height);
    /// A bitmap of 32 bits per pixel, 0x00RRGGBB, whose pixels can be reached: row after row from the top. Null when
    /// there is no memory for it. The pixels live as long as the bitmap.
    [[nodiscard]] std::uint32_t* CreatePixels(int width, int height);
    /// A bitmap of one bit per pixel, of no particular content; false when there is no memory for it.
    bool CreateMonochromeBitmap(int width, int height);

    /// Size of the bitmap in pixels.
    [[nodiscard]] SIZE Size() const;

  private:
    void Take(HGDIOBJ object, DWORD type, DWORD otherType, HGDIOBJ initial) const;

    HDC m_dc;
    HGDIOBJ m_initialPen;
    HGDIOBJ m_initialBrush;
    HGDIOBJ m_initialFont;
    HGDIOBJ m_initialBitmap;
};

}  // namespace quillon
