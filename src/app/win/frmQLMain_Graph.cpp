#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "app/ControlIds.h"
#include "app/StatusPanels.h"
#include "app/win/NoticePainter.h"
#include "app/win/frmQLMain.h"
#include "base/FilePath.h"
#include "base/StringIds.h"
#include "data/ChannelSelection.h"

namespace quillon {

namespace {

/// The amplitude scroll bar moves the base line this many rows up or down at most.
constexpr std::int64_t kBaseLineReach = 2000;

}  // namespace

void frmQLMain::PaintPicture(int id, HDC dc, const RECT& clip) {
    RECT client{};
    GetClientRect(GetDlgItem(m_window, id), &client);
    if (id == pbScaleX) m_scales.PaintTime(dc, client, TimeLabels(m_view.Axis(), m_document.Block(), m_global.format));
    if (id == pbScaleY) {
        const bool empty = m_document.Block().sampleCount == 0;
        m_scales.PaintAmplitude(
            dc, client,
            empty ? std::vector<ScaleLabel>()
                  : AmplitudeLabels(m_view.GetLanes(), m_view.RawCodes(), m_global.format.decimalSeparator));
    }
    if (id == pbPathList) {
        FillRect(dc, &clip, GetSysColorBrush(COLOR_BTNFACE));
        DrawFrameControl(dc, &client, DFC_BUTTON, DFCS_BUTTONPUSH);
        const int size = MulDiv(16, m_dpi, 96);
        ImageList_Draw(m_pathListIcon.Get(), 0, dc, (static_cast<int>(client.right) - size) / 2,
                       (static_cast<int>(client.bottom) - size) / 2, ILD_TRANSPARENT);
        InflateRect(&client, -3, -3);
        if (GetFocus() == m_pathListBox.Window()) DrawFocusRect(dc, &client);
    }
    if (id == pbFFT || id == pbPal || id == pbScaleF) PaintSpectrogram(id, dc, client);
    if (id != pbGraph) return;
    m_graph.Paint(dc, clip);
    PaintNotice(dc, client, NoticeOf(m_document, m_global.fileCount, m_services), m_dpi);
}

void frmQLMain::UpdateScrollBars() {
    const bool scrollable = m_view.Axis().CanScroll() && m_view.Axis().StripLength() > 0;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    info.nPage = static_cast<UINT>(m_view.Axis().ScrollPage());
    // A scroll bar stops one page before its maximum; ours counts positions of the first column.
    info.nMax = TimeAxis::kScrollMax + static_cast<int>(info.nPage) - 1;
    info.nPos = m_view.Axis().ScrollValue();
    const HWND horizontal = GetDlgItem(m_window, scScaleX);
    SetScrollInfo(horizontal, SB_CTL, &info, TRUE);
    EnableWindow(horizontal, scrollable);

    // A base line that lies farther away is the middle of the bar, so that the thumb moves it from where it is.
    const std::int64_t shift = m_view.BaseLineShift();
    if (std::abs(shift - m_baseLineMiddle) > kBaseLineReach) m_baseLineMiddle = shift;
    if (std::abs(shift) <= kBaseLineReach) m_baseLineMiddle = 0;
    constexpr auto reach = static_cast<int>(kBaseLineReach);
    info.nMin = -reach;
    info.nPage = static_cast<UINT>(std::max(m_layout.graph.height, 1));
    info.nMax = reach + static_cast<int>(info.nPage) - 1;
    info.nPos = static_cast<int>(m_baseLineMiddle - shift);
    const HWND vertical = GetDlgItem(m_window, scScaleY);
    SetScrollInfo(vertical, SB_CTL, &info, TRUE);
    EnableWindow(vertical, m_document.Block().sampleCount > 0);
}

namespace {

/// Where the user holds the thumb of a scroll bar; the message itself has only 16 bits for it.
int TrackPosition(HWND scrollBar) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    GetScrollInfo(scrollBar, SB_CTL, &info);
    return info.nTrackPos;
}

}  // namespace

void frmQLMain::OnHScroll(UINT code) {
    const std::int32_t width = m_view.Axis().Width();
    switch (code) {
        case SB_LINELEFT: return ViewChanged(m_view.ScrollBy(-20));
        case SB_LINERIGHT: return ViewChanged(m_view.ScrollBy(20));
        case SB_PAGELEFT: return ViewChanged(m_view.ScrollBy(-(width - width % TimeAxis::kDivision)));
        case SB_PAGERIGHT: return ViewChanged(m_view.ScrollBy(width - width % TimeAxis::kDivision));
        case SB_LEFT: return ViewChanged(m_view.ScrollBy(m_view.Axis().PageShift(0)));
        case SB_RIGHT: return ViewChanged(m_view.ScrollBy(m_view.Axis().PageShift(3)));
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: break;
        default: return;
    }
    ViewChanged(m_view.SetScrollValue(TrackPosition(GetDlgItem(m_window, scScaleX))));
}

void frmQLMain::OnVScroll(UINT code) {
    const std::int32_t page = m_layout.graph.height / AmplitudeScale::kDivision * AmplitudeScale::kDivision;
    switch (code) {
        case SB_LINEUP: return ViewChanged(m_view.MoveBaseLine(20));
        case SB_LINEDOWN: return ViewChanged(m_view.MoveBaseLine(-20));
        case SB_PAGEUP: return ViewChanged(m_view.MoveBaseLine(page));
        case SB_PAGEDOWN: return ViewChanged(m_view.MoveBaseLine(-page));
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: break;
        default: return;
    }
    const std::int64_t shift = m_baseLineMiddle - TrackPosition(GetDlgItem(m_window, scScaleY));
    ViewChanged(m_view.MoveBaseLine(shift - m_view.BaseLineShift()));
}

