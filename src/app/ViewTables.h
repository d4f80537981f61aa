#pragma once

#include <string>
#include <vector>

#include "data/UserServices.h"
#include "view/Readout.h"
#include "view/Selection.h"
#include "view/Statistics.h"

namespace quillon {

/// A table that a window shows, in the user's language.
struct TextTable {
    std::u16string title;
    std::vector<std::u16string> columns;  ///< captions
    std::u16string close;
    std::u16string copy;
    bool numeric = false;      ///< all columns but the first hold numbers and are right-aligned
    std::u16string heading{};  ///< a line above the columns; may be empty
    std::vector<std::vector<std::u16string>> rows{};

    /// Cells missing at a row's end are empty.
    [[nodiscard]] std::u16string Cell(std::size_t row, std::size_t column) const {
        return column < rows[row].size() ? rows[row][column] : std::u16string();
    }
};

/// Lines of cells separated by tabs, the captions first. Tabs and line breaks within a cell become blanks.
[[nodiscard]] std::u16string TabbedText(const TextTable& table);

/// A caption without its mnemonic's ampersand and its ellipsis.
[[nodiscard]] std::u16string PlainCaption(const std::u16string& caption);

/// "10 s - 20 s, 2560 samples, 10 s": first and last place of some samples, at least one, their number and duration.
[[nodiscard]] std::u16string RangeText(const ViewBlock& block, const SampleSpan& samples, const FormatOptions& format,
                                       const UserServices& services);

/// Statistics of the shown channels over a selection, without rows.
[[nodiscard]] TextTable StatisticsTable(const ReadoutSource& source, const Selection& selection,
                                        const UserServices& services);
/// The rows of that table: what the pass has found, or before its end what is known without it, with ellipses for the
/// rest.
[[nodiscard]] std::vector<std::vector<std::u16string>> StatisticsRows(const ReadoutSource& source,
                                                                      const StatisticsPass& pass);

/// Table of keys and mouse gestures.
[[nodiscard]] TextTable KeysTable(const UserServices& services);

}  // namespace quillon
