#pragma once

#include <string>

#include "view/win/ReportPainter.h"

namespace quillon {

/// A printer that the user has chosen, with the settings of that.
using PrinterDC = MemoryDC;

enum class PrinterChoice { Chosen, Cancelled, None };

/// Shows the system's dialog, with the paper across at first. None: there is no printer.
[[nodiscard]] PrinterChoice AskForPrinter(HWND owner, PrinterDC& printer);

/// Prints a picture on one page, as large as it fits. False when the printer does not take it.
[[nodiscard]] bool PrintPicture(HDC printer, HENHMETAFILE picture, const std::u16string& title);

}  // namespace quillon
