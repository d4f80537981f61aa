#include "app/win/TableWindow.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "base/win/WinHandle.h"
#include "dialogs/DialogTemplate.h"
#include "norvik/win/ClipboardWriter.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

constexpr int kList = 101;
constexpr int kCopy = 102;
constexpr int kHeading = 103;
constexpr UINT_PTR kUpdate = 1;
constexpr UINT kFitColumns = WM_APP;  ///< posted to the dialog

/// False where another program keeps the clipboard open or memory is short.
bool PutOnClipboard(const std::u16string& text) {
    const std::unique_ptr<TextSink> clipboard = MakeClipboardText();
    clipboard->Write(Utf8(text));
    return clipboard->Close();
}

struct Content {
    TextTable table;
    TableUpdate update;
};

Content& ContentOf(HWND dialog) {
    return *reinterpret_cast<Content*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

void Copy(HWND dialog) {
    try {
        if (PutOnClipboard(TabbedText(ContentOf(dialog).table))) return;
    } catch (const std::exception&) {  // no memory for the text
    }
    MessageBeep(MB_ICONWARNING);
}

/// Ctrl+C of the dialog's controls.
LRESULT CALLBACK CopyKey(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    if (message == WM_KEYDOWN && wParam == 'C' && GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0) {
        Copy(GetParent(control));
        return 0;
    }
    if (message == WM_NCDESTROY) RemoveWindowSubclass(control, CopyKey, id);
    return DefSubclassProc(control, message, wParam, lParam);
}

/// Pixels of lengths in dialog units.
SIZE Pixels(HWND dialog, int width, int height) {
    RECT rect{0, 0, width, height};
    MapDialogRect(dialog, &rect);
    return {rect.right, rect.bottom};
}

int CellMargins(HWND dialog) {
    return static_cast<int>(Pixels(dialog, 10, 0).cx);
}

SIZE SizeOf(const RECT& rect) {
    return {rect.right - rect.left, rect.bottom - rect.top};
}

void InsertColumns(HWND list, const TextTable& table) {
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    for (std::size_t at = 0; at < table.columns.size(); ++at) {
        std::wstring caption = Wide(table.columns[at]);
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_FMT;
        column.fmt = at != 0 && table.numeric ? LVCFMT_RIGHT : LVCFMT_LEFT;
        column.pszText = caption.data();
        SendPointer(list, LVM_INSERTCOLUMNW, at, &column);
    }
}

/// Pixels of texts in the font of a window.
class TextMeasure {
  public:
    explicit TextMeasure(HWND window)
        : TextMeasure(window, reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0))) {}
    TextMeasure(HWND window, HGDIOBJ font) : m_dc(window), m_select(m_dc.Get(), font) {}
    [[nodiscard]] int Width(const std::wstring& text) const {
        SIZE size{};
        GetTextExtentPoint32W(m_dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
        return size.cx;
    }

  private:
    WindowDC m_dc;
    SelectScope m_select;
};

/// Tells the list how many rows there are; the columns become as wide as their widest text. Returns the width of all.
/// The list asks for the cells that it shows (LVN_GETDISPINFO).
int FillList(HWND list, const TextTable& table, int cellMargins) {
    const TextMeasure measure(list);
    int all = 0;
    for (std::size_t at = 0; at < table.columns.size(); ++at) {
        int widest = measure.Width(Wide(table.columns[at]));
        for (std::size_t row = 0; row < table.rows.size(); ++row)
            widest = std::max(widest, measure.Width(Wide(table.Cell(row, at))));
        widest += cellMargins;
        if (ListView_GetColumnWidth(list, at) != widest) SendMessageW(list, LVM_SETCOLUMNWIDTH, at, widest);
        all += widest;
    }
    ListView_SetItemCountEx(list, static_cast<int>(table.rows.size()), LVSICF_NOSCROLL);
    return all;
}

/// Size of a list view that shows all rows and columns, with scroll bars where that exceeds the limit.
SIZE ListSize(HWND list, int columnsWidth, SIZE limit) {
    // Rows are of equal height; the first begins below the header.
    RECT header{};
    GetWindowRect(ListView_GetHeader(list), &header);
    RECT first{0, SizeOf(header).cy, 0, 2 * SizeOf(header).cy};
    ListView_GetItemRect(list, 0, &first, LVIR_BOUNDS);
    const LONG rows = std::max(ListView_GetItemCount(list), 1);
    const LONG height = first.top + rows * SizeOf(first).cy;
    RECT frame{};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongW(list, GWL_STYLE)) & ~DWORD{WS_HSCROLL | WS_VSCROLL},
                       FALSE, static_cast<DWORD>(GetWindowLongW(list, GWL_EXSTYLE)));
    SIZE size{columnsWidth + SizeOf(frame).cx, height + SizeOf(frame).cy};
    if (size.cx > limit.cx) size.cy += MetricAt(DpiOf(list), SM_CYHSCROLL);
    if (size.cy > limit.cy) size.cx += MetricAt(DpiOf(list), SM_CXVSCROLL);
    return {std::min(size.cx, limit.cx), std::min(size.cy, limit.cy)};
}

