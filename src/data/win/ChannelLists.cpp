#include "data/win/ChannelLists.h"

#include <algorithm>
#include <utility>

#include "base/Density.h"
#include "base/win/Dpi.h"
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
    SetTabStop();
    AddToList(0);
    Select(m_selected);
}

void BlockList::SetTabStop() const {
    const int tabStop = 90;  // in quarters of a character's width
    SendPointer(m_list, LB_SETTABSTOPS, 1, &tabStop);
}

void BlockList::Fill(const std::vector<std::u16string>& lines) {
    m_selected = -1;
    std::vector<std::size_t> changed;
    for (std::size_t line = 0; line < std::min(m_lines.size(), lines.size()); ++line) {
        std::wstring text = Wide(lines[line]);
        if (text != m_lines[line]) changed.push_back(line);
        m_lines[line] = std::move(text);
    }
    constexpr std::size_t few = 200;
    const std::size_t removed = m_lines.size() - std::min(m_lines.size(), lines.size());
    if (m_list != nullptr && changed.size() + removed > few) {
        // One by one each would move all lines behind it.
        SendMessageW(m_list, LB_RESETCONTENT, 0, 0);
        m_lines.clear();
        return Append(lines);
    }
    for (; m_lines.size() > lines.size(); m_lines.pop_back())
        if (m_list != nullptr) SendMessageW(m_list, LB_DELETESTRING, m_lines.size() - 1, 0);
    for (const std::size_t line : changed) {
        if (m_list == nullptr) break;
        SendMessageW(m_list, LB_DELETESTRING, line, 0);
        SendPointer(m_list, LB_INSERTSTRING, line, m_lines[line].c_str());
    }
    Append({lines.begin() + Count(), lines.end()});
}

void BlockList::Append(const std::vector<std::u16string>& lines) {
    const std::size_t before = m_lines.size();
    for (const std::u16string& line : lines) m_lines.push_back(Wide(line));
    if (m_list != nullptr && m_lines.size() > before) AddToList(before);
}

void BlockList::AddToList(std::size_t first) {
    const FillScope fill(m_list);
    // Without it the list moves all of its lines each time that some have been added.
    SendMessageW(m_list, LB_INITSTORAGE, m_lines.size() - first, 0);
    for (std::size_t line = first; line < m_lines.size(); ++line)
        SendPointer(m_list, LB_ADDSTRING, 0, m_lines[line].c_str());
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

POINT BelowLine(HWND list, int item) {
    RECT line{};
    ListView_GetItemRect(list, item, &line, LVIR_LABEL);
    POINT place{line.left, line.bottom};
    ClientToScreen(list, &place);
    return place;
}

void ChannelList::Attach(HWND list, ImageList colors, int dpi) {
    m_list = list;
    SetColors(std::move(colors));
    m_dpi = dpi;
    ListView_SetExtendedListViewStyle(list, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH | LVCF_SUBITEM;
    column.cx = 100;
    ListView_InsertColumn(list, 0, &column);
    for (const int further : {1, 2}) {
        column.iSubItem = further;
        ListView_InsertColumn(list, further, &column);
    }
}

void ChannelList::SetColors(ImageList colors) {
    ListView_SetImageList(m_list, colors.Get(), LVSIL_SMALL);
    m_colors = std::move(colors);
    InvalidateRect(m_list, nullptr, FALSE);
}

void ChannelList::SetDensity(ImageList colors, int dpi) {
    const FlagScope quiet(m_filling);
    m_dpi = dpi;
    SetColors(std::move(colors));
    // The list draws the boxes once, in the size of the density at that time, and then clears them.
    std::vector<bool> checked;
    for (int item = 0; item < ListView_GetItemCount(m_list); ++item) checked.push_back(IsChecked(item));
    ListView_SetExtendedListViewStyleEx(m_list, LVS_EX_CHECKBOXES, 0);
    ListView_SetExtendedListViewStyleEx(m_list, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    for (std::size_t item = 0; item < checked.size(); ++item)
        ListView_SetCheckState(m_list, static_cast<int>(item), checked[item]);
}

void ChannelList::Fill(const std::vector<ChannelLine>& lines) {
    const FlagScope quiet(m_filling);
    const FillScope fill(m_list);
    ListView_DeleteAllItems(m_list);
    m_hasRates = std::any_of(lines.begin(), lines.end(), [](const ChannelLine& line) { return !line.rate.empty(); });
    for (const ChannelLine& line : lines) {
        std::wstring title = Wide(line.title);
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_IMAGE;
        item.iItem = ListView_GetItemCount(m_list);
        item.iImage = line.number >= 0 ? line.number % ImageList_GetImageCount(m_colors.Get()) : 0;
        item.pszText = title.data();
        ListView_InsertItem(m_list, &item);
        for (int column = 1; column <= 2; ++column) {
            std::wstring text = Wide(column == 1 ? line.unit : line.rate);
            LVITEMW detail{};
            detail.mask = LVIF_TEXT;
            detail.iItem = item.iItem;
            detail.iSubItem = column;
            detail.pszText = text.data();
            ListView_SetItem(m_list, &detail);
        }
        ListView_SetCheckState(m_list, item.iItem, line.shown);
    }
    FitColumns();
}

void ChannelList::FitColumns() const {
    // Use the client width without scroll bars left from the previous content: otherwise they would remain although
    // unneeded.
    RECT list{};
    GetWindowRect(m_list, &list);
    InflateRect(&list, -MetricAt(m_dpi, SM_CXEDGE), -MetricAt(m_dpi, SM_CYEDGE));
    RECT item{};
    item.left = LVIR_BOUNDS;
    const int items = ListView_GetItemCount(m_list);
    if (items > 0) SendPointer(m_list, LVM_GETITEMRECT, 0, &item);
    const bool scrolls = items * (item.bottom - item.top) > list.bottom - list.top;
    const int unit = ScaledTo(m_dpi, 56);
    const int width = static_cast<int>(list.right - list.left) - (scrolls ? MetricAt(m_dpi, SM_CXVSCROLL) : 0);
    const int details = m_hasRates ? 2 : 1;
    const int detail = width > (details + 1) * unit ? unit : width / (details + 1);
    ListView_SetColumnWidth(m_list, 0, width - details * detail);
    ListView_SetColumnWidth(m_list, 1, detail);
    ListView_SetColumnWidth(m_list, 2, m_hasRates ? detail : 0);
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

int ChannelList::ItemWithKeyboard() const {
    return m_list != nullptr && GetFocus() == m_list ? ListView_GetNextItem(m_list, -1, LVNI_FOCUSED) : -1;
}

void ChannelList::Check(int item, bool checked) {
    const FlagScope quiet(m_filling);
    ListView_SetCheckState(m_list, item, checked);
}

}  // namespace quillon
