#include "view/ReportCanvas.h"

#include <algorithm>

namespace quillon {

void ReportCanvas::Limit(std::int32_t from, std::int32_t to) {
    m_left = std::max(from, 0);
    m_right = std::min(to, m_width);
}

void ReportCanvas::Draw(const ReportPlan& plan, const ReportFont& font) {
    for (const ReportBox& box : plan.boxes) Fill(box);
    for (const ReportText& text : plan.texts) DrawText(text, font);
}

void ReportCanvas::Fill(const ReportBox& box) {
    const std::int32_t left = std::max(box.left, m_left);
    const std::int32_t right = std::min(box.right, m_right);
    if (left >= right) return;
    for (std::int32_t row = std::max(box.top, 0); row < std::min(box.end, m_height); ++row)
        std::fill_n(m_pixels + std::ptrdiff_t{row} * m_width + left, right - left, box.color);
}

void ReportCanvas::DrawText(const ReportText& text, const ReportFont& font) {
    if (text.outline) DrawGlyphs(text, font, font.Scale(), *text.outline);
    DrawGlyphs(text, font, 0, text.color);
}

void ReportCanvas::DrawGlyphs(const ReportText& text, const ReportFont& font, std::int32_t margin,
                              std::uint32_t color) {
    const std::int32_t scale = font.Scale();
    font.ForGlyphs(text.text, [&](const Glyph& glyph, std::int32_t first) {
        for (std::int32_t row = 0; row < kGlyphRows; ++row) {
            const unsigned bits = glyph.rows[static_cast<std::size_t>(row)];
            for (std::int32_t column = 0; column < glyph.width; ++column) {
                if ((bits >> (glyph.width - 1 - column) & 1U) == 0) continue;
                const std::int32_t x = text.x + (first + column) * scale;
                const std::int32_t y = text.y + row * scale;
                Fill({x - margin, y - margin, x + scale + margin, y + scale + margin, color});
            }
        }
    });
}

void ReportCanvas::DrawArrow(const EdgeArrow& arrow, DevicePoint at) {
    const auto& [tip, right, left] = arrow.corners;
    const std::int32_t step = right.y > tip.y ? 1 : -1;
    const std::int32_t height = std::max(step * (right.y - tip.y), 1);
    for (std::int32_t row = 0; row <= height; ++row) {
        // The tip is in the middle of the base.
        const std::int32_t half = (right.x - left.x) / 2 * row / height;
        const std::int32_t y = at.y + tip.y + step * row;
        Fill({at.x + tip.x - half, y, at.x + tip.x + half + 1, y + 1, arrow.color});
    }
}

}  // namespace quillon
