#include "app/win/frmQLMain.h"

#include <system_error>
#include <utility>

#include "app/Commands.h"
#include "app/ControlIds.h"
#include "app/StringIds.h"
#include "app/win/MainControls.h"
#include "app/win/TableWindow.h"
#include "app/win/WindowPlace.h"
#include "base/win/PendingMessages.h"

namespace quillon {

namespace {

constexpr std::int32_t kLookInterval = 800;  // ms

}  // namespace

frmQLMain::frmQLMain(QL_Global& global, WinServices& services, TimerFactory makeTimer, std::function<void()> shutdown)
    : m_global(global),
      m_services(services),
      m_makeTimer(std::move(makeTimer)),
      m_shutdown(std::move(shutdown)),
      m_rooms({*global.document, *global.view, *global.playback, global.settings, m_density, global.format,
               *global.library, *global.exporter, *global.saveDialog, global.openText, global.language,
               global.systemVersion < 4, services, [&global] { ApplyDisplaySettings(global); },
               global.storeRecordings}),
      m_menu(services, *global.view, global.format, global.settings.recent, m_density),
      m_layout(global.settings.window),
      m_help(global.helpFile, global.settings.helpLanguage, services, m_rooms.status) {
    Wire();
}

void frmQLMain::Wire() {
    m_steps.onFailed = [this](const std::exception& error) { StepFailed(error); };
    m_rooms.onState = [this] { m_tools.Update(State()); };
    m_rooms.onArrange = [this] { Arrange(); };
    m_commands.help = [this] { m_help.Show(m_window); };
    m_rooms.onHelp = [this](const wchar_t* page) { m_help.Show(m_window, page); };
    m_rooms.onContextMenu = [this](POINT screen) { ShowMenu(ContextMenu(), screen); };
    m_rooms.onCommand = [this](int command) { OnCommand(command); };
    m_rooms.onPathList = [this] {
        m_menu.ShowFolders(m_window, m_rooms.browser.PathList(), m_global.settings.pathList);
    };
    m_rooms.onZoomMenu = [this](HWND control) { m_menu.ShowZooms(m_window, control); };
    m_commands.exit = [this] { SendMessageW(m_window, WM_CLOSE, 0, 0); };
    m_commands.helpLanguage = [this](int index) { m_help.ChooseLanguage(static_cast<std::int16_t>(index)); };
    m_commands.showKeys = [this] { ShowTable(m_window, KeysTable(m_services)); };
    m_commands.selectPage = [this](TabPages tabs, int page) { SelectPage(m_window, tabs, page); };
    m_commands.focusList = [this](int list) {
        if (list == 1) m_rooms.recording.ShowFocus();
        FocusList(m_window, list);
    };
    m_rooms.recording.marks.onMenu = [this](POINT screen) { ShowMenu(MarksMenu(), screen); };
    m_keys.onCommand = [this](int command) { OnCommand(CommandOfKey(command, State())); };
    m_keys.onFocus = [this](HWND control) { MoveFocus(m_window, control); };
    m_keys.onRelease = [this] { m_rooms.shown.HoldRaw(false); };
    m_keys.onLetter = [this](auto... typed) { m_rooms.browser.TypeLetter(typed...); };
    m_keys.onPathList = m_rooms.onPathList;
    m_rooms.spectrogram.onMenu = [this](POINT screen) { ShowMenu(SpectrogramMenu(), screen); };
    m_keys.onContextMenu = [this] { m_rooms.OpenMenu(); };
    m_keys.onWheel = [this](auto delta, auto zone, const auto& at) { m_rooms.graph.Wheel(delta, zone, at); };
}

void frmQLMain::Create(const std::wstring& path) {
    m_startPath = path;
    // Set the menu before the window is sized: adding it later would change the client area.
    const HWND made = MakeMainWindow(Procedure, m_menu.Make(), this);
    ThrowFailure();
    if (made == nullptr) throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "frmQLMain");
}

void frmQLMain::Show(int showCommand) {
    RestoreWindowPlace(m_window, m_global.settings.window.place, m_density, showCommand);
    ShowWindow(m_window, showCommand);
    // Shown inactive: WM_ACTIVATE never came.
    PlanRemainingControls();
}

