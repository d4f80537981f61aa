#include "app/ScrollBars.h"

#include <algorithm>
#include <cstdlib>

namespace quillon {

namespace {

/// Columns or rows of a click on an end of a scroll bar.
constexpr int kStep = 20;

}  // namespace

std::int32_t ScrollBars::Height() const {
    const Lane& last = m_view.GetLanes().back();
    return last.top + last.height;
}

ScrollBarValues ScrollBars::Time() const {
    const TimeAxis& axis = m_view.Axis();
    return {0, TimeAxis::kScrollMax, axis.ScrollPage(), axis.ScrollValue()};
}

bool ScrollBars::CanScrollAmplitude() const {
    const LaneLayout lanes = m_view.LanesOfChannels().Layout();
    return !m_view.UsesLanes() || lanes.Visible() < lanes.Count();
}

ScrollBarValues ScrollBars::Amplitude() {
    if (m_view.UsesLanes()) {
        const LaneLayout lanes = m_view.LanesOfChannels().Layout();
        return {0, lanes.Count() - lanes.Visible(), std::max(lanes.Visible(), 1), lanes.First()};
    }
    // A base line outside the bar's range becomes the middle of the bar, so that dragging the thumb moves it relative
    // to its position.
    const std::int64_t shift = m_view.BaseLineShift();
    if (std::abs(shift - m_middle) > kBaseLineReach) m_middle = shift;
    if (std::abs(shift) <= kBaseLineReach) m_middle = 0;
    return {-kBaseLineReach, kBaseLineReach, std::max(Height(), 1), static_cast<int>(m_middle - shift)};
}

ViewChange ScrollBars::ScrollTime(ScrollAction action, int thumb) {
    const TimeAxis& axis = m_view.Axis();
    switch (action) {
        case ScrollAction::LineBack: return m_view.ScrollBy(-kStep);
        case ScrollAction::LineOn: return m_view.ScrollBy(kStep);
        case ScrollAction::PageBack: return m_view.ScrollBy(axis.PageShift(1));
        case ScrollAction::PageOn: return m_view.ScrollBy(axis.PageShift(2));
        case ScrollAction::Start: return m_view.ScrollBy(axis.PageShift(0));
        case ScrollAction::End: return m_view.ScrollBy(axis.PageShift(3));
        case ScrollAction::ThumbSet:
        case ScrollAction::ThumbDragged: return m_view.SetScrollValue(thumb);
        default: return {};
    }
}

ViewChange ScrollBars::ScrollLanes(ScrollAction action, int thumb) {
    const LaneLayout lanes = m_view.LanesOfChannels().Layout();
    switch (action) {
        case ScrollAction::LineBack: return m_view.ScrollLanes(-1);
        case ScrollAction::LineOn: return m_view.ScrollLanes(1);
        case ScrollAction::PageBack: return m_view.ScrollLanes(-lanes.Visible());
        case ScrollAction::PageOn: return m_view.ScrollLanes(lanes.Visible());
        case ScrollAction::ThumbSet:
        case ScrollAction::ThumbDragged: return m_view.ScrollLanes(thumb - lanes.First());
        default: return {};
    }
}

ViewChange ScrollBars::ScrollAmplitude(ScrollAction action, int thumb) {
    if (m_view.UsesLanes()) return ScrollLanes(action, thumb);
    const std::int32_t page = Height() / AmplitudeScale::kDivision * AmplitudeScale::kDivision;
    switch (action) {
        case ScrollAction::LineBack: return m_view.MoveBaseLine(kStep);
        case ScrollAction::LineOn: return m_view.MoveBaseLine(-kStep);
        case ScrollAction::PageBack: return m_view.MoveBaseLine(page);
        case ScrollAction::PageOn: return m_view.MoveBaseLine(-page);
        case ScrollAction::ThumbSet:
        case ScrollAction::ThumbDragged: return m_view.MoveBaseLine(m_middle - thumb - m_view.BaseLineShift());
        default: return {};
    }
}

}  // namespace quillon
