#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quillon {

/// A point in pixels.
struct DevicePoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// Draws traces much faster than a general line drawer can, because it knows their shape: from point to point a trace
/// goes at most one column to the right. It is drawn into columns of one byte per pixel, in which its vertical runs are
/// filled as memory, and laid over the image at the end.
///
/// The pixels are those of the system's one pixel wide lines: a steep line from (x, y0) to (x + 1, y1) changes to the
/// right column after half of its height, and the last point of a trace is left out. A wider line covers a square about
/// each of these pixels, so that it has no gaps and reaches as far beyond its points above as below.
class TraceCanvas {
  public:
    static constexpr std::size_t kMostTraces = 255;

    /// An empty canvas of columns from .. to-1 of an image of that height, for lines of that width in pixels. Of a line
    /// of an even width the larger half is at the right and below.
    void Reset(std::int32_t from, std::int32_t to, std::int32_t height, std::int32_t lineWidth = 1);
    /// Columns beside those of the canvas whose points are seen in it.
    [[nodiscard]] static std::int32_t Reach(std::int32_t lineWidth) { return lineWidth / 2; }
    /// Limits what is drawn from now on to rows top .. end-1, as far as the image has them.
    void Limit(std::int32_t top, std::int32_t end);
    /// The same for columns from .. to-1.
    void LimitColumns(std::int32_t from, std::int32_t to);
    /// Draws a trace over those before. `id` is 1 .. kMostTraces.
    void Draw(std::span<const DevicePoint> points, std::uint8_t id);
    /// Draws a square about every point, 3 x 3 pixels with lines of one pixel.
    void DrawDots(std::span<const DevicePoint> points, std::uint8_t id);
    /// Composes the traces over an image of `width` columns, whose rows follow each other from the top; colors[id - 1]
    /// is that of a trace.
    void Compose(std::uint32_t* pixels, std::int32_t width, std::span<const std::uint32_t> colors) const;

  private:
    struct Rows {
        std::int32_t top;
        std::int32_t bottom;  ///< behind the last one
    };
    struct Span {
        std::int64_t first;
        std::int64_t last;
    };
    void Fill(std::int32_t column, std::int64_t first, std::int64_t last, std::uint8_t id);
    void DrawWide(std::span<const DevicePoint> points, std::uint8_t id);
    [[nodiscard]] std::int32_t Before() const { return (m_lineWidth - 1) / 2; }
    [[nodiscard]] std::int32_t After() const { return m_lineWidth / 2; }

    std::int32_t m_from = 0;
    std::int32_t m_left = 0;  ///< columns that are drawn
    std::int32_t m_right = 0;
    std::int32_t m_height = 0;
    std::int32_t m_lineWidth = 1;
    std::int32_t m_top = 0;  ///< rows that are drawn
    std::int32_t m_end = 0;
    std::vector<std::uint8_t> m_pixels;  ///< column after column; 0: nothing
    std::vector<Rows> m_drawn;           ///< per column, what the traces cover
    std::vector<Span> m_spans;           ///< per column, what the line of one pixel covers, of the trace being drawn
};

}  // namespace quillon
