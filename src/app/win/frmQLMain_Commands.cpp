#include <utility>
#include <vector>

#include "app/Commands.h"
#include "app/ControlIds.h"
#include "app/GraphKeys.h"
#include "app/HelpFile.h"
#include "app/win/HelpViewer.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"

namespace quillon {

namespace {

Key KeyOf(WPARAM code) {
    if ((code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9')) return static_cast<Key>(code);
    switch (code) {
        case VK_LEFT: return Key::Left;
        case VK_RIGHT: return Key::Right;
        case VK_UP: return Key::Up;
        case VK_DOWN: return Key::Down;
        case VK_PRIOR: return Key::PageUp;
        case VK_NEXT: return Key::PageDown;
        case VK_HOME: return Key::Home;
        case VK_END: return Key::End;
        case VK_ADD:
        case VK_OEM_PLUS: return Key::Plus;
        case VK_SUBTRACT:
        case VK_OEM_MINUS: return Key::Minus;
        case VK_SPACE: return Key::Space;
        case VK_RETURN: return Key::Enter;
        case VK_ESCAPE: return Key::Escape;
        case VK_BACK: return Key::Backspace;
        case VK_DELETE: return Key::Delete;
        case VK_F1: return Key::F1;
        case VK_F2: return Key::F2;
        case VK_F5: return Key::F5;
        default: return Key::None;
    }
}

}  // namespace

std::wstring frmQLMain::CaptionOf(const MenuEntry& entry, int index) const {
    if (entry.captionId == 0)
        return Wide(ComputedCaption(entry.id + index, m_view.RawCodes(), m_global.format.decimalSeparator));
    const std::u16string caption = m_services.Text(entry.captionId + index);
    const std::u16string accelerator = AcceleratorText(entry.id + index, m_services);
    return Wide(accelerator.empty() ? caption : caption + u'\t' + accelerator);
}

void frmQLMain::FillMenu(HMENU menu, std::span<const MenuEntry> entries) {
    std::vector<HMENU> parents{menu};
    for (const MenuEntry& entry : entries) {
        parents.resize(static_cast<std::size_t>(entry.depth) + 1);
        const HMENU parent = parents.back();
        if (entry.kind == MenuEntry::Kind::Separator) {
            AppendMenuW(parent, MF_SEPARATOR, 0, nullptr);
        } else if (entry.kind == MenuEntry::Kind::Popup) {
            const HMENU popup = CreatePopupMenu();
            AppendMenuW(parent, MF_POPUP, reinterpret_cast<UINT_PTR>(popup),
                        Wide(m_services.Text(entry.captionId)).c_str());
            if (entry.captionId == IDS_MENU_XZOOM) m_zoomMenu = popup;
            parents.push_back(popup);
        } else {
            for (int index = 0; index < entry.count; ++index) {
                AppendMenuW(parent, MF_STRING, static_cast<UINT_PTR>(entry.id + index),
                            CaptionOf(entry, index).c_str());
            }
        }
    }
}

void frmQLMain::MakeMenu() {
    m_menu.Reset(CreateMenu());
    FillMenu(m_menu.Get(), MenuTree());
}

void frmQLMain::ShowContextMenu(POINT screen) {
    const Menu menu(CreatePopupMenu());
    FillMenu(menu.Get(), ContextMenu());
    const int chosen = TrackPopupMenu(menu.Get(), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD,
                                      static_cast<int>(screen.x), static_cast<int>(screen.y), 0, m_window, nullptr);
    if (m_window == nullptr) return;
    if (chosen != 0) OnCommand(chosen);
    // From elsewhere a command concerns the channel chosen in the list.
    m_menuChannel = 0;
}

void frmQLMain::OnInitMenu(HMENU menu) {
    if (GetMenuItemID(menu, 0) == mnuSoundCard) FillSoundCards(menu);
    if (GetMenuItemID(menu, 0) == mnuSoundPlay) m_playback.LookForDevices();
    const CommandState state = State();
    const int count = GetMenuItemCount(menu);
    for (int position = 0; position < count; ++position) {
        const UINT id = GetMenuItemID(menu, position);
        if (id == 0 || id == static_cast<UINT>(-1)) continue;
        if (id >= mnuScaleY && id < mnuScaleY + AmplitudeScale::kScaleCount) {
            // Units or codes, as the options have it now.
            const std::u16string caption =
                ComputedCaption(static_cast<int>(id), m_view.RawCodes(), m_global.format.decimalSeparator);
            ModifyMenuW(menu, id, MF_BYCOMMAND | MF_STRING, id, Wide(caption).c_str());
        }
        const bool enabled = IsEnabled(static_cast<int>(id), state);
        const bool checked = IsChecked(static_cast<int>(id), state);
        EnableMenuItem(menu, id, enabled ? MF_ENABLED : MF_GRAYED);
        CheckMenuItem(menu, id, checked ? MF_CHECKED : MF_UNCHECKED);
    }
}

void frmQLMain::OnCommand(int id) {
    struct Route {
        int first;
        int last;
        void (frmQLMain::*handler)(int index);
    };
    static const Route routes[] = {
        {mnuSaveAs, mnuSaveAs, &frmQLMain::SaveAs},
        {mnuFastExport, mnuFastExport, &frmQLMain::FastExport},
        {mnuCopy, mnuCopy + 1, &frmQLMain::Copy},
        {mnuSplit, mnuSplit, &frmQLMain::Split},
        {mnuOptions, mnuOptions, &frmQLMain::Options},
        {mnuSoundPlay, mnuSoundPlay + 2, &frmQLMain::SoundPlay},
        {mnuSoundCard, mnuSoundCard + kSoundCards - 1, &frmQLMain::SoundCard},
        {mnuFileOperation, mnuFileOperation + 1, &frmQLMain::FileCommand},
        {mnuExit, mnuExit, &frmQLMain::Exit},
        {mnuTabPath, mnuTabPath + 1, &frmQLMain::SelectTabPath},
        {mnuTabFile, mnuTabFile + 1, &frmQLMain::SelectTabFile},
        {mnuSpectrogram, mnuSpectrogram, &frmQLMain::ShowSpectrogram},
        {mnuNextPalette, mnuNextPalette, &frmQLMain::NextPalette},
        {mnuScaleX, mnuScaleX + TimeAxis::kMenuZoomCount - 1, &frmQLMain::SelectZoomX},
        {mnuZoomX, mnuZoomX + 1, &frmQLMain::ZoomX},
        {mnuGoTo, mnuGoTo + 3, &frmQLMain::GoTo},
        {mnuScaleY, mnuScaleY + AmplitudeScale::kScaleCount - 1, &frmQLMain::SelectScaleY},
        {mnuZoomY, mnuZoomY + 1, &frmQLMain::ZoomY},
        {mnuBaseLine, mnuBaseLine + 1, &frmQLMain::BaseLine},
        {mnuChShow, mnuChShow + 2, &frmQLMain::SetAllShown},
        {mnuHelp, mnuHelp, &frmQLMain::Help},
        {mnuHelpLang, mnuHelpLang + 2, &frmQLMain::HelpLanguage},
        {mnuView, mnuView + 2, &frmQLMain::ChangeView},
        {mnuMark, mnuMark + 1, &frmQLMain::GoToMark},
        {mnuSelect, mnuSelect + 2, &frmQLMain::Select},
        {mnuGoToPlace, mnuGoToPlace, &frmQLMain::GoToPlace},
        {mnuStatistics, mnuStatistics, &frmQLMain::ShowStatistics},
        {mnuSoloChannel, mnuSoloChannel, &frmQLMain::ShowAlone},
        {mnuKeysAndMouse, mnuKeysAndMouse, &frmQLMain::ShowKeys},
        {mnuOpenFolder, mnuOpenFolder, &frmQLMain::OpenFolder},
        {mnuRecording, mnuRecording + 1, &frmQLMain::OpenNeighbour},
        {mnuFocus, mnuFocus + 3, &frmQLMain::FocusList},
        {mnuMove, mnuMove + static_cast<int>(Moves().size()) - 1, &frmQLMain::MoveView},
        {mnuPathList, mnuPathList + kPathListEntries - 1, &frmQLMain::ChoosePath},
    };
    if (m_long.IsBusy() || !IsEnabled(id, State())) return;
    for (const Route& route : routes) {
        if (id >= route.first && id <= route.last) (this->*route.handler)(id - route.first);
    }
}

void frmQLMain::Exit(int) {
    SendMessageW(m_window, WM_CLOSE, 0, 0);
}

void frmQLMain::SelectTabPath(int page) {
    TabCtrl_SetCurSel(GetDlgItem(m_window, tabPath), page);
    ShowPages();
}

void frmQLMain::SelectTabFile(int page) {
    TabCtrl_SetCurSel(GetDlgItem(m_window, tabFile), page);
    if (page == 0) RefreshFiles();
    ShowPages();
}

void frmQLMain::FocusList(int list) {
    TabCtrl_SetCurSel(GetDlgItem(m_window, list < 2 ? tabPath : tabFile), list % 2);
    ShowPages();
    constexpr int lists[] = {lstDir, lvCh, lstFile, lstBlock};
    if (list == 1) m_channels.ShowFocus(m_document.CurrentChannel() - 1);
    MoveFocus(GetDlgItem(m_window, lists[list]));
}

void frmQLMain::MoveFocus(HWND control) {
    // The system hides what marks the focus from those who use the mouse.
    SendMessageW(m_window, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    SetFocus(control);
    ShowFocus();
}

void frmQLMain::ReturnKeyboard(int control) const {
    // Once the control has done its part of the click.
    if (control == lstFile || control == lstBlock || control == lvCh || control == tabPath || control == tabFile)
        PostMessageW(m_window, kFocusGraph, 0, 0);
}

void frmQLMain::ShowFocus() const {
    // The frame lies in the gaps between the controls.
    InvalidateRect(m_window, nullptr, TRUE);
}

void frmQLMain::OnPaint() const {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(m_window, &paint);
    const HWND focus = GetFocus();
    const int id = focus == nullptr || GetParent(focus) != m_window ? 0 : GetDlgCtrlID(focus);
    PixelRect place;
    if (id == lstDir) place = m_layout.folders;
    if (id == lvCh) place = m_layout.channels;
    if (id == lstFile) place = m_layout.files;
    if (id == lstBlock) place = m_layout.blocks;
    if (id == pbGraph) {
        place = m_layout.scaleY;
        place.width = m_layout.scrollY.Right() - place.left;
        place.height = m_layout.scrollX.Bottom() - place.top;
    }
    if (place.width > 0 && m_complete) {
        RECT frame{place.left, place.top, place.Right(), place.Bottom()};
        // Thin round the graph, which has it most of the time.
        const int lines = MulDiv(id == pbGraph ? 1 : 2, m_dpi, 96);
        for (int line = 0; line < lines; ++line) {
            InflateRect(&frame, 1, 1);
            FrameRect(dc, &frame, GetSysColorBrush(COLOR_HIGHLIGHT));
        }
    }
    EndPaint(m_window, &paint);
}

KeyPlace frmQLMain::FocusPlace() const {
    const HWND focus = GetFocus();
    if (focus == m_window || focus == m_graphBox.Window()) return KeyPlace::Graph;
    if (focus == GetDlgItem(m_window, lstDir)) return KeyPlace::FolderList;
    if (focus == GetDlgItem(m_window, lstFile)) return KeyPlace::FileList;
    if (focus == GetDlgItem(m_window, lvCh)) return KeyPlace::ChannelList;
    return KeyPlace::Everywhere;
}

bool frmQLMain::PreTranslate(const MSG& message) {
    try {
        return TranslateKey(message);
    } catch (const std::exception& error) {
        Failed(error);
        return true;
    }
}

bool frmQLMain::TranslateKey(const MSG& message) {
    if (m_window == nullptr) return false;
    if (message.message == WM_MOUSEWHEEL) return RouteWheel(message);
    if (message.message == WM_LBUTTONUP) ReturnKeyboard(GetDlgCtrlID(message.hwnd));
    // After another key its release comes as that of an ordinary one.
    const bool released = message.message == WM_SYSKEYUP || message.message == WM_KEYUP;
    if (released && message.wParam == VK_MENU && std::exchange(m_altUsed, false)) return true;
    const bool pressedAgain = message.wParam == VK_MENU && (message.lParam & (1 << 30)) == 0;
    if (message.message == WM_SYSKEYDOWN && pressedAgain) m_altUsed = false;
    if (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN) return false;
    if (message.hwnd != m_window && !IsChild(m_window, message.hwnd)) return false;
    const bool control = GetKeyState(VK_CONTROL) < 0;
    // A plus needs it on most keyboards.
    const bool shift = GetKeyState(VK_SHIFT) < 0 && message.wParam != VK_OEM_PLUS;
    const bool alt = GetKeyState(VK_MENU) < 0;
    if (message.wParam == VK_TAB && !control && !alt) {
        if (const HWND next = GetNextDlgTabItem(m_window, GetFocus(), shift)) MoveFocus(next);
        return true;
    }
    const HWND focus = GetFocus();
    const WPARAM code = message.wParam;
    if (focus == m_pathListBox.Window() && (code == VK_RETURN || code == VK_SPACE || code == VK_DOWN)) {
        ShowPathList();
        return true;
    }
    if (code == VK_APPS || (code == VK_F10 && shift)) {
        if (focus != m_graphBox.Window()) return false;
        RECT graph{};
        GetWindowRect(focus, &graph);
        m_menuChannel = 0;
        ShowContextMenu({graph.left, graph.top});
        return true;
    }
    int command = CommandOf(FocusPlace(), KeyOf(code), control, shift, alt);
    if (command == 0) return false;
    // The key that plays a channel also stops; held down it does neither again.
    if (command == mnuSoundPlay && (message.lParam & (1 << 30)) != 0) return true;
    if (command == mnuSoundPlay && m_playback.IsPlaying()) command = mnuSoundPlay + 2;
    if (alt) m_altUsed = true;
    OnCommand(command);
    return true;
}

void frmQLMain::ChooseHelp() {
    wchar_t program[32768] = {};
    GetModuleFileNameW(nullptr, program, 32768);
    const std::wstring path = program;
    WinDirectoryLookup lookup;
    m_global.helpFile = ChooseHelpFile(lookup, Narrow16(path.substr(0, path.rfind(L'\\'))),
                                       m_global.settings.helpLanguage, m_services.Text(IDS_LANGUAGE_CODE));
}

void frmQLMain::Help(int) {
    if (m_global.helpFile.empty()) {
        m_status.Tell(StatusBar::Topic::Outcome, m_services.Text(IDS_NO_HELP));
    } else if (!ShowHelpFile(m_window, Wide(m_global.helpFile))) {
        m_status.Tell(StatusBar::Topic::Outcome, m_services.Text(IDS_HELP_IS_AT) + u' ' + m_global.helpFile);
    }
}

void frmQLMain::HelpLanguage(int index) {
    m_global.settings.helpLanguage = static_cast<std::int16_t>(index);
    ChooseHelp();
}

CommandState frmQLMain::State() const {
    CommandState state;
    state.fileCount = m_global.fileCount;
    state.filePosition = m_global.filePosition;
    state.channelCount = m_document.Block().channelCount;
    state.sampleCount = m_document.Block().sampleCount;
    state.hasMarks = !m_document.Block().marks.empty();
    state.isSolo = m_document.IsSolo();
    state.hasSelection = m_view.Selected().active;
    state.hasHistory = m_view.HasHistory();
    state.zoomX = m_view.Axis().ZoomIndex();
    state.scaleY = m_view.ScaleY();
    state.spectrogramShown = m_global.settings.spectrogramShown;
    state.soundDevices = m_playback.DeviceCount();
    state.soundDevice = m_playback.Device();
    state.playing = m_playback.IsPlaying();
    state.helpLanguage = m_global.settings.helpLanguage;
    return state;
}

void frmQLMain::UpdateCommands() const {
    const CommandState state = State();
    m_tools.Update(state);
    m_goTo.Update(state);
}

void frmQLMain::OnToolTip(NMTTDISPINFOW* tip) {
    for (const auto buttons : {MainButtons(), GoToButtons()}) {
        for (const ToolbarButton& button : buttons) {
            if (static_cast<UINT_PTR>(button.command) != tip->hdr.idFrom) continue;
            m_tipText = Wide(m_services.Text(button.tipId));
            tip->lpszText = m_tipText.data();
        }
    }
}

void frmQLMain::ZoomButtonDown() {
    RECT control{};
    GetWindowRect(m_zoomX.Window(), &control);
    TrackPopupMenu(m_zoomMenu, TPM_CENTERALIGN | TPM_BOTTOMALIGN, (control.left + control.right) / 2, control.top, 0,
                   m_window, nullptr);
}

}  // namespace quillon
