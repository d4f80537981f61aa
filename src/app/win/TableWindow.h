#pragma once

#include <functional>

#include "app/ViewTables.h"
#include "base/win/Win32.h"

namespace quillon {

/// Brings the rows of a shown table up to date; false when they will not change again.
using TableUpdate = std::function<bool(TextTable& table)>;

/// Shows the table in a modal window that is as large as it needs, up to 80 % of the work area. The copy button and
/// Ctrl+C put its TabbedText on the clipboard. `update` is called several times a second until it has returned false.
void ShowTable(HWND owner, TextTable table, const TableUpdate& update = {});

}  // namespace quillon
