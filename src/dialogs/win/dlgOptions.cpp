#include "dialogs/win/dlgOptions.h"

#include <utility>

#include "base/win/PendingMessages.h"
#include "dialogs/DialogTexts.h"
#include "dialogs/win/ColorChooser.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

/// Pages on for Ctrl+Tab and Ctrl+PgDn, back for Ctrl+Shift+Tab and Ctrl+PgUp; 0 for other keys.
int PageDirection(WPARAM key) {
    if (!IsDown(VK_CONTROL) || IsDown(VK_MENU)) return 0;
    if (key == VK_TAB) return IsDown(VK_SHIFT) ? -1 : 1;
    return key == VK_NEXT ? 1 : key == VK_PRIOR ? -1 : 0;
}

}  // namespace

dlgOptions::dlgOptions(const UserServices& services, OptionsCalls calls, const FormatOptions& format, double sampleRate)
    : m_services(services), m_calls(std::move(calls)), m_format(format), m_sampleRate(sampleRate) {}

std::optional<OptionChanges> dlgOptions::Show(HWND owner, OptionValues values) {
    m_shown = ShowOptions(values, m_format.decimalSeparator);
    m_confirmed.reset();
    m_failure = nullptr;
    const DialogTemplate dialog = OptionsFrame(m_services);
    DialogBoxIndirectParamW(GetModuleHandleW(nullptr), static_cast<const DLGTEMPLATE*>(dialog.Get()), owner, Procedure,
                            reinterpret_cast<LPARAM>(this));
    if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
    if (!m_confirmed) return std::nullopt;
    return ApplyOptions(*m_confirmed, m_format.decimalSeparator, values);
}

INT_PTR CALLBACK dlgOptions::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        reinterpret_cast<dlgOptions*>(lParam)->m_dialog = dialog;
    }
    auto* self = reinterpret_cast<dlgOptions*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (self == nullptr) return FALSE;
    try {
        return self->Handle(message, wParam, lParam);
    } catch (...) {
        // No exception leaves a window procedure; the one that called Show gets it.
        self->m_failure = std::current_exception();
        EndDialog(dialog, IDCANCEL);
        return TRUE;
    }
}

INT_PTR CALLBACK dlgOptions::PageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: return FALSE;
        case WM_COMMAND:
        case WM_DRAWITEM: SendMessageW(GetParent(page), message, wParam, lParam); return TRUE;
        default: return FALSE;
    }
}

LRESULT CALLBACK dlgOptions::PageKeys(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR self) {
    auto& dialog = *reinterpret_cast<dlgOptions*>(self);
    // The system does not treat the owner-drawn colour button as a push button, so Enter would press OK.
    const auto opensColors = [&](WPARAM key) { return key == VK_RETURN && GetDlgCtrlID(control) == pbGridColor; };
    if (message == WM_NCDESTROY) RemoveWindowSubclass(control, PageKeys, id);
    if (message == WM_GETDLGCODE && lParam != 0) {
        const MSG& key = *reinterpret_cast<const MSG*>(lParam);
        if (key.message == WM_KEYDOWN && (PageDirection(key.wParam) != 0 || opensColors(key.wParam)))
            return DefSubclassProc(control, message, wParam, lParam) | DLGC_WANTMESSAGE;
    }
    if (message == WM_KEYDOWN && opensColors(wParam)) return SendMessageW(control, BM_CLICK, 0, 0);
    if (message == WM_KEYDOWN && PageDirection(wParam) != 0) {
        dialog.SwitchPage(PageDirection(wParam));
        return 0;
    }
    return DefSubclassProc(control, message, wParam, lParam);
}

INT_PTR dlgOptions::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: Initialise(); return FALSE;
        case WM_COMMAND: OnCommand(LOWORD(wParam), HIWORD(wParam)); return TRUE;
        case WM_DRAWITEM: Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
        case WM_NOTIFY:
            if (reinterpret_cast<const NMHDR*>(lParam)->code == TCN_SELCHANGE)
                ShowPage(TabCtrl_GetCurSel(GetDlgItem(m_dialog, tabOptions)));
            return TRUE;
        case WM_SYSCOLORCHANGE: PassColors(m_dialog); return TRUE;
        case WM_HELP:
            if (m_calls.help) m_calls.help(m_dialog);
            return TRUE;
        default: return FALSE;
    }
}