/// Client width that leaves room for the title.
int TitleWidth(HWND dialog) {
    const NONCLIENTMETRICSW metrics = FrameMetricsAt(DpiOf(dialog));
    const GdiFont font(CreateFontIndirectW(&metrics.lfCaptionFont));
    return TextMeasure(dialog, font.Get()).Width(WindowText(dialog)) + 4 * metrics.iCaptionWidth;
}

/// The middle of the owner, or of the work area, moved into the work area.
POINT Centred(HWND dialog, const RECT& work, SIZE size) {
    RECT about = work;
    const HWND owner = GetWindow(dialog, GW_OWNER);
    if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &about);
    return {std::clamp((about.left + about.right - size.cx) / 2, work.left, std::max(work.left, work.right - size.cx)),
            std::clamp((about.top + about.bottom - size.cy) / 2, work.top, std::max(work.top, work.bottom - size.cy))};
}

void LayOut(HWND dialog, int columnsWidth) {
    const SIZE margin = Pixels(dialog, 7, 7);
    const SIZE gap = Pixels(dialog, 4, 7);
    SIZE button = Pixels(dialog, 50, 14);
    const TextMeasure measure(dialog);
    for (const int id : {kCopy, IDOK})
        button.cx = std::max(button.cx, measure.Width(WindowText(GetDlgItem(dialog, id))) + 2 * margin.cx);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(dialog, MONITOR_DEFAULTTONEAREST), &monitor);
    const SIZE work = SizeOf(monitor.rcWork);
    RECT outer{};
    RECT inner{};
    GetWindowRect(dialog, &outer);
    GetClientRect(dialog, &inner);
    const HWND heading = GetDlgItem(dialog, kHeading);
    const std::wstring line = WindowText(heading);
    const SIZE lineSize{measure.Width(line), line.empty() ? 0 : Pixels(dialog, 0, 8).cy};
    const LONG top = margin.cy + (line.empty() ? 0 : lineSize.cy + gap.cy / 2);
    const SIZE around{SizeOf(outer).cx - inner.right + 2 * margin.cx,
                      SizeOf(outer).cy - inner.bottom + top + margin.cy + gap.cy + button.cy};
    const HWND list = GetDlgItem(dialog, kList);
    SIZE size = ListSize(list, columnsWidth, {work.cx * 4 / 5 - around.cx, work.cy * 4 / 5 - around.cy});
    const LONG least =
        std::max({2 * button.cx + gap.cx, static_cast<LONG>(TitleWidth(dialog)) - 2 * margin.cx, lineSize.cx});
    size.cx = std::max(size.cx, std::min(least, work.cx - around.cx));
    const SIZE whole{size.cx + around.cx, size.cy + around.cy};
    const POINT place = Centred(dialog, monitor.rcWork, whole);
    SetWindowPos(dialog, nullptr, place.x, place.y, whole.cx, whole.cy, SWP_NOZORDER | SWP_NOACTIVATE);
    MoveWindow(heading, margin.cx, margin.cy, size.cx, lineSize.cy, FALSE);
    MoveWindow(list, margin.cx, top, size.cx, size.cy, FALSE);
    const LONG row = top + size.cy + gap.cy;
    const LONG close = margin.cx + size.cx - button.cx;
    MoveWindow(GetDlgItem(dialog, IDOK), close, row, button.cx, button.cy, FALSE);
    MoveWindow(GetDlgItem(dialog, kCopy), close - gap.cx - button.cx, row, button.cx, button.cy, FALSE);
}

void Initialise(HWND dialog, LPARAM lParam) {
    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    const HWND list = GetDlgItem(dialog, kList);
    const Content& content = ContentOf(dialog);
    InsertColumns(list, content.table);
    LayOut(dialog, FillList(list, content.table, CellMargins(dialog)));
    constexpr UINT updatePeriod = 100;  // ms
    if (content.update) SetTimer(dialog, kUpdate, updatePeriod, nullptr);
    for (const int id : {kList, kCopy, IDOK}) SetWindowSubclass(GetDlgItem(dialog, id), CopyKey, 1, 0);
    ListView_SetItemState(list, 0, LVIS_FOCUSED | LVIS_SELECTED, LVIS_FOCUSED | LVIS_SELECTED);
    SetFocus(list);
}

