#include "app/win/MainControls.h"

#include <system_error>
#include <tuple>

#include "app/ControlIds.h"
#include "app/StringIds.h"

namespace quillon {

namespace {

constexpr DWORD kList = WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT;
constexpr DWORD kCombo = WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST;

/// Makes controls of one window.
struct Maker {
    HWND window;
    HFONT font;
    HWND operator()(const wchar_t* className, DWORD style, DWORD extendedStyle, int id) const {
        const auto menu = reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));
        const HWND control = CreateWindowExW(extendedStyle, className, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
                                             window, menu, GetModuleHandleW(nullptr), nullptr);
        if (control == nullptr)
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "control");
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        return control;
    }
};

void FillTabs(HWND tabs, int firstCaption, int pages, const UserServices& services) {
    for (int page = 0; page < pages; ++page) {
        std::wstring caption = Wide(services.Text(firstCaption + page));
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = caption.data();
        TabCtrl_InsertItem(tabs, page, &item);
    }
}

}  // namespace

void RegisterFrame(const wchar_t* className, WNDPROC procedure) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
    windowClass.lpszClassName = className;
    RegisterClassExW(&windowClass);  // fails harmlessly from the second time on
}

void ShowProgramIcon(HWND window, const ScreenDensity& density) {
    for (const auto& [kind, width, height] :
         {std::tuple{ICON_BIG, SM_CXICON, SM_CYICON}, std::tuple{ICON_SMALL, SM_CXSMICON, SM_CYSMICON}}) {
        const HANDLE icon = LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1), IMAGE_ICON,
                                       density.Metric(width), density.Metric(height), LR_SHARED);
        SendMessageW(window, WM_SETICON, static_cast<WPARAM>(kind), reinterpret_cast<LPARAM>(icon));
    }
}