void dlgOptions::Initialise() {
    MakePages();
    Fill(m_shown);
    const auto listen = [](HWND control, LPARAM self) -> BOOL {
        SetWindowSubclass(control, PageKeys, 1, static_cast<DWORD_PTR>(self));
        return TRUE;
    };
    EnumChildWindows(m_dialog, listen, reinterpret_cast<LPARAM>(this));
    m_page = 0;
    ShowWindow(m_pages[0], SW_SHOW);
    SetFocus(GetNextDlgTabItem(m_pages[0], nullptr, FALSE));
}

void dlgOptions::MakePages() {
    const HWND tabs = GetDlgItem(m_dialog, tabOptions);
    for (int page = 0; page < kOptionPages; ++page) {
        std::wstring caption = Wide(m_services.Text(IDS_OPT_TAB_0 + page));
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = caption.data();
        SendPointer(tabs, TCM_INSERTITEMW, static_cast<WPARAM>(page), &item);
    }
    RECT inner{};
    GetClientRect(tabs, &inner);
    SendPointer(tabs, TCM_ADJUSTRECT, FALSE, &inner);
    MapWindowPoints(tabs, m_dialog, reinterpret_cast<POINT*>(&inner), 2);
    for (int page = 0; page < kOptionPages; ++page) {
        const DialogTemplate controls = OptionsPage(m_services, page);
        const HWND window = CreateDialogIndirectParamW(
            GetModuleHandleW(nullptr), static_cast<const DLGTEMPLATE*>(controls.Get()), m_dialog, PageProcedure, 0);
        m_pages[static_cast<std::size_t>(page)] = window;
        SetWindowLongPtrW(window, GWLP_ID, pbTab + page);
        // In front of the strip, and therefore first in the tab order.
        SetWindowPos(window, HWND_TOP, inner.left, inner.top, inner.right - inner.left, inner.bottom - inner.top,
                     SWP_NOACTIVATE);
        EnableThemeDialogTexture(window, ETDT_ENABLETAB);
    }
}

void dlgOptions::Draw(const DRAWITEMSTRUCT& item) {
    if (item.CtlID == pbGridColor) return DrawSwatch(item, m_gridColor);
    // A static control with an image would do, but not every version of the common controls shows cursors.
    DrawThemeParentBackground(item.hwndItem, item.hDC, nullptr);
    if (const int dpi = DpiOf(item.hwndItem); dpi != m_density.Dpi()) {
        m_density.Set(dpi);
        m_cursors.Forget();
    }
    const SIZE size = m_cursors.Size();
    m_cursors.Draw(item.hDC, (item.rcItem.right - size.cx) / 2, (item.rcItem.bottom - size.cy) / 2,
                   static_cast<int>(item.CtlID) - imgCur);
}

void dlgOptions::Fill(const OptionEntries& entries) {
    for (const auto& [id, buttons, entry] : OptionChoices()) {
        AddLines(id);
        buttons > 0 ? Choose(id, buttons, entries.*entry) : SetPosition(id, entries.*entry);
    }
    for (const auto& [id, entry] : OptionTicks()) Tick(id, entries.*entry);
    for (const auto& [id, entry] : OptionTexts()) {
        AddLines(id);
        SetWindowTextW(Control(id), Wide(entries.*entry).c_str());
    }
    m_gridColor = entries.gridColor;
    ShowBinWidth();
    EnableXFormat();
}

OptionEntries dlgOptions::Entries() const {
    OptionEntries entries;
    for (const auto& [id, buttons, entry] : OptionChoices())
        entries.*entry = buttons > 0 ? Chosen(id, buttons) : Position(id);
    for (const auto& [id, entry] : OptionTicks()) entries.*entry = IsTicked(id);
    for (const auto& [id, entry] : OptionTexts()) entries.*entry = Typed(id);
    entries.gridColor = m_gridColor;
    return entries;
}

void dlgOptions::ShowPage(int page) {
    if (page < 0 || page >= kOptionPages || page == m_page) return;
    const HWND before = m_pages[static_cast<std::size_t>(std::exchange(m_page, page))];
    const HWND window = m_pages[static_cast<std::size_t>(page)];
    ShowWindow(window, SW_SHOW);
    // Hidden controls must not keep the focus.
    if (IsChild(before, GetFocus()))
        SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetNextDlgTabItem(window, nullptr, FALSE)),
                     TRUE);
    ShowWindow(before, SW_HIDE);
}

