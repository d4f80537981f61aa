#pragma once

#include <optional>

#include "view/GraphPicture.h"
#include "view/win/ScreenDensity.h"
#include "view/win/cMemDC.h"

namespace quillon {

/// Draws the graph off-screen and copies the finished image to its picture box, with an arrow at the upper or lower
/// edge for every trace that is entirely outside it. Owns the bitmap of GraphPicture and writes the texts of the marks.
class GraphPainter {
  public:
    /// `density` must outlive this object.
    explicit GraphPainter(const ScreenDensity& density);

    /// Draws background, marks and traces of the scene into a surface of that size, the bands over them.
    void Draw(const GraphScene& scene, int width, int height);
    /// The same image for a scene that differs from the drawn one only by its first column, which was moved by `shift`:
    /// what stays visible is copied, the rest is drawn.
    void Scroll(const GraphScene& scene, std::int32_t shift);
    /// See GraphPicture; returns the changed rectangle.
    RECT DrawMore(const GraphScene& scene);
    [[nodiscard]] bool IsIncomplete() const { return m_picture.IsIncomplete(); }
    [[nodiscard]] double MissingShare() const { return m_picture.MissingShare(); }
    /// Whether the whole scene can be read without reading much; reads a little of what is missing.
    [[nodiscard]] bool CanReadNow(const GraphScene& scene) const { return m_picture.Traces().CanReadNow(scene); }
    /// An empty surface without bands.
    void Clear(int width, int height, const GraphColors& colors);
    /// Reason why some samples of the last drawing could not be read; empty when all could.
    [[nodiscard]] const std::string& ReadFailure() const { return m_picture.Traces().Failure(); }
    /// Discards the samples read; to be called when another block is shown.
    void ForgetBlock() { m_picture.Traces().ForgetBlock(); }
    /// See TracePicture.
    [[nodiscard]] std::optional<ValueRange> SeenRange(const GraphScene& scene) {
        return m_picture.Traces().SeenRange(scene);
    }
    /// Moves, shows or hides a band; returns the changed rectangle.
    RECT SetBand(GraphBand which, const std::optional<ColumnBand>& columns);
    [[nodiscard]] const std::optional<ColumnBand>& Band(GraphBand which) const { return m_picture.Band(which); }
    /// The mark whose line or label is at a point of the graph, if any.
    [[nodiscard]] std::optional<std::size_t> MarkAt(const GraphScene& scene, int x, int y) const;
    /// Copies part of the image.
    void Paint(HDC target, const RECT& part) const;

  private:
    void Prepare(int width, int height);
    void DrawMarkTexts(const GraphScene& scene, int from, int to) const;
    void PaintArrows(HDC target) const;

    const ScreenDensity& m_density;
    cMemDC m_surface;
    GraphPicture m_picture;  ///< draws into m_surface
};

}  // namespace quillon
