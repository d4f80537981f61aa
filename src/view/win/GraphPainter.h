#pragma once

#include <array>
#include <optional>

#include "view/GraphScene.h"
#include "view/ScaleLabels.h"
#include "view/Selection.h"
#include "view/TracePicture.h"
#include "view/win/GDI_Utils.h"
#include "view/win/cMemDC.h"

namespace quillon {

/// The bands that lie over the image with its lightness inverted.
enum class GraphBand { Selection, Cursor, Play, Count };

/// Draws the graph off-screen and copies the finished image to its picture box, with an arrow at the upper or lower
/// edge for every trace that lies wholly beyond it. Owns the surface, the grid that is copied behind the traces, and
/// the buffers of the traces' points.
///
/// The bands are part of the image: each is inverted once when it appears and once more when it goes, which leaves no
/// trace of it.
class GraphPainter {
  public:
    GraphPainter();

    /// Draws background, marks and traces of the scene into a surface of that size, the bands over them.
    void Draw(const GraphScene& scene, int width, int height);
    /// The same image for a scene that differs from the drawn one only by its first column, which was moved by `shift`:
    /// what stays visible is copied, the rest is drawn.
    void Scroll(const GraphScene& scene, std::int32_t shift);
    /// An empty white surface without bands.
    void Clear(int width, int height);
    /// Why a part of what was drawn last could not be read; empty when all could.
    [[nodiscard]] const std::string& ReadFailure() const { return m_traces.Failure(); }
    /// Another block is shown: what was read of the old one is of no use.
    void ForgetBlock() { m_traces.ForgetBlock(); }
    /// See TracePicture.
    [[nodiscard]] std::vector<std::optional<ValueRange>> SeenRanges(const GraphScene& scene) {
        return m_traces.SeenRanges(scene);
    }
    /// Moves, shows or hides a band; the returned rectangle holds what has changed.
    RECT SetBand(GraphBand which, const std::optional<ColumnBand>& columns);
    [[nodiscard]] const std::optional<ColumnBand>& Band(GraphBand which) const {
        return m_bands[static_cast<std::size_t>(which)];
    }
    /// The mark whose line or label lies at a point of the graph; none where there is none.
    [[nodiscard]] std::optional<std::size_t> MarkAt(const GraphScene& scene, int x, int y) const;
    /// Copies part of the image.
    void Paint(HDC target, const RECT& part) const;
    [[nodiscard]] const cMemDC& Surface() const { return m_surface; }

  private:
    /// What the grid was drawn for.
    struct GridKey {
        /// Rows of a lane, and that of its zero level.
        struct Rows {
            int top;
            int height;
            std::int64_t zero;
            friend bool operator==(const Rows&, const Rows&) = default;
        };
        std::vector<Rows> lanes;
        GridStyle style;
        std::uint32_t color;
        friend bool operator==(const GridKey&, const GridKey&) = default;
    };

    bool Prepare(int width, int height);
    void DrawGrid(const GridKey& key);
    void DrawLevels(const GridKey& key, const GridKey::Rows& lane) const;
    void DrawColumns(const GraphScene& scene, int from, int to);
    void DrawMarks(const GraphScene& scene) const;
    void FindArrows(const GraphScene& scene);
    void PaintArrows(HDC target) const;
    void InvertBands();
    RECT Invert(const ColumnBand& band);
    [[nodiscard]] std::wstring MarkText(const GraphScene& scene, const MarkLine& line) const;

    cMemDC m_surface;
    cMemDC m_grid;  ///< one grid period wider than the surface, so that any horizontal position can be copied from it
    GdiFont m_font;
    int m_dpi;
    TracePicture m_traces;
    /// A trace that lies beyond the graph.
    struct Arrow {
        COLORREF color;
        bool above;
    };
    std::vector<Arrow> m_arrows;
    bool m_marksSeen = false;
    std::uint32_t* m_pixels = nullptr;  ///< of the surface, rows from the top
    int m_width = 0;
    int m_height = 0;
    std::optional<GridKey> m_gridKey;
    std::array<std::optional<ColumnBand>, static_cast<std::size_t>(GraphBand::Count)> m_bands;
};

}  // namespace quillon
