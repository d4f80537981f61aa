#pragma once

#include <cstdint>

#include "view/GraphPicture.h"
#include "view/ReportFont.h"
#include "view/ReportLayout.h"

namespace quillon {

/// Draws the parts of a report into pixels that its owner has; what is outside of them is left out.
class ReportCanvas {
  public:
    /// `pixels`: 0xRRGGBB, rows of the width from the top.
    ReportCanvas(std::uint32_t* pixels, std::int32_t width, std::int32_t height)
        : m_pixels(pixels), m_width(width), m_height(height), m_right(width) {}
    /// Limits what is drawn from now on to columns from .. to-1.
    void Limit(std::int32_t from, std::int32_t to);

    void Draw(const ReportPlan& plan, const ReportFont& font);
    void Fill(const ReportBox& box);
    void DrawText(const ReportText& text, const ReportFont& font);
    /// Filled, its edges included; `at` is the corner of the graph that it belongs to.
    void DrawArrow(const EdgeArrow& arrow, DevicePoint at);

  private:
    /// Every dot of the letters, and that many pixels around it.
    void DrawGlyphs(const ReportText& text, const ReportFont& font, std::int32_t margin, std::uint32_t color);

    std::uint32_t* m_pixels;
    std::int32_t m_width;
    std::int32_t m_height;
    std::int32_t m_left = 0;  ///< columns that are drawn
    std::int32_t m_right;
};

}  // namespace quillon
