#include "app/win/frmQLMain.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "app/Commands.h"
#include "app/ControlIds.h"
#include "app/StatusPanels.h"
#include "app/ToolbarIcons.h"
#include "base/StringIds.h"
#include "base/SystemText.h"
#include "base/Text.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

constexpr const wchar_t* kClassName = L"frmQLMain";
/// No window lies further away or is larger, in pixels.
constexpr std::int32_t kFarthest = 1 << 20;
constexpr std::int32_t kLookInterval = 2000;  ///< ms

HMENU IdOf(int id) {
    return reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));
}

}  // namespace

frmQLMain::frmQLMain(QL_Global& global, WinServices& services, TimerFactory makeTimer, std::function<void()> shutdown)
    : m_global(global),
      m_services(services),
      m_document(*global.document),
      m_view(*global.view),
      m_playback(*global.playback),
      m_makeTimer(std::move(makeTimer)),
      m_shutdown(std::move(shutdown)),
      m_fft(global.settings),
      m_gestures(*global.view) {}

void frmQLMain::Create() {
    m_dpi = ScreenDpi();
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hIcon = LoadIconW(windowClass.hInstance, MAKEINTRESOURCEW(1));
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
    windowClass.lpszClassName = kClassName;
    RegisterClassExW(&windowClass);
    const int width = MulDiv(1060, m_dpi, 96);
    const int height = MulDiv(700, m_dpi, 96);
    // A menu that comes later would resize the window.
    MakeMenu();
    CreateWindowExW(0, kClassName, L"Quillon", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT,
                    width, height, nullptr, m_menu.Get(), windowClass.hInstance, this);
    if (m_createFailure) std::rethrow_exception(std::exchange(m_createFailure, nullptr));
    if (m_window == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "frmQLMain");
    }
}

void frmQLMain::Show(int showCommand) {
    const Settings& settings = m_global.settings;
    const auto sane = [](std::int32_t value) { return value > -kFarthest && value < kFarthest; };
    if (settings.windowWidth > 0 && settings.windowHeight > 0 && sane(settings.windowLeft) &&
        sane(settings.windowTop) && sane(settings.windowWidth) && sane(settings.windowHeight)) {
        WINDOWPLACEMENT placement{};
        placement.length = sizeof placement;
        placement.showCmd = SW_HIDE;
        RECT& place = placement.rcNormalPosition;
        place = {settings.windowLeft, settings.windowTop, settings.windowLeft + settings.windowWidth,
                 settings.windowTop + settings.windowHeight};
        // A place outside all monitors is moved onto the nearest one.
        MONITORINFO monitor{};
        monitor.cbSize = sizeof monitor;
        if (MonitorFromRect(&place, MONITOR_DEFAULTTONULL) == nullptr &&
            GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &monitor)) {
            OffsetRect(&place, monitor.rcWork.left - place.left, monitor.rcWork.top - place.top);
        }
        SetWindowPlacement(m_window, &placement);
        const bool minimized =
            showCommand == SW_SHOWMINIMIZED || showCommand == SW_MINIMIZE || showCommand == SW_SHOWMINNOACTIVE;
        if (settings.windowMaximized && !minimized) showCommand = SW_SHOWMAXIMIZED;
    }
    ShowWindow(m_window, showCommand);
    // Nobody has activated it.
    if (m_window != nullptr && !m_complete) Complete();
    if (m_createFailure) std::rethrow_exception(std::exchange(m_createFailure, nullptr));
}

void frmQLMain::KeepSettings() {
    Settings& settings = m_global.settings;
    // A folder that is only missing today, on a drive that is not there, is kept until the user goes elsewhere.
    if (!m_folderMissing) settings.filesPath = Narrow16(m_browser.Folder());
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    if (!GetWindowPlacement(m_window, &placement)) return;
    const RECT& place = placement.rcNormalPosition;
    settings.windowLeft = static_cast<std::int32_t>(place.left);
    settings.windowTop = static_cast<std::int32_t>(place.top);
    settings.windowWidth = static_cast<std::int32_t>(place.right - place.left);
    settings.windowHeight = static_cast<std::int32_t>(place.bottom - place.top);
    settings.windowMaximized =
        IsZoomed(m_window) != FALSE || (IsIconic(m_window) && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
}

LRESULT CALLBACK frmQLMain::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* form = static_cast<frmQLMain*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        form->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(form));
    }
    auto* form = reinterpret_cast<frmQLMain*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (form == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    // No exception may leave a window procedure. Without its controls the window is not made; any later failure (no
    // memory, a library call) ends its command and is told in the status bar.
    try {
        return form->Handle(message, wParam, lParam);
    } catch (const std::exception& error) {
        if (message != WM_CREATE) return form->Failed(error), 0;
        form->m_createFailure = std::current_exception();
        form->m_services.SetWindow(nullptr, nullptr);
        return -1;
    }
}

