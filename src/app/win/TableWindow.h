#pragma once

#include "app/ViewTables.h"
#include "base/win/Win32.h"

namespace quillon {

/// Shows the table in a modal window that is as large as it needs, up to 80 % of the work area. The copy button and
/// Ctrl+C put its TabbedText on the clipboard.
void ShowTable(HWND owner, const TextTable& table);

}  // namespace quillon