void frmQLMain::ThrowFailure() {
    if (m_createFailure) std::rethrow_exception(std::exchange(m_createFailure, nullptr));
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
    // memory, a library call) ends its command and is reported in the status bar.
    try {
        return form->Handle(message, wParam, lParam);
    } catch (const std::exception& error) {
        if (message != WM_CREATE) return form->m_rooms.Failed(error), 0;
        form->m_createFailure = std::current_exception();
        form->m_services.SetWindow(nullptr, nullptr);
        return -1;
    }
}

LRESULT frmQLMain::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE: OnCreate(); return 0;
        case WM_ACTIVATE: OnActivate(LOWORD(wParam)); return 0;
        case WM_SETFOCUS: m_focus.ToGraph(); return 0;
        case KeyboardFocus::kReturnMessage: m_focus.Return(); return 0;
        case WM_PAINT: m_layout.OnPaint(ColorOf(StripOf(*m_global.view->Look().colors).face)); return 0;
        case WM_SIZE: OnSize(static_cast<UINT>(wParam)); return 0;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {m_density.Scaled(560), m_density.Scaled(380)};
            return 0;
        case WM_DPICHANGED: OnDensity(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam)); return 0;
        case WM_CLOSE: OnClose(); return 0;
        case WM_ENABLE: m_rooms.longCommand.CloseIfAsked(); return 0;
        case WM_QUERYENDSESSION:
            // The process may end right after WM_ENDSESSION: an unfinished file is to be removed before.
            m_rooms.longCommand.Stop();
            return TRUE;
        case WM_ENDSESSION:
            if (wParam != FALSE) AtEnd().Abandon(m_window);
            return 0;
        case WM_DESTROY: OnDestroy(); return 0;
        case WM_DROPFILES: OnDropFiles(reinterpret_cast<HDROP>(wParam)); return 0;
        case WM_TIMER: m_rooms.OnTimer(wParam); return 0;
        case WM_NCDESTROY: {
            const HWND window = std::exchange(m_window, nullptr);
            m_keys.SetWindow(nullptr), m_focus.SetWindow(nullptr);
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            return DefWindowProcW(window, message, wParam, lParam);
        }
        default: return HandleInput(message, wParam, lParam);
    }
}

LRESULT frmQLMain::HandleInput(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            if (lParam == 0) {
                OnCommand(LOWORD(wParam));
            } else {
                OnControlCommand(LOWORD(wParam), HIWORD(wParam));
            }
            return 0;
        case WM_NOTIFY: return OnNotify(reinterpret_cast<const NMHDR*>(lParam));
        case WM_INITMENUPOPUP:
            // The window's own menu holds the system's commands.
            if (HIWORD(lParam) != 0) break;
            if (!CreateRemainingControls()) return 0;
            m_menu.Open(reinterpret_cast<HMENU>(wParam), m_rooms.playback, m_rooms.shown, [this] { return State(); });
            return 0;
        case WM_HSCROLL: m_rooms.graph.OnScroll(scScaleX, LOWORD(wParam)); return 0;
        case WM_VSCROLL: m_rooms.graph.OnScroll(scScaleY, LOWORD(wParam)); return 0;
        case WM_SYSCOLORCHANGE:
            m_tools.DrawPictures();
            m_rooms.browser.DrawPictures();
            return PassColors(m_window), 0;
        case WM_DEVICECHANGE: m_rooms.playback.LookForDevices(); break;
        case WM_ENTERMENULOOP: m_rooms.EndHover(); break;
        case WM_SETCURSOR:
            if (OnSetCursor(reinterpret_cast<HWND>(wParam))) return TRUE;
            break;
        case WM_LBUTTONDOWN:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED: OnMouse(message, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)); return 0;
        default: break;
    }
    return DefWindowProcW(m_window, message, wParam, lParam);
}

void frmQLMain::OnCreate() {
    m_density.Set(DpiOf(m_window));
    m_rooms.DensityChanged();
    // Only what the first waveform needs; the rest follows in steps.
    m_layout.SetWindow(m_window, m_density);
    m_keys.SetWindow(m_window);
    m_focus.SetWindow(m_window);
    m_rooms.CreateFirst(m_window);
    m_rooms.browser.Open(m_startPath);
}

