#include "view/ReportPicture.h"

#include <algorithm>

#include "view/QL_ChUtils.h"
#include "view/ReportCanvas.h"

namespace quillon {

namespace {

std::size_t PixelsOf(TextSize size) {
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

}  // namespace

ReportPicture::ReportPicture(const Document& document, WaveformView& view, const ReportFont& font,
                             const ReportLayout& layout, TextSize size)
    : m_document(document),
      m_view(view),
      m_font(font),
      m_layout(layout),
      m_size(size),
      m_margins(layout.MarginsFor(view, document, size)),
      m_graphSize{std::max(size.width - m_margins.left - m_margins.right, 1),
                  std::max(size.height - m_margins.top - m_margins.bottom, 1)},
      m_pixels(PixelsOf(size), layout.Style().look.colors->paper),
      m_graphPixels(PixelsOf(m_graphSize), layout.Style().look.colors->paper) {
    m_view.Arrange(m_graphSize.width, m_graphSize.height);
    m_graph.SetPixels(m_graphPixels.data(), m_graphSize.width, m_graphSize.height);
    m_graph.SetPatience(kPatience);
    m_graph.onMarkTexts = [this](const GraphScene& scene, std::int32_t from, std::int32_t to) {
        ReportCanvas canvas(m_graphPixels.data(), m_graphSize.width, m_graphSize.height);
        canvas.Limit(from, to);
        canvas.Draw(m_layout.MarkTexts(scene), m_font);
    };
}

GraphScene ReportPicture::Scene() const {
    constexpr std::int16_t gridColor = 0;
    return {
        .block = m_document.Block(),
        .axis = m_view.Axis(),
        .lanes = m_view.GetLanes(),
        .extremes = m_view.Extremes(),
        .rawCodes = m_view.RawCodes(),
        .gridStyle = GridStyle::Lines,
        .gridColor = m_layout.Style().look.colors->Trace(gridColor),
        .gridColumns = GridColumns(m_view.Axis(), m_document.Block(), m_layout.Style().format, m_layout.Style().dpi),
        .others = m_view.OtherBlocks(),
        .look = m_layout.Style().look};
}

bool ReportPicture::DrawGraph(const std::function<bool()>& stop) {
    const GraphScene scene = Scene();
    m_graph.Draw(scene);
    while (m_graph.IsIncomplete()) {
        if (stop()) return false;
        static_cast<void>(m_graph.DrawMore(scene));
    }
    return !stop();
}

void ReportPicture::FitScale() {
    m_view.FitScales(m_graph.Traces().SeenRange(Scene()));
}

void ReportPicture::DrawFrame() {
    for (std::int32_t row = 0; row < m_graphSize.height; ++row) {
        const auto from = m_graphPixels.begin() + std::ptrdiff_t{row} * m_graphSize.width;
        std::copy_n(from, m_graphSize.width,
                    m_pixels.begin() + std::ptrdiff_t{m_margins.top + row} * m_size.width + m_margins.left);
    }
    ReportCanvas canvas(m_pixels.data(), m_size.width, m_size.height);
    canvas.Draw(m_layout.Frame(m_view, m_document, m_margins), m_font);
    for (const EdgeArrow& arrow : m_graph.Arrows(m_layout.Style().dpi))
        canvas.DrawArrow(arrow, {m_margins.left, m_margins.top});
}

}  // namespace quillon