void frmQLMain::FitUnlessLegible() {
    if (m_layout.graph.height < 1) return;
    m_view.FitScales(m_graph.SeenRanges(Scene()));
}

GraphScene frmQLMain::Scene() const {
    const Settings& settings = m_global.settings;
    return {m_document.Block(),
            m_view.Axis(),
            m_view.GetLanes(),
            m_view.RawCodes(),
            m_global.systemVersion < 4,
            static_cast<GridStyle>(std::clamp<int>(settings.gridStyle, 0, 2)),
            TraceColor(static_cast<std::int16_t>(std::abs(static_cast<int>(settings.gridColor))))};
}

void frmQLMain::TellUnreadable(bool wholeView) {
    const bool hasSamples = m_document.Block().sampleCount > 0;
    std::string reason = hasSamples ? m_graph.ReadFailure() : std::string();
    if (reason.empty() && hasSamples && m_global.settings.spectrogramShown) reason = m_fft.ReadFailure();
    const bool inView = !reason.empty();
    if (!inView) reason = m_view.Ranges().Failure();
    if (!reason.empty()) {
        const std::u16string text = FileNameOf(m_document.File().fileName) + u": " +
                                    m_services.Text(inView ? IDS_UNREADABLE : IDS_RANGE_PARTIAL) + u": " +
                                    Utf16(reason);
        // What lies out of view is told once.
        if (inView || text != m_unreadable) m_status.Tell(StatusBar::Topic::Unreadable, text);
        m_unreadable = text;
    } else if (wholeView && !m_unreadable.empty()) {
        m_status.Retract(StatusBar::Topic::Unreadable);
        m_unreadable.clear();
    }
}

void frmQLMain::Refresh(std::int32_t shift) {
    if (m_closing || IsIconic(m_window)) return;
    const PixelRect& graph = m_layout.graph;
    m_view.Arrange(graph.width, graph.height);
    // The first recording is open before the graph has a size.
    if (!m_view.HasFittedScales()) FitUnlessLegible();
    if (m_document.Block().sampleCount > 0) {
        HideCursorBand();
        ShowSelection();
        ShowPlayLine();
        if (shift != 0) {
            m_graph.Scroll(Scene(), shift);
        } else {
            m_graph.Draw(Scene(), graph.width, graph.height);
        }
    } else {
        m_graph.Clear(graph.width, graph.height);
    }
    m_graphBox.Invalidate();
    if (m_complete) Spectrogram_Draw(false);
    // A place that was not understood is of the past once the view changes.
    m_status.Retract(StatusBar::Topic::Place);
    TellUnreadable(shift == 0 || std::abs(shift) >= graph.width);
    if (!m_complete) return;
    KeepValuesTrue();
    m_zoomX.SetCaption(ZoomCaption(m_view.Axis().ZoomIndex()));
    UpdateScrollBars();
    ShowPanels();
    UpdateCommands();
    m_scaleXBox.Invalidate();
    if (shift == 0) m_scaleYBox.Invalidate();
    // Another sample lies under the pointer now.
    const int x = static_cast<int>(m_hoverPoint.x);
    const int y = static_cast<int>(m_hoverPoint.y);
    if (m_hovering != nullptr && m_hovering == m_graphBox.Window() && m_gestures.Current() == GraphGestures::Kind::None)
        Hover(x, y);
    if (m_hovering != nullptr && m_hovering == m_fftBox.Window()) SpectrogramMouse(pbFFT, WM_MOUSEMOVE, 0, x, y);
}

frmQLMain::ValuesBasis frmQLMain::PresentBasis() const {
    return {ShownChannels(m_document.Block(), m_document.Slots()),
            m_global.format,
            m_view.RawCodes(),
            m_global.settings,
            m_fft.State().channelIndex,
            m_global.settings.spectrogramShown};
}

void frmQLMain::TellValues(ValuesKind kind, const std::u16string& text) {
    m_valuesKind = kind;
    m_valuesBasis = PresentBasis();
    m_values.Text(text);
    m_values.Refresh();
}

void frmQLMain::TellHover(std::int32_t sample, const std::u16string& mark) {
    m_hoverSample = sample;
    m_hoverMark = mark;
    TellValues(ValuesKind::Hover, (mark.empty() ? mark : mark + u"\r\n") + HoverReadout(Source(), sample));
}

void frmQLMain::KeepValuesTrue() {
    if (m_valuesKind == ValuesKind::Details || PresentBasis() == m_valuesBasis) return;
    switch (m_valuesKind) {
        case ValuesKind::Hover: return TellHover(m_hoverSample, m_hoverMark);
        case ValuesKind::Range: return ShowRange();
        default: return TellDetails();
    }
}

void frmQLMain::ShowPanels() {
    m_status.ShowPanels(BlockPanels(
        {m_document.Block(), m_document.Slots(), m_view.Axis(), m_global.format, m_view.ScaleY(), m_view.RawCodes()},
        m_services));
}

}  // namespace quillon