LRESULT frmQLMain::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE: OnCreate(); return 0;
        case WM_ACTIVATE: OnActivate(LOWORD(wParam)); return 0;
        case WM_SETFOCUS:
            if (m_graphBox.Window() != nullptr) SetFocus(m_graphBox.Window());
            return 0;
        case kFocusGraph:
            if (GetActiveWindow() == m_window) SetFocus(m_graphBox.Window());
            ShowFocus();
            return 0;
        case WM_PAINT: OnPaint(); return 0;
        case WM_SIZE: OnSize(static_cast<UINT>(wParam)); return 0;
        case WM_GETMINMAXINFO: OnGetMinMaxInfo(reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
        case WM_CLOSE: OnClose(); return 0;
        case WM_ENABLE: m_long.CloseIfAsked(); return 0;
        case WM_ENDSESSION: OnEndSession(wParam != FALSE); return 0;
        case WM_DESTROY: OnDestroy(); return 0;
        case WM_COMMAND:
            if (lParam == 0) {
                OnCommand(LOWORD(wParam));
            } else if (LOWORD(wParam) >= mnuSaveAs) {
                // A button of a toolbar. The keys go on working on the graph.
                OnCommand(LOWORD(wParam));
                SetFocus(m_graphBox.Window());
            } else if (!m_long.IsBusy()) {
                OnListCommand(LOWORD(wParam), HIWORD(wParam));
            }
            return 0;
        case WM_DROPFILES: OnDropFiles(reinterpret_cast<HDROP>(wParam)); return 0;
        case WM_NOTIFY: return OnNotify(reinterpret_cast<const NMHDR*>(lParam));
        case WM_INITMENUPOPUP:
            // The window's own menu holds the system's commands.
            if (HIWORD(lParam) != 0) break;
            OnInitMenu(reinterpret_cast<HMENU>(wParam));
            return 0;
        case WM_HSCROLL: OnHScroll(LOWORD(wParam)); return 0;
        case WM_VSCROLL: OnVScroll(LOWORD(wParam)); return 0;
        case WM_TIMER: OnTimer(wParam); return 0;
        case WM_DEVICECHANGE: m_playback.LookForDevices(); break;
        case WM_ENTERMENULOOP: EndHover(); break;
        case WM_SETCURSOR:
            if (OnSetCursor(reinterpret_cast<HWND>(wParam))) return TRUE;
            break;
        case WM_LBUTTONDOWN:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED: OnMouse(message, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)); return 0;
        case WM_NCDESTROY: {
            const HWND window = std::exchange(m_window, nullptr);
            m_long.SetWindow(nullptr);
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            return DefWindowProcW(window, message, wParam, lParam);
        }
        default: break;
    }
    return DefWindowProcW(m_window, message, wParam, lParam);
}

void frmQLMain::Failed(const std::exception& error) noexcept {
    try {
        m_status.Tell(StatusBar::Topic::Outcome,
                      m_services.Text(IDS_COMMAND_FAILED) + u": " + WordsOf(error, m_global.language));
    } catch (const std::exception&) {
        // There is no memory even for the message.
    }
}

void frmQLMain::OnCreate() {
    // Only what the first waveform needs; Complete() makes the rest.
    m_watch = std::make_unique<cFileNotification>(m_makeTimer, [this] { FilesChanged(); });
    m_lookTimer = m_makeTimer([this] { LookAtRecording(false); });
    m_lookTimer->PutInterval(kLookInterval);
    m_lookTimer->PutEnabled(true);
    m_font = MakeFont(m_dpi);
    if (!m_graphBox.Create(m_window, pbGraph, *this, true))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "graph");
    m_services.SetWindow(m_window, &m_status);
    m_long.SetWindow(m_window);
    m_browser.SetPattern(m_global.library->FileTypeMask(0));
    m_fft.FFT_BuildPalette();
    const std::wstring folder = Wide(m_global.settings.filesPath);
    if (folder.empty() || !m_browser.ShowFolder(folder)) {
        m_browser.ShowFolder(L".");
        m_folderMissing = !folder.empty();
    }
    StartWatch();
}

