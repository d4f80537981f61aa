#include "app/win/SpectrumPainter.h"

#include <vector>

#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

constexpr COLORREF kPaper = RGB(0xFF, 0xFF, 0xFF);
constexpr COLORREF kGrid = RGB(0xE4, 0xE6, 0xEA);
constexpr COLORREF kText = RGB(0x28, 0x2C, 0x34);
constexpr COLORREF kEdge = RGB(0x80, 0x86, 0x90);
constexpr COLORREF kHarmonic = RGB(0xB0, 0x60, 0x00);

void Line(HDC dc, int fromX, int fromY, int toX, int toY) {
    MoveToEx(dc, fromX, fromY, nullptr);
    LineTo(dc, toX, toY);
}

void PaintGrid(HDC dc, const SpectrumPlot& plot, int tick) {
    const SpectrumPlot::Area& area = plot.Inside();
    const GdiPen grid(CreatePen(PS_SOLID, 1, kGrid));
    const GdiPen edge(CreatePen(PS_SOLID, 1, kEdge));
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

void PaintTraces(HDC dc, const SpectrumPlot& plot, const std::vector<PlotTrace>& traces) {
    // The first trace is on top, as in the graph.
    for (std::size_t trace = traces.size(); trace-- > 0;) {
        std::vector<POINT> points;
        for (const DevicePoint& point : plot.Line(trace)) points.push_back({point.x, point.y});
        const GdiPen pen(CreatePen(PS_SOLID, 1, ColorOf(traces[trace].color)));
        const SelectScope selected(dc, pen.Get());
        if (!points.empty()) Polyline(dc, points.data(), static_cast<int>(points.size()));
    }
}

void PaintPeaks(HDC dc, const SpectrumPlot& plot, const SpectrumCommands& spectra, int size) {
    const GdiPen outline(CreatePen(PS_SOLID, 1, kText));
    const GdiBrush open(CreateSolidBrush(kPaper));
    const GdiBrush chosen(CreateSolidBrush(kHarmonic));
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

void PaintHarmonics(HDC dc, const SpectrumPlot& plot, const Harmonics& harmonics) {
    const GdiPen dotted(CreatePen(PS_DOT, 1, kHarmonic));
    const SelectScope pen(dc, dotted.Get());
    SetTextColor(dc, kHarmonic);
    for (const PlotText& line : plot.HarmonicLines(harmonics)) {
        Line(dc, line.x, plot.Inside().top, line.x, plot.Inside().bottom);
        if (!line.text.empty()) DrawTextAt(dc, line.x + 2, line.y, line.text);
    }
}

}  // namespace

void PaintSpectrum(HDC dc, const SIZE& size, const SpectrumPlot& plot, const SpectrumCommands& spectra, int dpi) {
    FillWith(dc, {0, 0, size.cx, size.cy}, kPaper);
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    if (!spectra.Refusal().empty()) {
        RECT box{0, size.cy / 3, size.cx, size.cy};
        const std::wstring text = Wide(spectra.Refusal());
        SetTextColor(dc, kText);
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &box, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
        return;
    }
    PaintGrid(dc, plot, MulDiv(4, dpi, 96));
    const int saved = SaveDC(dc);
    const SpectrumPlot::Area& area = plot.Inside();
    IntersectClipRect(dc, area.left + 1, area.top, area.right + 1, area.bottom);
    PaintTraces(dc, plot, spectra.Traces());
    PaintHarmonics(dc, plot, spectra.HarmonicsOfPeak());
    RestoreDC(dc, saved);
    PaintPeaks(dc, plot, spectra, MulDiv(4, dpi, 96));
    SetTextColor(dc, kText);
    for (const PlotText& text : plot.Texts()) DrawTextAt(dc, text.x, text.y, text.text);
}

}  // namespace quillon
