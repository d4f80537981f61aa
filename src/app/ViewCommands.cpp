#include "app/ViewCommands.h"

#include <cstdlib>

namespace quillon {

void ViewCommands::MoveView(const Move& move) {
    const bool movesSelection = std::abs(move.columns) == 1 && m_view.Selected().active;
    const LaneLayout lanes = m_view.LanesOfChannels().Layout();
    if (move.rows != 0 && m_view.UsesLanes() && lanes.Visible() < lanes.Count())
        return onChange(m_view.ScrollLanes(move.rows > 0 ? 1 : -1));
    onChange(movesSelection ? m_view.MoveSelectionEnd(move.columns) : m_view.Move(move.columns, move.rows));
}

void ViewCommands::ChangeView(int index) {
    onChange(index == 0 ? m_view.FitSelection() : index == 1 ? m_view.FitBlock() : m_view.Back());
    // Even without a change of the view Back() may have emptied the history, which disables the command.
    onHistory();
}

void ViewCommands::SelectPage(int index, std::optional<std::int32_t> hovered) {
    if (index == kPageCount) return ChangeView(1);
    onChange(m_view.SelectPage(kPageLengths[static_cast<std::size_t>(index)], hovered));
}

void ViewCommands::GoToMark(bool next) {
    if (const std::optional<std::int32_t> sample = m_view.MarkFrom(next)) GoTo(*sample);
}

std::optional<std::int32_t> ViewCommands::PresentSample(std::optional<std::int32_t> hovered) const {
    const SampleSpan visible = m_view.Axis().Visible();
    if (visible.count < 1) return std::nullopt;
    const std::int32_t own = m_view.GoneTo() != 0 ? m_view.GoneTo() : visible.first + visible.count / 2 + 1;
    return hovered.value_or(own);
}

void ViewCommands::Pin(std::optional<std::int32_t> hovered) {
    const std::optional<std::int32_t> sample = PresentSample(hovered);
    if (!sample) return;
    onChange(m_view.Pin(*sample));
    onReadout(*sample);
}

void ViewCommands::StepReadout(int columns, std::optional<std::int32_t> hovered) {
    const std::optional<std::int32_t> from = PresentSample(hovered);
    if (!from) return;
    onChange(m_view.StepFrom(*from, columns));
    onReadout(m_view.GoneTo());
}

void ViewCommands::GoTo(std::int32_t sample) {
    onChange(m_view.GoTo(sample));
    // The readout shows the sample where the view could not scroll to it.
    onReadout(sample);
}

void ViewCommands::GoTo(const GoToMeaning& place) {
    if (place.page) onChange(m_view.SelectPage(*place.page));
    if (place.sample) GoTo(*place.sample);
    if (!place.range) return;
    onSelect();
    const auto [first, last] = *place.range;
    const SampleSpan visible = m_view.Axis().Visible();
    if (first <= visible.first || last > visible.End())
        onChange(m_view.GoTo(last - first < visible.count ? first + (last - first) / 2 : first));
    onChange(m_view.Select(first, last));
}

void ViewCommands::Select(int index) {
    if (index == 2 && m_playback.IsPlaying()) return m_playback.Stop();
    if (index == 2 && onStop()) return;
    if (index == 2 && m_view.Pinned() != 0) return onChange(m_view.Pin(0));
    onSelect();
    onChange(index == 0 ? m_view.SelectBlock() : index == 1 ? m_view.SelectVisible() : m_view.Deselect());
}

void ViewCommands::Play(int index) {
    if (index == 2) return m_playback.Stop();
    // Only the loaded block is played.
    const bool isOfBlock = MenuChannel() <= m_document.Block().channelCount;
    m_playback.Play(index == 1 ? std::int16_t{0} : isOfBlock ? MenuChannel() : m_document.CurrentChannel());
}

}  // namespace quillon
