#include "view/win/GraphPainter.h"

#include <algorithm>

namespace quillon {

namespace {

constexpr COLORREF kGridColor = RGB(0xE6, 0xE8, 0xEC);
constexpr COLORREF kZeroColor = RGB(0xB4, 0xBA, 0xC4);
constexpr COLORREF kMarkColor = RGB(0xB0, 0x2A, 0x2A);
constexpr COLORREF kMarkLineColor = RGB(0xDF, 0xA6, 0xA6);
constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);

static_assert(sizeof(TracePoint) == sizeof(POINT), "both are two 32-bit coordinates");

/// Back to pixels with both origins at 0 at the end.
class AnisotropicScope {
  public:
    explicit AnisotropicScope(HDC dc) : m_dc(dc) { SetMapMode(dc, MM_ANISOTROPIC); }
    ~AnisotropicScope() {
        SetMapMode(m_dc, MM_TEXT);
        SetViewportOrgEx(m_dc, 0, 0, nullptr);
        SetWindowOrgEx(m_dc, 0, 0, nullptr);
    }
    AnisotropicScope(const AnisotropicScope&) = delete;
    AnisotropicScope& operator=(const AnisotropicScope&) = delete;

  private:
    HDC m_dc;
};

}  // namespace

GraphPainter::GraphPainter() : m_font(MakeFont(ScreenDpi())) {}

bool GraphPainter::Prepare(int width, int height) {
    if (width == m_width && height == m_height) return true;
    m_gridZeroRow.reset();
    m_width = 0;
    m_height = 0;
    if (width < 1 || height < 1) return false;
    if (!m_surface.CreateBitmap(width, height) || !m_grid.CreateBitmap(width + TimeAxis::kDivision, height))
        return false;
    m_width = width;
    m_height = height;
    return true;
}

void GraphPainter::DrawGrid(int zeroRow) {
    if (m_gridZeroRow == zeroRow) return;
    m_gridZeroRow = zeroRow;
    const HDC dc = m_grid.Handle();
    const int width = m_width + TimeAxis::kDivision;
    FillWith(dc, {0, 0, width, m_height}, kWhite);
    for (int x = 0; x < width; x += TimeAxis::kDivision) FillWith(dc, {x, 0, x + 1, m_height}, kGridColor);
    constexpr int division = AmplitudeScale::kDivision;
    int y = zeroRow % division;
    if (y < 0) y += division;
    for (; y < m_height; y += division) FillWith(dc, {0, y, width, y + 1}, y == zeroRow ? kZeroColor : kGridColor);
}

void GraphPainter::Clear(int width, int height) {
    if (Prepare(width, height)) FillWith(m_surface.Handle(), {0, 0, m_width, m_height}, kWhite);
}

void GraphPainter::Draw(const GraphScene& scene, int width, int height) {
    if (!Prepare(width, height)) return;
    DrawGrid(scene.amplitude.ZeroRow());
    BitBlt(m_surface.Handle(), 0, 0, m_width, m_height, m_grid.Handle(), scene.axis.FirstColumn() % TimeAxis::kDivision,
           0, SRCCOPY);
    DrawMarks(scene);
    DrawTraces(scene);
}

void GraphPainter::DrawMarks(const GraphScene& scene) const {
    const HDC dc = m_surface.Handle();
    const SelectScope font(dc, m_font.Get());
    SetTextColor(dc, kMarkColor);
    SetBkMode(dc, TRANSPARENT);
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) {
        FillWith(dc, {line.column, 0, line.column + 1, m_height}, kMarkLineColor);
        constexpr int gap = 3;
        constexpr int leastText = 16;
        if (line.textWidth < leastText) continue;
        const std::wstring text = Wide(scene.block.marks[static_cast<std::size_t>(line.markIndex)].text);
        RECT place{line.column + gap, 1, line.column + line.textWidth, m_height};
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
                  DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
}

void GraphPainter::DrawTraces(const GraphScene& scene) {
    const VisibleRange visible = scene.axis.Visible();
    if (visible.Count() < 1) return;
    const std::vector<std::int16_t> shown = ShownChannels(scene.block, scene.slots);
    TraceGeometry geometry;
    geometry.zeroRow = scene.amplitude.ZeroRow();
    geometry.unitsPerDivision = scene.amplitude.UnitsPerDivision();
    geometry.samplesPerPixel = scene.axis.SamplesPerPixel();
    geometry.rawCodes = scene.rawCodes;
    geometry.foldOrigin = !scene.strokePaths;
    m_reader.Read(*scene.block.block, shown, {visible.first - 1, visible.Count(), geometry.samplesPerPixel});
    const AnisotropicScope mapping(m_surface.Handle());
    // The last channel comes first, so that the first one lies on top.
    for (std::size_t at = shown.size(); at-- > 0;) {
        const auto channel = static_cast<std::size_t>(shown[at] - 1);
        const TraceMapping trace = MapTrace(geometry, scene.block.invScale[channel], scene.block.offsets[channel]);
        StrokeTrace(trace, scene, channel, m_reader.points()[at], visible.Count());
    }
}

void GraphPainter::StrokeTrace(const TraceMapping& mapping, const GraphScene& scene, std::size_t channel,
                               const std::vector<TracePoint>& points, std::int32_t count) {
    const HDC dc = m_surface.Handle();
    SetWindowExtEx(dc, mapping.windowExtentX, mapping.windowExtentY, nullptr);
    SetViewportExtEx(dc, mapping.viewportExtentX, mapping.viewportExtentY, nullptr);
    SetViewportOrgEx(dc, mapping.viewportOriginX, mapping.viewportOriginY, nullptr);
    SetWindowOrgEx(dc, 0, mapping.windowOriginY, nullptr);
    // A pen of width 0 is one pixel wide whatever the mapping.
    const GdiPen pen(CreatePen(PS_SOLID, 0, ColorOf(TraceColor(scene.block.channelNumbers[channel]))));
    const SelectScope select(dc, pen.Get());
    if (scene.strokePaths) BeginPath(dc);
    if (mapping.flat) {
        const std::int32_t perPixel = scene.axis.SamplesPerPixel();
        const std::int32_t end = perPixel == 1 ? count : static_cast<std::int32_t>(std::int64_t{2} * count / perPixel);
        MoveToEx(dc, 0, 0, nullptr);
        LineTo(dc, end, 0);
    } else if (points.size() > 1) {
        Polyline(dc, reinterpret_cast<const POINT*>(points.data()), static_cast<int>(points.size()));
    }
    if (scene.strokePaths) {
        EndPath(dc);
        StrokePath(dc);
    }
}

void GraphPainter::Paint(HDC target, const RECT& part) const {
    if (m_width == 0) {
        FillWith(target, part, kWhite);
        return;
    }
    BitBlt(target, part.left, part.top, part.right - part.left, part.bottom - part.top, m_surface.Handle(), part.left,
           part.top, SRCCOPY);
}

}  // namespace quillon