void Update(HWND dialog) {
    Content& content = ContentOf(dialog);
    const std::vector<std::vector<std::u16string>> before = content.table.rows;
    if (!content.update(content.table)) KillTimer(dialog, kUpdate);
    if (content.table.rows == before) return;
    const HWND list = GetDlgItem(dialog, kList);
    LayOut(dialog, FillList(list, content.table, CellMargins(dialog)));
    InvalidateRect(list, nullptr, FALSE);
}

/// The text of a cell, which the list shows.
void GiveCell(const TextTable& table, LVITEMW& item) {
    if ((item.mask & LVIF_TEXT) == 0) return;
    const std::wstring cell =
        Wide(table.Cell(static_cast<std::size_t>(item.iItem), static_cast<std::size_t>(item.iSubItem)));
    lstrcpynW(item.pszText, cell.c_str(), item.cchTextMax);
}

/// The row at or after `first` that begins with the letters that the user has typed, -1 when there is none.
int RowOf(const TextTable& table, const std::wstring& typed, int first) {
    const auto begins = [&](int row) {
        const std::wstring cell = Wide(table.Cell(static_cast<std::size_t>(row), 0));
        const auto length = static_cast<int>(typed.size());
        return cell.size() >= typed.size() && CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, cell.c_str(), length,
                                                             typed.c_str(), length) == CSTR_EQUAL;
    };
    const auto count = static_cast<int>(table.rows.size());
    for (int step = 0; step < count; ++step)
        if (begins((first + step) % count)) return (first + step) % count;
    return -1;
}

INT_PTR OnNotify(HWND dialog, NMHDR* header) {
    if (header->code == LVN_GETDISPINFOW) {
        GiveCell(ContentOf(dialog).table, reinterpret_cast<NMLVDISPINFOW*>(header)->item);
        return TRUE;
    }
    if (header->code != LVN_ODFINDITEMW) return FALSE;
    const auto& search = *reinterpret_cast<NMLVFINDITEMW*>(header);
    if ((search.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0) return FALSE;
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, RowOf(ContentOf(dialog).table, search.lvfi.psz, search.iStart));
    return TRUE;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        try {
            Initialise(dialog, lParam);
        } catch (const std::exception&) {
            EndDialog(dialog, IDCANCEL);  // no memory for the texts
        }
        return FALSE;
    }
    if (message == WM_TIMER && wParam == kUpdate) {
        try {
            Update(dialog);
        } catch (const std::exception&) {
            KillTimer(dialog, kUpdate);  // no memory for the texts
        }
        return TRUE;
    }
    if (message == WM_SYSCOLORCHANGE) return PassColors(dialog), TRUE;
    // The system gives a dialog's controls other sizes and fonts, but not the columns.
    if (message == WM_DPICHANGED) PostMessageW(dialog, kFitColumns, 0, 0);
    if (message == kFitColumns) {
        FillList(GetDlgItem(dialog, kList), ContentOf(dialog).table, CellMargins(dialog));
        return TRUE;
    }
    if (message == WM_NOTIFY) return OnNotify(dialog, reinterpret_cast<NMHDR*>(lParam));
    if (message != WM_COMMAND) return FALSE;
    switch (LOWORD(wParam)) {
        case kCopy:
            Copy(dialog);
            // The close button becomes the default again, so that Enter closes the window.
            SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, kList)), TRUE);
            return TRUE;
        case IDOK:
        case IDCANCEL: EndDialog(dialog, LOWORD(wParam)); return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void ShowTable(HWND owner, TextTable shown, const TableUpdate& update) {
    Content content{std::move(shown), update};
    const TextTable& table = content.table;
    // Final sizes are set when the texts have been measured. Until then the list is larger than any screen: once both
    // scroll bars are shown, each takes the room that makes the other one necessary.
    DialogTemplate dialog(table.title, 200, 100);
    dialog.Name(table.title);
    dialog.Item(Narrow16(WC_LISTVIEWW),
                WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER, kList,
                7, 7, 5000, 5000);
    dialog.Item(DialogTemplate::kStatic, SS_NOPREFIX | SS_ENDELLIPSIS, kHeading, table.heading, 7, 7, 186, 8);
    dialog.Item(DialogTemplate::kButton, WS_TABSTOP | BS_PUSHBUTTON, kCopy, table.copy, 89, 79, 50, 14);
    dialog.Item(DialogTemplate::kButton, WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, table.close, 143, 79, 50, 14);
    DialogBoxIndirectParamW(GetModuleHandleW(nullptr), static_cast<const DLGTEMPLATE*>(dialog.Get()), owner, Procedure,
                            reinterpret_cast<LPARAM>(&content));
}

}  // namespace quillon
