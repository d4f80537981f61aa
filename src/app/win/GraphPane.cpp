#include "app/win/GraphPane.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/ControlIds.h"
#include "app/win/NoticePainter.h"
#include "app/win/ScrollBarControl.h"
#include "view/Readout.h"
#include "view/ScaleLabels.h"
#include "view/win/MeasurementPainter.h"

namespace quillon {

namespace {

static_assert(SB_LINEDOWN == static_cast<int>(ScrollAction::LineOn) &&
              SB_LEFT == static_cast<int>(ScrollAction::Start) &&
              SB_THUMBTRACK == static_cast<int>(ScrollAction::ThumbDragged) &&
              SB_ENDSCROLL == static_cast<int>(ScrollAction::End) + 1);

}  // namespace

GraphPane::GraphPane(const Document& document, WaveformView& view, const Playback& playback,
                     const DisplaySettings& display, const FormatOptions& format, HoverCapture& hover,
                     const ScreenDensity& density, bool foldOrigin)
    : m_document(document),
      m_view(view),
      m_playback(playback),
      m_display(display),
      m_format(format),
      m_hover(hover),
      m_density(density),
      m_foldOrigin(foldOrigin),
      m_gestures(view),
      m_titles(document, view, m_gestures, format, density),
      m_mouse({document, view, format, hover, m_gestures, m_titles, m_graph, m_scaleY}),
      m_scrollBars(view),
      m_zoomX(density),
      m_painter(density),
      m_scales(density),
      m_cursors(density) {
    m_view.SetDpi(density.Dpi());
    WireMouse();
}

void GraphPane::WireMouse() {
    m_titles.onChannel = m_mouse.onChannel = [this](std::int16_t channel) { onChannel(channel); };
    m_titles.onAlone = [this](std::int16_t channel) { onAlone(channel); };
    m_titles.onMenu = m_mouse.onMenu = [this](POINT screen, std::int16_t channel) { onContextMenu(screen, channel); };
    m_titles.onPress = [this](GraphZone zone, const GraphPointer& pointer) {
        m_mouse.Press(m_scaleY.Window(), GraphButton::Left, zone, pointer);
    };
    m_titles.onDrag = [this](const GraphPointer& pointer) { m_mouse.Drag(pointer); };
    m_titles.onChange = m_mouse.onChange = [this](const ViewChange& change) { onChange(change); };
    m_titles.onCancel = [this] { EndGesture(); };
    m_mouse.onSelection = [this] { ShowSelection(); };
    m_mouse.onSelectionStart = [this] { onSelectionStart(); };
    m_mouse.onSelectionEnd = [this] { onSelectionEnd(); };
    m_mouse.onHover = [this](int x, int y) { Hover(x, y); };
    m_mouse.onPointer = [this] { return Pointer(); };
}

bool GraphPane::CreateGraph(HWND parent) {
    return m_graph.Create(parent, pbGraph, *this, true);
}

bool GraphPane::CreateRest(HWND parent) {
    return m_scaleX.Create(parent, pbScaleX, *this, false) && m_scaleY.Create(parent, pbScaleY, *this, false) &&
           m_zoomX.Create(parent, btnZoomX, *this);
}

void GraphPane::SetSize(std::int32_t width, std::int32_t height) {
    m_size = {width, height};
    m_view.Arrange(width, height);
}

void GraphPane::DensityChanged() {
    m_view.SetDpi(m_density.Dpi());
    m_cursors.Forget();
}

void GraphPane::SetNotice(GraphNotice notice) {
    if (notice.title == m_notice.title && notice.text == m_notice.text) return;
    m_notice = std::move(notice);
    m_graph.Invalidate();
}

GraphScene GraphPane::Scene() const {
    return {.block = m_document.Block(),
            .axis = m_view.Axis(),
            .lanes = m_view.GetLanes(),
            .extremes = m_view.Extremes(),
            .rawCodes = m_view.RawCodes(),
            .foldOrigin = m_foldOrigin,
            .gridStyle = static_cast<GridStyle>(std::clamp<int>(m_display.gridStyle, 0, 2)),
            .gridColor = Colors().Trace(static_cast<std::int16_t>(std::abs(static_cast<int>(m_display.gridColor)))),
            .gridColumns = GridColumns(m_view.Axis(), m_document.Block(), m_format, m_density.Dpi()),
            .others = m_view.OtherBlocks(),
            .look = m_view.Look().At(m_density.Dpi()),
            .line = m_density.Line()};
}

void GraphPane::PaintPicture(int id, HDC dc, const RECT& clip) {
    RECT client{};
    const HWND picture = id == pbGraph ? m_graph.Window() : id == pbScaleX ? m_scaleX.Window() : m_scaleY.Window();
    GetClientRect(picture, &client);
    if (id == pbScaleX)
        m_scales.PaintTime(dc, client, Colors(),
                           TimeLabels(m_view.Axis(), m_document.Block(), m_format, m_density.Dpi()),
                           VisibleSpans(m_view.Axis(), m_document.Block()));
    if (id == pbScaleY && HasSamples() && m_view.UsesLanes()) {
        m_titles.Paint(dc, client);
    } else if (id == pbScaleY) {
        m_scales.PaintAmplitude(
            dc, client, Colors(),
            HasSamples() ? AmplitudeLabels(m_view.GetLanes().front(), m_view.RawCodes(), m_format.decimalSeparator)
                         : std::vector<ScaleLabel>());
    }
    if (id != pbGraph) return;
    m_painter.Paint(dc, clip);
    if (const auto measured = onMeasured()) PaintMeasurement(dc, client, *measured, Colors(), m_density);
    PaintNotice(dc, client, m_notice, Colors(), m_density.Dpi());
}

void GraphPane::OnScroll(int bar, int code) {
    if (code >= SB_ENDSCROLL) return;
    const auto action = static_cast<ScrollAction>(code);
    const int thumb = TrackPosition(GetDlgItem(GetParent(m_graph.Window()), bar));
    onChange(bar == scScaleX ? m_scrollBars.ScrollTime(action, thumb) : m_scrollBars.ScrollAmplitude(action, thumb));
}

void GraphPane::FitScales() {
    if (m_size.cy < 1) return;
    m_fitWhenDrawn = HasSamples() && !m_painter.CanReadNow(Scene());
    if (!m_fitWhenDrawn) m_view.FitScales(m_painter.SeenRange(Scene()));
}

bool GraphPane::FitDrawn() {
    if (m_painter.IsIncomplete() || !std::exchange(m_fitWhenDrawn, false)) return false;
    m_view.FitScales(m_painter.SeenRange(Scene()));
    return true;
}

bool GraphPane::DrawMore() {
    const RECT drawn = m_painter.DrawMore(Scene());
    if (!IsRectEmpty(&drawn)) InvalidateRect(m_graph.Window(), &drawn, FALSE);
    return m_painter.IsIncomplete();
}

void GraphPane::Refresh(std::int32_t shift) {
    m_view.Arrange(m_size.cx, m_size.cy);
    // The first recording is open before the graph has a size.
    if (!m_view.HasFittedScales()) FitScales();
    m_marks = VisibleMarks(m_view.Axis(), m_document.Block());
    if (HasSamples()) {
        ShowCursor(std::nullopt);
        ShowSelection();
        ShowPlayLine(m_playback.Position());
        if (shift != 0) {
            m_painter.Scroll(Scene(), shift);
        } else {
            m_painter.Draw(Scene(), m_size.cx, m_size.cy);
        }
    } else {
        m_painter.Clear(m_size.cx, m_size.cy, Colors());
    }
    m_graph.Invalidate();
    if (m_scaleX.Window() == nullptr) return;
    const TimeAxis& axis = m_view.Axis();
    m_zoomX.SetCaption(axis.IsFree() ? PageCaption(axis.PageSeconds(), m_format.decimalSeparator)
                                     : ZoomCaption(axis.ZoomIndex()));
    const HWND window = GetParent(m_graph.Window());
    ShowBar(GetDlgItem(window, scScaleX), m_scrollBars.Time(), m_view.Axis().CanScroll());
    ShowBar(GetDlgItem(window, scScaleY), m_scrollBars.Amplitude(), HasSamples() && m_scrollBars.CanScrollAmplitude());
    m_scaleX.Invalidate();
    if (shift == 0) m_scaleY.Invalidate();
}

bool GraphPane::SeesOtherMarks() const {
    const std::vector<MarkLine> marks = VisibleMarks(m_view.Axis(), m_document.Block());
    const auto same = [](const MarkLine& a, const MarkLine& b) {
        return a.column == b.column && a.textWidth == b.textWidth && a.row == b.row;
    };
    return !std::equal(marks.begin(), marks.end(), m_marks.begin(), m_marks.end(), same);
}

std::string GraphPane::Failure() const {
    return HasSamples() ? m_painter.ReadFailure() : std::string();
}

void GraphPane::LeaveBlock() {
    // A gesture or readout under way refers to the old block.
    EndGesture();
    m_hover.End();
    const HWND capture = GetCapture();
    if (capture != nullptr && (capture == m_graph.Window() || capture == m_scaleY.Window())) ReleaseCapture();
    m_painter.ForgetBlock();
    m_painter.Clear(m_size.cx, m_size.cy, Colors());
}

// Bands over the graph.

void GraphPane::SetBand(GraphBand which, const std::optional<ColumnBand>& band) {
    const RECT changed = m_painter.SetBand(which, band);
    if (!IsRectEmpty(&changed)) InvalidateRect(m_graph.Window(), &changed, FALSE);
}

void GraphPane::ShowSelection() {
    const Selection& selection = m_view.Selected();
    SetBand(GraphBand::Selection, selection.active ? BandOf(m_view.Axis(), selection.Samples()) : std::nullopt);
}

void GraphPane::ShowPlayLine(std::int32_t sample) {
    const auto band = sample > 0 ? AtLeast(BandOf(m_view.Axis(), {sample - 1, 1}), m_density.Line()) : std::nullopt;
    SetBand(GraphBand::Play, band), onBand(CommonBand::Play, band);
}

void GraphPane::Point(std::int16_t channel) {
    if (m_titles.Point(channel)) m_scaleY.Invalidate();
}

void GraphPane::ShowCursor(const std::optional<ColumnBand>& columns) {
    const std::optional<ColumnBand> band = AtLeast(columns, m_density.Line());
    if (!band) Point(0);
    SetBand(GraphBand::Cursor, band);
    onBand(CommonBand::Cursor, band);
}

// The mouse.

bool GraphPane::PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) {
    if (onBusy()) return message == WM_SETCURSOR && (SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true);
    if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN) SetFocus(m_graph.Window());
    const GraphPointer pointer{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam), (wParam & MK_SHIFT) != 0,
                               (wParam & MK_CONTROL) != 0, false};
    if (id == pbScaleY) return m_mouse.ScaleY(message, pointer);
    if (id == pbScaleX) return message == WM_LBUTTONDOWN;
    return m_mouse.Graph(message, wParam, pointer);
}

