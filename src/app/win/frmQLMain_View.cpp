#include <algorithm>

#include "app/ControlIds.h"
#include "app/GraphKeys.h"
#include "app/win/InputBox.h"
#include "app/win/TableWindow.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "view/DataRange.h"
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

ViewPlace frmQLMain::PresentView() const {
    return {m_global.axis.ZoomIndex(), m_global.axis.FirstColumn(), m_global.amplitude.Index(),
            m_global.amplitude.Shift()};
}

void frmQLMain::KeepView() {
    m_global.history.Push(PresentView());
}

void frmQLMain::ScrollBy(std::int32_t shift) {
    if (const std::int32_t moved = m_global.axis.ScrollBy(shift); moved != 0) Scrolled(moved);
}

void frmQLMain::Scrolled(std::int32_t shift) {
    Refresh(shift);
    m_followsSound = m_graph.Band(GraphBand::Play).has_value();
}

void frmQLMain::GoTo(int index) {
    if (index == 0 || index == 3) KeepView();
    ScrollBy(m_global.axis.PageShift(index));
}

void frmQLMain::MoveView(int index) {
    const Move move = Moves()[static_cast<std::size_t>(index)];
    if (std::abs(move.columns) == 1 && m_global.selection.active) return MoveSelectionEnd(move.columns);
    ScrollBy(move.columns);
    MoveBaseLine(move.rows);
}

void frmQLMain::SelectZoomX(int index) {
    if (index == m_global.axis.ZoomIndex()) return;
    KeepView();
    m_global.axis.SelectZoom(index);
    Refresh();
}

void frmQLMain::ZoomX(int index) {
    // Beyond the menu's zooms, where a whole long block is shown, the way out ends and the way in goes on.
    const int next = m_global.axis.ZoomIndex() + (index == 0 ? 1 : -1);
    if (next >= 0 && (index != 0 || next < TimeAxis::kMenuZoomCount)) SelectZoomX(next);
}

void frmQLMain::ZoomAbout(int steps, int column) {
    const int now = m_global.axis.ZoomIndex();
    const int coarsest = std::max(now, TimeAxis::kMenuZoomCount - 1);
    const int next = std::clamp(now - steps, 0, coarsest);
    if (next == now) return;
    KeepView();
    m_global.axis.SelectZoomAbout(next, column);
    Refresh();
    m_followsSound = m_graph.Band(GraphBand::Play).has_value();
}

void frmQLMain::StepScaleY(int steps) {
    KeepView();
    m_global.amplitude.ZoomY(steps);
    Refresh();
}

void frmQLMain::SelectScaleY(int index) {
    KeepView();
    m_global.amplitude.SelectScale(index);
    Refresh();
}

void frmQLMain::BaseLine(int index) {
    KeepView();
    if (index == 0) {
        m_global.amplitude.SetBipolar();
    } else if (m_global.rawCodes) {
        m_global.amplitude.FindData(kRawCodesRange);
    } else {
        m_global.amplitude.FindData(m_global.ranges.OfShown(m_document.Block(), m_document.Slots()));
    }
    Refresh();
}

void frmQLMain::MoveBaseLine(std::int64_t rows) {
    if (m_document.Block().sampleCount == 0 || rows == 0) return;
    m_global.amplitude.MoveBaseLine(rows);
    Refresh();
}

void frmQLMain::ChangeView(int index) {
    TimeAxis& axis = m_global.axis;
    if (index == 2) {
        // A view that is the present one is no way back.
        std::optional<ViewPlace> place;
        do {
            place = m_global.history.Pop();
            if (!place) return UpdateCommands();
        } while (*place == PresentView());
        axis.Restore(place->zoom, place->firstColumn);
        m_global.amplitude.SelectScale(place->scale);
        m_global.amplitude.MoveBaseLine(place->shift - m_global.amplitude.Shift());
    } else {
        KeepView();
        const Selection& selection = m_global.selection;
        axis.ShowSamples(index == 0 ? selection.First() : 1, index == 0 ? selection.Last() : axis.SampleCount());
    }
    Refresh();
    m_followsSound = m_graph.Band(GraphBand::Play).has_value();
}

void frmQLMain::ShowSample(std::int32_t sample) {
    KeepView();
    ScrollBy(m_global.axis.ShiftTo(sample));
    // Where the view could not move, a hover readout says where the sample is.
    const std::int32_t column = (sample - 1) / m_global.axis.SamplesPerPixel() - m_global.axis.FirstColumn();
    ShowHover(sample, column, 0);
    m_goneTo = sample;
}

void frmQLMain::GoToMark(int index) {
    // From the sample that was gone to last, as long as the view has not changed since; else from the middle.
    const TimeAxis& axis = m_global.axis;
    const std::int32_t from = m_goneTo != 0 ? m_goneTo : SampleUnder(axis, axis.Width() / 2);
    const BlockMark* found = nullptr;
    for (const BlockMark& mark : m_document.Block().marks) {
        const std::int32_t sample = mark.position + 1;
        const bool further = index == 1 ? sample > from : sample < from;
        const bool nearer =
            found == nullptr || (index == 1 ? mark.position < found->position : mark.position > found->position);
        if (further && nearer) found = &mark;
    }
    if (found != nullptr) ShowSample(found->position + 1);
}

void frmQLMain::GoToPlace(int) {
    const std::int32_t present = SampleUnder(m_global.axis, 0);
    const std::u16string here = PositionText(m_document.Block(), present, u" ", m_global.format);
    const std::optional<std::wstring> answer =
        AskForText(m_window,
                   {Plain(m_services.Text(IDS_GOTOPLACE)), Wide(m_services.Text(IDS_PLACE_PROMPT)),
                    Wide(m_services.Text(IDS_OK)), Wide(m_services.Text(IDS_CANCEL))},
                   Wide(here));
    if (!answer || m_closing || m_document.Block().sampleCount == 0) return;
    const std::u16string text = Narrow16(*answer);
    if (const std::optional<std::int32_t> sample = ParsePosition(text, m_document.Block(), m_global.format, present)) {
        m_services.SetStatus({});
        ShowSample(*sample);
    } else {
        m_notUnderstood = text + u": " + m_services.Text(IDS_PLACE_BAD);
        m_services.SetStatus(m_notUnderstood);
    }
}

void frmQLMain::ShowStatistics(int) {
    const Selection selection = m_global.selection;
    const ReadoutSource source{m_document.Block(), m_document.Slots(), m_global.format, m_global.rawCodes};
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    const std::vector<ChannelStatistics> statistics = StatisticsOf(source, selection.First(), selection.Last());
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    TableTexts texts;
    texts.title = Plain(m_services.Text(IDS_STATISTICS)) + L": " +
                  Wide(PositionText(m_document.Block(), selection.First(), u" ", m_global.format) + u" \u2013 " +
                       PositionText(m_document.Block(), selection.Last(), u" ", m_global.format) + u", " +
                       Decimal(selection.Count()) + u' ' + m_services.Text(IDS_SAMPLES));
    if (m_document.Block().sampleRate > 0.0) {
        FormatOptions duration = m_global.format;
        duration.timeOfDay = false;
        texts.title += L", " + Wide(FormatTime(selection.Count() / m_document.Block().sampleRate, u" ", duration));
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