void frmQLMain::PlanRemainingControls() {
    if (m_window == nullptr) return;
    m_steps.Plan({
        [this] { ShowProgramIcon(m_window, m_density), m_tools.CreateMain(m_window, m_density); },
        [this] { m_tools.CreateGoTo(m_window, m_density); },
        [this] { m_tools.filters.Create(m_window, m_density, m_rooms.shown, m_services); },
        [this] { MakePathLists(m_window, m_density.Font(), m_services); },
        [this] { MakeFileLists(m_window, m_density.Font(), m_services); },
        [this] { MakeBars(m_window, m_density.Font()); },
        [this] { m_rooms.AttachLists(m_makeTimer); },
        [this] { m_rooms.CreatePictures(); },
        [this] {
            m_rooms.CreateRest();
            // With a recording open, show the page of channels rather than that of folders.
            SelectPage(m_window, TabPages::Path, m_global.document->Block().block ? 1 : 0);
            DragAcceptFiles(m_window, TRUE);
            m_layout.SetToolSizes(m_tools.MainSize(), m_tools.GoToSize(), m_tools.filters.Widths());
        },
        [this] { ArrangePart(0); },
        [this] { ArrangePart(1); },
        [this] { ArrangePart(2); },
        [this] { m_rooms.ShowAll(); },
        [this] {
            AddToolTip(m_rooms.browser.PathList(), m_services.Text(IDS_TIP_PATHLIST));
            NameControls(m_window, m_services);
            m_lookTimer = m_makeTimer([this] { m_rooms.LookAtRecording(false, m_layout.IsDragging()); });
            m_lookTimer->PutInterval(kLookInterval);
            m_lookTimer->PutEnabled(true);
        },
        [this] { m_rooms.playback.Open(); },
    });
}

void frmQLMain::StepFailed(const std::exception& error) {
    if (m_rooms.IsComplete()) return m_rooms.Failed(error);
    m_createFailure = std::current_exception();
    m_services.SetWindow(nullptr, nullptr);
    DestroyWindow(m_window);
    PostQuitMessage(1);
}

void frmQLMain::OnActivate(UINT state) {
    if (m_closing) return;
    if (state == WA_INACTIVE) {
        m_rooms.EndHover();
        m_keys.Deactivated();
        return m_focus.Keep();
    }
    // A minimized window has no graph size to fit the scale to; the first real size comes later.
    if (!m_activated && IsIconic(m_window)) return;
    if (!std::exchange(m_activated, true)) {
        // The waveform is drawn first, as the user waits for it; the rest is created even if drawing fails.
        try {
            // The window's first WM_SIZE comes only after this message.
            if (!m_layout.IsArranged()) Arrange();
            OpenFirst();
            UpdateWindow(m_rooms.graph.Graph());
            // What is drawn is batched, and may be shown only while the program waits for messages: a wait of no
            // length, as showing the window has not ended yet.
            GdiFlush();
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 0, QS_ALLINPUT);
        } catch (const std::exception& error) {
            m_rooms.Failed(error);
        }
        PlanRemainingControls();
        // Do not replace the message that says why the first file was refused.
        if (m_global.document->File().refusal.empty()) m_rooms.browser.TellStart();
    }
    m_rooms.LookSoon();
    m_focus.Restore();
}

void frmQLMain::OpenFirst() {
    m_rooms.browser.OpenFirst();
    // One of the steps does the same for a window that was active from the start.
    if (m_rooms.IsComplete() && m_global.document->Block().block) SelectPage(m_window, TabPages::Path, 1);
}

void frmQLMain::OnDropFiles(HDROP drop) {
    if (const std::wstring path = DroppedPath(drop); !path.empty() && !m_rooms.longCommand.IsBusy()) OpenPath(path);
}

void frmQLMain::OnSize(UINT state) {
    // Changes made while the window was minimized are drawn when it is restored.
    if (state == SIZE_MINIMIZED) return m_layout.Forget();
    // The first WM_SIZE on showing repeats the size from creation.
    if (m_layout.IsArranged()) return;
    if (m_rooms.IsComplete()) m_rooms.status.Resize();
    Arrange();
    m_rooms.Refresh();
    // Started minimized: the window was activated before it had a size.
    if (!m_activated && m_rooms.IsComplete() && GetActiveWindow() == m_window) OnActivate(WA_ACTIVE);
}

