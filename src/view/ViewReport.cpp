#include "view/ViewReport.h"

#include <algorithm>
#include <map>
#include <utility>

namespace quillon {

namespace {

/// The same samples over more columns. An axis of the table becomes a free one.
TimeAxis Enlarged(const TimeAxis& axis, int scale) {
    if (scale == 1) return axis;
    TimeAxis enlarged = axis;
    enlarged.SetFree(true);
    const TimeAxis::Place place = enlarged.GetPlace();
    enlarged.SetWidth(axis.Width() * scale);
    enlarged.Restore(place);
    return enlarged;
}

Lanes Enlarged(Lanes lanes, int scale) {
    for (Lane& lane : lanes) {
        lane.top *= scale;
        lane.height *= scale;
        lane.zeroRow *= scale;
        lane.unitsPerDivision /= scale;
    }
    return lanes;
}

std::vector<std::int32_t> Enlarged(const GraphScene& scene, int scale) {
    std::vector<std::int32_t> columns = scene.gridColumns;
    if (!scene.axis.IsFree()) {
        constexpr std::int32_t division = TimeAxis::kDivision;
        const std::int32_t first = (division - scene.axis.FirstColumn() % division) % division;
        for (std::int32_t column = first; column < scene.axis.Width(); column += division) columns.push_back(column);
    }
    for (std::int32_t& column : columns) column *= scale;
    return columns;
}

/// Margins depend on the size of the picture, which they are a part of.
ReportMargins MarginsAround(const ReportLayout& layout, const WaveformView& view, const Document& document,
                            TextSize graph) {
    ReportMargins margins;
    constexpr int rounds = 3;
    for (int round = 0; round < rounds; ++round) {
        margins = layout.MarginsFor(
            view, document, {margins.left + graph.width + margins.right, margins.top + graph.height + margins.bottom});
    }
    return margins;
}

}  // namespace

std::vector<ReportBox> BoxesOf(std::span<const std::uint32_t> pixels, std::int32_t width, std::uint32_t paper) {
    std::vector<ReportBox> boxes;
    const auto height = static_cast<std::int32_t>(std::ssize(pixels) / std::max(width, 1));
    std::map<std::pair<std::int32_t, std::int32_t>, std::size_t> open;  // boxes of the row above, by their columns
    for (std::int32_t row = 0; row < height; ++row) {
        decltype(open) below;
        const std::uint32_t* const at = pixels.data() + std::ptrdiff_t{row} * width;
        for (std::int32_t from = 0; from < width;) {
            const std::uint32_t color = at[from];
            std::int32_t to = from + 1;
            while (to < width && at[to] == color) ++to;
            const auto above = open.find({from, to});
            if (color == paper) {
            } else if (above != open.end() && boxes[above->second].color == color) {
                boxes[above->second].end = row + 1;
                below.insert(*above);
            } else {
                below.emplace(std::pair{from, to}, boxes.size());
                boxes.push_back({from, row, to, row + 1, color});
            }
            from = to;
        }
        open = std::move(below);
    }
    return boxes;
}

ViewReport::ViewReport(const Document& document, const WaveformView& view, const GraphScene& scene,
                       const ReportLayout& layout, int scale)
    : m_document(document),
      m_view(view),
      m_shown(scene),
      m_layout(layout),
      m_scale(scale),
      m_margins(MarginsAround(layout, view, document, {scene.axis.Width(), scene.lanes.back().End()})),
      m_axis(Enlarged(scene.axis, scale)),
      m_lanes(Enlarged(scene.lanes, scale)),
      m_gridColumns(Enlarged(scene, scale)) {
    m_graph.SetPatience(kPatience);
    m_graph.Traces().onTrace = [this](const DrawnTrace& trace) {
        m_lines.push_back({trace.points, trace.color, trace.top, trace.end, trace.dots});
    };
}

void ViewReport::Reserve(const ReportMargins& least) {
    m_margins.left = std::max(m_margins.left, least.left);
    m_margins.top = std::max(m_margins.top, least.top);
    m_margins.right = std::max(m_margins.right, least.right);
    m_margins.bottom = std::max(m_margins.bottom, least.bottom);
}

TextSize ViewReport::Size() const {
    return {m_margins.left + m_shown.axis.Width() + m_margins.right,
            m_margins.top + m_shown.lanes.back().End() + m_margins.bottom};
}

GraphScene ViewReport::Scene(const Lanes& lanes) const {
    return {.block = m_shown.block,
            .axis = m_axis,
            .lanes = lanes,
            .extremes = m_shown.extremes,
            .rawCodes = m_shown.rawCodes,
            .foldOrigin = m_shown.foldOrigin,
            .gridStyle = m_shown.gridStyle,
            .gridColor = m_shown.gridColor,
            .gridColumns = m_gridColumns,
            .others = m_shown.others,
            .enlargement = m_scale,
            .look = {m_shown.look.colors, EnlargedLine(m_shown.look.lineWidth, m_scale)}};
}

ReportPlan ViewReport::Frame() const {
    ReportPlan plan = m_layout.Frame(m_view, m_document, m_margins);
    for (const ReportText& text : m_layout.MarkTexts(m_shown).texts)
        plan.texts.push_back({text.text, text.x + m_margins.left, text.y + m_margins.top, text.color, text.outline});
    return plan;
}

bool ViewReport::DrawGraph(const std::function<bool()>& stop) {
    const TextSize size = GraphSize();
    m_pixels.assign(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height),
                    m_shown.Colors().paper);
    m_lines.clear();
    m_graph.SetPixels(m_pixels.data(), size.width, size.height);
    const GraphScene scene = Scene(m_lanes);
    m_graph.Draw(scene);
    while (m_graph.IsIncomplete()) {
        if (stop()) return false;
        static_cast<void>(m_graph.DrawMore(scene));
    }
    return !stop();
}

std::vector<ReportBox> ViewReport::Background() const {
    Lanes empty = m_lanes;
    for (Lane& lane : empty) lane.channels.clear();
    std::vector<std::uint32_t> pixels(m_pixels.size(), m_shown.Colors().paper);
    GraphPicture background;
    background.SetPixels(pixels.data(), GraphSize().width, GraphSize().height);
    background.Draw(Scene(empty));
    return BoxesOf(pixels, GraphSize().width, m_shown.Colors().paper);
}

}  // namespace quillon
