#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "data/QL_Types.h"
#include "view/OverviewColumns.h"
#include "view/Selection.h"

namespace quillon {

/// Colours of an overview, 0xRRGGBB.
struct OverviewColors {
    std::uint32_t outside = 0;    ///< behind the traces
    std::uint32_t inside = 0;     ///< the same in the window
    std::uint32_t traces = 0;     ///< where all of them lie
    std::uint32_t selection = 0;  ///< mixed into what is behind the traces
    std::uint32_t marks = 0;
    std::uint32_t frame = 0;  ///< of the window
};

/// What is drawn over the traces, by columns.
struct OverviewScene {
    std::optional<ColumnBand> window{};
    std::optional<ColumnBand> selection{};
    std::span<const std::int32_t> marks{};
    OverviewColors colors;
    std::int32_t line = 1;  ///< pixels of the window's frame
};

/// The pixels of an overview: the traces of all channels over each other, each over the height of the strip below the
/// row of marks, the darker the more of them a place holds.
class OverviewPicture {
  public:
    /// Rows of marks at 96 dpi.
    static constexpr std::int32_t kMarkRows = 5;

    /// The columns of each channel, see OverviewColumns; all have `width`.
    void SetTraces(std::span<const std::span<const CodeRange>> traces, std::int32_t width, std::int32_t height,
                   std::int32_t markRows);
    /// Pixels of 0xRRGGBB, row after row from the top.
    [[nodiscard]] std::vector<std::uint32_t> Draw(const OverviewScene& scene) const;
    [[nodiscard]] std::int32_t Width() const { return m_width; }
    [[nodiscard]] std::int32_t Height() const { return m_height; }

  private:
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::int32_t m_markRows = 0;
    std::vector<std::uint8_t> m_shares;  ///< of the colour of the traces in each pixel, 0 to 255
};

/// The codes over which a channel is spread: all of its extremes, unless some columns in a hundred reach far beyond the
/// others; these are then cut off. None without columns.
[[nodiscard]] std::optional<CodeRange> SpreadOf(std::span<const CodeRange> columns);

/// The columns in which marks lie, in order, each once.
[[nodiscard]] std::vector<std::int32_t> MarkColumns(const std::vector<BlockMark>& marks, const ColumnGrid& grid,
                                                    std::int32_t width);

}  // namespace quillon
