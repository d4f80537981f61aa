#include "view/win/GraphPainter.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace quillon {

namespace {

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

GraphPainter::GraphPainter(const ScreenDensity& density) : m_density(density) {
    m_picture.SetPatience(kPatience);
    m_picture.onMarkTexts = [this](const GraphScene& scene, int from, int to) { DrawMarkTexts(scene, from, to); };
}

void GraphPainter::Prepare(int width, int height) {
    // The picture writes the pixels directly, so flush GDI's pending operations first.
    GdiFlush();
    if (width == m_picture.Width() && height == m_picture.Height()) return;
    m_picture.SetPixels(nullptr, 0, 0);
    if (width < 1 || height < 1) return;
    std::uint32_t* const pixels = m_surface.CreatePixels(width, height);
    if (pixels != nullptr) m_picture.SetPixels(pixels, width, height);
}

void GraphPainter::Clear(int width, int height, const GraphColors& colors) {
    Prepare(width, height);
    m_picture.Clear(colors);
}

void GraphPainter::Draw(const GraphScene& scene, int width, int height) {
    Prepare(width, height);
    m_picture.Draw(scene);
}

void GraphPainter::Scroll(const GraphScene& scene, std::int32_t shift) {
    GdiFlush();
    m_picture.Scroll(scene, shift);
}

RECT GraphPainter::DrawMore(const GraphScene& scene) {
    GdiFlush();
    const std::optional<ColumnBand> drawn = m_picture.DrawMore(scene);
    return drawn ? RECT{drawn->left, 0, drawn->right + 1, m_picture.Height()} : RECT{};
}

void GraphPainter::DrawMarkTexts(const GraphScene& scene, int from, int to) const {
    const HDC dc = m_surface.Handle();
    const ClipScope clip(dc, {from, 0, to, m_picture.Height()});
    const SelectScope font(dc, m_density.Font());
    SetBkMode(dc, TRANSPARENT);
    const int width = m_density.Line();
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    for (const MarkLine& line : VisibleMarks(scene.axis, scene.block)) {
        const std::wstring text = Wide(MarkText(scene.block, line));
        if (text.empty()) continue;
        const RECT place{line.column + kMarkGap, 1 + line.row * metrics.tmHeight, line.column + line.textWidth,
                         m_picture.Height()};
        if (place.right + width < from || place.left - width >= to) continue;
        const auto draw = [&](const POINT& by, std::uint32_t color) {
            RECT moved = place;
            OffsetRect(&moved, by.x * width, by.y * width);
            SetTextColor(dc, ColorOf(color));
            DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &moved,
                      DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
        };
        for (std::size_t at = 0; AreTextsAbove(scene) && at < std::size(kOutline); ++at)
            draw(kOutline[at], scene.Colors().paper);
        draw({}, scene.Colors().markText);
    }
    GdiFlush();
}

std::optional<std::size_t> GraphPainter::MarkAt(const GraphScene& scene, int x, int y) const {
    const HDC dc = m_surface.Handle();
    const SelectScope font(dc, m_density.Font());
    return quillon::MarkAt(scene, x, y, [&](const std::u16string& text) {
        SIZE size{};
        GetTextExtentPoint32W(dc, Wide(text).c_str(), static_cast<int>(text.size()), &size);
        return TextSize{size.cx, size.cy};
    });
}

RECT GraphPainter::SetBand(GraphBand which, const std::optional<ColumnBand>& columns) {
    GdiFlush();
    const std::optional<ColumnBand> changed = m_picture.SetBand(which, columns);
    return changed ? RECT{changed->left, 0, changed->right + 1, m_picture.Height()} : RECT{};
}

void GraphPainter::Paint(HDC target, const RECT& part) const {
    if (m_picture.Width() == 0) {
        FillWith(target, part, ColorOf(m_picture.Colors().paper));
        return;
    }
    BitBlt(target, part.left, part.top, part.right - part.left, part.bottom - part.top, m_surface.Handle(), part.left,
           part.top, SRCCOPY);
    PaintArrows(target);
}

void GraphPainter::PaintArrows(HDC target) const {
    const GdiPen outline(CreatePen(PS_SOLID, m_density.Line(), ColorOf(m_picture.Colors().paper)));
    const SelectScope pen(target, outline.Get());
    for (const EdgeArrow& arrow : m_picture.Arrows(m_density.Dpi())) {
        const auto& [tip, right, left] = arrow.corners;
        const POINT corners[] = {{tip.x, tip.y}, {right.x, right.y}, {left.x, left.y}};
        const GdiBrush fill(CreateSolidBrush(ColorOf(arrow.color)));
        const SelectScope brush(target, fill.Get());
        Polygon(target, corners, 3);
    }
}

}  // namespace quillon
