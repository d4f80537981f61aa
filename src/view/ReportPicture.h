#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "view/GraphPicture.h"
#include "view/ReportFont.h"
#include "view/ReportLayout.h"

namespace quillon {

/// The pixels of a report, drawn without a system. The graph is what the window's graph of that view is.
class ReportPicture {
  public:
    /// Arranges the view for a picture of that size, whose layout measures texts in `font`. All of them must outlive
    /// this object.
    ReportPicture(const Document& document, WaveformView& view, const ReportFont& font, const ReportLayout& layout,
                  TextSize size);

    /// Draws the graph anew; asks `stop` now and then while it reads, and returns false when that said so.
    [[nodiscard]] bool DrawGraph(const std::function<bool()>& stop);
    /// Of one axis: chooses a scale for what the graph shows, from what DrawGraph has read. Lanes are fitted to what is
    /// typical of the block when the view is arranged, so that pictures of several parts of it can be compared.
    void FitScale();
    /// Draws everything else, around the graph.
    void DrawFrame();

    [[nodiscard]] std::span<const std::uint32_t> Pixels() const { return m_pixels; }
    /// Where the graph is, and its size.
    [[nodiscard]] const ReportMargins& Margins() const { return m_margins; }
    [[nodiscard]] TextSize GraphSize() const { return m_graphSize; }
    /// Why some samples could not be read; empty where all could.
    [[nodiscard]] const std::string& Failure() const { return m_graph.Traces().Failure(); }

  private:
    [[nodiscard]] GraphScene Scene() const;

    const Document& m_document;
    WaveformView& m_view;
    const ReportFont& m_font;
    const ReportLayout& m_layout;
    TextSize m_size;
    ReportMargins m_margins;
    TextSize m_graphSize;
    std::vector<std::uint32_t> m_pixels;       ///< of the picture
    std::vector<std::uint32_t> m_graphPixels;  ///< which m_graph draws
    GraphPicture m_graph;
};

}  // namespace quillon
