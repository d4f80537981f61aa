#include <algorithm>
#include <utility>

#include "app/ControlIds.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"

namespace quillon {

namespace {

constexpr UINT_PTR kAutoScroll = 1;
constexpr UINT kAutoScrollPeriod = 40;  // ms

}  // namespace

ReadoutSource frmQLMain::Source() const {
    return {m_document.Block(), m_document.Slots(), m_global.format, m_view.RawCodes()};
}

bool frmQLMain::PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) {
    const int x = GET_X_LPARAM(lParam);
    const int y = GET_Y_LPARAM(lParam);
    if (m_long.IsBusy()) return message == WM_SETCURSOR && (SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true);
    if (id == pbPathList && message == WM_LBUTTONDOWN) return ShowPathList(), true;
    if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN)
        SetFocus(m_graphBox.Window());
    const GraphPointer pointer{x, y, (wParam & MK_SHIFT) != 0, (wParam & MK_CONTROL) != 0, false};
    if (id == pbScaleY) return ScaleYMouse(message, pointer);
    if (id == pbPal && (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK)) return NextPalette(), true;
    if (id == pbFFT) return SpectrogramMouse(id, message, wParam, x, y);
    if (id != pbGraph) return message == WM_LBUTTONDOWN;
    if (message == WM_SETCURSOR) return SetCursor(PointerShape()), true;
    if (message == WM_CANCELMODE || message == WM_CAPTURECHANGED) {
        // Taken by a menu, a dialog or another window.
        EndGesture();
        if (message == WM_CANCELMODE) EndHover();
        LoseHover(m_graphBox.Window());
        return false;
    }
    const bool starts = message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK || message == WM_MBUTTONDOWN ||
                        message == WM_MBUTTONDBLCLK;
    if (m_document.Block().sampleCount == 0) {
        EndHover();
        return starts;
    }
    // One gesture at a time.
    if (starts && m_gestures.Current() != GraphGestures::Kind::None) return true;
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (pointer.control) {
                Hover(x, y);
            } else {
                Press(m_graphBox.Window(), GraphButton::Left, GraphZone::Traces, pointer);
            }
            return true;
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            Press(m_graphBox.Window(), GraphButton::Middle, GraphZone::Traces, pointer);
            SetCursor(LoadCursorW(nullptr, IDC_SIZEALL));
            return true;
        case WM_MOUSEMOVE:
            if (m_gestures.Current() != GraphGestures::Kind::None) {
                Drag(pointer);
            } else if ((wParam & MK_LBUTTON) == 0 || pointer.control) {
                Hover(x, y);
            }
            return true;
        case WM_LBUTTONUP:
            if (m_gestures.Current() == GraphGestures::Kind::Select) FinishSelection(pointer);
            return true;
        case WM_MBUTTONUP:
            if (m_gestures.Current() == GraphGestures::Kind::Pan) ReleaseCapture();
            return true;
        case WM_RBUTTONUP: {
            if (m_gestures.Current() != GraphGestures::Kind::None) return true;
            EndHover();
            m_menuChannel = ChannelNear(Source(), m_view.GetLanes(), SampleUnder(m_view.Axis(), x), y);
            POINT screen{x, y};
            ClientToScreen(m_graphBox.Window(), &screen);
            ShowContextMenu(screen);
            return true;
        }
        default: return false;
    }
}

