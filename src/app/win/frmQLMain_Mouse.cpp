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
    if (m_busy) return message == WM_SETCURSOR && (SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true);
    if (id == pbPathList && message == WM_LBUTTONDOWN) return ShowPathList(), true;
    if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN)
        SetFocus(m_graphBox.Window());
    if (id == pbScaleY) return ScaleYMouse(message, y);
    if (id == pbPal && (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK)) return NextPalette(), true;
    if (id == pbFFT) return SpectrogramMouse(id, message, wParam, x, y);
    if (id != pbGraph) return message == WM_LBUTTONDOWN;
    if (message == WM_SETCURSOR) return SetCursor(GraphPointer()), true;
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
    if (starts && m_gesture.kind != Gesture::None) return true;
    const bool control = (wParam & MK_CONTROL) != 0;
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (control) {
                Hover(x, y);
            } else {
                StartSelection(x, (wParam & MK_SHIFT) != 0);
            }
            return true;
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            EndHover();
            m_gesture = {Gesture::Pan, x, y, m_view.Axis().FirstColumn(), m_view.BaseLineShift()};
            SetCapture(m_graphBox.Window());
            SetCursor(LoadCursorW(nullptr, IDC_SIZEALL));
            return true;
        case WM_MOUSEMOVE:
            if (m_gesture.kind == Gesture::Select) {
                DragSelection(x);
            } else if (m_gesture.kind == Gesture::Pan) {
                ViewChanged(m_view.Move(m_gesture.column - (x - m_gesture.x) - m_view.Axis().FirstColumn(),
                                        m_gesture.shift + (y - m_gesture.y) - m_view.BaseLineShift()));
            } else if ((wParam & MK_LBUTTON) == 0 || control) {
                Hover(x, y);
            }
            return true;
        case WM_LBUTTONUP:
            if (m_gesture.kind == Gesture::Select) FinishSelection(x);
            return true;
        case WM_MBUTTONUP:
            if (m_gesture.kind == Gesture::Pan) ReleaseCapture();
            return true;
        case WM_RBUTTONUP: {
            if (m_gesture.kind != Gesture::None) return true;
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

bool frmQLMain::ScaleYMouse(UINT message, int y) {
    if ((message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) && m_document.Block().sampleCount > 0) {
        m_gesture = {Gesture::BaseLine, 0, y, 0, m_view.BaseLineShift()};
        SetCapture(m_scaleYBox.Window());
    } else if (message == WM_MOUSEMOVE && m_gesture.kind == Gesture::BaseLine) {
        ViewChanged(m_view.MoveBaseLine(m_gesture.shift + (y - m_gesture.y) - m_view.BaseLineShift()));
    } else if (message == WM_LBUTTONUP && m_gesture.kind == Gesture::BaseLine) {
        ReleaseCapture();
    } else if (message == WM_CAPTURECHANGED) {
        EndGesture();
    } else if (message == WM_SETCURSOR) {
        SetCursor(LoadCursorW(nullptr, IDC_SIZENS));
        return true;
    }
    return message == WM_LBUTTONDOWN;
}

void frmQLMain::EndGesture() {
    if (m_gesture.kind == Gesture::None) return;
    KillTimer(m_window, kAutoScroll);
    // A selection that was taken away in mid-drag stays as far as it came.
    if (m_gesture.kind == Gesture::Select && m_view.Selected().start == m_view.Selected().end) m_view.Deselect();
    m_gesture.kind = Gesture::None;
    ShowSelection();
    UpdateCommands();
}

HCURSOR frmQLMain::GraphPointer() {
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
        SetCursor(GraphPointer());
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
    if (message == WM_SETCURSOR) return SetCursor(GraphPointer()), true;
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

void frmQLMain::StartSelection(int x, bool extend) {
    EndHover();
    m_gesture = {Gesture::Select, x, 0, 0, 0};
    SetCapture(m_graphBox.Window());
    if (extend && m_view.Selected().active) return DragSelection(x);
    const std::int32_t sample = SampleUnder(m_view.Axis(), x);
    m_view.Select(sample, sample);
    ShowSelection();
    // The range that was told is not selected any more.
    if (m_valuesKind == ValuesKind::Range) TellHover(sample, {});
}

void frmQLMain::DragSelection(int x) {
    if (!m_view.Selected().active) return;
    const bool outside = x < 0 || x >= m_view.Axis().Width();
    m_gesture.x = x;
    if (outside) {
        SetTimer(m_window, kAutoScroll, kAutoScrollPeriod, nullptr);
    } else {
        KillTimer(m_window, kAutoScroll);
    }
    m_view.SelectTo(SampleUnder(m_view.Axis(), std::clamp(x, 0, m_view.Axis().Width() - 1)));
    ShowSelection();
    ShowRange();
}

void frmQLMain::OnTimer(UINT_PTR timer) {
    if (timer != kAutoScroll || m_gesture.kind != Gesture::Select || !m_view.Selected().active) return;
    // The further outside the pointer is, the faster the view runs, up to a division a step.
    const int beyond = m_gesture.x < 0 ? m_gesture.x : m_gesture.x - m_view.Axis().Width() + 1;
    const std::int32_t lastFirst = std::max(m_view.Axis().StripLength() - m_view.Axis().Width(), 0);
    const std::int32_t shift = std::clamp(beyond, -TimeAxis::kDivision, TimeAxis::kDivision);
    ViewChanged(m_view.ScrollBy(std::min(shift, std::max(lastFirst - m_view.Axis().FirstColumn(), 0))));
    DragSelection(m_gesture.x);
}

void frmQLMain::FinishSelection(int x) {
    KillTimer(m_window, kAutoScroll);
    // A release outside the graph ends where the drag was shown.
    if (m_view.Selected().active)
        m_view.SelectTo(SampleUnder(m_view.Axis(), std::clamp(x, 0, m_view.Axis().Width() - 1)));
    // Ends the gesture through the loss of the capture, and drops a selection of no length.
    ReleaseCapture();
    if (!m_view.Selected().active) return;
    ShowRange();
    GetCursorPos(&m_releasedAt.emplace());
}

void frmQLMain::Select(int index) {
    if (index == 2 && m_global.sound.playing) return StopSound();
    if (m_gesture.kind == Gesture::Select) ReleaseCapture();
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
    const bool alt = GetKeyState(VK_MENU) < 0;
    // The release of the key would open the menu.
    if (alt) m_altUsed = true;
    OnWheel(under, delta, GET_KEYSTATE_WPARAM(message.wParam), alt, static_cast<int>(point.x));
    return true;
}

void frmQLMain::OnWheel(HWND under, int delta, UINT keys, bool alt, int column) {
    // Movement below a notch adds up; a reversal clears the rest.
    if ((m_wheelRest > 0) != (delta > 0)) m_wheelRest = 0;
    m_wheelRest += delta;
    const int notches = m_wheelRest / WHEEL_DELTA;
    m_wheelRest -= notches * WHEEL_DELTA;
    if (notches == 0 || m_document.Block().sampleCount == 0) return;
    const bool control = (keys & MK_CONTROL) != 0;
    const bool shift = (keys & MK_SHIFT) != 0;
    const bool zoomY = under == m_scaleYBox.Window() || alt || (control && shift);
    const bool zoomX = under == m_scaleXBox.Window() || control;
    if (zoomY) {
        ViewChanged(m_view.ZoomY(notches));
    } else if (zoomX) {
        ViewChanged(m_view.ZoomAbout(notches, column));
    } else {
        ViewChanged(m_view.ScrollBy(-notches * (shift ? 20 : 100)));
    }
}

}  // namespace quillon
