#include "view/win/ScalePainter.h"

#include <algorithm>

namespace quillon {

namespace {

// Pixels at 96 per inch.
constexpr int kTick = 5;
constexpr int kMinorTick = 3;
constexpr int kBand = 4;

}  // namespace

void ScalePainter::PaintTime(HDC dc, const RECT& client, const GraphColors& colors,
                             const std::vector<ScaleLabel>& labels, const std::vector<MarkSpan>& spans) const {
    const StripColors strip = StripOf(colors);
    FillWith(dc, client, ColorOf(strip.face));
    for (const MarkSpan& span : spans)
        FillWith(dc, {span.first, 0, span.last + 1, m_density.Scaled(kBand)}, ColorOf(colors.markBand));
    const SelectScope font(dc, m_density.Font());
    SetBkMode(dc, TRANSPARENT);
    const COLORREF tick = TickColor(strip);
    SetTextColor(dc, ColorOf(strip.text));
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    const int textTop = m_density.Scaled(10);
    const int line = m_density.Line();
    int free = 0;  // first column that no label covers yet
    for (const ScaleLabel& label : labels) {
        FillWith(dc, {label.position, 0, label.position + line, m_density.Scaled(label.minor ? kMinorTick : kTick)},
                 tick);
        if (label.minor) continue;
        const std::wstring text = Wide(label.text);
        SIZE size{};
        GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
        const int left = label.position + m_density.Scaled(2);
        // The last letter may be a little wider than it is measured.
        const int overhang = m_density.Scaled(2);
        if (left < free || left + size.cx + overhang > client.right) continue;
        DrawTextAt(dc, left, textTop, label.text);
        free = left + size.cx + m_density.Scaled(4);
    }
}

void ScalePainter::PaintAmplitude(HDC dc, const RECT& client, const GraphColors& colors,
                                  const std::vector<ScaleLabel>& labels) const {
    const StripColors strip = StripOf(colors);
    FillWith(dc, client, ColorOf(strip.face));
    const SelectScope font(dc, m_density.Font());
    SetBkMode(dc, TRANSPARENT);
    const COLORREF tick = TickColor(strip);
    SetTextColor(dc, ColorOf(strip.text));
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    SetTextAlign(dc, TA_RIGHT | TA_BASELINE);
    const int textRight = m_density.Scaled(11);
    const int tickLength = m_density.Scaled(kTick);
    for (const ScaleLabel& label : labels) {
        const int row = label.position - 1;
        FillWith(dc, {client.right - tickLength, row, client.right, row + m_density.Line()}, tick);
        // No label is cut at the top or bottom.
        if (label.position < metrics.tmAscent - metrics.tmInternalLeading || label.position > client.bottom) continue;
        DrawTextAt(dc, client.right - textRight, label.position, label.text);
    }
    SetTextAlign(dc, TA_LEFT | TA_TOP);
}

}  // namespace quillon
