#pragma once

#include <cstdint>

#include "base/Density.h"
#include "view/Selection.h"
#include "view/WaveformView.h"

namespace quillon {

/// The visible part of a block as a window of a strip that shows the whole block and is as wide as the graph, and what
/// the left mouse button does there: it drags the window, moves one of its edges, or brings the place beside it to the
/// middle of the graph and drags on from there. Dragging is relative to where the view was, so that nothing jumps, also
/// where the window is drawn wider than the visible part.
class OverviewWindow {
  public:
    /// What is under the pointer.
    enum class Part { Nothing, Beside, Inside, LeftEdge, RightEdge };
    /// Columns of the narrowest window at 96 dpi.
    static constexpr std::int32_t kLeastWidth = 5;

    /// The view must outlive this object.
    explicit OverviewWindow(WaveformView& view) : m_view(view) {}
    void SetDpi(int dpi) { m_dpi = dpi; }

    /// Which samples of the block each column stands for; the block has at least one.
    [[nodiscard]] ColumnGrid Grid() const;
    /// Columns of the window.
    [[nodiscard]] ColumnBand Band() const;
    /// Columns of some samples, within the strip.
    [[nodiscard]] ColumnBand BandOf(const SampleSpan& samples) const;
    [[nodiscard]] Part PartAt(std::int32_t column) const;

    /// Starts a gesture; columns may lie outside the strip from then on.
    ViewChange Press(std::int32_t column);
    ViewChange Move(std::int32_t column);
    /// Ends the gesture; the view stays.
    void Release() { m_dragged = Part::Nothing; }
    [[nodiscard]] bool IsDragging() const { return m_dragged != Part::Nothing; }

  private:
    /// A length at 96 dpi.
    [[nodiscard]] std::int32_t Scaled(std::int32_t pixels) const { return ScaledTo(m_dpi, pixels); }
    [[nodiscard]] bool HasSamples() const { return m_view.Axis().SampleCount() > 0; }
    /// What is seen, or the last sample where the graph is behind it.
    [[nodiscard]] SampleSpan Seen() const;
    void Begin(Part part, std::int32_t column);
    ViewChange Drag(double samples);
    ViewChange MoveEdge(double samples);

    WaveformView& m_view;
    int m_dpi = 96;
    Part m_dragged = Part::Nothing;
    // When the gesture began.
    std::int32_t m_column = 0;       ///< of the pointer
    std::int32_t m_firstColumn = 0;  ///< of the graph
    ColumnGrid m_grid;               ///< of the graph
    SampleSpan m_seen;
    SampleSpan m_shown;         ///< that the edge was moved to last
    bool m_remembered = false;  ///< the view before is in the history
};

}  // namespace quillon
