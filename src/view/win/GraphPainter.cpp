#include "view/win/GraphPainter.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "view/InvertLightness.h"

namespace quillon {

namespace {

constexpr COLORREF kZeroColor = RGB(0xB4, 0xBA, 0xC4);
constexpr COLORREF kMarkColor = RGB(0xB0, 0x2A, 0x2A);
constexpr COLORREF kMarkLineColor = RGB(0xDF, 0xA6, 0xA6);
constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);

/// Rows and columns between the dots of a dotted grid; a divisor of a division's width.
constexpr int kDotStep = 4;
/// Columns between the line of a mark and its text.
constexpr int kMarkGap = 3;

/// A colour mixed with white.
COLORREF Lighter(std::uint32_t rgb) {
    constexpr double share = 0.3;
    const auto mixed = [&](std::uint32_t part) {
        return static_cast<std::uint32_t>(255.0 - (255.0 - static_cast<double>(part & 0xFF)) * share);
    };
    return RGB(mixed(rgb >> 16), mixed(rgb >> 8), mixed(rgb));
}

/// A line one pixel wide, whole or of dots.
void DrawDots(HDC dc, const RECT& line, int step, COLORREF color) {
    if (step == 1) return FillWith(dc, line, color);
    for (LONG y = line.top; y < line.bottom; y += step) {
        for (LONG x = line.left; x < line.right; x += step)
            SetPixelV(dc, static_cast<int>(x), static_cast<int>(y), color);
    }
}

/// Limits drawing to a rectangle.
class ClipScope {
  public:
    ClipScope(HDC dc, const RECT& rect) : m_dc(dc), m_saved(SaveDC(dc)) {
        IntersectClipRect(dc, rect.left, rect.top, rect.right, rect.bottom);
    }
    ~ClipScope() { RestoreDC(m_dc, m_saved); }
    ClipScope(const ClipScope&) = delete;
    ClipScope& operator=(const ClipScope&) = delete;

  private:
    HDC m_dc;
    int m_saved;
};

}  // namespace

GraphPainter::GraphPainter() : m_font(MakeFont(ScreenDpi())), m_dpi(ScreenDpi()) {}

bool GraphPainter::Prepare(int width, int height) {
    if (width == m_width && height == m_height) return true;
    m_gridKey.reset();
    m_width = 0;
    m_height = 0;
    if (width < 1 || height < 1) return false;
    m_pixels = m_surface.CreatePixels(width, height);
    if (m_pixels == nullptr || !m_grid.CreateBitmap(width + TimeAxis::kDivision, height)) return false;
    m_width = width;
    m_height = height;
    return true;
}

void GraphPainter::DrawGrid(const GridKey& key) {
    if (m_gridKey == key) return;
    m_gridKey = key;
    FillWith(m_grid.Handle(), {0, 0, m_width + TimeAxis::kDivision, m_height}, kWhite);
    for (const GridKey::Rows& lane : key.lanes) DrawLevels(key, lane);
}

void GraphPainter::DrawLevels(const GridKey& key, const GridKey::Rows& lane) const {
    const HDC dc = m_grid.Handle();
    const int width = m_width + TimeAxis::kDivision;
    const int bottom = lane.top + lane.height;
    constexpr int division = AmplitudeScale::kDivision;
    int first = static_cast<int>((lane.zero - lane.top) % division);
    if (first < 0) first += division;
    first += lane.top;
    if (key.style != GridStyle::None) {
        const int step = key.style == GridStyle::Dots ? kDotStep : 1;
        // The dots of the vertical lines lie on the levels.
        const int top = lane.top + (first - lane.top) % kDotStep;
        for (int x = 0; x < width; x += TimeAxis::kDivision)
            DrawDots(dc, {x, top, x + 1, bottom}, step, Lighter(key.color));
        for (int y = first; y < bottom; y += division) DrawDots(dc, {0, y, width, y + 1}, step, Lighter(key.color));
    }
    // The zero level is no part of the grid.
    if (lane.zero >= lane.top && lane.zero < bottom) {
        const int row = static_cast<int>(lane.zero);
        FillWith(dc, {0, row, width, row + 1}, kZeroColor);
    }
}

