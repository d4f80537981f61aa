#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "view/GraphPicture.h"
#include "view/ReportLayout.h"

namespace quillon {

/// Filled rectangles that make up all pixels of an image that are not of the paper.
[[nodiscard]] std::vector<ReportBox> BoxesOf(std::span<const std::uint32_t> pixels, std::int32_t width,
                                             std::uint32_t paper = kLightColors.paper);

/// Lines from point to point.
struct TraceLine {
    std::vector<DevicePoint> points;
    std::uint32_t color = 0;  ///< 0xRRGGBB
    std::int32_t top = 0;     ///< rows that it is limited to, the second one behind them
    std::int32_t end = 0;
    bool dots = false;  ///< a dot at every point
};

/// A report of what a window's graph shows, as it stands: the same samples and values over `scale` times as many
/// pixels. The view stays as it is. What the window has over the traces (bands) is left out.
class ViewReport {
  public:
    /// `scene` is that of the window's graph, `layout` counts in its pixels. What they refer to must outlive this
    /// object.
    ViewReport(const Document& document, const WaveformView& view, const GraphScene& scene, const ReportLayout& layout,
               int scale);

    /// More room for what else is placed around the graph; in pixels of the window, as all sizes but those of the
    /// graph's pixels and lines.
    void Reserve(const ReportMargins& least);
    [[nodiscard]] int Scale() const { return m_scale; }
    [[nodiscard]] const GraphLook& Look() const { return m_shown.look; }
    [[nodiscard]] const ReportMargins& Margins() const { return m_margins; }
    [[nodiscard]] TextSize Size() const;
    /// Everything around the graph, and the texts of the marks, which lie over it.
    [[nodiscard]] ReportPlan Frame() const;

    /// Draws the graph; asks `stop` now and then while it reads, and returns false when that said so.
    [[nodiscard]] bool DrawGraph(const std::function<bool()>& stop);
    [[nodiscard]] std::span<const std::uint32_t> GraphPixels() const { return m_pixels; }
    [[nodiscard]] TextSize GraphSize() const { return {m_axis.Width(), m_lanes.back().End()}; }
    [[nodiscard]] std::vector<EdgeArrow> Arrows() const { return m_graph.Arrows(m_layout.Style().dpi * m_scale); }
    /// The graph as lines over boxes, in the order of drawing. Boxes of the background are found by drawing that anew.
    [[nodiscard]] const std::vector<TraceLine>& Lines() const { return m_lines; }
    [[nodiscard]] std::vector<ReportBox> Background() const;

  private:
    [[nodiscard]] GraphScene Scene(const Lanes& lanes) const;

    const Document& m_document;
    const WaveformView& m_view;
    GraphScene m_shown;  ///< of the window
    const ReportLayout& m_layout;
    int m_scale;
    ReportMargins m_margins;
    TimeAxis m_axis;
    Lanes m_lanes;
    std::vector<std::int32_t> m_gridColumns;
    std::vector<std::uint32_t> m_pixels;
    std::vector<TraceLine> m_lines;
    GraphPicture m_graph;  ///< draws into m_pixels
};

}  // namespace quillon
