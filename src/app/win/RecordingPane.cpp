#include "app/win/RecordingPane.h"

#include <utility>

#include "data/ChannelSelection.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

void RecordingPane::Attach(HWND blocks, HWND channels, int dpi) {
    m_blocks.Attach(blocks);
    m_channels.Attach(channels, MakeTraceIcons(MulDiv(16, dpi, 96)), dpi);
}

void RecordingPane::FillBlocks() {
    m_blocks.Fill(m_document.BlockTitles());
    m_blocks.Select(m_document.File().currentBlockIndex);
}

void RecordingPane::FillChannels(bool keepsChannel) {
    m_channels.Fill(m_document.Block(), m_document.Slots());
    if (keepsChannel) m_channels.Choose(m_document.CurrentChannel() - 1);
}

void RecordingPane::OnNotify(const NMHDR* header) {
    // A click on the item text, or moving to it by keys, makes it the current channel.
    // A click that changes the current item sends two notifications: LVN_ITEMCHANGED and NM_CLICK.
    if (header->code == LVN_KEYDOWN) m_channelByKey = true;
    if (header->code == NM_CLICK && m_channels.IsOnItem(header) && !std::exchange(m_channelReported, false))
        onChannel();
    if (header->code != LVN_ITEMCHANGED || m_channels.Filling()) return;
    const auto* change = reinterpret_cast<const NMLISTVIEW*>(header);
    if ((change->uChanged & LVIF_STATE) == 0) return;
    const auto channel = static_cast<std::int16_t>(change->iItem + 1);
    if ((change->uNewState & LVIS_SELECTED) != 0 && (change->uOldState & LVIS_SELECTED) == 0) {
        m_channelReported = !std::exchange(m_channelByKey, false);
        m_document.ChooseChannel(channel);
        onChannel();
    }
    if (((change->uNewState ^ change->uOldState) & LVIS_STATEIMAGEMASK) != 0) {
        m_document.Show(channel, m_channels.IsChecked(change->iItem));
        onShown();
    }
}

void RecordingPane::Choose(std::int16_t channel) {
    m_channels.Choose(channel - 1);
    m_document.ChooseChannel(channel);
    onChannel();
}

void RecordingPane::SetAllShown(int index) {
    const int count = static_cast<int>(m_document.Block().channelNumbers.size());
    // The check mark of a channel without a slot is the list's own.
    for (int item = 0; item < count; ++item)
        m_channels.Check(item, index == 0 || (index == 2 && !m_channels.IsChecked(item)));
    if (index == 2) {
        m_document.InvertShown();
    } else {
        m_document.ShowAll(index == 0);
    }
    onShown();
}

void RecordingPane::ShowAlone(std::int16_t channel) {
    m_document.Solo(m_document.IsSolo() ? std::nullopt : std::optional(channel));
    const ViewBlock& block = m_document.Block();
    for (std::int16_t each = 1; each <= block.channelCount; ++each) {
        if (SlotOf(m_document.Slots(), block.channelNumbers[static_cast<std::size_t>(each - 1)]) != nullptr)
            m_channels.Check(each - 1, m_document.IsShown(each));
    }
    onShown();
}

}  // namespace quillon
