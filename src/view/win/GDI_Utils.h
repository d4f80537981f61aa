#pragma once

#include <cstdint>
#include <string>

#include "base/win/Dpi.h"
#include "base/win/Win32.h"
#include "base/win/WinHandle.h"
#include "view/GraphColors.h"

namespace quillon {

/// Colour of the core (0xRRGGBB) as Windows takes it.
[[nodiscard]] constexpr COLORREF ColorOf(std::uint32_t rgb) {
    return RGB(rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF);
}

/// A colour of the system's scheme (COLOR_BTNFACE...) as the core takes it.
[[nodiscard]] std::uint32_t SystemColor(int index);

/// Of the strips beside a graph in these colours.
[[nodiscard]] StripColors StripOf(const GraphColors& colors);

/// Of lines beside texts: half as strong as these.
[[nodiscard]] COLORREF TickColor(const StripColors& strip);

/// For WM_SYSCOLORCHANGE of a window: lets its controls know, which do not get the message themselves, and draws all.
void PassColors(HWND window);

/// "Tahoma" of the size that scales and controls use at that density. It is asked for by name because the systems'
/// default fonts do not all have Cyrillic letters.
[[nodiscard]] GdiFont MakeFont(int dpi, bool bold = false);

/// Header of a device-independent bitmap without compression; rows follow each other from the top where `height` is
/// negative, else from the bottom.
[[nodiscard]] BITMAPINFOHEADER DibHeader(int width, int height, WORD bitsPerPixel);

/// Fills a rectangle with a colour.
void FillWith(HDC dc, const RECT& rect, COLORREF color);

/// Where a text is drawn in the colour of the paper before it is drawn itself, so that it can be read over traces and
/// they can be seen beside its letters.
inline constexpr POINT kOutline[] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}};

/// Draws text without a background; the position is interpreted by the text alignment of the context.
void DrawTextAt(HDC dc, int x, int y, const std::u16string& text);

/// One square of that size per trace colour, on the system's window where the paper is white, else on paper.
[[nodiscard]] ImageList MakeTraceIcons(int size, const GraphColors& colors);

}  // namespace quillon
