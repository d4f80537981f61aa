#include "view/win/GDI_Utils.h"

#include "view/ReadableColor.h"

namespace quillon {

std::uint32_t SystemColor(int index) {
    const COLORREF color = GetSysColor(index);
    return ColorOf(static_cast<std::uint32_t>(color));  // red and blue change places in both directions
}

StripColors StripOf(const GraphColors& colors) {
    return colors.strip.value_or(StripColors{SystemColor(COLOR_BTNFACE), SystemColor(COLOR_BTNTEXT),
                                             SystemColor(COLOR_WINDOW), SystemColor(COLOR_WINDOWTEXT),
                                             SystemColor(COLOR_HIGHLIGHT)});
}

COLORREF TickColor(const StripColors& strip) {
    return ColorOf(Mixed(strip.text, strip.face, 0.5));
}

void PassColors(HWND window) {
    EnumChildWindows(
        window,
        [](HWND child, LPARAM) -> BOOL {
            SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
            return TRUE;
        },
        0);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

GdiFont MakeFont(int dpi, bool bold) {
    LOGFONTW font{};
    font.lfHeight = -MulDiv(11, dpi, 96);
    font.lfWeight = bold ? FW_BOLD : FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = CLEARTYPE_QUALITY;
    lstrcpynW(font.lfFaceName, L"Tahoma", LF_FACESIZE);
    return GdiFont(CreateFontIndirectW(&font));
}

BITMAPINFOHEADER DibHeader(int width, int height, WORD bitsPerPixel) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = bitsPerPixel;
    header.biCompression = BI_RGB;
    return header;
}

void FillWith(HDC dc, const RECT& rect, COLORREF color) {
    // The background colour fills without an object to make and delete.
    const COLORREF previous = SetBkColor(dc, color);
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
    SetBkColor(dc, previous);
}

void DrawTextAt(HDC dc, int x, int y, const std::u16string& text) {
    const std::wstring wide = Wide(text);
    ExtTextOutW(dc, x, y, 0, nullptr, wide.c_str(), static_cast<UINT>(wide.size()), nullptr);
}

ImageList MakeTraceIcons(int size, const GraphColors& colors) {
    ImageList icons(ImageList_Create(size, size, ILC_COLOR32, kTraceColors, 0));
    const WindowDC screen(nullptr);
    const MemoryDC memory(CreateCompatibleDC(screen.Get()));
    // One strip for all: pictures added one by one are copied each time.
    const GdiBitmap strip(CreateCompatibleBitmap(screen.Get(), size * kTraceColors, size));
    {
        const HDC dc = memory.Get();
        const SelectScope select(dc, strip.Get());
        FillWith(dc, {0, 0, size * kTraceColors, size}, GetSysColor(COLOR_WINDOW));
        const int edge = size / 5;
        // Light colours would not be seen on the white of a list.
        const int frame = colors.strip ? edge / 2 : size;
        for (int color = 0; color < kTraceColors; ++color) {
            const int left = size * color;
            FillWith(dc, {left + frame, frame, left + size - frame, size - frame}, ColorOf(colors.paper));
            FillWith(dc, {left + edge, edge, left + size - edge, size - edge},
                     ColorOf(colors.Trace(static_cast<std::int16_t>(color))));
        }
    }
    ImageList_Add(icons.Get(), strip.Get(), nullptr);
    return icons;
}

}  // namespace quillon
