#include "app/ControlIds.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"

namespace quillon {

void frmQLMain::OnListCommand(int id, int notification) {
    if (id == lstFile && notification == LBN_SELCHANGE) ClickFile();
    if (id == lstBlock && notification == LBN_SELCHANGE) ClickBlock();
    if (id == lstDir && notification == LBN_DBLCLK) ShowFolder(m_browser.ChosenFolder());
    if (id == lstDrive && notification == CBN_SELCHANGE) ShowFolder(m_browser.ChosenDrive());
    if (id == cboFileType && notification == CBN_SELCHANGE) SelectType();
}

LRESULT frmQLMain::OnNotify(const NMHDR* header) {
    if (header->code == TCN_SELCHANGE) ShowPages();
    if (header->idFrom == lvCh && header->code == LVN_ITEMCHANGED && !m_channels.Filling()) {
        const auto* change = reinterpret_cast<const NMLISTVIEW*>(header);
        if ((change->uChanged & LVIF_STATE) != 0 &&
            ((change->uNewState ^ change->uOldState) & LVIS_STATEIMAGEMASK) != 0) {
            StoreShown(change->iItem);
            Refresh();
        }
    }
    return 0;
}

void frmQLMain::ShowPages() {
    const auto page = [&](int tabs) { return TabCtrl_GetCurSel(GetDlgItem(m_window, tabs)); };
    const auto show = [&](int id, bool visible) {
        ShowWindow(GetDlgItem(m_window, id), visible ? SW_SHOWNA : SW_HIDE);
    };
    show(lstDrive, page(tabPath) == 0);
    show(lstDir, page(tabPath) == 0);
    show(lvCh, page(tabPath) == 1);
    show(cboFileType, page(tabFile) == 0);
    show(lstFile, page(tabFile) == 0);
    show(lstBlock, page(tabFile) == 1);
}

void frmQLMain::ShowFolder(const std::wstring& folder) {
    if (folder == m_browser.Folder()) return;
    if (!m_browser.ShowFolder(folder)) {
        m_services.SetStatus(Narrow16(folder) + u": " + m_services.Text(IDS_FOLDER_UNREADABLE));
        m_browser.ShowDrive();
        return;
    }
    m_services.SetStatus({});
    ClickFile();
}

void frmQLMain::SelectType() {
    const auto type = SendMessageW(GetDlgItem(m_window, cboFileType), CB_GETCURSEL, 0, 0);
    m_browser.SetPattern(m_global.library->FileTypeMask(static_cast<std::int32_t>(type)));
    if (!m_global.file.fileName.empty()) ClickFile();
}

void frmQLMain::ClickFile() {
    m_loader.OpenFile(Narrow16(m_browser.Folder()), Narrow16(m_browser.SelectedFile()), m_browser.Pattern());
}

void frmQLMain::ClickBlock() {
    m_loader.LoadBlock(static_cast<std::int16_t>(m_blocks.Selected()));
}

void frmQLMain::SetBlockItem(std::int32_t position, const std::u16string& text) {
    m_blocks.Set(position, Wide(text));
}

void frmQLMain::SelectBlockItem(std::int32_t position) {
    // Selecting by a message raises no click, so it follows by hand.
    m_blocks.Select(position);
    ClickBlock();
}

void frmQLMain::ResetViewState() {
    m_global.ranges.Reset();
    if (!m_closing) m_graph.Clear(m_layout.graph.width, m_layout.graph.height);
}

void frmQLMain::ShowBlock() {
    m_global.axis.SetBlock(m_global.block.sampleCount);
    m_global.axis.SetWidth(m_layout.graph.width);
    m_channels.Fill(m_global.block, m_global.slots);
    FitUnlessLegible();
    ShowCaption();
    Refresh();
}

void frmQLMain::ShowCaption() {
    std::wstring caption = L"Quillon";
    if (!m_global.file.fileName.empty()) {
        const std::wstring path = Wide(m_global.file.fileName);
        std::wstring block = m_blocks.Text(m_global.file.currentBlockIndex);
        block = block.substr(0, block.find(L'\t'));
        caption = path.substr(path.rfind(L'\\') + 1) + L" - [" + block + L"]";
    }
    SetWindowTextW(m_window, caption.c_str());
}

void frmQLMain::StoreShown(int item) {
    const auto at = static_cast<std::size_t>(item);
    if (at >= m_global.block.channelNumbers.size()) return;
    const std::int16_t number = m_global.block.channelNumbers[at];
    if (number < 0 || number >= kSlotCount) return;
    m_global.slots[static_cast<std::size_t>(number)].shown = m_channels.IsChecked(item);
}

void frmQLMain::SetAllShown(int index) {
    const int count = static_cast<int>(m_global.block.channelNumbers.size());
    for (int item = 0; item < count; ++item) {
        m_channels.Check(item, index == 0 || (index == 2 && !m_channels.IsChecked(item)));
        StoreShown(item);
    }
    Refresh();
}

}  // namespace quillon
