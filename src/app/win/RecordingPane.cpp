#include "app/win/RecordingPane.h"

#include <algorithm>
#include <utility>

#include "app/Commands.h"
#include "app/ControlIds.h"
#include "data/ChannelSelection.h"

namespace quillon {

namespace {

constexpr int kIcon = 16;  // pixels at 96 per inch

}  // namespace

void RecordingPane::Attach(HWND window) {
    m_blocks.Attach(GetDlgItem(window, lstBlock));
    m_channels.Attach(GetDlgItem(window, lvCh), TraceIcons(), m_density.Dpi());
    marks.Attach(GetDlgItem(window, edtMarks), GetDlgItem(window, lvMarks));
}

void RecordingPane::DensityChanged() {
    m_blocks.SetTabStop();
    m_channels.SetDensity(TraceIcons(), m_density.Dpi());
}

void RecordingPane::OnCommand(int id, int notification) {
    if (id == lstBlock && notification == LBN_SELCHANGE) onBlock(m_blocks.Selected());
    if (id == edtMarks) marks.OnBox(notification);
}

void RecordingPane::OnNotify(const NMHDR* header) {
    if (header->idFrom == lvCh) OnChannels(header);
    if (header->idFrom == lvMarks) marks.OnNotify(header);
}

void RecordingPane::FillBlocks() {
    m_blocks.Fill(m_document.BlockTitles());
    m_blocks.Select(m_document.File().currentBlockIndex);
}

ImageList RecordingPane::TraceIcons() const {
    return MakeTraceIcons(m_density.Scaled(kIcon), *m_view.Look().colors);
}

void RecordingPane::LookChanged() {
    // The list is made later than the graph.
    if (m_channels.Window() != nullptr) m_channels.SetColors(TraceIcons());
}

void RecordingPane::FillChannels(bool keepsChannel) {
    marks.MarksChanged();
    m_signals = m_document.SignalOrder();
    std::vector<ChannelLine> lines;
    for (const std::int16_t number : m_signals) {
        const Signal signal = m_document.GetSignal(number);
        const double rate = signal.block.sampleRate;
        lines.push_back(
            {signal.title, signal.unit,
             rate == m_document.Block().sampleRate ? std::u16string() : FormatFrequency(rate, u" ", false, m_format),
             signal.block.channelNumbers[static_cast<std::size_t>(signal.channel - 1)], signal.shown});
    }
    m_channels.Fill(lines);
    if (keepsChannel) m_channels.Choose(ItemOf(m_document.CurrentChannel()));
}

void RecordingPane::OfferMarksOnly() const {
    const HWND window = GetParent(m_channels.Window());
    const auto& stored = m_document.Block().stored;
    // Not while the user walks through the list of files, which would be gone.
    if (stored && stored->HasMarksOnly() && GetFocus() != GetDlgItem(window, lstFile))
        PostMessageW(window, WM_COMMAND, mnuTabFile + 2, 0);
}

int RecordingPane::ItemOf(std::int16_t signal) const {
    return static_cast<int>(std::find(m_signals.begin(), m_signals.end(), signal) - m_signals.begin());
}

void RecordingPane::OnChannels(const NMHDR* header) {
    // A click on the item text, or moving to it by keys, makes it the current channel.
    // A click that changes the current item sends two notifications: LVN_ITEMCHANGED and NM_CLICK.
    if (header->code == LVN_KEYDOWN) m_channelByKey = true;
    if (header->code == NM_CLICK && m_channels.IsOnItem(header) && !std::exchange(m_channelReported, false))
        onChannel();
    if (header->code == NM_RCLICK) {
        POINT place{};
        GetCursorPos(&place);
        const auto item = static_cast<std::size_t>(reinterpret_cast<const NMITEMACTIVATE*>(header)->iItem);
        return item < m_signals.size() ? onMenu(place, m_signals[item]) : void();
    }
    if (header->code != LVN_ITEMCHANGED || m_channels.Filling()) return;
    const auto* change = reinterpret_cast<const NMLISTVIEW*>(header);
    if ((change->uChanged & LVIF_STATE) == 0) return;
    if (change->iItem < 0 || static_cast<std::size_t>(change->iItem) >= m_signals.size()) return;
    const std::int16_t signal = m_signals[static_cast<std::size_t>(change->iItem)];
    const bool chosen = (change->uNewState & LVIS_SELECTED) != 0 && (change->uOldState & LVIS_SELECTED) == 0;
    if (chosen && signal <= m_document.Block().channelCount) {
        m_channelReported = !std::exchange(m_channelByKey, false);
        m_document.ChooseChannel(signal);
        onChannel();
    }
    if (((change->uNewState ^ change->uOldState) & LVIS_STATEIMAGEMASK) != 0) {
        m_document.Show(signal, m_channels.IsChecked(change->iItem));
        onShown();
    }
}

bool RecordingPane::OpenMenu() const {
    if (marks.OpenMenu()) return true;
    const int item = m_channels.ItemWithKeyboard();
    if (item < 0 || static_cast<std::size_t>(item) >= m_signals.size()) return false;
    onMenu(BelowLine(m_channels.Window(), item), m_signals[static_cast<std::size_t>(item)]);
    return true;
}

void RecordingPane::Choose(std::int16_t channel) {
    if (channel > m_document.Block().channelCount) return;
    m_channels.Choose(ItemOf(channel));
    m_document.ChooseChannel(channel);
    onChannel();
}

void RecordingPane::SetAllShown(int index) {
    const int count = static_cast<int>(m_signals.size());
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
    for (std::size_t item = 0; item < m_signals.size(); ++item) {
        // The check mark of a channel without a slot is the list's own.
        const Signal signal = m_document.GetSignal(m_signals[item]);
        const std::int16_t number = signal.block.channelNumbers[static_cast<std::size_t>(signal.channel - 1)];
        if (SlotOf(m_document.Slots(), number) != nullptr) m_channels.Check(static_cast<int>(item), signal.shown);
    }
    onShown();
}

}  // namespace quillon