void frmQLMain::Complete() try {
    MakeControls();
    FillTypes();
    m_complete = true;
    // Messages have their place from here on.
    m_status.Attach(GetDlgItem(m_window, sbInfo), m_font.Get(), m_dpi);
    ShowPanels();
    // With a recording open its channels are of more use than the way to its folder.
    if (m_document.Block().block) TabCtrl_SetCurSel(GetDlgItem(m_window, tabPath), 1);
    ShowPages();
    DragAcceptFiles(m_window, TRUE);
    if (!IsIconic(m_window)) ArrangeControls();
    ShowBlockDetails();
    Refresh();
    ShowBlockSpectrum();
    AddToolTip(m_pathListBox.Window(), IDS_TIP_PATHLIST);
    MakeSound();
} catch (const std::exception& error) {
    if (m_complete) return Failed(error);
    // As without the window itself.
    m_createFailure = std::current_exception();
    m_services.SetWindow(nullptr, nullptr);
    DestroyWindow(m_window);
}

HWND frmQLMain::MakeControl(const wchar_t* className, DWORD style, DWORD extendedStyle, int id) {
    const HWND control = CreateWindowExW(extendedStyle, className, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
                                         m_window, IdOf(id), GetModuleHandleW(nullptr), nullptr);
    if (control == nullptr)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "control");
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
    return control;
}

void frmQLMain::MakeTabs(HWND tabs, int firstCaption) const {
    for (int page = 0; page < 2; ++page) {
        std::wstring caption = Wide(m_services.Text(firstCaption + page));
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = caption.data();
        TabCtrl_InsertItem(tabs, page, &item);
    }
}

void frmQLMain::MakeControls() {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    constexpr DWORD list = WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT;
    constexpr DWORD combo = WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST;
    m_tools.Create(m_window, tbMain, MainButtons(), m_dpi);
    m_goTo.Create(m_window, tbGoTo, GoToButtons(), m_dpi);
    MakeTabs(MakeControl(WC_TABCONTROLW, WS_TABSTOP, 0, tabPath), IDS_TAB_FOLDERS);
    const HWND drives = MakeControl(WC_COMBOBOXW, combo, 0, lstDrive);
    const HWND folders = MakeControl(WC_LISTBOXW, list, WS_EX_CLIENTEDGE, lstDir);
    const HWND channels = MakeControl(
        WC_LISTVIEWW,
        WS_TABSTOP | LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS,
        WS_EX_CLIENTEDGE, lvCh);
    MakeTabs(MakeControl(WC_TABCONTROLW, WS_TABSTOP, 0, tabFile), IDS_TAB_FILES);
    MakeControl(WC_COMBOBOXW, combo, 0, cboFileType);
    const HWND files = MakeControl(WC_LISTBOXW, list | WS_HSCROLL, WS_EX_CLIENTEDGE, lstFile);
    m_blocks.Attach(MakeControl(WC_LISTBOXW, list | LBS_USETABSTOPS, WS_EX_CLIENTEDGE, lstBlock));
    m_browser.Attach(drives, folders, files);
    m_channels.Attach(channels, MakeTraceIcons(MulDiv(16, m_dpi, 96)), m_dpi);
    MakeControl(WC_SCROLLBARW, SBS_HORZ, 0, scScaleX);
    MakeControl(WC_SCROLLBARW, SBS_VERT, 0, scScaleY);
    MakeControl(STATUSCLASSNAMEW, SBARS_SIZEGRIP | SBARS_TOOLTIPS, 0, sbInfo);
    // The order of the controls is that of the Tab key.
    SetWindowPos(m_graphBox.Window(), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    const bool made =
        m_scaleXBox.Create(m_window, pbScaleX, *this, false) && m_scaleYBox.Create(m_window, pbScaleY, *this, false) &&
        m_pathListBox.Create(m_window, pbPathList, *this, true) && m_values.Create(m_window, pnValues) &&
        m_zoomX.Create(m_window, btnZoomX, *this) && m_fftBox.Create(m_window, pbFFT, *this, false) &&
        m_paletteBox.Create(m_window, pbPal, *this, false) && m_scaleFBox.Create(m_window, pbScaleF, *this, false);
    if (!made) throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "picture");
    const int size = MulDiv(16, m_dpi, 96);
    m_pathListIcon = MakeIconList({DrawIcon(Icon::Folders, size)}, size);
}