void GraphPainter::Clear(int width, int height) {
    m_bands = {};
    m_arrows.clear();
    const bool hasSurface = Prepare(width, height);
    m_traces.Reset(0, m_width, m_height);
    if (hasSurface) FillWith(m_surface.Handle(), {0, 0, m_width, m_height}, kWhite);
}

void GraphPainter::Draw(const GraphScene& scene, int width, int height) {
    const bool hasSurface = Prepare(width, height);
    m_traces.Reset(ChannelsOf(scene.lanes).size(), m_width, m_height);
    if (!hasSurface) return;
    DrawColumns(scene, 0, m_width);
    FindArrows(scene);
    InvertBands();
}

void GraphPainter::Scroll(const GraphScene& scene, std::int32_t shift) {
    if (m_width == 0 || shift == 0) return;
    if (shift >= m_width || shift <= -m_width) return Draw(scene, m_width, m_height);
    InvertBands();
    const HDC dc = m_surface.Handle();
    BitBlt(dc, std::max(-shift, 0), 0, m_width - std::abs(shift), m_height, dc, std::max(shift, 0), 0, SRCCOPY);
    m_traces.Scroll(shift);
    // At both edges a trace begins and ends otherwise than it runs through: those columns are never copied.
    constexpr int edge = 2;
    const int left = std::min(std::max(-shift, 0) + edge, m_width);
    const int right = std::max(m_width - std::max(shift, 0) - edge, left);
    DrawColumns(scene, 0, left);
    if (right < m_width) DrawColumns(scene, right, m_width);
    FindArrows(scene);
    InvertBands();
}

void GraphPainter::DrawColumns(const GraphScene& scene, int from, int to) {
    GridKey grid{{}, scene.gridStyle, scene.gridColor};
    for (const Lane& lane : scene.lanes) grid.lanes.push_back({lane.top, lane.height, lane.ZeroRow()});
    DrawGrid(grid);
    const ClipScope clip(m_surface.Handle(), {from, 0, to, m_height});
    BitBlt(m_surface.Handle(), from, 0, to - from, m_height, m_grid.Handle(),
           scene.axis.FirstColumn() % TimeAxis::kDivision + from, 0, SRCCOPY);
    DrawMarks(scene);
    m_traces.Draw(scene, from, to);
    // The bits are written past the system, which may still have drawing of its own to do.
    GdiFlush();
    m_traces.Compose(m_pixels);
}

std::wstring GraphPainter::MarkText(const GraphScene& scene, const MarkLine& line) const {
    constexpr int leastText = 16;
    if (line.textWidth < leastText) return {};
    return Wide(scene.block.marks[static_cast<std::size_t>(line.markIndex)].text);
}

void GraphPainter::DrawMarks(const GraphScene& scene) const {
    const HDC dc = m_surface.Handle();
    const SelectScope font(dc, m_font.Get());
    SetTextColor(dc, kMarkColor);
    SetBkMode(dc, TRANSPARENT);
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) {
        FillWith(dc, {line.column, 0, line.column + 1, m_height}, kMarkLineColor);
        const std::wstring text = MarkText(scene, line);
        if (text.empty()) continue;
        RECT place{line.column + kMarkGap, 1, line.column + line.textWidth, m_height};
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
                  DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
}

std::optional<std::size_t> GraphPainter::MarkAt(const GraphScene& scene, int x, int y) const {
    constexpr int reach = 3;  // pixels beside a line that still mean it
    const HDC dc = m_surface.Handle();
    const SelectScope font(dc, m_font.Get());
    std::optional<std::size_t> found;
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) {
        const std::wstring text = MarkText(scene, line);
        SIZE size{};
        GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
        const int width = std::min(static_cast<int>(size.cx) + kMarkGap, line.textWidth);
        const bool onLabel = y <= size.cy && x >= line.column && x < line.column + width;
        if (onLabel || std::abs(x - line.column) <= reach) found = static_cast<std::size_t>(line.markIndex);
    }
    return found;
}

