#include "view/GraphGestures.h"

#include <algorithm>
#include <utility>

namespace quillon {

bool GraphGestures::IsBeside() const {
    return m_kind == Kind::Select && (m_x < 0 || m_x >= m_view.Axis().Width());
}

std::optional<std::size_t> GraphGestures::DraggedLane() const {
    const Lanes& lanes = m_view.GetLanes();
    if (!m_view.UsesLanes()) return 0;
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
        if (!lanes[lane].channels.empty() && lanes[lane].channels.front() == m_channel) return lane;
    }
    return std::nullopt;
}

std::int64_t GraphGestures::ZeroRow() const {
    return m_view.GetLanes()[DraggedLane().value_or(0)].zeroRow;
}

bool GraphGestures::DropsFromAbove() const {
    const std::vector<std::int16_t>& drop = m_view.GetLanes()[DropLane()].channels;
    const std::vector<std::int16_t> order = m_view.LanesOfChannels().Order();
    return !drop.empty() &&
           std::find(order.begin(), order.end(), m_channel) < std::find(order.begin(), order.end(), drop.front());
}

ViewChange GraphGestures::Press(GraphButton button, GraphZone zone, const GraphPointer& pointer) {
    if (m_kind != Kind::None || m_view.Axis().SampleCount() == 0) return {};
    m_x = pointer.x;
    m_y = pointer.y;
    m_column = m_view.Axis().FirstColumn();
    const std::vector<std::int16_t>& channels = m_view.GetLanes()[m_view.LaneAt(pointer.y)].channels;
    m_channel = m_view.UsesLanes() && !channels.empty() ? channels.front() : std::int16_t{0};
    m_zeroRow = ZeroRow();
    if (zone == GraphZone::AmplitudeScale || (zone == GraphZone::LaneTitles && !m_view.UsesLanes())) {
        if (button == GraphButton::Left) m_kind = Kind::BaseLine;
    } else if (zone == GraphZone::LaneTitles) {
        if (button == GraphButton::Left) m_kind = Kind::Title;
    } else if (zone == GraphZone::Traces && button == GraphButton::Middle) {
        m_kind = Kind::Pan;
    } else if (zone == GraphZone::Traces) {
        m_kind = Kind::Select;
        if (pointer.shift && m_view.Selected().active) return Move(pointer);
        const std::int32_t sample = SampleUnder(m_view.Axis(), pointer.x);
        return m_view.Select(sample, sample);
    }
    return {};
}

ViewChange GraphGestures::Move(const GraphPointer& pointer) {
    const std::int64_t rows = m_zeroRow + (pointer.y - m_y) - ZeroRow();
    switch (m_kind) {
        case Kind::Select: {
            // Another command may have taken the selection away.
            if (!m_view.Selected().active) return {};
            m_x = pointer.x;
            const std::int32_t column = std::clamp(m_x, 0, m_view.Axis().Width() - 1);
            return m_view.SelectTo(SampleUnder(m_view.Axis(), column));
        }
        case Kind::Pan: return m_view.Move(m_column - (pointer.x - m_x) - m_view.Axis().FirstColumn(), rows);
        case Kind::BaseLine: {
            if (!m_view.UsesLanes()) return m_view.MoveBaseLine(rows);
            // The wheel may have scrolled the lane out of sight.
            const std::optional<std::size_t> lane = DraggedLane();
            return lane ? m_view.MoveLane(*lane, rows) : ViewChange{};
        }
        case Kind::Title: m_y = pointer.y; break;
        case Kind::None: break;
    }
    return {};
}

ViewChange GraphGestures::Release(const GraphPointer& pointer) {
    ViewChange change;
    // A release outside the graph ends the drag at its last shown position.
    if (m_kind == Kind::Select) change = Move(pointer);
    if (m_kind == Kind::Title) change = m_view.DragTitle(m_channel, m_view.LaneAt(pointer.y));
    change |= Cancel();
    return change;
}

ViewChange GraphGestures::Cancel() {
    if (std::exchange(m_kind, Kind::None) != Kind::Select) return {};
    const Selection& selection = m_view.Selected();
    return selection.active && selection.start == selection.end ? m_view.Deselect() : ViewChange{};
}

ViewChange GraphGestures::Zoom(int notches, GraphZone zone, const GraphPointer& pointer) {
    // Over the other zones the rows of the pointer are not those of the lanes.
    const bool overLane =
        zone == GraphZone::Traces || zone == GraphZone::AmplitudeScale || zone == GraphZone::LaneTitles;
    if (!overLane || !pointer.alt || !m_view.UsesLanes()) return m_view.ZoomY(notches);
    const std::size_t lane = m_view.LaneAt(pointer.y);
    return pointer.shift ? m_view.ZoomChannel(lane, notches) : m_view.ZoomGroup(lane, notches);
}

ViewChange GraphGestures::Wheel(int delta, GraphZone zone, const GraphPointer& pointer) {
    if ((m_wheelRest > 0) != (delta > 0)) m_wheelRest = 0;
    m_wheelRest += delta;
    const int notches = m_wheelRest / kNotch;
    m_wheelRest -= notches * kNotch;
    if (notches == 0 || m_view.Axis().SampleCount() == 0) return {};
    const bool overScale = zone == GraphZone::AmplitudeScale || zone == GraphZone::LaneTitles;
    if (overScale && m_view.UsesLanes() && !pointer.alt && !pointer.control) return m_view.ScrollLanes(-notches);
    if (overScale || pointer.alt || (pointer.control && pointer.shift)) return Zoom(notches, zone, pointer);
    if (zone == GraphZone::TimeScale || pointer.control) return m_view.ZoomAbout(notches, pointer.x);
    constexpr int columns = 100;
    constexpr int fewColumns = 20;
    return m_view.ScrollBy(-notches * (pointer.shift ? fewColumns : columns));
}

ViewChange GraphGestures::AutoScroll() {
    if (!IsBeside() || !m_view.Selected().active) return {};
    const TimeAxis& axis = m_view.Axis();
    const std::int32_t beyond = m_x < 0 ? m_x : m_x - axis.Width() + 1;
    const std::int32_t lastFirst = std::max(axis.StripLength() - axis.Width(), 0);
    const std::int32_t shift = std::clamp(beyond, -TimeAxis::kDivision, TimeAxis::kDivision);
    ViewChange change = m_view.ScrollBy(std::min(shift, std::max(lastFirst - axis.FirstColumn(), 0)));
    change |= Move({.x = m_x});
    return change;
}

}  // namespace quillon
