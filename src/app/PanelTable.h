#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quillon {

/// The lines of a text, each as its cells: lines end with CR LF, tabs stand between cells.
using CellLines = std::vector<std::vector<std::u16string>>;
[[nodiscard]] CellLines CellsOf(const std::u16string& text);

/// A font as far as the layout needs it; lengths in pixels.
struct CellFont {
    std::int32_t lineHeight = 1;
    std::int32_t gap = 0;  ///< behind a cell
    std::function<std::int32_t(const std::u16string&)> width;
};

/// Arrangement of lines of cells within the panel; lengths in pixels.
struct PanelTable {
    std::array<std::int32_t, 2> widths{};  ///< of the cells before the last
    std::int32_t lineHeight = 1;
    std::int32_t rows = 1;
    std::int32_t columns = 1;
    bool fits = false;  ///< all lines are fully visible
};

/// Lines that do not fit in one column go to further columns, unless those would be clipped.
[[nodiscard]] PanelTable ArrangeCells(const CellLines& lines, std::int32_t width, std::int32_t height,
                                      const CellFont& font);

/// A visible cell, relative to the top left corner of the table.
struct SeenCell {
    const std::u16string& text;
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;  ///< the text is clipped here
};

/// The visible cells for that width with line `first` at the top; clamps `first` to the scroll range.
[[nodiscard]] std::vector<SeenCell> SeenCells(const CellLines& lines, const PanelTable& table, std::int32_t width,
                                              std::int32_t& first);

}  // namespace quillon
