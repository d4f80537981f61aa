#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "view/DataRange.h"
#include "view/GraphScene.h"
#include "view/QL_ChUtils.h"
#include "view/TraceCanvas.h"
#include "view/TraceSides.h"

namespace quillon {

/// A part of a trace as lines from point to point.
struct DrawnTrace {
    const std::vector<DevicePoint>& points;
    std::uint32_t color;  ///< 0xRRGGBB
    std::int32_t top;     ///< rows that it is limited to, the second one behind them
    std::int32_t end;
    bool dots;  ///< a dot at every point
};

/// The traces of the shown signals as pixels: reads their points, maps them to rows and draws them, the first one on
/// top. Records which of them are entirely above or below their lane.
class TracePicture {
  public:
    /// Given what is drawn of each trace: its points, in the order in which they are joined, those that lie beyond the
    /// drawn columns included; the last trace first.
    std::function<void(const DrawnTrace& trace)> onTrace;

    /// An empty picture of that size; `traces` is the number of channels in all lanes, see TracesOf.
    void Reset(std::size_t traces, std::int32_t width, std::int32_t height);
    /// Moves the drawn columns left by `shift`; the uncovered ones have to be drawn.
    void Scroll(std::int32_t shift);
    /// Column behind the last one from `from` on that can be drawn now without reading much, at most `to`, see
    /// TraceReader::Approach.
    [[nodiscard]] std::int32_t Approach(const GraphScene& scene, std::int32_t from, std::int32_t to) const;
    /// Whether all columns of the scene can be drawn now without reading much; reads a little of what is missing.
    [[nodiscard]] bool CanReadNow(const GraphScene& scene) const;
    /// Nothing is drawn in columns from .. to-1.
    void Forget(std::int32_t from, std::int32_t to) { m_sides.Forget(from, to); }
    /// Reads columns from .. to-1 of the scene and rasterises them; Compose lays them over an image.
    void Draw(const GraphScene& scene, std::int32_t from, std::int32_t to);
    /// `pixels`: 0xRRGGBB, rows of the picture's width that follow each other from the top.
    void Compose(std::uint32_t* pixels) const { m_canvas.Compose(pixels, m_width, m_colors); }
    /// The side of its lane on which a trace is entirely outside; `at` is its place in TracesOf.
    [[nodiscard]] TraceSides::Side SideOf(std::size_t at) const { return m_sides.Of(at); }

    /// The range by which the scale of one axis is chosen, see CentralRange; none where nothing is shown or can be
    /// read. The samples read are reused by the next Draw of the same view.
    [[nodiscard]] std::optional<ValueRange> SeenRange(const GraphScene& scene);
    /// The block's error text if samples of columns drawn since Reset or Scroll could not be read; empty if all could.
    [[nodiscard]] const std::string& Failure() const { return m_failure; }
    /// Discards the samples read; to be called when another block is shown.
    void ForgetBlock();

  private:
    /// What one block's trace is drawn from.
    struct Source {
        const ViewBlock& block;
        std::size_t channel;  ///< from 0
        const std::vector<TracePoint>& points;
        bool dots;  ///< every sample has one
    };
    void Read(const GraphScene& scene, const std::vector<SignalsOfBlock>& groups, std::int32_t from, std::int32_t to);
    /// The columns of all traces, in parts where samples in their midst cannot be read.
    void DrawColumns(const GraphScene& scene, const std::vector<SignalsOfBlock>& groups, std::int32_t from,
                     std::int32_t to);
    void DrawTrace(const GraphScene& scene, const Lane& lane, const Source& source, std::size_t trace,
                   std::int32_t from, std::int32_t to);

    std::vector<TraceReader> m_readers;       ///< one per block that is shown
    std::vector<std::int16_t> m_shown;        ///< signals that they have read, in the order of TracesOf
    std::optional<TraceStretch> m_readAhead;  ///< stretch that they have already read for the next Draw
    TraceSides m_sides;
    TraceCanvas m_canvas;
    std::vector<std::uint32_t> m_colors;  ///< 0xRRGGBB per entry of m_shown
    std::vector<DevicePoint> m_trace;
    std::string m_failure;
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
};

}  // namespace quillon
