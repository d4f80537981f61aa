// What is done to single lanes.
#include <algorithm>

#include "view/WaveformView.h"

namespace quillon {

namespace {

constexpr std::int64_t kTraceStep = 20;  // rows, as the keys that move all traces

}  // namespace

std::size_t WaveformView::LaneAt(std::int32_t row) const {
    std::size_t lane = 0;
    while (lane + 1 < m_lanes.size() && row >= m_lanes[lane].End()) ++lane;
    return lane;
}

std::int16_t WaveformView::ChannelOf(std::size_t lane) const {
    return UsesLanes() && lane < m_lanes.size() && !m_lanes[lane].channels.empty() ? m_lanes[lane].channels.front()
                                                                                   : std::int16_t{0};
}

ViewChange WaveformView::SetLanes(bool on) {
    if (on == m_channelLanes.Settings().on) return {};
    if (m_axis.SampleCount() > 0) Push();
    m_channelLanes.SetOn(on);
    m_axis.SetFree(m_channelLanes.Settings().on);
    return Redraw();
}

ViewChange WaveformView::SetClip(bool clip) {
    if (clip == m_channelLanes.Settings().clip) return {};
    if (m_axis.SampleCount() > 0) Push();
    m_channelLanes.SetClip(clip);
    return Redraw();
}

ViewChange WaveformView::SetNegativeUp(bool negativeUp) {
    if (negativeUp == m_channelLanes.Settings().negativeUp) return {};
    if (m_axis.SampleCount() > 0) Push();
    m_channelLanes.SetNegativeUp(negativeUp);
    return Redraw();
}

ViewChange WaveformView::ChangeLane(std::size_t lane, const std::function<void(std::int16_t channel)>& change) {
    const std::int16_t channel = ChannelOf(lane);
    if (channel == 0) return {};
    Push();
    change(channel);
    return Redraw();
}

ViewChange WaveformView::ZoomGroup(std::size_t lane, int steps) {
    return ChangeLane(lane, [&](std::int16_t channel) { m_channelLanes.ZoomGroup(channel, steps); });
}

ViewChange WaveformView::ZoomChannel(std::size_t lane, int steps) {
    return ChangeLane(lane, [&](std::int16_t channel) { m_channelLanes.ZoomChannel(channel, steps); });
}

ViewChange WaveformView::MoveLane(std::size_t lane, std::int64_t rows) {
    const std::int16_t channel = ChannelOf(lane);
    if (channel == 0 || rows == 0) return {};
    m_channelLanes.Move(channel, rows);
    return Redraw();
}

ViewChange WaveformView::FitLane(std::size_t lane) {
    return ChangeLane(lane, [&](std::int16_t channel) { m_channelLanes.FitAlone(channel, m_axis, m_extremes.All()); });
}

ViewChange WaveformView::ScrollLanes(std::int32_t lanes) {
    return UsesLanes() && m_channelLanes.Scroll(lanes) ? Redraw() : ViewChange{};
}

ViewChange WaveformView::DragTitle(std::int16_t channel, std::size_t to) {
    const std::int16_t target = ChannelOf(to);
    if (channel == 0 || target == 0 || channel == target) return {};
    Push();
    m_channelLanes.Reorder(channel, target);
    return Redraw();
}

ViewChange WaveformView::StepLane(std::int16_t channel, LaneStep step) {
    const std::vector<std::int16_t> order = m_channelLanes.Order();
    const auto found = std::find(order.begin(), order.end(), channel);
    if (!UsesLanes() || found == order.end()) return {};
    const bool zooms = step == LaneStep::ZoomOut || step == LaneStep::ZoomIn;
    const bool moves = step == LaneStep::TraceUp || step == LaneStep::TraceDown;
    if (!moves) Push();
    if (zooms) m_channelLanes.ZoomChannel(channel, step == LaneStep::ZoomIn ? 1 : -1);
    if (moves) m_channelLanes.Move(channel, step == LaneStep::TraceUp ? -kTraceStep : kTraceStep);
    if (step == LaneStep::LaneUp && found != order.begin()) m_channelLanes.Reorder(channel, *(found - 1));
    if (step == LaneStep::LaneDown && found + 1 != order.end()) m_channelLanes.Reorder(channel, *(found + 1));
    ShowLane(channel);
    if (step == LaneStep::Fit) m_channelLanes.FitAlone(channel, m_axis, m_extremes.All());
    return Redraw();
}

void WaveformView::ShowLane(std::int16_t channel) {
    const std::vector<std::int16_t> order = m_channelLanes.Order();
    const LaneLayout layout = m_channelLanes.Layout();
    const auto at = static_cast<std::int32_t>(std::find(order.begin(), order.end(), channel) - order.begin());
    const std::int32_t beyond = at - (layout.First() + layout.Visible() - 1);
    m_channelLanes.Scroll(std::min(at - layout.First(), 0) + std::max(beyond, 0));
}

}  // namespace quillon
