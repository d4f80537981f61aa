#include "data/win/ChannelLists.h"

#include <algorithm>
#include <utility>

#include "data/ChannelSelection.h"
#include "data/win/FillScope.h"

namespace quillon {

namespace {

/// Sets a flag for its own lifetime.
class FlagScope {
  public:
    explicit FlagScope(bool& flag) : m_flag(flag) { m_flag = true; }
    ~FlagScope() { m_flag = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

  private:
    bool& m_flag;
};

}  // namespace

void BlockList::Attach(HWND list) {
    m_list = list;
    const int tabStop = 90;  // in quarters of a character's width
    SendPointer(m_list, LB_SETTABSTOPS, 1, &tabStop);
    for (const std::wstring& line : m_lines) SendPointer(m_list, LB_ADDSTRING, 0, line.c_str());
    Select(m_selected);
}

void BlockList::Fill(const std::vector<std::u16string>& lines) {
    const int count = static_cast<int>(lines.size());
    m_selected = -1;
    for (int position = Count() - 1; m_list != nullptr && position >= count; --position)
        SendMessageW(m_list, LB_DELETESTRING, static_cast<WPARAM>(position), 0);
    m_lines.resize(std::min(m_lines.size(), lines.size()));
    for (int position = 0; position < count; ++position) {
        const std::wstring text = Wide(lines[static_cast<std::size_t>(position)]);
        const bool replaced = position < Count();
        if (replaced) {
            if (std::exchange(m_lines[static_cast<std::size_t>(position)], text) == text) continue;
            if (m_list != nullptr) SendMessageW(m_list, LB_DELETESTRING, static_cast<WPARAM>(position), 0);
        } else {
            m_lines.push_back(text);
        }
        if (m_list != nullptr) SendPointer(m_list, LB_INSERTSTRING, static_cast<WPARAM>(position), text.c_str());
    }
}

int BlockList::Selected() const {
    return m_list == nullptr ? m_selected : static_cast<int>(SendMessageW(m_list, LB_GETCURSEL, 0, 0));
}

void BlockList::Select(int position) {
    m_selected = position;
    if (m_list != nullptr) SendMessageW(m_list, LB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

std::wstring BlockList::Text(int position) const {
    return position >= 0 && position < Count() ? m_lines[static_cast<std::size_t>(position)] : std::wstring();
}

void ChannelList::Attach(HWND list, ImageList colors, int dpi) {
    m_list = list;
    m_colors = std::move(colors);
    m_dpi = dpi;
    ListView_SetExtendedListViewStyle(list, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    ListView_SetImageList(list, m_colors.Get(), LVSIL_SMALL);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH | LVCF_SUBITEM;
    column.cx = 100;
    ListView_InsertColumn(list, 0, &column);
    column.iSubItem = 1;
    ListView_InsertColumn(list, 1, &column);
}

void ChannelList::Fill(const ViewBlock& block, const ChannelSlots& slots) {
    const FlagScope quiet(m_filling);
    const FillScope fill(m_list);
    ListView_DeleteAllItems(m_list);
    for (std::size_t at = 0; at < block.channelNumbers.size(); ++at) {
        const std::int16_t number = block.channelNumbers[at];
        const ChannelSlot* found = SlotOf(slots, number);
        const ChannelSlot slot = found != nullptr ? *found : ChannelSlot{{}, {}, false};
        std::wstring title = Wide(slot.title);
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_IMAGE;
        item.iItem = static_cast<int>(at);
        item.iImage = number >= 0 ? number % ImageList_GetImageCount(m_colors.Get()) : 0;
        item.pszText = title.data();
        ListView_InsertItem(m_list, &item);
        std::wstring unit = Wide(slot.unit);
        LVITEMW detail{};
        detail.mask = LVIF_TEXT;
        detail.iItem = item.iItem;
        detail.iSubItem = 1;
        detail.pszText = unit.data();
        ListView_SetItem(m_list, &detail);
        ListView_SetCheckState(m_list, item.iItem, slot.shown);
    }
    FitColumns();
}

void ChannelList::FitColumns() const {
    // Use the client width without scroll bars left from the previous content: otherwise they would remain although
    // unneeded.
    RECT list{};
    GetWindowRect(m_list, &list);
    InflateRect(&list, -GetSystemMetrics(SM_CXEDGE), -GetSystemMetrics(SM_CYEDGE));
    RECT item{};
    item.left = LVIR_BOUNDS;
    const int items = ListView_GetItemCount(m_list);
    if (items > 0) SendPointer(m_list, LVM_GETITEMRECT, 0, &item);
    const bool scrolls = items * (item.bottom - item.top) > list.bottom - list.top;
    const int unit = MulDiv(56, m_dpi, 96);
    const int width = static_cast<int>(list.right - list.left) - (scrolls ? GetSystemMetrics(SM_CXVSCROLL) : 0);
    ListView_SetColumnWidth(m_list, 0, width > 2 * unit ? width - unit : width / 2);
    ListView_SetColumnWidth(m_list, 1, width > 2 * unit ? unit : width / 2);
}

bool ChannelList::IsOnItem(const NMHDR* notification) const {
    LVHITTESTINFO hit{};
    hit.pt = reinterpret_cast<const NMITEMACTIVATE*>(notification)->ptAction;
    return ListView_HitTest(m_list, &hit) >= 0 && (hit.flags & LVHT_ONITEMSTATEICON) == 0;
}

bool ChannelList::IsChecked(int item) const {
    return ListView_GetCheckState(m_list, item) != 0;
}

void ChannelList::Choose(int item) {
    const FlagScope quiet(m_filling);
    ListView_SetItemState(m_list, item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(m_list, item, FALSE);
}

void ChannelList::ShowFocus(int item) const {
    if (ListView_GetNextItem(m_list, -1, LVNI_FOCUSED) < 0)
        ListView_SetItemState(m_list, item, LVIS_FOCUSED, LVIS_FOCUSED);
}

void ChannelList::Check(int item, bool checked) {
    const FlagScope quiet(m_filling);
    ListView_SetCheckState(m_list, item, checked);
}

}  // namespace quillon