void frmQLMain::OnDensity(int dpi, const RECT& place) {
    // Between the steps of the start some controls exist and others do not.
    if (!CreateRemainingControls()) return;
    m_rooms.EndHover();
    ChangeDensity(m_window, m_density, dpi);
    m_rooms.DensityChanged();
    if (m_rooms.IsComplete()) {
        m_tools.DensityChanged();
        m_tools.Update(State());
        m_layout.SetToolSizes(m_tools.MainSize(), m_tools.GoToSize(), m_tools.filters.Widths());
    }
    m_layout.Forget();
    SetWindowPos(m_window, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    // Where it has the size that it had before.
    if (!IsIconic(m_window)) OnSize(SIZE_RESTORED);
}

void frmQLMain::Arrange() {
    m_layout.SetTitles(m_rooms.graph.TitlesWidth());
    m_layout.Arrange();
    SizesChanged();
}

void frmQLMain::ArrangePart(int part) {
    if (part == 0) m_layout.SetTitles(m_rooms.graph.TitlesWidth());
    if (!IsIconic(m_window) && m_layout.ArrangePart(part)) SizesChanged();
}

void frmQLMain::SizesChanged() {
    m_rooms.graph.SetSize(m_layout.Graph().width, m_layout.Graph().height);
    if (m_rooms.IsComplete()) m_rooms.recording.FitColumns();
}

void frmQLMain::OnClose() {
    if (!m_rooms.longCommand.MayClose()) return;
    m_rooms.playback.Stop();
    DestroyWindow(m_window);
}

void frmQLMain::OnDestroy() {
    m_menu.Release();
    m_closing = true;
    m_steps.Drop();
    m_lookTimer.reset();
    m_rooms.Close();
    // If creation failed there is nothing to save, and the error message is still to be shown.
    if (m_createFailure) return;
    AtEnd().Close(m_window);
    m_services.SetWindow(nullptr, nullptr);
    PostQuitMessage(0);
}

void frmQLMain::OnCommand(int id) {
    if (m_rooms.longCommand.IsBusy() || !CreateRemainingControls()) return;
    if (IsEnabled(id, m_rooms.State())) RunCommand(id, m_rooms, m_commands);
}

void frmQLMain::OnControlCommand(int id, int notification) {
    if (id >= mnuSaveAs) {
        // From a toolbar button: return the focus to the graph.
        OnCommand(id);
        m_focus.ToGraph();
    } else if (!m_closing && !m_rooms.longCommand.IsBusy()) {
        if (notification == LBN_SETFOCUS || notification == LBN_KILLFOCUS) m_focus.Show();
        m_rooms.recording.OnCommand(id, notification);
        m_tools.filters.OnCommand(id, notification);
        m_rooms.browser.OnListCommand(id, notification);
    }
}

LRESULT frmQLMain::OnNotify(const NMHDR* header) {
    if (header->code == TTN_GETDISPINFOW) {
        m_tools.OnTip(*reinterpret_cast<NMTTDISPINFOW*>(const_cast<NMHDR*>(header)), m_services);
        return 0;
    }
    if (header->code == TCN_SELCHANGE) ShowSelectedPages(m_window);
    if (header->code == NM_SETFOCUS || header->code == NM_KILLFOCUS) m_focus.Show();
    // The list consumes WM_LBUTTONUP, so the focus is moved here.
    if (header->code == NM_CLICK) m_focus.Clicked(static_cast<int>(header->idFrom));
    m_rooms.recording.OnNotify(header);
    return 0;
}

void frmQLMain::ShowMenu(std::span<const MenuEntry> entries, POINT screen) {
    const int chosen = m_menu.ShowContextMenu(entries, m_window, screen);
    if (m_window == nullptr) return;
    if (chosen != 0) OnCommand(chosen);
    m_rooms.commands.SetMenuChannel(0);
}

bool frmQLMain::PreTranslate(const MSG& message) try {
    // The graph follows the pointer without the other controls.
    const bool moves = message.message == WM_MOUSEMOVE || message.message == WM_NCMOUSEMOVE;
    if (IsInput(message.message) && !moves) CreateRemainingControls();
    if (m_window != nullptr && message.message == WM_LBUTTONUP) m_focus.Clicked(GetDlgCtrlID(message.hwnd));
    return m_keys.Translate(message) || m_rooms.spectrum.Translate(message);
} catch (const std::exception& error) {
    m_rooms.Failed(error);
    return true;
}

bool frmQLMain::OnSetCursor(HWND child) const {
    if (m_rooms.longCommand.IsBusy() && IsWindowEnabled(m_window))
        return SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true;
    return child == m_window && m_layout.SetPointer();
}

void frmQLMain::OnMouse(UINT message, int x, int y) {
    if (!m_layout.OnMouse(message, x, y)) return;
    SizesChanged();
    m_rooms.Refresh();
}

}  // namespace quillon
