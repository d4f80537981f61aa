#include <vector>

#include "app/Commands.h"
#include "app/ControlIds.h"
#include "app/GraphKeys.h"
#include "app/HelpFile.h"
#include "app/win/HelpViewer.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"

namespace quillon {

void frmQLMain::MakeMenu() {
    m_menu.Reset(CreateMenu());
    std::vector<HMENU> parents{m_menu.Get()};
    for (const MenuEntry& entry : MenuTree()) {
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
                const std::u16string caption =
                    entry.captionId != 0 ? m_services.Text(entry.captionId + index)
                                         : ComputedCaption(entry.id + index, m_global.format.decimalSeparator);
                AppendMenuW(parent, MF_STRING, static_cast<UINT_PTR>(entry.id + index), Wide(caption).c_str());
            }
        }
    }
    SetMenu(m_window, m_menu.Get());
}

void frmQLMain::OnInitMenu(HMENU menu) const {
    const int count = GetMenuItemCount(menu);
    for (int position = 0; position < count; ++position) {
        const UINT id = GetMenuItemID(menu, position);
        if (id == 0 || id == static_cast<UINT>(-1)) continue;
        const bool enabled = IsEnabled(static_cast<int>(id), m_global);
        const bool checked = IsChecked(static_cast<int>(id), m_global);
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
    static constexpr Route routes[] = {
        {mnuFileOperation, mnuFileOperation + 1, &frmQLMain::FileCommand},
        {mnuExit, mnuExit, &frmQLMain::Exit},
        {mnuTabPath, mnuTabPath + 1, &frmQLMain::SelectTabPath},
        {mnuTabFile, mnuTabFile + 1, &frmQLMain::SelectTabFile},
        {mnuScaleX, mnuScaleX + TimeAxis::kMenuZoomCount - 1, &frmQLMain::SelectZoomX},
        {mnuZoomX, mnuZoomX + 1, &frmQLMain::ZoomX},
        {mnuGoTo, mnuGoTo + 3, &frmQLMain::GoTo},
        {mnuScaleY, mnuScaleY + AmplitudeScale::kScaleCount - 1, &frmQLMain::SelectScaleY},
        {mnuZoomY, mnuZoomY + 1, &frmQLMain::ZoomY},
        {mnuBaseLine, mnuBaseLine + 1, &frmQLMain::BaseLine},
        {mnuChShow, mnuChShow + 2, &frmQLMain::SetAllShown},
        {mnuHelp, mnuHelp, &frmQLMain::Help},
        {mnuHelpLang, mnuHelpLang + 2, &frmQLMain::HelpLanguage},
        {mnuPathList, mnuPathList + kPathListEntries - 1, &frmQLMain::ChoosePath},
    };
    if (!IsEnabled(id, m_global)) return;
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
    if (page == 0) FilesChanged();
    ShowPages();
}

void frmQLMain::GoTo(int index) {
    ScrollBy(m_global.axis.PageShift(index));
}

bool frmQLMain::FocusKeepsItsKeys() const {
    const HWND focus = GetFocus();
    return focus != m_window && focus != m_graphBox.Window();
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
    if (message.message == WM_MOUSEWHEEL) {
        // The wheel belongs to what lies under the pointer, wherever the focus is.
        const HWND under = WindowFromPoint({GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)});
        if (under == m_graphBox.Window() || under == m_scaleXBox.Window() || under == m_scaleYBox.Window()) {
            OnWheel(message.wParam);
            return true;
        }
    }
    if (message.message != WM_KEYDOWN || m_window == nullptr) return false;
    if (message.hwnd != m_window && !IsChild(m_window, message.hwnd)) return false;
    if (message.wParam == VK_TAB) {
        const bool back = GetKeyState(VK_SHIFT) < 0;
        if (const HWND next = GetNextDlgTabItem(m_window, GetFocus(), back)) SetFocus(next);
        return true;
    }
    if (message.wParam == VK_F1 || message.wParam == VK_F5) {
        OnCommand(message.wParam == VK_F1 ? static_cast<int>(mnuHelp) : static_cast<int>(mnuTabFile));
        return true;
    }
    return FocusKeepsItsKeys() ? OnListKey(message.wParam) : OnKey(message.wParam);
}

bool frmQLMain::OnListKey(WPARAM key) {
    const HWND focus = GetFocus();
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (focus == GetDlgItem(m_window, lstDir) && key == VK_RETURN) {
        ShowFolder(m_browser.ChosenFolder());
    } else if (focus == m_pathListBox.Window() && (key == VK_RETURN || key == VK_SPACE || key == VK_DOWN)) {
        ShowPathList();
    } else if (focus == GetDlgItem(m_window, lstFile) && (key == VK_DELETE || key == VK_F2)) {
        OnCommand(mnuFileOperation + (key == VK_F2 ? 1 : 0));
    } else if (focus == GetDlgItem(m_window, lvCh) && control && key == 'A') {
        OnCommand(mnuChShow + (GetKeyState(VK_SHIFT) < 0 ? 1 : 0));
    } else if (focus == GetDlgItem(m_window, lvCh) && control && key == 'I') {
        OnCommand(mnuChShow + 2);
    } else {
        return false;
    }
    return true;
}

bool frmQLMain::OnKey(WPARAM key) {
    GraphKey name{};
    switch (key) {
        case VK_LEFT: name = GraphKey::Left; break;
        case VK_RIGHT: name = GraphKey::Right; break;
        case VK_UP: name = GraphKey::Up; break;
        case VK_DOWN: name = GraphKey::Down; break;
        case VK_PRIOR: name = GraphKey::PageUp; break;
        case VK_NEXT: name = GraphKey::PageDown; break;
        case VK_HOME: name = GraphKey::Home; break;
        case VK_END: name = GraphKey::End; break;
        case VK_ADD:
        case VK_OEM_PLUS: name = GraphKey::Plus; break;
        case VK_SUBTRACT:
        case VK_OEM_MINUS: name = GraphKey::Minus; break;
        case 'B': name = GraphKey::B; break;
        case 'D': name = GraphKey::D; break;
        default: return false;
    }
    const KeyAction action = ActionOf(name, GetKeyState(VK_CONTROL) < 0, GetKeyState(VK_SHIFT) < 0);
    if (action.command != 0) OnCommand(action.command);
    if (action.columns != 0) ScrollBy(action.columns);
    if (action.rows != 0) MoveBaseLine(action.rows);
    return action.command != 0 || action.columns != 0 || action.rows != 0;
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
        m_services.SetStatus(m_services.Text(IDS_NO_HELP));
    } else if (!ShowHelpFile(m_window, Wide(m_global.helpFile))) {
        m_services.SetStatus(m_services.Text(IDS_HELP_IS_AT) + u' ' + m_global.helpFile);
    }
}

void frmQLMain::HelpLanguage(int index) {
    m_global.settings.helpLanguage = static_cast<std::int16_t>(index);
    ChooseHelp();
}

void frmQLMain::UpdateCommands() const {
    m_tools.Update(m_global);
    m_goTo.Update(m_global);
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

void frmQLMain::ZoomX(int index) {
    SelectZoomX(m_global.axis.ZoomIndex() + (index == 0 ? 1 : -1));
}

void frmQLMain::ZoomButtonDown() {
    RECT control{};
    GetWindowRect(m_zoomX.Window(), &control);
    TrackPopupMenu(m_zoomMenu, TPM_CENTERALIGN | TPM_BOTTOMALIGN, (control.left + control.right) / 2, control.top, 0,
                   m_window, nullptr);
}

}  // namespace quillon