bool frmQLMain::ScaleYMouse(UINT message, const GraphPointer& pointer) {
    const bool drags = m_gestures.Current() == GraphGestures::Kind::BaseLine;
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
        Press(m_scaleYBox.Window(), GraphButton::Left, GraphZone::AmplitudeScale, pointer);
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

void frmQLMain::Press(HWND box, GraphButton button, GraphZone zone, const GraphPointer& pointer) {
    EndHover();
    const ViewChange change = m_gestures.Press(button, zone, pointer);
    if (m_gestures.Current() == GraphGestures::Kind::None) return;
    SetCapture(box);
    if (!change.selection) return;
    if (m_view.Selected().start != m_view.Selected().end) return Drag(pointer);
    ShowSelection();
    // The range that was told is not selected any more.
    if (m_valuesKind == ValuesKind::Range) TellHover(m_view.Selected().start, {});
}

void frmQLMain::Drag(const GraphPointer& pointer) {
    ViewChanged(m_gestures.Move(pointer));
    if (m_gestures.IsBeside()) {
        SetTimer(m_window, kAutoScroll, kAutoScrollPeriod, nullptr);
    } else {
        KillTimer(m_window, kAutoScroll);
    }
}

void frmQLMain::EndGesture() {
    if (m_gestures.Current() == GraphGestures::Kind::None) return;
    KillTimer(m_window, kAutoScroll);
    m_gestures.Cancel();
    ShowSelection();
    UpdateCommands();
}

HCURSOR frmQLMain::PointerShape() {
    return m_cursors.Get(m_global.settings.waveformCursor);
}

// The hover readout.

bool frmQLMain::HoverStays(HWND box) {
    // The readout of a selection stays until the mouse is moved; letting the button go makes a move of no length.
    POINT now{};
    GetCursorPos(&now);
    if (m_releasedAt && m_releasedAt->x == now.x && m_releasedAt->y == now.y) return false;
    m_releasedAt.reset();
    if (GetCapture() != box) {
        // A window of another program or a dialog may be over ours.
        if (!IsWindowEnabled(m_window) || GetActiveWindow() != m_window) return false;
        SetCapture(box);
        SetCursor(PointerShape());
    }
    m_hovering = box;
    POINT screen{};
    GetCursorPos(&screen);
    if (WindowFromPoint(screen) == box) return true;
    EndHover();
    return false;
}

void frmQLMain::Hover(int x, int y) {
    if (!HoverStays(m_graphBox.Window())) return;
    m_hoverPoint = {x, y};
    ShowHover(SampleUnder(m_view.Axis(), x), x, y);
}

bool frmQLMain::SpectrogramMouse(int, UINT message, WPARAM, int x, int y) {
    if (message == WM_SETCURSOR) return SetCursor(PointerShape()), true;
    if (message == WM_CANCELMODE) EndHover();
    if (message == WM_CAPTURECHANGED) LoseHover(m_fftBox.Window());
    if (message != WM_MOUSEMOVE || m_document.Block().sampleCount == 0) return false;
    if (!HoverStays(m_fftBox.Window())) return true;
    m_hoverPoint = {x, y};
    const std::int32_t sample = SampleUnder(m_view.Axis(), x);
    MoveCursorBand(BandOf(m_view.Axis(), sample, sample));
    TellValues(ValuesKind::Spectrum, SpectrumReadout(sample, y));
    return true;
}

void frmQLMain::MoveCursorBand(const std::optional<ColumnBand>& band) {
    InvalidateBand(m_graph.SetBand(GraphBand::Cursor, band));
}

void frmQLMain::InvalidateBand(const RECT& part) const {
    InvalidateGraph(part);
    if (m_global.settings.spectrogramShown && !IsRectEmpty(&part)) {
        const RECT columns{part.left, 0, part.right, m_layout.spectrogram.height};
        InvalidateRect(m_fftBox.Window(), &columns, FALSE);
    }
}

void frmQLMain::ShowHover(std::int32_t sample, int x, int row) {
    MoveCursorBand(BandOf(m_view.Axis(), sample, sample));
    const auto mark = m_graph.MarkAt(Scene(), x, row);
    TellHover(sample, mark ? m_document.Block().marks[*mark].text : std::u16string());
}

void frmQLMain::HideCursorBand() {
    MoveCursorBand(std::nullopt);
}

void frmQLMain::LoseHover(HWND box) {
    // Another window has taken the mouse.
    if (m_hovering != box || GetCapture() == box) return;
    m_hovering = nullptr;
    HideCursorBand();
}

void frmQLMain::EndHover() {
    HideCursorBand();
    if (m_hovering == nullptr) return;
    if (GetCapture() == std::exchange(m_hovering, nullptr)) ReleaseCapture();
    UpdateWindow(m_graphBox.Window());
    UpdateWindow(m_fftBox.Window());
}

void frmQLMain::InvalidateGraph(const RECT& part) const {
    if (!IsRectEmpty(&part)) InvalidateRect(m_graphBox.Window(), &part, FALSE);
}

// The selection.

void frmQLMain::ShowSelection() {
    const Selection& selection = m_view.Selected();
    InvalidateGraph(
        m_graph.SetBand(GraphBand::Selection,
                        selection.active ? BandOf(m_view.Axis(), selection.First(), selection.Last()) : std::nullopt));
    if (m_valuesKind == ValuesKind::Range && !selection.active) TellDetails();
}

void frmQLMain::ShowRange() {
    TellValues(ValuesKind::Range, RangeReadout(Source(), m_view.Selected()));
}

void frmQLMain::OnTimer(UINT_PTR timer) {
    if (timer == kAutoScroll) ViewChanged(m_gestures.AutoScroll());
}

void frmQLMain::FinishSelection(const GraphPointer& pointer) {
    KillTimer(m_window, kAutoScroll);
    m_gestures.Release(pointer);
    ReleaseCapture();
    ShowSelection();
    UpdateCommands();
    if (!m_view.Selected().active) return;
    ShowRange();
    GetCursorPos(&m_releasedAt.emplace());
}

void frmQLMain::Select(int index) {
    if (index == 2 && m_playback.IsPlaying()) return StopSound();
    if (m_gestures.Current() == GraphGestures::Kind::Select) ReleaseCapture();
    ViewChanged(index == 0 ? m_view.SelectBlock() : index == 1 ? m_view.SelectVisible() : m_view.Deselect());
}

// The wheel.

bool frmQLMain::RouteWheel(const MSG& message) {
    // The wheel belongs to what lies under the pointer, wherever the focus is.
    const HWND under = WindowFromPoint({GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)});
    if (under == nullptr || !IsWindowEnabled(m_window) || !IsChild(m_window, under)) return false;
    if (under != m_graphBox.Window() && under != m_fftBox.Window() && under != m_scaleXBox.Window() &&
        under != m_scaleYBox.Window()) {
        // A closed drop-down list would choose another entry: it has to have the focus for that.
        const bool choice = under == GetDlgItem(m_window, lstDrive) || under == GetDlgItem(m_window, cboFileType);
        if (!choice || GetFocus() == under) SendMessageW(under, WM_MOUSEWHEEL, message.wParam, message.lParam);
        return true;
    }
    int delta = GET_WHEEL_DELTA_WPARAM(message.wParam);
    // What has queued up while the last turn was drawn is one turn.
    MSG next{};
    while (PeekMessageW(&next, nullptr, WM_MOUSEWHEEL, WM_MOUSEWHEEL, PM_NOREMOVE) && next.hwnd == message.hwnd &&
           LOWORD(next.wParam) == LOWORD(message.wParam)) {
        PeekMessageW(&next, nullptr, WM_MOUSEWHEEL, WM_MOUSEWHEEL, PM_REMOVE);
        delta += GET_WHEEL_DELTA_WPARAM(next.wParam);
    }
    POINT point{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    ScreenToClient(m_graphBox.Window(), &point);
    const UINT keys = GET_KEYSTATE_WPARAM(message.wParam);
    const GraphPointer pointer{static_cast<std::int32_t>(point.x), static_cast<std::int32_t>(point.y),
                               (keys & MK_SHIFT) != 0, (keys & MK_CONTROL) != 0, GetKeyState(VK_MENU) < 0};
    // The release of the key would open the menu.
    if (pointer.alt) m_altUsed = true;
    const GraphZone zone = under == m_scaleXBox.Window()   ? GraphZone::TimeScale
                           : under == m_scaleYBox.Window() ? GraphZone::AmplitudeScale
                           : under == m_fftBox.Window()    ? GraphZone::Spectrogram
                                                           : GraphZone::Traces;
    ViewChanged(m_gestures.Wheel(delta, zone, pointer));
    return true;
}

}  // namespace quillon
