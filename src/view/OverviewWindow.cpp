#include "view/OverviewWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillon {

namespace {

/// Columns outside the window, at 96 dpi, in which its edge can still be taken; inside there are as many where the
/// window is wide enough.
constexpr std::int32_t kGrip = 4;
/// Columns of the narrowest window by which the whole of it can be dragged.
constexpr std::int32_t kLeastInside = 3;

}  // namespace

ColumnGrid OverviewWindow::Grid() const {
    return {std::max(m_view.Axis().SampleCount(), 1), m_view.Axis().Width()};
}

SampleSpan OverviewWindow::Seen() const {
    const SampleSpan visible = m_view.Axis().Visible();
    return visible.count > 0 ? visible : SampleSpan{std::max(m_view.Axis().SampleCount() - 1, 0), 1};
}

ColumnBand OverviewWindow::BandOf(const SampleSpan& samples) const {
    const ColumnGrid grid = Grid();
    const std::int64_t last = m_view.Axis().Width() - 1;
    return {static_cast<std::int32_t>(std::clamp<std::int64_t>(grid.FirstColumn(samples.first), 0, last)),
            static_cast<std::int32_t>(std::clamp<std::int64_t>(grid.LastColumn(samples.End() - 1), 0, last))};
}

ColumnBand OverviewWindow::Band() const {
    ColumnBand band = BandOf(Seen());
    const std::int32_t width = m_view.Axis().Width();
    const std::int32_t lacking = std::min(Scaled(kLeastWidth), width) - (band.right - band.left + 1);
    if (lacking <= 0) return band;
    const std::int32_t columns = band.right - band.left + lacking;
    band.left = std::clamp(band.left - lacking / 2, 0, width - 1 - columns);
    band.right = band.left + columns;
    return band;
}

OverviewWindow::Part OverviewWindow::PartAt(std::int32_t column) const {
    if (!HasSamples()) return Part::Nothing;
    const ColumnBand band = Band();
    const std::int32_t outside = Scaled(kGrip);
    const std::int32_t width = band.right - band.left + 1;
    const std::int32_t inside = std::clamp((width - Scaled(kLeastInside)) / 2, 1, outside);
    if (column < band.left - outside || column > band.right + outside) return Part::Beside;
    if (column < band.left + inside) return Part::LeftEdge;
    return column > band.right - inside ? Part::RightEdge : Part::Inside;
}

void OverviewWindow::Begin(Part part, std::int32_t column) {
    m_dragged = part;
    m_column = column;
    m_firstColumn = m_view.Axis().FirstColumn();
    m_grid = m_view.Axis().Grid();
    m_seen = m_shown = Seen();
    m_remembered = false;
}

ViewChange OverviewWindow::Press(std::int32_t column) {
    const Part part = PartAt(column);
    if (part == Part::Nothing || IsDragging()) return {};
    if (part != Part::Beside) return Begin(part, column), ViewChange{};
    const std::int64_t sample = Grid().FirstSample(column);
    const std::int64_t last = m_view.Axis().SampleCount() - 1;
    const ViewChange change = m_view.GoTo(static_cast<std::int32_t>(std::clamp<std::int64_t>(sample, 0, last)) + 1);
    Begin(Part::Inside, column);
    return change;
}

ViewChange OverviewWindow::Move(std::int32_t column) {
    if (!IsDragging() || !HasSamples()) return {};
    const double samples = static_cast<double>(std::int64_t{column} - m_column) * Grid().SamplesPerColumn();
    if (m_dragged != Part::Inside) return MoveEdge(samples);
    // The wheel may have zoomed meanwhile.
    if (m_grid != m_view.Axis().Grid()) return Begin(m_dragged, column), ViewChange{};
    return Drag(samples);
}

ViewChange OverviewWindow::Drag(double samples) {
    const TimeAxis& axis = m_view.Axis();
    // The graph stays full, unless it was not before.
    const std::int32_t last = std::max({axis.StripLength() - axis.Width(), m_firstColumn, 0});
    const std::int64_t target = m_firstColumn + std::llround(samples / m_grid.SamplesPerColumn());
    return m_view.ScrollBy(static_cast<std::int32_t>(std::clamp<std::int64_t>(target, 0, last)) - axis.FirstColumn());
}

ViewChange OverviewWindow::MoveEdge(double samples) {
    // The pointer cannot tell less than the narrowest window; a part that is shorter already can only grow.
    const double narrowest = Scaled(kLeastWidth) * Grid().SamplesPerColumn();
    const std::int64_t least = std::min<std::int64_t>(m_seen.count, std::max<std::int64_t>(std::llround(narrowest), 1));
    const std::int64_t moved = std::llround(samples);
    std::int64_t first = m_seen.first;
    std::int64_t end = m_seen.End();
    if (m_dragged == Part::LeftEdge) {
        first = std::clamp<std::int64_t>(first + moved, 0, end - least);
    } else {
        end = std::clamp<std::int64_t>(end + moved, first + least, m_view.Axis().SampleCount());
    }
    const SampleSpan shown{static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - first)};
    if (shown == std::exchange(m_shown, shown)) return {};
    ViewChange change = m_view.FitSamples(shown, !std::exchange(m_remembered, true));
    const TimeAxis& axis = m_view.Axis();
    // A zoom of the table may show more: the other edge stays.
    const bool left = m_dragged == Part::LeftEdge;
    const std::int32_t beside =
        left ? axis.LastColumnOf(shown.End() - 1) - axis.Width() + 1 : axis.ColumnOf(shown.first);
    if (!axis.IsFree()) change |= m_view.ScrollBy(beside);
    return change;
}

}  // namespace quillon
