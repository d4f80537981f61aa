#include "app/win/MarksPane.h"

#include <algorithm>
#include <utility>

#include "app/StringIds.h"
#include "app/win/KeyInput.h"
#include "app/win/TableWindow.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "data/win/ChannelLists.h"

namespace quillon {

namespace {

/// Widths of the columns at 96 dots per inch, but for the text, which takes the rest.
constexpr int kTimeWidth = 84;
constexpr int kDurationWidth = 56;
constexpr int kChannelWidth = 60;
constexpr int kLeastText = 60;

}  // namespace

std::vector<std::u16string> MarksPane::Captions() const {
    std::vector<std::u16string> captions;
    for (int column = 0; column < MarkList::ColumnCount; ++column)
        captions.push_back(m_services.Text(IDS_MARK_COLUMN_0 + column));
    return captions;
}

void MarksPane::Attach(HWND filter, HWND list) {
    m_filter = filter;
    m_window = list;
    SendPointer(filter, EM_SETCUEBANNER, TRUE, Wide(m_services.Text(IDS_MARK_FILTER)).c_str());
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    const std::vector<std::u16string> captions = Captions();
    for (int at = 0; at < MarkList::ColumnCount; ++at) {
        std::wstring caption = Wide(captions[static_cast<std::size_t>(at)]);
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.cx = m_parts.density.Scaled(kTimeWidth);
        column.pszText = caption.data();
        column.iSubItem = at;
        ListView_InsertColumn(list, at, &column);
    }
    MarksChanged();
}

void MarksPane::MarksChanged() {
    m_list.Update();
    if (m_window == nullptr) return;
    const std::vector<BlockMark>& marks = m_parts.document.Block().marks;
    m_hasDurations = std::any_of(marks.begin(), marks.end(), [](const BlockMark& mark) { return mark.seconds > 0.0; });
    m_hasChannels = std::any_of(marks.begin(), marks.end(),
                                [](const BlockMark& mark) { return mark.text.find(u"@@") != std::u16string::npos; });
    m_filling = true;
    ListView_SetItemCountEx(m_window, static_cast<int>(m_list.Count()), LVSICF_NOSCROLL);
    ListView_SetItemState(m_window, -1, 0, LVIS_SELECTED);
    m_filling = false;
    InvalidateRect(m_window, nullptr, FALSE);
    FitColumns();
}

void MarksPane::OnBox(int notification) {
    if (notification == EN_CHANGE) return TakeFilter();
    if (notification == KeyInput::kCancelled) SetWindowTextW(m_filter, L"");
    if (notification != KeyInput::kEntered || m_list.Count() == 0) return;
    SetFocus(m_window);
    ListView_SetItemState(m_window, 0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    GoTo(0);
}

void MarksPane::TakeFilter() {
    std::wstring typed(static_cast<std::size_t>(GetWindowTextLengthW(m_filter)) + 1, L'\0');
    typed.resize(static_cast<std::size_t>(GetWindowTextW(m_filter, typed.data(), static_cast<int>(typed.size()))));
    if (m_list.SetFilter(Narrow16(typed))) MarksChanged();
}

void MarksPane::FitColumns() const {
    if (m_window == nullptr) return;
    RECT client{};
    GetClientRect(m_window, &client);
    const auto scaled = [&](int width) { return m_parts.density.Scaled(width); };
    const int duration = m_hasDurations ? scaled(kDurationWidth) : 0;
    const int channel = m_hasChannels ? scaled(kChannelWidth) : 0;
    const int text = static_cast<int>(client.right) - scaled(kTimeWidth) - duration - channel;
    ListView_SetColumnWidth(m_window, MarkList::Time, scaled(kTimeWidth));
    ListView_SetColumnWidth(m_window, MarkList::Duration, duration);
    ListView_SetColumnWidth(m_window, MarkList::Channel, channel);
    ListView_SetColumnWidth(m_window, MarkList::Text, std::max(text, scaled(kLeastText)));
}

void MarksPane::FillCell(LVITEMW& item) {
    const auto line = static_cast<std::size_t>(item.iItem);
    if ((item.mask & LVIF_TEXT) == 0 || item.iItem < 0 || line >= m_list.Count()) return;
    m_cell = Wide(m_list.Cell(line, static_cast<MarkList::Column>(item.iSubItem)));
    item.pszText = m_cell.data();
}

void MarksPane::GoTo(int line) const {
    if (line >= 0 && static_cast<std::size_t>(line) < m_list.Count())
        onGoTo(m_list.Mark(static_cast<std::size_t>(line)).position + 1);
}

void MarksPane::Run(int command) const {
    if (command == 0) return Copy();
    command == 1 ? SaveCsv() : ShowCounts();
}

bool MarksPane::OpenMenu() const {
    if (m_window == nullptr || GetFocus() != m_window) return false;
    onMenu(BelowLine(m_window, std::max(ListView_GetNextItem(m_window, -1, LVNI_FOCUSED), 0)));
    return true;
}

void MarksPane::OnNotify(const NMHDR* header) {
    if (header->code == LVN_GETDISPINFOW)
        return FillCell(reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(header))->item);
    if (header->code == NM_RETURN || header->code == NM_DBLCLK)
        return GoTo(ListView_GetNextItem(m_window, -1, LVNI_FOCUSED));
    if (header->code == NM_RCLICK) {
        POINT place{};
        GetCursorPos(&place);
        return onMenu(place);
    }
    if (header->code != LVN_ITEMCHANGED || m_filling) return;
    // The view walks with the line that the user moves to.
    const auto* change = reinterpret_cast<const NMLISTVIEW*>(header);
    const bool moved = (change->uNewState & LVIS_FOCUSED) != 0 && (change->uOldState & LVIS_FOCUSED) == 0;
    if (moved && GetFocus() == m_window) GoTo(change->iItem);
}

void MarksPane::Copy() const {
    std::vector<std::size_t> lines;
    for (int at = ListView_GetNextItem(m_window, -1, LVNI_SELECTED); at >= 0;
         at = ListView_GetNextItem(m_window, at, LVNI_SELECTED))
        lines.push_back(static_cast<std::size_t>(at));
    TextTable table;
    table.columns = Captions();
    const std::size_t count = lines.size() < 2 ? m_list.Count() : lines.size();
    for (std::size_t at = 0; at < count; ++at) table.rows.push_back(m_list.Row(lines.size() < 2 ? at : lines[at]));
    std::u16string error;
    const std::unique_ptr<TextSink> sink = m_parts.openText(std::u16string(kClipboardTarget), error);
    if (sink) sink->Write(Utf8(TabbedText(table)));
    const bool done = sink && sink->Close();
    onMessage(done ? m_services.Text(IDS_MARKS_COPIED) + u' ' + Decimal(static_cast<std::int64_t>(count))
                   : (sink ? sink->ErrorText() : error));
}

void MarksPane::SaveCsv() const {
    SaveFileDialog& dialog = m_parts.saveDialog;
    const std::u16string& recording = m_parts.document.File().fileName;
    dialog.title = m_services.Text(IDS_MARKS_SAVE);
    dialog.filter = m_services.Text(IDS_MARKS_FILTER_CSV);
    dialog.filterIndex = 1;
    dialog.folder = FolderOf(recording);
    dialog.fileName = BareNameOf(recording) + u".csv";
    if (!dialog.Show()) return;
    std::u16string error;
    const std::unique_ptr<TextSink> sink = m_parts.openText(dialog.fileName, error);
    // A byte order mark: spreadsheets take the text for that of a code page without it.
    if (sink) sink->Write("\xEF\xBB\xBF" + m_list.Csv());
    const bool done = sink && sink->Close();
    onMessage(done ? m_services.Text(IDS_MARKS_SAVED) + u' ' + dialog.fileName : (sink ? sink->ErrorText() : error));
}

void MarksPane::ShowCounts() const {
    TextTable table;
    table.title = PlainCaption(m_services.Text(IDS_MARKLIST_0 + 2));
    table.columns = {m_services.Text(IDS_MARK_COLUMN_0 + MarkList::Text), m_services.Text(IDS_MARK_NUMBER)};
    table.close = m_services.Text(IDS_CLOSE);
    table.copy = m_services.Text(IDS_COPY);
    table.numeric = true;
    table.rows = m_list.Counts();
    ShowTable(GetAncestor(m_window, GA_ROOT), std::move(table));
}

}  // namespace quillon
