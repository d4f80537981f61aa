#pragma once

#include "view/ScaleLabels.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// Paints the strips beside and below the graph.
class ScalePainter {
  public:
    /// `density` must outlive this object.
    explicit ScalePainter(const ScreenDensity& density) : m_density(density) {}

    /// Time labels, each at its division with a tick above it, over bands for marks that last. A label that would run
    /// into the next one or over the edge is left out.
    void PaintTime(HDC dc, const RECT& client, const GraphColors& colors, const std::vector<ScaleLabel>& labels,
                   const std::vector<MarkSpan>& spans) const;
    /// Amplitude labels, right-aligned beside the graph, with a tick at the right edge.
    void PaintAmplitude(HDC dc, const RECT& client, const GraphColors& colors,
                        const std::vector<ScaleLabel>& labels) const;

  private:
    const ScreenDensity& m_density;
};

}  // namespace quillon
