#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/QL_Types.h"
#include "format/QL_Format.h"
#include "view/Lane.h"
#include "view/TimeAxis.h"

namespace quillon {

/// A text of a scale strip at its pixel position along the strip.
struct ScaleLabel {
    std::int32_t position = 0;
    std::u16string text;
    bool minor = false;  ///< a shorter line without a text
};

/// Seconds at a position in samples (from 0) as the options want them: from the block's start, or from midnight.
[[nodiscard]] double AxisSeconds(const ViewBlock& block, double position, const FormatOptions& format);

/// Labels of the time scale: one per division, from the division at or left of the first visible column to the right
/// edge: times, or the number (from 1) of the division's first sample. On a free axis those of TimeTicks. None without
/// samples.
[[nodiscard]] std::vector<ScaleLabel> TimeLabels(const TimeAxis& axis, const ViewBlock& block,
                                                 const FormatOptions& format, int dpi = 96);

/// Columns of the graph at which a free axis has lines of the grid, those of major ticks; none on another axis.
[[nodiscard]] std::vector<std::int32_t> GridColumns(const TimeAxis& axis, const ViewBlock& block,
                                                    const FormatOptions& format, int dpi = 96);

/// Labels of the amplitude scale, one per division from a lane's top to its bottom; the position is the row of the
/// text's baseline in the graph. With raw codes a label counts codes, 1000 to a unit.
[[nodiscard]] std::vector<ScaleLabel> AmplitudeLabels(const Lane& lane, bool rawCodes, char16_t separator);

/// Maximum width of a mark's text in pixels.
inline constexpr std::int32_t kMarkTextWidth = 300;

/// Rows in which the texts of crowded marks are stacked.
inline constexpr std::int32_t kMarkRows = 3;
/// Marks nearer to each other than this many pixels are crowded.
inline constexpr std::int32_t kCrowdedMarks = 80;

/// A vertical line of the graph with a text: a mark of the block.
struct MarkLine {
    std::int32_t column = 0;     ///< pixel column of the graph; negative where only the text reaches into it
    std::int32_t textWidth = 0;  ///< pixels to the next mark of the same row, at most kMarkTextWidth
    std::int32_t row = 0;        ///< of the text, from the top: below kMarkRows
    std::int32_t markIndex = 0;  ///< index in ViewBlock::marks
};

/// The marks that the graph shows, at most one per column. How a mark is shown does not depend on its position in the
/// graph.
[[nodiscard]] std::vector<MarkLine> VisibleMarks(const TimeAxis& axis, const ViewBlock& block);

/// Columns first .. last of the graph that marks with a duration cover, in order and apart from each other.
struct MarkSpan {
    std::int32_t first = 0;
    std::int32_t last = 0;
};
[[nodiscard]] std::vector<MarkSpan> VisibleSpans(const TimeAxis& axis, const ViewBlock& block);

/// "1:1", "500:1", "2k:1": the X zoom as the menu and the zoom button show it.
[[nodiscard]] std::u16string ZoomCaption(int index);

/// A number of codes: "500", "5 k".
[[nodiscard]] std::u16string CodesText(double codes, char16_t separator);

/// Units or codes per division of a Y scale as the menu shows it: "0.05", "10 k".
[[nodiscard]] std::u16string ScaleCaption(int index, bool rawCodes, char16_t separator);

}  // namespace quillon