void frmQLMain::AddToolTip(HWND control, int textId) const {
    const HWND tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, 0, 0, 0, 0,
                                      m_window, nullptr, GetModuleHandleW(nullptr), nullptr);
    std::wstring text = Wide(m_services.Text(textId));
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = m_window;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = text.data();
    SendPointer(tips, TTM_ADDTOOLW, 0, &tool);
}

void frmQLMain::FillTypes() {
    const HWND types = GetDlgItem(m_window, cboFileType);
    RecordingLibrary& library = *m_global.library;
    const auto add = [&](const std::u16string& text) { SendPointer(types, CB_ADDSTRING, 0, Wide(text).c_str()); };
    add(library.FileTypeName(0));
    const std::int32_t count = library.FileTypeCount();
    for (std::int32_t type = 1; type <= count; ++type) {
        const std::u16string name = library.FileTypeName(type);
        add(name + u" (" + library.FileTypeMask(type) + u')');
    }
    SendMessageW(types, CB_SETCURSEL, 0, 0);
}

void frmQLMain::OnActivate(UINT state) {
    if (m_closing) return;
    if (state == WA_INACTIVE) {
        EndHover();
        m_altUsed = false;
        m_lastFocus = GetFocus();
        ShowFocus();
        return;
    }
    // An icon has no graph to which a scale could be fitted; the window's first size comes later.
    if (!m_activated && IsIconic(m_window)) return;
    if (!m_activated) {
        m_activated = true;
        // The waveform is what the user waits for; the rest follows, whatever becomes of it.
        try {
            if (m_browser.FileCount() > 0) OpenFirstFile();
            UpdateWindow(m_graphBox.Window());
            // What is drawn may be held back until the next message is waited for.
            GdiFlush();
        } catch (const std::exception& error) {
            Failed(error);
        }
        if (!m_complete) Complete();
        if (m_window == nullptr) return;
        // Why the first file was refused is of more use.
        const bool refused = !m_document.File().refusal.empty();
        if (m_folderMissing && !refused)
            m_status.Tell(StatusBar::Topic::Outcome,
                          m_global.settings.filesPath + u": " + m_services.Text(IDS_FOLDER_UNREADABLE));
        else if (!refused)
            TellIncomplete();
    }
    m_lookDue = true;
    SetFocus(m_lastFocus != nullptr ? m_lastFocus : m_graphBox.Window());
    ShowFocus();
}

void frmQLMain::OpenFirstFile() {
    m_browser.SelectFile(0);
    ClickFile();
    // Complete() does the same for a window that was active from the start.
    if (!m_complete || !m_document.Block().block) return;
    TabCtrl_SetCurSel(GetDlgItem(m_window, tabPath), 1);
    ShowPages();
}

void frmQLMain::OnDropFiles(HDROP drop) {
    std::wstring path(DragQueryFileW(drop, 0, nullptr, 0), L'\0');
    DragQueryFileW(drop, 0, path.data(), static_cast<UINT>(path.size()) + 1);
    DragFinish(drop);
    if (!path.empty() && !m_long.IsBusy()) OpenPath(path);
}

void frmQLMain::OnClose() {
    if (!m_long.MayClose()) return;
    StopSound();
    DestroyWindow(m_window);
}

void frmQLMain::OnEndSession(bool ends) {
    // The process may end without another message.
    if (!ends) return;
    if (!m_long.IsBusy()) {
        StopSound();
        return EndSession();
    }
    // The command that runs has use for the recording as long as it can.
    KeepSettings();
    if (m_shutdown) m_shutdown();
}

void frmQLMain::EndSession() {
    // Each step runs whatever becomes of the others, and the program ends in any case.
    for (const auto& step : std::initializer_list<std::function<void()>>{
             [&] { KeepSettings(); }, [&] { CloseCurrentFile(); }, [&] { m_shutdown ? m_shutdown() : void(); }}) {
        try {
            step();
        } catch (const std::exception& error) {
            Failed(error);
        }
    }
}

void frmQLMain::OnDestroy() {
    // The system destroys the menu with the window.
    static_cast<void>(m_menu.Release());
    m_closing = true;
    m_watch.reset();
    m_lookTimer.reset();
    // A window that could not be made has nothing to keep, and its message is still to be shown.
    if (m_createFailure) return;
    m_playback.Close();
    EndSession();
    m_services.SetWindow(nullptr, nullptr);
    PostQuitMessage(0);
}

}  // namespace quillon
