#pragma once

#include <optional>

#include "data/QL_Types.h"
#include "view/AmplitudeScale.h"
#include "view/QL_ChUtils.h"
#include "view/ScaleLabels.h"
#include "view/TimeAxis.h"
#include "view/TraceMapping.h"
#include "view/win/GDI_Utils.h"
#include "view/win/cMemDC.h"

namespace quillon {

/// What one pass of the graph shows.
struct GraphScene {
    const ViewBlock& block;
    const ChannelSlots& slots;
    const TimeAxis& axis;
    const AmplitudeScale& amplitude;
    bool rawCodes = false;
    /// Stroke paths and leave the origin unfolded, as current systems do.
    bool strokePaths = true;
};

/// Draws the graph off-screen and copies the finished image to its picture box.
/// Owns the surface, the grid that is copied behind the traces, and the buffers of the traces' points.
class GraphPainter {
  public:
    GraphPainter();

    /// Draws background, marks and traces of the scene into a surface of that size.
    void Draw(const GraphScene& scene, int width, int height);
    /// An empty white surface.
    void Clear(int width, int height);
    /// Copies part of the image.
    void Paint(HDC target, const RECT& part) const;
    [[nodiscard]] HDC Surface() const { return m_surface.Handle(); }

  private:
    bool Prepare(int width, int height);
    void DrawGrid(int zeroRow);
    void DrawMarks(const GraphScene& scene) const;
    void DrawTraces(const GraphScene& scene);
    void StrokeTrace(const TraceMapping& mapping, const GraphScene& scene, std::size_t channel,
                     const std::vector<TracePoint>& points, std::int32_t count);

    cMemDC m_surface;
    cMemDC m_grid;  ///< one grid period wider than the surface, so that any horizontal position can be copied from it
    GdiFont m_font;
    TraceReader m_reader;
    int m_width = 0;
    int m_height = 0;
    std::optional<int> m_gridZeroRow;  ///< what m_grid was drawn for
};

}  // namespace quillon
