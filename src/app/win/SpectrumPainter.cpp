#include "app/win/SpectrumPainter.h"

#include <vector>

#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

void Line(HDC dc, int fromX, int fromY, int toX, int toY) {
    MoveToEx(dc, fromX, fromY, nullptr);
    LineTo(dc, toX, toY);
}

void PaintGrid(HDC dc, const SpectrumPlot& plot, const GraphColors& colors, int tick) {
    const SpectrumPlot::Area& area = plot.Inside();
    const GdiPen grid(CreatePen(PS_SOLID, 1, ColorOf(colors.plotGrid)));
    const GdiPen edge(CreatePen(PS_SOLID, 1, ColorOf(colors.plotEdge)));
    {
        const SelectScope pen(dc, grid.Get());
        for (const PlotMark& mark : plot.Columns()) {
            if (mark.major) Line(dc, mark.place, area.top, mark.place, area.bottom);
        }
        for (const PlotMark& mark : plot.Rows()) {
            if (mark.major) Line(dc, area.left, mark.place, area.right, mark.place);
        }
    }
    const SelectScope pen(dc, edge.Get());
    for (const PlotMark& mark : plot.Columns())
        Line(dc, mark.place, area.bottom, mark.place, area.bottom + (mark.major ? tick : tick / 2) + 1);
    for (const PlotMark& mark : plot.Rows())
        Line(dc, area.left, mark.place, area.left - (mark.major ? tick : tick / 2) - 1, mark.place);
    Line(dc, area.left, area.top, area.left, area.bottom);
    Line(dc, area.left, area.bottom, area.right + 1, area.bottom);
}

void PaintTraces(HDC dc, const SpectrumPlot& plot, const std::vector<PlotTrace>& traces, const GraphLook& look) {
    // The first trace is on top, as in the graph.
    for (std::size_t trace = traces.size(); trace-- > 0;) {
        std::vector<POINT> points;
        for (const DevicePoint& point : plot.Line(trace)) points.push_back({point.x, point.y});
        const GdiPen pen(CreatePen(PS_SOLID, look.lineWidth, ColorOf(look.colors->Trace(traces[trace].number))));
        const SelectScope selected(dc, pen.Get());
        if (!points.empty()) Polyline(dc, points.data(), static_cast<int>(points.size()));
    }
}

void PaintPeaks(HDC dc, const SpectrumPlot& plot, const SpectrumCommands& spectra, const GraphColors& colors,
                int size) {
    const GdiPen outline(CreatePen(PS_SOLID, 1, ColorOf(colors.text)));
    const GdiBrush open(CreateSolidBrush(ColorOf(colors.paper)));
    const GdiBrush chosen(CreateSolidBrush(ColorOf(colors.harmonic)));
    const SelectScope pen(dc, outline.Get());
    const auto paint = [&](std::size_t at, HBRUSH fill) {
        const DevicePoint place = plot.PlaceOf(spectra.PeakTrace(), spectra.Peaks()[at]);
        if (!plot.IsInside(place)) return;
        const SelectScope brush(dc, fill);
        const int tip = place.y - 2;
        const POINT corners[] = {{place.x, tip}, {place.x - size, tip - 2 * size}, {place.x + size, tip - 2 * size}};
        Polygon(dc, corners, 3);
    };
    for (std::size_t at = 0; at < spectra.Peaks().size(); ++at) paint(at, open.Get());
    // Over its neighbours.
    if (spectra.ChosenPeak()) paint(*spectra.ChosenPeak(), chosen.Get());
}

void PaintHarmonics(HDC dc, const SpectrumPlot& plot, const Harmonics& harmonics, COLORREF color) {
    const GdiPen dotted(CreatePen(PS_DOT, 1, color));
    const SelectScope pen(dc, dotted.Get());
    SetTextColor(dc, color);
    for (const auto& [label, top] : plot.HarmonicLines(harmonics)) {
        Line(dc, label.x, top, label.x, plot.Inside().bottom);
        if (!label.text.empty()) DrawTextAt(dc, label.x + 2, label.y, label.text);
    }
}

}  // namespace

void PaintSpectrum(HDC dc, const SIZE& size, const SpectrumPlot& plot, const SpectrumCommands& spectra,
                   const GraphLook& look, int dpi) {
    const GraphColors& colors = *look.colors;
    FillWith(dc, {0, 0, size.cx, size.cy}, ColorOf(colors.paper));
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    if (!spectra.Refusal().empty()) {
        RECT box{0, size.cy / 3, size.cx, size.cy};
        const std::wstring text = Wide(spectra.Refusal());
        SetTextColor(dc, ColorOf(colors.text));
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &box, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
        return;
    }
    PaintGrid(dc, plot, colors, MulDiv(4, dpi, 96));
    const int saved = SaveDC(dc);
    const SpectrumPlot::Area& area = plot.Inside();
    IntersectClipRect(dc, area.left + 1, area.top, area.right + 1, area.bottom);
    PaintTraces(dc, plot, spectra.Traces(), look);
    PaintHarmonics(dc, plot, spectra.HarmonicsOfPeak(), ColorOf(colors.harmonic));
    RestoreDC(dc, saved);
    PaintPeaks(dc, plot, spectra, colors, MulDiv(4, dpi, 96));
    SetTextColor(dc, ColorOf(colors.text));
    for (const PlotText& text : plot.Texts()) DrawTextAt(dc, text.x, text.y, text.text);
}

}  // namespace quillon
