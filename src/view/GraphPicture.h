#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "view/GraphScene.h"
#include "view/ScaleLabels.h"
#include "view/Selection.h"
#include "view/TracePicture.h"

namespace quillon {

/// Line along the lower edge below columns whose samples have not been read yet.
inline constexpr std::uint32_t kMissingColor = 0xE0A030;  ///< 0xRRGGBB
inline constexpr std::int32_t kMissingRows = 2;
/// How long a picture goes on reading before the rest is left to slices.
inline constexpr std::chrono::milliseconds kPatience{10};

/// Whether texts of marks lie over the traces: in lanes the first one has them across its trace.
[[nodiscard]] inline bool AreTextsAbove(const GraphScene& scene) {
    return !scene.lanes.empty() && scene.lanes.front().single;
}

/// Bands that invert the image below them, see GraphColors.
enum class GraphBand { Selection, Cursor, Play, Count };

/// A triangle at the upper or lower edge of a lane, for a trace that is entirely outside it.
struct EdgeArrow {
    std::uint32_t color = 0;  ///< 0xRRGGBB
    std::array<DevicePoint, 3> corners;
};

/// The image of the graph: grid, lines of marks and traces, and the bands over them. It draws into pixels that its
/// owner made, so that they may be those of a bitmap of the system.
///
/// The bands are part of the image, each over those before it: each is inverted once when it appears and once more when
/// it goes, which leaves no trace of it.
class GraphPicture {
  public:
    /// Draws the texts of the marks into columns from .. to-1, over their lines and under the traces; where
    /// AreTextsAbove, over the traces.
    std::function<void(const GraphScene& scene, std::int32_t from, std::int32_t to)> onMarkTexts;

    /// `pixels`: 0xRRGGBB, rows of that width from the top, of any content; null and 0 for an image of no size.
    void SetPixels(std::uint32_t* pixels, std::int32_t width, std::int32_t height);
    [[nodiscard]] std::int32_t Width() const { return m_width; }
    [[nodiscard]] std::int32_t Height() const { return m_height; }

    /// How long Draw and Scroll go on reading; what they have not drawn by then is left to DrawMore. At first there is
    /// no limit.
    void SetPatience(std::chrono::milliseconds patience) { m_patience = patience; }

    /// Empty paper, without bands.
    void Clear(const GraphColors& colors = kLightColors);
    /// Draws the scene, the bands over it. Columns that are left to DrawMore hold no traces, and a line along the lower
    /// edge.
    void Draw(const GraphScene& scene);
    /// The same image for a scene that differs from the drawn one only by its first column, which was moved by `shift`:
    /// what stays visible is copied, the rest is drawn.
    void Scroll(const GraphScene& scene, std::int32_t shift);
    /// Reads for some milliseconds, at most about 16 MiB, of what the columns left out by Draw need, for the scene
    /// drawn last, and draws those of which all is known then. Returns the columns drawn, if any.
    std::optional<ColumnBand> DrawMore(const GraphScene& scene);
    /// Whether columns are left to DrawMore, and their share of the image, from 0 to 1.
    [[nodiscard]] bool IsIncomplete() const { return m_missing.count > 0; }
    [[nodiscard]] double MissingShare() const;
    /// Moves, shows or hides a band; returns the columns that hold what has changed, within the image.
    std::optional<ColumnBand> SetBand(GraphBand which, const std::optional<ColumnBand>& columns);
    [[nodiscard]] const std::optional<ColumnBand>& Band(GraphBand which) const {
        return m_bands[static_cast<std::size_t>(which)];
    }
    /// The arrows of the last drawing; they are painted over the image and are not part of it.
    [[nodiscard]] std::vector<EdgeArrow> Arrows(int dpi) const;
    /// Those of the last drawing.
    [[nodiscard]] const GraphColors& Colors() const { return *m_colors; }
    [[nodiscard]] TracePicture& Traces() { return m_traces; }
    [[nodiscard]] const TracePicture& Traces() const { return m_traces; }

  private:
    /// Columns whose traces are not drawn.
    struct Missing {
        std::vector<bool> columns;
        std::int32_t count = 0;
        void Set(std::int32_t from, std::int32_t to, bool missing);
        /// The first missing columns from `from` on that follow each other; from the width on where there are none.
        [[nodiscard]] ColumnBand Next(std::int32_t from) const;
    };

    /// Draws what is missing as long as the patience lasts, then the background of the rest.
    void DrawMissing(const GraphScene& scene);
    /// Reads on for the first missing columns, a piece at a time until `isOver`, and draws those that are known;
    /// returns them.
    std::optional<ColumnBand> DrawNext(const GraphScene& scene, const std::function<bool()>& isOver);
    /// Grid and marks.
    void DrawBackground(const GraphScene& scene, std::int32_t from, std::int32_t to);
    void DrawGrid(const GraphScene& scene, std::int32_t from, std::int32_t to);
    void DrawMarkLines(const GraphScene& scene, std::int32_t from, std::int32_t to);
    void FindOutside(const GraphScene& scene);
    /// The bands from that one on, each over those before it, and back.
    void InvertBands(std::size_t from = 0);
    void EraseBands(std::size_t from = 0);
    std::optional<ColumnBand> Invert(std::size_t which, const ColumnBand& band);
    [[nodiscard]] std::uint32_t* Row(std::int32_t row) const {
        return m_pixels + static_cast<std::ptrdiff_t>(row) * m_width;
    }

    /// A trace that is outside its lane.
    struct Beyond {
        std::uint32_t color;
        bool above;
        std::size_t lane;
        std::int32_t top;  ///< rows of the lane, the second one behind it
        std::int32_t end;
    };

    std::uint32_t* m_pixels = nullptr;
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    const GraphColors* m_colors = &kLightColors;
    TracePicture m_traces;
    Missing m_missing;
    std::chrono::milliseconds m_patience = std::chrono::milliseconds::max();
    std::vector<Beyond> m_beyond;
    std::int32_t m_markRows = 0;  ///< of texts of marks
    std::array<std::optional<ColumnBand>, static_cast<std::size_t>(GraphBand::Count)> m_bands;
};

/// Columns between the line of a mark and its text.
inline constexpr std::int32_t kMarkGap = 3;

/// The text beside the line of a mark; empty if there is no room for it.
[[nodiscard]] std::u16string MarkText(const ViewBlock& block, const MarkLine& line);

/// Pixels of a text.
struct TextSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

/// The mark whose line or text is at a point of the graph, if any.
[[nodiscard]] std::optional<std::size_t> MarkAt(const GraphScene& scene, std::int32_t x, std::int32_t y,
                                                const std::function<TextSize(const std::u16string&)>& sizeOf);

}  // namespace quillon
