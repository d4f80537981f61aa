#include "app/win/GraphMouse.h"

#include "view/Readout.h"

namespace quillon {

namespace {

constexpr UINT_PTR kAutoScroll = 1;
constexpr UINT kAutoScrollPeriod = 40;  // ms

}  // namespace

bool GraphMouse::Graph(UINT message, WPARAM keys, const GraphPointer& pointer) {
    if (message == WM_SETCURSOR) return SetCursor(onPointer()), true;
    if (GraphCapture(message)) return false;
    const bool starts = message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK || message == WM_MBUTTONDOWN ||
                        message == WM_MBUTTONDBLCLK;
    if (!HasSamples()) {
        m_parts.hover.End();
        return starts;
    }
    // One gesture at a time.
    if (starts && HasGesture()) return true;
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (pointer.control) {
                onHover(pointer.x, pointer.y);
            } else {
                Press(m_parts.graph.Window(), GraphButton::Left, GraphZone::Traces, pointer);
            }
            return true;
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            Press(m_parts.graph.Window(), GraphButton::Middle, GraphZone::Traces, pointer);
            SetCursor(LoadCursorW(nullptr, IDC_SIZEALL));
            return true;
        case WM_MOUSEMOVE:
            if (HasGesture()) {
                Drag(pointer);
            } else if ((keys & MK_LBUTTON) == 0 || pointer.control) {
                onHover(pointer.x, pointer.y);
            }
            return true;
        case WM_LBUTTONUP:
            if (m_parts.gestures.Current() == GraphGestures::Kind::Select) FinishSelection(pointer);
            return true;
        case WM_MBUTTONUP:
            if (m_parts.gestures.Current() == GraphGestures::Kind::Pan) ReleaseCapture();
            return true;
        case WM_RBUTTONUP:
            if (!HasGesture()) AskForMenu(pointer);
            return true;
        default: return false;
    }
}

bool GraphMouse::GraphCapture(UINT message) {
    if (message != WM_CANCELMODE && message != WM_CAPTURECHANGED) return false;
    // The capture was taken by a menu, a dialog or another window.
    EndGesture();
    if (message == WM_CANCELMODE) m_parts.hover.End();
    m_parts.hover.Lose(m_parts.graph.Window());
    return true;
}

void GraphMouse::AskForMenu(const GraphPointer& pointer) {
    m_parts.hover.End();
    POINT screen{pointer.x, pointer.y};
    ClientToScreen(m_parts.graph.Window(), &screen);
    const ReadoutSource source{m_parts.document.Block(), m_parts.document.Slots(), m_parts.format,
                               m_parts.view.RawCodes()};
    onMenu(screen, m_parts.view.UsesLanes() ? m_parts.titles.ChannelAt(pointer.y)
                                            : ChannelNear(source, m_parts.view.GetLanes(),
                                                          SampleUnder(m_parts.view.Axis(), pointer.x), pointer.y));
}

bool GraphMouse::ScaleY(UINT message, const GraphPointer& pointer) {
    if (HasSamples() && m_parts.view.UsesLanes()) return m_parts.titles.Mouse(m_parts.scale.Window(), message, pointer);
    // Lanes may have been turned off while a title was dragged.
    const bool drags = HasGesture();
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
        Press(m_parts.scale.Window(), GraphButton::Left, GraphZone::AmplitudeScale, pointer);
    } else if (message == WM_MOUSEMOVE && drags) {
        Drag(pointer);
    } else if (message == WM_LBUTTONUP && drags) {
        ReleaseCapture();
    } else if (message == WM_CAPTURECHANGED) {
        EndGesture();
    } else if (message == WM_SETCURSOR) {
        SetCursor(LoadCursorW(nullptr, IDC_SIZENS));
        return true;
    }
    return message == WM_LBUTTONDOWN;
}

void GraphMouse::Press(HWND box, GraphButton button, GraphZone zone, const GraphPointer& pointer) {
    m_parts.hover.End();
    const ViewChange change = m_parts.gestures.Press(button, zone, pointer);
    if (!HasGesture()) return;
    SetCapture(box);
    if (!change.selection) return;
    if (m_parts.view.Selected().start != m_parts.view.Selected().end) return Drag(pointer);
    onSelection();
    onSelectionStart();
}

void GraphMouse::Drag(const GraphPointer& pointer) {
    onChange(m_parts.gestures.Move(pointer));
    if (!m_parts.gestures.IsBeside()) return StopAutoScroll();
    SetTimer(GetParent(m_parts.graph.Window()), kAutoScroll, kAutoScrollPeriod, nullptr);
}

void GraphMouse::Wheel(int delta, GraphZone zone, const GraphPointer& pointer) {
    onChange(m_parts.gestures.Wheel(delta, zone, pointer));
}

void GraphMouse::OnTimer(UINT_PTR timer) {
    if (timer == kAutoScroll) onChange(m_parts.gestures.AutoScroll());
}

void GraphMouse::StopAutoScroll() const {
    KillTimer(GetParent(m_parts.graph.Window()), kAutoScroll);
}

void GraphMouse::EndGesture() {
    if (!HasGesture()) return;
    StopAutoScroll();
    m_parts.gestures.Cancel();
    onSelection();
    onSelectionEnd();
}

void GraphMouse::EndSelecting() {
    if (m_parts.gestures.Current() == GraphGestures::Kind::Select) ReleaseCapture();
}

void GraphMouse::FinishSelection(const GraphPointer& pointer) {
    StopAutoScroll();
    const ViewChange change = m_parts.gestures.Release(pointer);
    ReleaseCapture();
    onChange(change);
    if (m_parts.view.Selected().active) return m_parts.hover.HoldUntilMoved();
    // A click without a drag.
    if (const std::int16_t channel = m_parts.titles.ChannelAt(pointer.y); channel != 0) onChannel(channel);
}

}  // namespace quillon
