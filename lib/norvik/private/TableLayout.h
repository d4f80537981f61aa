#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "norvik/private/TableField.h"

namespace quillon {

/// What the beginning of a text tells about the table in it.
struct TableLayout {
    TableFormat format;
    std::vector<bool> isText;  ///< of every column: not numbers, missing values or times
    std::size_t firstRow = 0;  ///< the line, from 0, of the first row
    [[nodiscard]] std::size_t Fields() const { return isText.size(); }
};

/// Lines without their ends, empty ones included.
using TableLines = std::vector<std::string_view>;

/// Whether the line has all of the layout's columns and nothing else than numbers, missing values and times in those
/// that are not text.
[[nodiscard]] bool IsTableRow(std::string_view line, const TableLayout& layout);

/// Finds the layout with which most of the last 100 lines are rows. Throws FormatError, with line and column, where
/// there are no two rows, or too many lines that are none below the first.
[[nodiscard]] TableLayout FindTableLayout(const TableLines& lines);

}  // namespace quillon