// The readout.

void GraphPane::Hover(int x, int y) {
    if (!m_hover.StaysIn(m_graph.Window(), Pointer(), {x, y})) return;
    ReadOut(SampleNear(m_view.Axis(), x), x, y);
    Point(m_titles.ChannelAt(y));
}

void GraphPane::HoverAgain() {
    if (!HoveredSample() || HasGesture()) return;
    POINT at{};  // the graph may have been moved under the pointer
    GetCursorPos(&at);
    ScreenToClient(m_graph.Window(), &at);
    Hover(static_cast<int>(at.x), static_cast<int>(at.y));
}

std::optional<std::int32_t> GraphPane::HoveredSample() const {
    if (m_hover.Picture() == nullptr || m_hover.Picture() != m_graph.Window()) return {};
    return SampleUnder(m_view.Axis(), static_cast<std::int32_t>(m_hover.Point().x));
}

std::optional<std::int32_t> GraphPane::PointedSample() const {
    if (!HoveredSample()) return std::nullopt;
    return SampleNear(m_view.Axis(), static_cast<std::int32_t>(m_hover.Point().x));
}

void GraphPane::ShowSample(std::int32_t sample) {
    ReadOut(sample, m_view.Axis().ColumnOf(sample - 1), 0);
}

void GraphPane::OpenContextMenu() const {
    RECT place{};
    GetWindowRect(m_graph.Window(), &place);
    onContextMenu({place.left, place.top}, 0);
}

void GraphPane::ReadOut(std::int32_t sample, int x, int row) {
    // Signals of other blocks are read out at the column, which may be far from the point of a slow one's sample.
    const TimeAxis& axis = m_view.Axis();
    const bool atColumn = !m_view.OtherBlocks().empty() && axis.Grid().ShowsEverySample() && x >= 0 && x < axis.Width();
    ShowCursor(atColumn ? ColumnBand{x, x} : PointBand(axis, sample));
    const auto mark = m_painter.MarkAt(Scene(), x, row);
    onHover(sample, PlaceUnder(axis, x), mark ? m_document.Block().marks[*mark].text : std::u16string());
    if (m_view.Pinned() != 0) m_graph.Invalidate();
}

}  // namespace quillon
