#include "app/win/FilterBar.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "app/ControlIds.h"
#include "app/ShownCommands.h"
#include "app/StringIds.h"
#include "app/ViewTables.h"
#include "app/win/KeyInput.h"
#include "base/win/WinHandle.h"

namespace quillon {

namespace {

constexpr std::array kBoxes{cboHighPass, cboLowPass, cboNotch, cboFilterOrder, cboFilterDirection};

bool IsTyped(FilterField field) {
    return field < FilterField::Order;
}

}  // namespace

HWND FilterBar::Box(FilterField field) const {
    return GetDlgItem(m_parent, kBoxes[static_cast<std::size_t>(field)]);
}

void FilterBar::Create(HWND parent, const ScreenDensity& density, ShownCommands& shown, const UserServices& services) {
    m_parent = parent;
    m_density = &density;
    m_shown = &shown;
    m_noGroup = Wide(services.Text(IDS_NO_GROUP));
    const auto make = [&](const wchar_t* className, const std::wstring& text, DWORD style, int id) {
        const HWND control =
            CreateWindowExW(0, className, text.c_str(), WS_CHILD | style, 0, 0, 0, 0, parent,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
        if (control == nullptr)
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "filters");
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(density.Font()), FALSE);
        return control;
    };
    constexpr DWORD label = SS_NOPREFIX | SS_CENTERIMAGE | SS_ENDELLIPSIS;
    make(WC_STATICW, m_noGroup, label | SS_CENTER, lblFilterGroup);
    for (int at = 0; at < kFilterFields; ++at) {
        const auto field = static_cast<FilterField>(at);
        const int id = kBoxes[static_cast<std::size_t>(at)];
        if (IsTyped(field)) {
            const std::wstring name = Wide(PlainCaption(services.Text(IDS_FILTER_0 + at))) + L':';
            make(WC_STATICW, name, label | SS_RIGHT, id - 1);
        }
        const DWORD style = IsTyped(field) ? CBS_DROPDOWN | CBS_AUTOHSCROLL : CBS_DROPDOWNLIST;
        const HWND box = make(WC_COMBOBOXW, {}, WS_TABSTOP | WS_VSCROLL | style, id);
        for (const double value : OfferedValues(field))
            SendPointer(box, CB_ADDSTRING, 0, Wide(shown.Caption({field, value})).c_str());
    }
    Measure();
}

void FilterBar::Measure() {
    const WindowDC dc(m_parent);
    const SelectScope selected(dc.Get(), m_density->Font());
    const auto widthOf = [&](const std::wstring& text) {
        SIZE size{};
        GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
        return static_cast<std::int32_t>(size.cx);
    };
    const auto width = [&](int id) -> std::int32_t& { return m_widths[static_cast<std::size_t>(id - lblFilterGroup)]; };
    width(lblFilterGroup) = widthOf(m_noGroup) + m_density->Scaled(8);
    for (int at = 0; at < kFilterFields; ++at) {
        const auto field = static_cast<FilterField>(at);
        const int id = kBoxes[static_cast<std::size_t>(at)];
        if (IsTyped(field)) width(id - 1) = widthOf(WindowText(GetDlgItem(m_parent, id - 1))) + m_density->Scaled(8);
        std::int32_t widest = 0;
        for (const double value : OfferedValues(field))
            widest = std::max(widest, widthOf(Wide(m_shown->Caption({field, value}))));
        // Beside the text its margins and the arrow.
        width(id) = widest + m_density->Metric(SM_CXVSCROLL) + m_density->Scaled(14);
    }
}

void FilterBar::Update(const CommandState& state) {
    if (m_parent == nullptr) return;
    const unsigned own = ++m_updates;
    for (int id = lblFilterGroup; id <= cboFilterDirection; ++id) {
        const HWND control = GetDlgItem(m_parent, id);
        const bool isShown = (GetWindowLongW(control, GWL_STYLE) & WS_VISIBLE) != 0;
        if (isShown != state.filtersShown) {
            const HWND focus = GetFocus();
            if (isShown && (focus == control || IsChild(control, focus))) SetFocus(GetDlgItem(m_parent, pbGraph));
            // The box has taken what was typed in it: the row has been updated meanwhile.
            if (own != m_updates) return;
            ShowWindow(control, state.filtersShown ? SW_SHOWNA : SW_HIDE);
        }
        if ((IsWindowEnabled(control) != FALSE) != state.hasGroup) EnableWindow(control, state.hasGroup);
    }
    ShowGroup();
    for (int at = 0; at < kFilterFields; ++at) {
        const auto field = static_cast<FilterField>(at);
        std::wstring text =
            state.hasGroup ? Wide(m_shown->Caption({field, ValueOf(state.filter, field)})) : std::wstring();
        // What is being typed stays, unless something else is chosen.
        if (std::exchange(m_texts[static_cast<std::size_t>(at)], text) != text) ShowChoice(field);
    }
}

void FilterBar::ShowGroup() {
    const auto group = m_shown->Group();
    std::wstring text = !group ? std::wstring() : group->empty() ? m_noGroup : Wide(*group);
    if (std::exchange(m_group, text) == text) return;
    // A label needs a text to have a name.
    SetWindowTextW(GetDlgItem(m_parent, lblFilterGroup), text.empty() ? m_noGroup.c_str() : text.c_str());
}

void FilterBar::ShowChoice(FilterField field) const {
    const std::wstring& text = m_texts[static_cast<std::size_t>(field)];
    const auto found = static_cast<WPARAM>(
        SendMessageW(Box(field), CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str())));
    SendMessageW(Box(field), CB_SETCURSEL, text.empty() ? static_cast<WPARAM>(-1) : found, 0);
    if (IsTyped(field)) SetWindowTextW(Box(field), text.c_str());
}

void FilterBar::Choose(FilterField field) const {
    const LRESULT index = SendMessageW(Box(field), CB_GETCURSEL, 0, 0);
    const std::span<const double> values = OfferedValues(field);
    if (index < 0 || index >= static_cast<LRESULT>(values.size())) return;
    m_shown->Choose({field, values[static_cast<std::size_t>(index)]});
    // What was refused is not shown as if it were chosen.
    ShowChoice(field);
}

void FilterBar::TakeTyped(FilterField field) const {
    if (!IsTyped(field)) return;
    const std::wstring typed = WindowText(Box(field));
    if (typed != m_texts[static_cast<std::size_t>(field)]) m_shown->Type(field, Narrow16(typed));
}

void FilterBar::OnCommand(int id, int notification) {
    const auto found = std::find(kBoxes.begin(), kBoxes.end(), id);
    if (found == kBoxes.end()) return;
    const auto field = static_cast<FilterField>(found - kBoxes.begin());
    if (notification == CBN_SELCHANGE) return Choose(field);
    // So that what is typed replaces it.
    if (notification == CBN_SETFOCUS && IsTyped(field)) SendMessageW(Box(field), CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
    if (notification == CBN_KILLFOCUS || notification == KeyInput::kEntered) TakeTyped(field);
    // What was refused is not shown as if it were chosen.
    if (notification == CBN_KILLFOCUS || notification == KeyInput::kEntered || notification == KeyInput::kCancelled)
        ShowChoice(field);
    if (notification == CBN_CLOSEUP || notification == KeyInput::kEntered || notification == KeyInput::kCancelled)
        SetFocus(GetDlgItem(m_parent, pbGraph));
}

}  // namespace quillon
