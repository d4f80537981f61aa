#include "spectrum/win/SpectrogramView.h"

#include <algorithm>
#include <vector>

#include "base/Rounding.h"
#include "spectrum/ColorScale.h"

namespace quillon {

namespace {

constexpr int kTick = 8;

/// Header and colours of the image as the system takes them.
struct ImageInfo {
    BITMAPINFOHEADER header;
    Palette colors;
};
static_assert(sizeof(PaletteColor) == sizeof(RGBQUAD));

}  // namespace

int SpectrogramView::LabelHeight() const {
    const WindowDC screen(nullptr);
    const SelectScope font(screen.Get(), m_density.Font());
    TEXTMETRICW metrics{};
    GetTextMetricsW(screen.Get(), &metrics);
    return static_cast<int>(metrics.tmHeight) + 1;
}

void SpectrogramView::PaintImage(HDC dc, const RECT& client, const QL_FFT& fft, std::int32_t bins,
                                 const GraphColors& colors) const {
    const int width = static_cast<int>(client.right);
    const int height = static_cast<int>(client.bottom);
    if (!fft.State().ready || fft.Image().empty()) {
        FillWith(dc, client, ColorOf(colors.paper));
        return;
    }
    ImageInfo info{};
    // The rows of the lowest bins come first: the bitmap ends behind the last one that is shown.
    info.header = DibHeader(fft.ImageWidth(), bins, 8);
    info.header.biClrUsed = 256;
    info.header.biClrImportant = 256;
    info.colors = fft.Colors();
    // Palette indices cannot be averaged: rows are dropped where there are more of them than pixels.
    if (height < bins) SetStretchBltMode(dc, COLORONCOLOR);
    StretchDIBits(dc, 0, 0, width, height, 0, 0, width, bins, fft.Image().data(),
                  reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, SRCCOPY);
}

void SpectrogramView::PaintBar(HDC dc, const RECT& client, const QL_FFT& fft) {
    const int height = static_cast<int>(client.bottom);
    for (int y = 0; y < height; ++y) {
        const PaletteColor color = fft.Colors()[BarIndex(y, height)];
        const int row = height - 1 - y;
        FillWith(dc, {0, row, client.right, row + 1}, RGB(color.red, color.green, color.blue));
    }
}

void SpectrogramView::PaintLevels(HDC dc, const RECT& client, double low, double high, const std::u16string& caption,
                                  const std::u16string& unit, char16_t separator, const GraphColors& colors) const {
    const COLORREF ink = ColorOf(colors.scaleInk);
    FillWith(dc, client, ColorOf(colors.scaleFace));
    const SelectScope font(dc, m_density.Font());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ink);
    const int height = static_cast<int>(client.bottom);
    const int tick = m_density.Scaled(4);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    for (const ColorTick& each : ColorTicks(low, high, height, static_cast<int>(metrics.tmHeight), separator)) {
        FillWith(dc, {0, each.row, tick, each.row + m_density.Line()}, ink);
        DrawTextAt(dc, tick + tick / 2, each.text, each.figure);
    }
    const std::wstring whole = Wide(caption);
    SIZE size{};
    GetTextExtentPoint32W(dc, whole.c_str(), static_cast<int>(whole.size()), &size);
    const SelectScope vertical(dc, m_density.VerticalFont());
    SetTextAlign(dc, TA_CENTER | TA_TOP);
    DrawTextAt(dc, static_cast<int>(client.right) - static_cast<int>(size.cy) - 1, height / 2,
               size.cx < client.bottom ? caption : unit);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
}

void SpectrogramView::PaintEmptyScale(HDC dc, const RECT& client, const GraphColors& colors) {
    const COLORREF ink = ColorOf(colors.scaleInk);
    FillWith(dc, client, ColorOf(colors.scaleFace));
    FillWith(dc, {client.right - 2, 0, client.right - 1, client.bottom}, ink);
}

void SpectrogramView::PaintScale(HDC dc, const RECT& client, const FrequencyScaleMarks& marks,
                                 const std::u16string& caption, const GraphColors& colors) const {
    const COLORREF ink = ColorOf(colors.scaleInk);
    FillWith(dc, client, ColorOf(colors.scaleFace));
    FillWith(dc, {client.right - 1, 0, client.right, client.bottom}, ink);
    FillWith(dc, {client.right - kTick, client.bottom - 1, client.right, client.bottom}, ink);
    const SelectScope font(dc, m_density.Font());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ink);
    SetTextAlign(dc, TA_RIGHT | TA_TOP);
    for (const FrequencyTick& tick : marks.ticks) {
        FillWith(dc, {client.right - kTick, tick.row, client.right, tick.row + 1}, ink);
        DrawTextAt(dc, static_cast<int>(client.right) - 11, tick.row - kFrequencyLabelRise, tick.text);
    }
    const SelectScope vertical(dc, m_density.VerticalFont());
    SetTextAlign(dc, TA_CENTER | TA_TOP);
    DrawTextAt(dc, 1, RoundHalfEven(static_cast<double>(client.bottom) / 2.0), caption);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
}

}  // namespace quillon
