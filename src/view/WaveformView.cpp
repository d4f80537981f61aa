#include "view/WaveformView.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>
#include <utility>
#include <vector>

#include "data/ChannelSelection.h"
#include "view/LaneFits.h"

namespace quillon {

namespace {

/// Where most values of the loaded block's shown channels lie; none where all of them are flat.
std::optional<ValueRange> TypicalRange(const Document& document, bool rawCodes) {
    const std::vector<LaneChannel> channels = LaneChannelsOf(document, rawCodes);
    const auto own = std::span(channels).first(document.Block().channelNumbers.size());
    const std::vector<std::optional<LaneSpan>> spans = TypicalSpans(document.Block(), own);
    std::optional<ValueRange> range;
    for (std::size_t at = 0; at < own.size(); ++at) {
        if (!own[at].shown || !spans[at] || !(spans[at]->half > 0.0)) continue;
        const auto least = static_cast<float>(spans[at]->middle - spans[at]->half);
        const auto most = static_cast<float>(spans[at]->middle + spans[at]->half);
        range = {.minimum = range ? std::min(range->minimum, least) : least,
                 .maximum = range ? std::max(range->maximum, most) : most};
    }
    return range;
}

}  // namespace

WaveformView::WaveformView(const Document& document)
    : m_document(document), m_channelLanes(document), m_extremes(document) {
    MakeLanes();
}

void WaveformView::Arrange(std::int32_t width, std::int32_t height) {
    m_axis.SetWidth(width);
    m_scale.SetGraph(height, height / 2);
    m_channelLanes.SetHeight(height);
    if (!m_document.IsSolo()) m_soloScales.GiveBack(m_scale, m_channelLanes);
    m_channelLanes.FitOnce();
    MakeLanes();
}

void WaveformView::SetRawCodes(bool rawCodes) {
    m_rawCodes = rawCodes;
    m_channelLanes.SetRawCodes(rawCodes);
    MakeLanes();
}

void WaveformView::MakeLanes() {
    if (UsesLanes()) {
        m_lanes = m_channelLanes.Make();
        return;
    }
    m_lanes.assign(1, {});
    Lane& lane = m_lanes.front();
    lane.height = m_scale.Height();
    lane.zeroRow = m_scale.ZeroRow();
    lane.unitsPerDivision = m_scale.UnitsPerDivision();
    lane.channels = ShownChannels(m_document.Block(), m_document.Slots());
}

void WaveformView::Rescaled() {
    m_extremes.Rescaled();
}

void WaveformView::LeaveBlock() {
    m_extremes.LeaveBlock();
    m_selection = {};
    m_history.Clear();
    m_goneTo = m_pinned = 0;
    m_channelLanes.LeaveBlock();
}

void WaveformView::BlockLoaded() {
    const ViewBlock& block = m_document.Block();
    // Before scales are chosen for it. Loaded again, a channel may still be alone.
    if (!m_document.IsSolo()) m_soloScales.GiveBack(m_scale, m_channelLanes);
    // In lanes the time stays from block to block of a stretch, whether or not the others are shown.
    const bool sameStretch = m_extremes.BlockLoaded() || m_document.CoversTheSame();
    if (sameStretch && m_axis.IsFree()) {
        m_axis.SwitchBlock(block.sampleCount, block.sampleRate, m_extremes.Fastest());
        m_channelLanes.SignalsChanged();
    } else {
        m_axis.SetBlock(block.sampleCount, block.sampleRate, m_channelLanes.Settings().on, m_extremes.Fastest());
    }
    MakeLanes();
}

ViewChange WaveformView::SignalsChanged() {
    m_extremes.BlockLoaded();
    m_axis.SetFree(m_channelLanes.Settings().on);
    m_axis.SetFastest(m_extremes.Fastest());
    m_channelLanes.SignalsChosen(m_lanes);
    return Redraw();
}

void WaveformView::FitScales(const std::optional<ValueRange>& seen) {
    if (!seen) return;
    std::optional<ValueRange> range = seen;
    // Silence, as at the beginning of a sound, tells no scale.
    if (!(seen->maximum > seen->minimum)) range = TypicalRange(m_document, m_rawCodes).value_or(*seen);
    // A scale that the user chose is kept for the next block as long as that is readable at it.
    if (m_scalesFitted && m_scale.Shows(*range)) return;
    m_scale.FindData(range);
    m_scalesFitted = true;
    MakeLanes();
}

ViewPlace WaveformView::Place() const {
    return {m_axis.GetPlace(), m_scale.Index(), m_scale.Shift(), m_channelLanes.Settings()};
}

void WaveformView::GoBackTo(const ViewPlace& place) {
    m_axis.Restore(place.time);
    m_scale.SelectScale(place.scale);
    m_scale.MoveBaseLine(place.shift - m_scale.Shift());
    m_channelLanes.Restore(place.lanes);
    // A recording that was reloaded may have other channels.
    m_axis.SetFree(m_channelLanes.Settings().on);
    MakeLanes();
}

std::int32_t WaveformView::ColumnsBehindView() const {
    return m_axis.StripLength() - m_axis.FirstColumn() - m_axis.Width();
}

void WaveformView::Restore(const State& state) {
    GoBackTo(state.place);
    if (state.followsEnd) m_axis.ScrollBy(std::max(ColumnsBehindView(), 0));
    // For a shorter recording show the last page rather than nothing.
    if (m_axis.Visible().count == 0) m_axis.ScrollBy(m_axis.PageShift(1));
    m_history = state.history;
    m_scalesFitted = m_scalesFitted || state.scaleChosen;
    const std::int32_t samples = m_axis.SampleCount();
    m_selection = {state.selection.active && state.selection.First() <= samples, state.selection.channel,
                   std::min(state.selection.start, samples), std::min(state.selection.end, samples)};
    m_pinned = state.pinned <= samples ? state.pinned : 0;
}

ViewChange WaveformView::Redraw(bool newPlace) {
    if (newPlace || SampleToKeep({}) == 0) m_goneTo = 0;
    m_channelLanes.FitOnce();
    MakeLanes();
    return {.redraw = true, .newPlace = newPlace};
}

ViewChange WaveformView::ScrollBy(std::int32_t columns) {
    const std::int32_t moved = m_axis.ScrollBy(columns);
    if (moved == 0) return {};
    m_goneTo = 0;
    return {.scrolled = moved, .newPlace = true};
}

ViewChange WaveformView::SetScrollValue(std::int32_t value) {
    const std::int32_t before = m_axis.FirstColumn();
    if (!m_axis.SetScrollValue(value)) return {};
    m_goneTo = 0;
    return {.scrolled = m_axis.FirstColumn() - before, .newPlace = true};
}

ViewChange WaveformView::GoToPage(int command) {
    if (command == 0 || command == 3) Push();
    return ScrollBy(m_axis.PageShift(command));
}

ViewChange WaveformView::Move(std::int32_t columns, std::int64_t rows) {
    ViewChange change = ScrollBy(columns);
    change |= MoveBaseLine(rows);
    return change;
}

ViewChange WaveformView::MoveBaseLine(std::int64_t rows) {
    if (m_axis.SampleCount() == 0 || rows == 0) return {};
    UsesLanes() ? m_channelLanes.MoveAll(rows) : m_scale.MoveBaseLine(rows);
    return Redraw();
}

ViewChange WaveformView::SelectZoomX(int index) {
    if (index == m_axis.ZoomIndex()) return {};
    Push();
    m_axis.SelectZoom(index);
    return Redraw();
}

ViewChange WaveformView::ZoomX(bool in, std::optional<std::int32_t> hovered) {
    if (m_axis.IsFree()) {
        const ViewPlace before = Place();
        const bool zoomed = m_axis.ZoomAbout(in ? 1 : -1, m_axis.Width() / 2, SampleToKeep(hovered));
        return zoomed ? Zoomed(before, false) : ViewChange{};
    }
    // At zooms coarser than the menu's (a long block shown whole) zooming out stops and zooming in continues.
    const int next = m_axis.ZoomIndex() + (in ? -1 : 1);
    if (next < 0 || (!in && next >= TimeAxis::kMenuZoomCount)) return {};
    return SelectZoomX(next);
}

std::int32_t WaveformView::SampleToKeep(std::optional<std::int32_t> hovered) const {
    for (const std::int32_t sample : {m_goneTo, hovered.value_or(0)}) {
        const std::int32_t column = sample > 0 ? m_axis.ColumnOf(sample - 1) : -1;
        if (column >= 0 && column < m_axis.Width()) return sample;
    }
    return 0;
}

ViewChange WaveformView::Zoomed(const ViewPlace& before, bool newPlace) {
    m_history.Push(before);
    const std::int32_t goneTo = std::exchange(m_goneTo, 0);
    const ViewChange change = Redraw(newPlace);
    m_goneTo = goneTo;  // the next step keeps it in place too
    return change;
}

ViewChange WaveformView::SelectPage(double seconds, std::optional<std::int32_t> hovered) {
    const ViewPlace before = Place();
    // Else the page begins where the one before began, in step with the epochs.
    const std::int32_t kept = SampleToKeep(hovered);
    if (!m_axis.SelectPage(seconds, 0, kept > 0 ? kept : SampleUnder(m_axis, 0))) return {};
    return Zoomed(before, false);
}

ViewChange WaveformView::ZoomAbout(int steps, std::int32_t column) {
    if (m_axis.IsFree()) {
        const ViewPlace before = Place();
        return m_axis.ZoomAbout(steps, column) ? Zoomed(before, true) : ViewChange{};
    }
    const int now = m_axis.ZoomIndex();
    const int coarsest = std::max(now, TimeAxis::kMenuZoomCount - 1);
    const int next = std::clamp(now - steps, 0, coarsest);
    if (next == now) return {};
    Push();
    m_axis.SelectZoomAbout(next, column);
    return Redraw(true);
}

ViewChange WaveformView::ZoomY(int steps) {
    Push();
    UsesLanes() ? m_channelLanes.ZoomAll(steps) : m_scale.ZoomY(steps);
    return Redraw();
}

ViewChange WaveformView::SelectScaleY(int index) {
    Push();
    if (UsesLanes()) {
        m_channelLanes.SelectScale(m_document.CurrentChannel(), AmplitudeScale::TableValue(index, m_rawCodes));
    } else {
        m_scale.SelectScale(index);
    }
    return Redraw();
}

int WaveformView::SelectedScaleY() const {
    if (!UsesLanes()) return m_scale.Index();
    int index = AmplitudeScale::kScaleCount - 1;
    while (index >= 0 &&
           !m_channelLanes.HasScale(m_document.CurrentChannel(), AmplitudeScale::TableValue(index, m_rawCodes)))
        --index;
    return index;
}

ViewChange WaveformView::SetBipolar() {
    Push();
    UsesLanes() ? m_channelLanes.CentreZero() : m_scale.SetBipolar();
    return Redraw();
}

ViewChange WaveformView::FindData() {
    Push();
    if (m_document.IsSolo()) m_soloScales.Keep(m_scale, m_channelLanes.Settings());
    if (UsesLanes()) {
        m_channelLanes.FitShown(m_axis, m_extremes.All());
        return Redraw();
    }
    const auto range = [&]() -> std::optional<ValueRange> {
        if (m_rawCodes) return kRawCodesRange;
        const std::vector<std::int16_t> shown = ChannelsOf(m_lanes);
        if (m_extremes.Ranges().IsRecorded(shown)) return m_extremes.Ranges().Found(shown);
        return m_extremes.Ranges().Of(m_document.Block(), shown);
    };
    m_scale.FindData(range());
    return Redraw();
}

ViewChange WaveformView::FitSamples(const SampleSpan& samples, bool remember) {
    if (remember) Push();
    m_axis.ShowSamples(samples);
    return Redraw(true);
}

ViewChange WaveformView::Back() {
    // Skip entries that equal the current view.
    while (const std::optional<ViewPlace> place = m_history.Pop()) {
        if (*place == Place()) continue;
        GoBackTo(*place);
        return Redraw(true);
    }
    return {};
}

ViewChange WaveformView::GoTo(std::int32_t sample) {
    Push();
    const ViewChange change = ScrollBy(m_axis.ShiftTo(sample));
    m_goneTo = sample;
    return change;
}

ViewChange WaveformView::StepFrom(std::int32_t sample, std::int32_t columns) {
    const std::int32_t to = SampleBeside(sample, columns);
    const ViewChange change = ScrollIntoView(to);
    m_goneTo = to;
    return change;
}

std::optional<std::int32_t> WaveformView::MarkFrom(bool next) const {
    const std::int32_t from = m_goneTo != 0 ? m_goneTo : SampleUnder(m_axis, m_axis.Width() / 2);
    const std::vector<BlockMark>& marks = m_document.Block().marks;
    // Positions count from 0.
    const auto before = [](const BlockMark& mark, std::int32_t position) { return mark.position < position; };
    const auto found = std::lower_bound(marks.begin(), marks.end(), next ? from : from - 1, before);
    if (next ? found == marks.end() : found == marks.begin()) return std::nullopt;
    return (next ? found : found - 1)->position + 1;
}

ViewChange WaveformView::Select(std::int32_t start, std::int32_t end) {
    m_selection = {true, m_document.CurrentChannel(), start, end};
    return {.selection = true};
}

ViewChange WaveformView::SelectTo(std::int32_t end) {
    m_selection.end = end;
    return {.selection = true};
}

ViewChange WaveformView::SelectVisible() {
    const SampleSpan visible = m_axis.Visible();
    return visible.count < 1 ? ViewChange{} : Select(visible.first + 1, visible.End());
}

ViewChange WaveformView::Deselect() {
    m_selection = {};
    return {.selection = true};
}

ViewChange WaveformView::MoveSelectionEnd(std::int32_t columns) {
    m_selection.end = SampleBeside(m_selection.end, columns);
    ViewChange change = ScrollIntoView(m_selection.end);
    change.selection = true;
    return change;
}

std::int32_t WaveformView::SampleBeside(std::int32_t sample, std::int32_t columns) const {
    // At least a sample, also where a sample is wider than a column.
    const std::int64_t samples = std::llround(std::abs(columns) * m_axis.Grid().SamplesPerColumn());
    const std::int64_t step = columns == 0 ? 0 : std::max<std::int64_t>(samples, 1);
    const std::int64_t beside = sample + (columns < 0 ? -step : step);
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(beside, 1, m_axis.SampleCount()));
}

ViewChange WaveformView::ScrollIntoView(std::int32_t sample) {
    const std::int32_t left = m_axis.ColumnOf(sample - 1);
    const std::int32_t right = m_axis.LastColumnOf(sample - 1);
    if (left < 0) return ScrollBy(left);
    return right >= m_axis.Width() ? ScrollBy(right - m_axis.Width() + 1) : ViewChange{};
}

}  // namespace quillon
