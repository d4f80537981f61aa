#include "view/win/MeasurementPainter.h"

#include <algorithm>

#include "base/win/WinHandle.h"

namespace quillon {

namespace {

void Line(HDC dc, int x, int y, int toX, int toY) {
    MoveToEx(dc, x, y, nullptr);
    LineTo(dc, toX, toY);
}

/// A text on paper with its left or, where that would not fit, its right end near a column; its middle at a row, but
/// between two rows. Nothing where it is higher than these are apart.
class Label {
  public:
    Label(HDC dc, const RECT& client, COLORREF paper, int gap)
        : m_dc(dc), m_client(client), m_paper(paper), m_gap(gap) {}

    [[nodiscard]] SIZE Size(const std::u16string& text) const {
        const std::wstring wide = Wide(text);
        SIZE size{};
        GetTextExtentPoint32W(m_dc, wide.c_str(), static_cast<int>(wide.size()), &size);
        return size;
    }
    void Paint(const std::u16string& text, int column, int row, int top, int end) const {
        const SIZE size = Size(text);
        if (text.empty() || size.cy > end - top) return;
        const int width = static_cast<int>(size.cx);
        const int height = static_cast<int>(size.cy);
        const bool fits = column + m_gap + width < m_client.right;
        const int left = fits ? column + m_gap : column - m_gap - width;
        const int y = std::clamp(row - height / 2, top, end - height);
        const RECT paper{left - 1, y, left + width + 1, y + height};
        FillWith(m_dc, paper, m_paper);
        DrawTextAt(m_dc, left, y, text);
    }

  private:
    HDC m_dc;
    const RECT& m_client;
    COLORREF m_paper;
    int m_gap;
};

}  // namespace

void PaintMeasurement(HDC dc, const RECT& client, const Measurement& measurement, const GraphColors& colors,
                      const ScreenDensity& density) {
    const COLORREF color = ColorOf(colors.measure);
    const int width = density.Line();
    const int bottom = static_cast<int>(client.bottom);
    // Columns far outside are not for the system's lines.
    const auto limited = [&](int column) { return std::clamp(column, -width, static_cast<int>(client.right) + width); };
    const int pinned = limited(measurement.pinned);
    const LOGBRUSH ink{BS_SOLID, color, 0};
    const GdiPen dashes(width == 1 ? ExtCreatePen(PS_COSMETIC | PS_DASH, 1, &ink, 0, nullptr)
                                   : ExtCreatePen(PS_GEOMETRIC | PS_DASH | PS_ENDCAP_FLAT, static_cast<DWORD>(width),
                                                  &ink, 0, nullptr));
    const GdiPen solid(CreatePen(PS_SOLID, width, color));
    const SelectScope text(dc, density.Font());
    SetTextColor(dc, color);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    SetBkMode(dc, TRANSPARENT);
    {
        const SelectScope pen(dc, solid.Get());
        Line(dc, pinned, 0, pinned, bottom);
    }
    if (!measurement.other) return;
    const int other = limited(*measurement.other);
    const Label label(dc, client, ColorOf(colors.paper), density.Scaled(4));
    // The time stands in the last rows, and no lane's change over it.
    const int timeTop = bottom - static_cast<int>(label.Size(measurement.time).cy);
    for (const Measurement::Lane& lane : measurement.lanes) {
        {
            const SelectScope pen(dc, dashes.Get());
            Line(dc, pinned, lane.pinnedRow, other, lane.pinnedRow);
        }
        {
            const SelectScope pen(dc, solid.Get());
            Line(dc, other, lane.pinnedRow, other, lane.row);
        }
        label.Paint(lane.change, other, (lane.pinnedRow + lane.row) / 2, lane.top, std::min<int>(lane.end, timeTop));
    }
    label.Paint(measurement.time, std::max(pinned, other), bottom, 0, bottom);
}

}  // namespace quillon