RECT GraphPainter::Invert(const ColumnBand& band) {
    const RECT rect{std::max(band.left, 0), 0, std::min(band.right + 1, m_width), m_height};
    if (rect.left >= rect.right) return {};
    // The bits are changed past the system, which may still have drawing of its own to do.
    GdiFlush();
    for (int row = 0; row < m_height; ++row) {
        std::uint32_t* const pixels = m_pixels + static_cast<std::ptrdiff_t>(row) * m_width;
        InvertLightness({pixels + rect.left, pixels + rect.right});
    }
    return rect;
}

void GraphPainter::InvertBands() {
    for (const auto& band : m_bands) {
        if (band) Invert(*band);
    }
}

RECT GraphPainter::SetBand(GraphBand which, const std::optional<ColumnBand>& columns) {
    std::optional<ColumnBand>& band = m_bands[static_cast<std::size_t>(which)];
    RECT changed{};
    if (m_width == 0 || band == columns) return changed;
    if (band) changed = Invert(*band);
    band = columns;
    if (!columns) return changed;
    const RECT appeared = Invert(*columns);
    UnionRect(&changed, &changed, &appeared);
    return changed;
}

void GraphPainter::Paint(HDC target, const RECT& part) const {
    if (m_width == 0) {
        FillWith(target, part, kWhite);
        return;
    }
    BitBlt(target, part.left, part.top, part.right - part.left, part.bottom - part.top, m_surface.Handle(), part.left,
           part.top, SRCCOPY);
    PaintArrows(target);
}

void GraphPainter::FindArrows(const GraphScene& scene) {
    m_arrows.clear();
    const std::vector<std::int16_t> shown = ChannelsOf(scene.lanes);
    for (std::size_t at = 0; at < shown.size(); ++at) {
        const TraceSides::Side side = m_traces.SideOf(at);
        if (side == TraceSides::Side::None) continue;
        const std::int16_t number = scene.block.channelNumbers[static_cast<std::size_t>(shown[at] - 1)];
        m_arrows.push_back({ColorOf(TraceColor(number)), side == TraceSides::Side::Above});
    }
    m_marksSeen = !VisibleMarks(scene.axis, scene.block).empty();
}

void GraphPainter::PaintArrows(HDC target) const {
    if (m_arrows.empty()) return;
    const auto scaled = [&](int length) { return MulDiv(length, m_dpi, USER_DEFAULT_SCREEN_DPI); };
    const int half = scaled(6);
    const int height = scaled(8);
    const int step = scaled(16);
    const int margin = scaled(4);
    const int perRow = std::max((m_width - 2 * margin) / step, 1);
    // The labels of marks stand along the upper edge.
    const int labels = m_marksSeen ? scaled(16) : 0;
    const GdiPen outline(CreatePen(PS_SOLID, 1, kWhite));
    const SelectScope pen(target, outline.Get());
    int placed[] = {0, 0};  // below, above
    for (const Arrow& arrow : m_arrows) {
        const int at = placed[arrow.above ? 1 : 0]++;
        const int x = margin + half + at % perRow * step;
        const int inward = margin + at / perRow * (height + margin);
        const int tip = arrow.above ? labels + inward : m_height - 1 - inward;
        const int base = arrow.above ? tip + height : tip - height;
        const POINT corners[] = {{x, tip}, {x + half, base}, {x - half, base}};
        const GdiBrush fill(CreateSolidBrush(arrow.color));
        const SelectScope brush(target, fill.Get());
        Polygon(target, corners, 3);
    }
}

}  // namespace quillon
