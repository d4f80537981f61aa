#include "app/win/Printer.h"

#include <commdlg.h>

#include <algorithm>

#include "base/Text.h"
#include "base/win/WinHandle.h"

namespace quillon {

namespace {

/// The memory of a printer's name and settings.
class GlobalScope {
  public:
    explicit GlobalScope(PRINTDLGW& dialog) : m_dialog(dialog) {}
    ~GlobalScope() {
        if (m_dialog.hDevMode != nullptr) GlobalFree(m_dialog.hDevMode);
        if (m_dialog.hDevNames != nullptr) GlobalFree(m_dialog.hDevNames);
    }
    GlobalScope(const GlobalScope&) = delete;
    GlobalScope& operator=(const GlobalScope&) = delete;

  private:
    PRINTDLGW& m_dialog;
};

void TurnPaper(HGLOBAL settings) {
    auto* const mode = settings == nullptr ? nullptr : static_cast<DEVMODEW*>(GlobalLock(settings));
    if (mode == nullptr) return;
    mode->dmFields |= DM_ORIENTATION;
    mode->dmOrientation = DMORIENT_LANDSCAPE;
    GlobalUnlock(settings);
}

}  // namespace

PrinterChoice AskForPrinter(HWND owner, PrinterDC& printer) {
    PRINTDLGW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.Flags = PD_RETURNDEFAULT;
    const GlobalScope memory(dialog);
    // Without a printer the dialog would only show a box of the system's.
    if (!PrintDlgW(&dialog)) return PrinterChoice::None;
    TurnPaper(dialog.hDevMode);
    dialog.nCopies = 1;
    dialog.Flags = PD_RETURNDC | PD_NOPAGENUMS | PD_NOSELECTION | PD_USEDEVMODECOPIESANDCOLLATE | PD_HIDEPRINTTOFILE;
    if (!PrintDlgW(&dialog) || dialog.hDC == nullptr) return PrinterChoice::Cancelled;
    printer.Reset(dialog.hDC);
    return PrinterChoice::Chosen;
}

bool PrintPicture(HDC printer, HENHMETAFILE picture, const std::u16string& title) {
    ENHMETAHEADER header{};
    if (GetEnhMetaFileHeader(picture, sizeof header, &header) == 0) return false;
    const double width = header.rclFrame.right - header.rclFrame.left;
    const double height = header.rclFrame.bottom - header.rclFrame.top;
    // Dots of the printer differ in both directions.
    const double across = GetDeviceCaps(printer, LOGPIXELSX);
    const double down = GetDeviceCaps(printer, LOGPIXELSY);
    const int pageWidth = GetDeviceCaps(printer, HORZRES);
    const int pageHeight = GetDeviceCaps(printer, VERTRES);
    if (!(width > 0.0 && height > 0.0 && across > 0.0 && down > 0.0)) return false;
    const double fit = std::min(pageWidth / (width * across), pageHeight / (height * down));
    const RECT place{0, 0, static_cast<LONG>(width * across * fit), static_cast<LONG>(height * down * fit)};
    const std::wstring name = Wide(title);
    DOCINFOW document{};
    document.cbSize = sizeof document;
    document.lpszDocName = name.c_str();
    if (StartDocW(printer, &document) <= 0) return false;
    const bool done = StartPage(printer) > 0 && PlayEnhMetaFile(printer, picture, &place) && EndPage(printer) > 0;
    if (!done) {
        AbortDoc(printer);
        return false;
    }
    return EndDoc(printer) > 0;
}

}  // namespace quillon
