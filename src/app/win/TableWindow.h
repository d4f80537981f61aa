#pragma once

#include <string>
#include <vector>

#include "base/win/Win32.h"

namespace quillon {

/// Texts of a table window, in the user's language.
struct TableTexts {
    std::wstring title;
    std::vector<std::wstring> columns;  ///< captions
    std::wstring close;
    std::wstring copy;
    bool numeric = false;    ///< all columns but the first hold numbers and are right-aligned
    std::wstring heading{};  ///< a line above the columns; may be empty
};

/// Shows rows of text in a modal window that is as large as they need, up to 80 % of the work area. Cells missing at a
/// row's end are empty. The copy button and Ctrl+C put the whole table on the clipboard as lines of cells with tabs
/// between them, the captions first.
void ShowTable(HWND owner, const TableTexts& texts, const std::vector<std::vector<std::wstring>>& rows);

}  // namespace quillon