HWND MakeMainWindow(WNDPROC procedure, HMENU menu, void* owner) {
    constexpr const wchar_t* className = L"frmQLMain";
    RegisterFrame(className, procedure);
    const auto width = [](int dpi) { return ScaledTo(dpi, 1060); };
    const auto height = [](int dpi) { return ScaledTo(dpi, 700); };
    const int expected = ScreenDpi();
    const HWND window =
        CreateWindowExW(0, className, L"Quillon", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT,
                        width(expected), height(expected), nullptr, menu, GetModuleHandleW(nullptr), owner);
    // The system chooses the monitor.
    const int dpi = window == nullptr ? expected : DpiOf(window);
    if (dpi != expected)
        SetWindowPos(window, nullptr, 0, 0, width(dpi), height(dpi), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    return window;
}

std::wstring DroppedPath(HDROP drop) {
    std::wstring path(DragQueryFileW(drop, 0, nullptr, 0), L'\0');
    DragQueryFileW(drop, 0, path.data(), static_cast<UINT>(path.size()) + 1);
    DragFinish(drop);
    return path;
}

void MakePathLists(HWND window, HFONT font, const UserServices& services) {
    constexpr DWORD channels =
        WS_TABSTOP | LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS;
    const Maker make{window, font};
    FillTabs(make(WC_TABCONTROLW, WS_TABSTOP, 0, tabPath), IDS_TAB_FOLDERS, 2, services);
    make(WC_COMBOBOXW, kCombo, 0, lstDrive);
    make(WC_LISTBOXW, kList, WS_EX_CLIENTEDGE, lstDir);
    make(WC_LISTVIEWW, channels, WS_EX_CLIENTEDGE, lvCh);
}

void MakeFileLists(HWND window, HFONT font, const UserServices& services) {
    const Maker make{window, font};
    FillTabs(make(WC_TABCONTROLW, WS_TABSTOP, 0, tabFile), IDS_TAB_FILES, 3, services);
    make(WC_COMBOBOXW, kCombo, 0, cboFileType);
    make(WC_LISTBOXW, kList | WS_HSCROLL, WS_EX_CLIENTEDGE, lstFile);
    make(WC_LISTBOXW, kList | LBS_USETABSTOPS, WS_EX_CLIENTEDGE, lstBlock);
    make(WC_EDITW, WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE, edtMarks);
    make(WC_LISTVIEWW, WS_TABSTOP | LVS_REPORT | LVS_NOSORTHEADER | LVS_OWNERDATA | LVS_SHOWSELALWAYS, WS_EX_CLIENTEDGE,
         lvMarks);
}

void MakeBars(HWND window, HFONT font) {
    const Maker make{window, font};
    make(WC_SCROLLBARW, SBS_HORZ, 0, scScaleX);
    make(WC_SCROLLBARW, SBS_VERT, 0, scScaleY);
    make(STATUSCLASSNAMEW, SBARS_SIZEGRIP | SBARS_TOOLTIPS, 0, sbInfo);
    // The graph was created earlier; put it here in the tab order.
    SetWindowPos(GetDlgItem(window, pbGraph), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void ChangeDensity(HWND window, ScreenDensity& density, int dpi) {
    const HFONT before = density.Font();
    density.Set(dpi);
    const HFONT font = density.Font();
    for (HWND control = GetWindow(window, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT)) {
        if (reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)) == before)
            SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
    ShowProgramIcon(window, density);
}

void NameControls(HWND window, const UserServices& services) {
    struct Name {
        int control;
        int text;
        bool isLabel;
    };
    constexpr Name names[] = {{tbMain, IDS_NAME_TOOLS, false},
                              {tbGoTo, IDS_NAME_PAGES, false},
                              {tabPath, IDS_NAME_TABS_PATH, true},
                              {lstDrive, IDS_NAME_DRIVE, true},
                              {pbPathList, IDS_TIP_PATHLIST, false},
                              {lstDir, IDS_TAB_FOLDERS, true},
                              {lvCh, IDS_TAB_CHANNELS, true},
                              {tabFile, IDS_NAME_TABS_FILE, true},
                              {cboFileType, IDS_NAME_FILETYPE, true},
                              {lstFile, IDS_TAB_FILES, true},
                              {lstBlock, IDS_TAB_BLOCKS, true},
                              {edtMarks, IDS_MARK_FILTER, true},
                              {lvMarks, IDS_TAB_MARKS, true},
                              {pbGraph, IDS_NAME_GRAPH, false},
                              {pbScaleX, IDS_NAME_TIME_SCALE, false},
                              {pbScaleY, IDS_NAME_AMPLITUDE_SCALE, false},
                              {scScaleX, IDS_NAME_TIME_SCROLL, false},
                              {scScaleY, IDS_NAME_LEVEL_SCROLL, false},
                              {btnZoomX, IDS_NAME_TIME_ZOOM, false},
                              {pnValues, IDS_NAME_VALUES, false},
                              {sbInfo, IDS_NAME_STATUS, true},
                              {pbOverview, IDS_NAME_OVERVIEW, false},
                              {pbFFT, IDS_NAME_SPECTROGRAM, false},
                              {pbPal, IDS_NAME_PALETTE, false},
                              {pbScaleF, IDS_NAME_FREQUENCY_SCALE, false},
                              {pbLevels, IDS_NAME_LEVELS, false},
                              {cboFilterOrder, IDS_NAME_FILTER_ORDER, true},
                              {cboFilterDirection, IDS_NAME_FILTER_DIRECTION, true}};
    for (const Name& name : names) {
        const HWND control = GetDlgItem(window, name.control);
        const std::wstring text = Wide(services.Text(name.text));
        if (!name.isLabel) {
            SetWindowTextW(control, text.c_str());
            continue;
        }
        const HWND label = CreateWindowExW(0, WC_STATICW, text.c_str(), WS_CHILD | WS_VISIBLE | SS_NOPREFIX, 0, 0, 0, 0,
                                           window, nullptr, GetModuleHandleW(nullptr), nullptr);
        const HWND before = GetWindow(control, GW_HWNDPREV);
        SetWindowPos(label, before != nullptr ? before : HWND_TOP, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
}

void AddToolTip(HWND control, const std::u16string& text) {
    const HWND window = GetParent(control);
    const HWND tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, 0, 0, 0, 0,
                                      window, nullptr, GetModuleHandleW(nullptr), nullptr);
    std::wstring wide = Wide(text);
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = window;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = wide.data();
    SendPointer(tips, TTM_ADDTOOLW, 0, &tool);
}

void SelectPage(HWND window, TabPages tabs, int page) {
    TabCtrl_SetCurSel(GetDlgItem(window, tabs == TabPages::Path ? tabPath : tabFile), page);
    ShowSelectedPages(window);
}

void ShowSelectedPages(HWND window) {
    struct Place {
        int control;
        int tabs;
        int page;
    };
    constexpr Place places[] = {{lstDrive, tabPath, 0}, {pbPathList, tabPath, 0},  {lstDir, tabPath, 0},
                                {lvCh, tabPath, 1},     {cboFileType, tabFile, 0}, {lstFile, tabFile, 0},
                                {lstBlock, tabFile, 1}, {edtMarks, tabFile, 2},    {lvMarks, tabFile, 2}};
    const HWND focus = GetFocus();
    for (const Place& place : places) {
        const HWND control = GetDlgItem(window, place.control);
        const bool shown = TabCtrl_GetCurSel(GetDlgItem(window, place.tabs)) == place.page;
        // Hiding the focused control would leave the window without a focus.
        if (!shown && focus == control && focus != nullptr) SetFocus(GetDlgItem(window, pbGraph));
        ShowWindow(control, shown ? SW_SHOWNA : SW_HIDE);
    }
}

void MoveFocus(HWND window, HWND control) {
    // After mouse input the system hides focus cues; show them now.
    SendMessageW(window, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    SetFocus(control);
    InvalidateRect(window, nullptr, TRUE);
}

void FocusList(HWND window, int list) {
    constexpr int lists[] = {lstDir, lvCh, lstFile, lstBlock, lvMarks, pbGraph};
    if (lists[list] == pbGraph) return MoveFocus(window, GetDlgItem(window, pbGraph));
    SelectPage(window, list < 2 ? TabPages::Path : TabPages::File, list < 2 ? list : list - 2);
    MoveFocus(window, GetDlgItem(window, lists[list]));
}

}  // namespace quillon