void dlgOptions::SwitchPage(int direction) {
    const int page = (m_page + direction + kOptionPages) % kOptionPages;
    TabCtrl_SetCurSel(GetDlgItem(m_dialog, tabOptions), page);
    ShowPage(page);
}

void dlgOptions::OnCommand(int id, int notification) {
    if (id == cboFFTSize && notification == CBN_SELCHANGE) ShowBinWidth();
    // Also the number of STN_CLICKED and of a command by a key.
    if (notification != BN_CLICKED) return;
    if (id >= imgCur && id < imgCur + kCursorStyles) return Choose(optCursor, kCursorStyles, id - imgCur);
    switch (id) {
        case cmdOk:
            m_confirmed = Entries();
            EndDialog(m_dialog, IDOK);
            break;
        case cmdCancel: EndDialog(m_dialog, IDCANCEL); break;
        case cmdHelp: SendHelpKey(); break;
        case chkXColumn: EnableXFormat(); break;
        case pbGridColor: ChooseColor(); break;
        case cmdBrowse: Browse(); break;
        default: break;
    }
}

void dlgOptions::ChooseColor() {
    const std::wstring title = Wide(m_services.Text(IDS_OPT_COLOR));
    m_gridColor = ChooseTraceColor(m_dialog, title, m_gridColor).value_or(m_gridColor);
    InvalidateRect(Control(pbGridColor), nullptr, FALSE);
}

void dlgOptions::Browse() {
    std::u16string name = Typed(txtFastFile);
    if (m_calls.chooseFastFile && m_calls.chooseFastFile(m_dialog, name))
        SetWindowTextW(Control(txtFastFile), Wide(name).c_str());
}

void dlgOptions::ShowBinWidth() {
    SetWindowTextW(Control(lblFFTPersent), Wide(BinWidthText(m_sampleRate, Position(cboFFTSize), m_format)).c_str());
}

void dlgOptions::EnableXFormat() {
    for (int button = 0; button < 2; ++button) EnableWindow(Control(optXFormat + button), IsTicked(chkXColumn));
}

void dlgOptions::SendHelpKey() {
    RunPendingMessages([this](MSG& message) { return IsDialogMessageW(m_dialog, &message) != FALSE; });
    if (!IsWindowVisible(m_dialog)) return;  // one of them closed it
    INPUT keys[2]{};
    keys[0].type = keys[1].type = INPUT_KEYBOARD;
    keys[0].ki.wVk = keys[1].ki.wVk = VK_F1;
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    // The key is sent to the active window, whichever that is.
    const bool sent = GetForegroundWindow() == m_dialog && SendInput(2, keys, sizeof keys[0]) == 2;
    if (!sent) SendMessageW(m_dialog, WM_HELP, 0, 0);
}

HWND dlgOptions::Control(int id) const {
    constexpr int perPage = 100;
    return GetDlgItem(m_pages[static_cast<std::size_t>(id / perPage - 1)], id);
}

int dlgOptions::Chosen(int firstButton, int count) const {
    for (int position = 0; position < count; ++position)
        if (IsTicked(firstButton + position)) return position;
    return -1;
}

void dlgOptions::Choose(int firstButton, int count, int position) {
    // Without a choice the first button stays the one that Tab leads to.
    if (position < 0) return;
    CheckRadioButton(GetParent(Control(firstButton)), firstButton, firstButton + count - 1, firstButton + position);
}

bool dlgOptions::IsTicked(int id) const {
    return SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void dlgOptions::Tick(int id, bool ticked) {
    SendMessageW(Control(id), BM_SETCHECK, ticked ? BST_CHECKED : BST_UNCHECKED, 0);
}

int dlgOptions::Position(int list) const {
    return static_cast<int>(SendMessageW(Control(list), CB_GETCURSEL, 0, 0));
}

void dlgOptions::SetPosition(int list, int position) {
    SendMessageW(Control(list), CB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

void dlgOptions::AddLines(int list) {
    for (const std::u16string& line : OptionLines(m_services, list))
        SendPointer(Control(list), CB_ADDSTRING, 0, Wide(line).c_str());
}

}  // namespace quillon
