#include <algorithm>

#include "app/ControlIds.h"
#include "app/GraphKeys.h"
#include "app/win/InputBox.h"
#include "app/win/TableWindow.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "view/PositionInput.h"

namespace quillon {

namespace {

/// A caption without the mark of its mnemonic and its dots.
std::wstring Plain(const std::u16string& caption) {
    std::wstring text;
    for (const wchar_t letter : Wide(caption)) {
        if (letter != L'&' && letter != L'.') text.push_back(letter);
    }
    return text;
}

}  // namespace

void frmQLMain::ViewChanged(const ViewChange& change) {
    if (change.redraw || change.scrolled != 0) Refresh(change.scrolled);
    m_playback.ViewChanged(change);
    if (!change.selection) return;
    ShowSelection();
    if (m_view.Selected().active) ShowRange();
    UpdateCommands();
}

void frmQLMain::MoveView(int index) {
    const quillon::Move move = Moves()[static_cast<std::size_t>(index)];
    const bool movesSelection = std::abs(move.columns) == 1 && m_view.Selected().active;
    ViewChanged(movesSelection ? m_view.MoveSelectionEnd(move.columns) : m_view.Move(move.columns, move.rows));
}

void frmQLMain::ChangeView(int index) {
    ViewChanged(index == 0 ? m_view.FitSelection() : index == 1 ? m_view.FitBlock() : m_view.Back());
    // Where there was no way back, there is none any more.
    UpdateCommands();
}

void frmQLMain::ShowSample(std::int32_t sample) {
    ViewChanged(m_view.GoTo(sample));
    // Where the view could not move, a hover readout says where the sample is.
    const std::int32_t column = (sample - 1) / m_view.Axis().SamplesPerPixel() - m_view.Axis().FirstColumn();
    ShowHover(sample, column, 0);
}

void frmQLMain::GoToMark(int index) {
    if (const std::optional<std::int32_t> sample = m_view.MarkFrom(index == 1)) ShowSample(*sample);
}

void frmQLMain::GoToPlace(int) {
    const std::int32_t present = SampleUnder(m_view.Axis(), 0);
    const std::u16string here = PositionText(m_document.Block(), present, u" ", m_global.format);
    const std::optional<std::wstring> answer =
        AskForText(m_window,
                   {Plain(m_services.Text(IDS_GOTOPLACE)), Wide(m_services.Text(IDS_PLACE_PROMPT)),
                    Wide(m_services.Text(IDS_OK)), Wide(m_services.Text(IDS_CANCEL))},
                   Wide(here));
    if (!answer || m_closing || m_document.Block().sampleCount == 0) return;
    const std::u16string text = Narrow16(*answer);
    if (const std::optional<std::int32_t> sample = ParsePosition(text, m_document.Block(), m_global.format, present)) {
        m_status.Tell(StatusBar::Topic::Outcome, {});
        ShowSample(*sample);
    } else {
        m_status.Tell(StatusBar::Topic::Place, text + u": " + m_services.Text(IDS_PLACE_BAD));
    }
}

void frmQLMain::ShowStatistics(int) {
    const Selection selection = m_view.Selected();
    const ReadoutSource source{m_document.Block(), m_document.Slots(), m_global.format, m_view.RawCodes()};
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    const std::vector<ChannelStatistics> statistics = StatisticsOf(source, selection.First(), selection.Last());
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    TableTexts texts;
    texts.title = Plain(m_services.Text(IDS_STATISTICS));
    // Too long for a caption, whose letters and buttons are of the system's choice.
    texts.heading = Wide(PositionText(m_document.Block(), selection.First(), u" ", m_global.format) + u" \u2013 " +
                         PositionText(m_document.Block(), selection.Last(), u" ", m_global.format) + u", " +
                         Decimal(selection.Count()) + u' ' + m_services.Text(IDS_SAMPLES));
    if (m_document.Block().sampleRate > 0.0) {
        FormatOptions duration = m_global.format;
        duration.timeOfDay = false;
        texts.heading += L", " + Wide(FormatTime(selection.Count() / m_document.Block().sampleRate, u" ", duration));
    }
    constexpr int columns = 7;
    for (int column = 0; column < columns; ++column)
        texts.columns.push_back(Wide(m_services.Text(IDS_STAT_0 + column)));
    texts.numeric = true;
    texts.close = Wide(m_services.Text(IDS_CLOSE));
    texts.copy = Wide(m_services.Text(IDS_COPY));
    std::vector<std::vector<std::wstring>> rows;
    for (const ChannelStatistics& channel : statistics) {
        const auto at = static_cast<std::size_t>(channel.channel - 1);
        std::vector<std::wstring> row{
            Wide(m_document.Slots()[static_cast<std::size_t>(m_document.Block().channelNumbers[at])].title)};
        for (const double value : {channel.minimum, channel.maximum, channel.maximum - channel.minimum, channel.mean,
                                   channel.rms, channel.deviation})
            row.push_back(Wide(ReadoutValue(source, channel.channel, value)));
        rows.push_back(std::move(row));
    }
    ShowTable(m_window, texts, rows);
}

void frmQLMain::ShowKeys(int) {
    TableTexts texts;
    texts.title = Plain(m_services.Text(IDS_KEYSANDMOUSE));
    texts.columns = {Wide(m_services.Text(IDS_TABLE_KEY)), Wide(m_services.Text(IDS_TABLE_ACTION))};
    texts.close = Wide(m_services.Text(IDS_CLOSE));
    texts.copy = Wide(m_services.Text(IDS_COPY));
    std::vector<std::vector<std::wstring>> rows;
    for (const KeyBinding& binding : KeyBindings()) {
        std::wstring action = Plain(m_services.Text(CaptionId(binding.command)));
        // Both zooms are called the same in their menus.
        if (binding.command / 2 == mnuZoomX / 2) action = Plain(m_services.Text(IDS_MENU_XZOOM)) + L": " + action;
        if (binding.command / 2 == mnuZoomY / 2) action = Plain(m_services.Text(IDS_MENU_YSCALE)) + L": " + action;
        if (binding.place != KeyPlace::Everywhere && binding.place != KeyPlace::Graph) {
            const int list = static_cast<int>(binding.place) - static_cast<int>(KeyPlace::FolderList);
            action += L" (" + Wide(m_services.Text(IDS_IN_LIST_0 + list)) + L")";
        }
        rows.push_back({Wide(KeyText(binding, m_services)), action});
    }
    for (int gesture = 0; gesture < IDS_MOUSE_COUNT; ++gesture)
        rows.push_back(
            {Wide(m_services.Text(IDS_MOUSE_0 + 2 * gesture)), Wide(m_services.Text(IDS_MOUSE_0 + 2 * gesture + 1))});
    ShowTable(m_window, texts, rows);
}

void frmQLMain::ShowAlone(int) {
    std::optional<std::int16_t> alone;
    if (!m_document.IsSolo()) alone = m_menuChannel != 0 ? m_menuChannel : m_document.CurrentChannel();
    m_document.Solo(alone);
    const ViewBlock& block = m_document.Block();
    for (std::int16_t channel = 1; channel <= block.channelCount; ++channel) {
        if (SlotOf(m_document.Slots(), block.channelNumbers[static_cast<std::size_t>(channel - 1)]) != nullptr)
            m_channels.Check(channel - 1, m_document.IsShown(channel));
    }
    Refresh();
}

}  // namespace quillon
