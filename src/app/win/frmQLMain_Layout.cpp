#include <algorithm>

#include "app/ControlIds.h"
#include "app/win/frmQLMain.h"

namespace quillon {

namespace {

bool Contains(const PixelRect& rect, int x, int y) {
    return x >= rect.left && x < rect.Right() && y >= rect.top && y < rect.Bottom();
}

int HeightOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return static_cast<int>(rect.bottom - rect.top);
}

}  // namespace

void frmQLMain::OnSize(UINT state) {
    if (state == SIZE_MINIMIZED) {
        // What changes meanwhile is drawn when the window is back.
        m_arrangedSize = {};
        return;
    }
    RECT client{};
    GetClientRect(m_window, &client);
    // When it is first shown the window is told the size that it was made with.
    if (client.right == m_arrangedSize.cx && client.bottom == m_arrangedSize.cy) return;
    if (m_complete) m_status.Resize();
    ArrangeControls();
    Refresh();
    // Started as an icon, it was activated before it had a size.
    if (!m_activated && m_complete && GetActiveWindow() == m_window) OnActivate(WA_ACTIVE);
}

void frmQLMain::OnGetMinMaxInfo(MINMAXINFO* info) const {
    info->ptMinTrackSize = {MulDiv(560, m_dpi, 96), MulDiv(380, m_dpi, 96)};
}

void frmQLMain::MeasureControls(LayoutInput& input) const {
    input.statusHeight = HeightOf(GetDlgItem(m_window, sbInfo));
    input.comboHeight = HeightOf(GetDlgItem(m_window, lstDrive));
    RECT page{0, 0, 200, 200};
    SendPointer(GetDlgItem(m_window, tabPath), TCM_ADJUSTRECT, FALSE, &page);
    input.tabHeight = static_cast<std::int32_t>(page.top);
    const SIZE tools = m_tools.Size();
    const SIZE goTo = m_goTo.Size();
    input.toolHeight = static_cast<std::int32_t>(std::max(tools.cy, goTo.cy));
    input.toolWidth = static_cast<std::int32_t>(tools.cx);
    input.goToWidth = static_cast<std::int32_t>(goTo.cx);
}

void frmQLMain::ExpectBars(LayoutInput& input) const {
    // The graph stands between the toolbars and the status bar: as high as their controls make them, or it is moved
    // when they are there.
    const WindowDC dc(m_window);
    const SelectScope font(dc.Get(), m_font.Get());
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc.Get(), &metrics);
    const int leading = metrics.tmInternalLeading > 0 ? static_cast<int>(metrics.tmInternalLeading) : 2;
    input.statusHeight = std::max(static_cast<int>(metrics.tmHeight) + leading + 4, 20);
    input.toolHeight = MulDiv(16, m_dpi, 96) + 6;
}

void frmQLMain::ArrangeControls() {
    RECT client{};
    GetClientRect(m_window, &client);
    m_arrangedSize = {client.right, client.bottom};
    LayoutInput input;
    input.clientWidth = client.right;
    input.clientHeight = client.bottom;
    if (m_complete) {
        MeasureControls(input);
    } else {
        ExpectBars(input);
    }
    input.dpi = m_dpi;
    input.listWidth = m_global.settings.listWidth;
    input.upperPercent = m_global.settings.upperPercent;
    input.valuesHeight = m_global.settings.valuesHeight;
    input.spectrogram = m_global.settings.spectrogramShown;
    input.spectrogramPercent = m_global.settings.spectrogramPercent;
    m_layout = ArrangeMain(input);

    struct Place {
        int id;
        const PixelRect& rect;
    };
    const Place places[] = {
        {tbMain, m_layout.tools},      {tbGoTo, m_layout.goTo},         {tabPath, m_layout.tabPath},
        {lstDrive, m_layout.drive},    {pbPathList, m_layout.pathList}, {lstDir, m_layout.folders},
        {lvCh, m_layout.channels},     {tabFile, m_layout.tabFile},     {cboFileType, m_layout.fileType},
        {lstFile, m_layout.files},     {lstBlock, m_layout.blocks},     {pnValues, m_layout.values},
        {pbScaleY, m_layout.scaleY},   {pbGraph, m_layout.graph},       {scScaleY, m_layout.scrollY},
        {btnZoomX, m_layout.zoomX},    {pbScaleX, m_layout.scaleX},     {scScaleX, m_layout.scrollX},
        {pbFFT, m_layout.spectrogram}, {pbPal, m_layout.palette},       {pbScaleF, m_layout.scaleF},
    };
    if (!m_complete) {
        MoveWindow(m_graphBox.Window(), m_layout.graph.left, m_layout.graph.top, m_layout.graph.width,
                   m_layout.graph.height, FALSE);
        return;
    }
    HDWP positions = BeginDeferWindowPos(static_cast<int>(std::size(places)));
    for (const Place& place : places) {
        // The height of a drop-down list is that of its open list.
        const bool isCombo = place.id == lstDrive || place.id == cboFileType;
        const int height = isCombo ? MulDiv(240, m_dpi, 96) : place.rect.height;
        positions = DeferWindowPos(positions, GetDlgItem(m_window, place.id), nullptr, place.rect.left, place.rect.top,
                                   place.rect.width, height, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }
    EndDeferWindowPos(positions);
    // Everything anew: pixels moved along with their controls were seen to stay behind in other controls.
    RedrawWindow(m_window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    m_channels.FitColumns();
}

bool frmQLMain::OnSetCursor(HWND child) const {
    if (m_long.IsBusy() && IsWindowEnabled(m_window)) return SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true;
    POINT point{};
    GetCursorPos(&point);
    ScreenToClient(m_window, &point);
    if (child != m_window) return false;
    const bool column = Contains(m_layout.splitColumn, point.x, point.y);
    bool rows = false;
    for (const PixelRect& split : {m_layout.splitLists, m_layout.splitValues, m_layout.splitSpectrogram})
        rows |= Contains(split, point.x, point.y);
    if (!column && !rows) return false;
    SetCursor(LoadCursorW(nullptr, column ? IDC_SIZEWE : IDC_SIZENS));
    return true;
}

void frmQLMain::OnMouse(UINT message, int x, int y) {
    if (message == WM_LBUTTONDOWN) {
        if (Contains(m_layout.splitColumn, x, y)) m_drag = Drag::Column;
        if (Contains(m_layout.splitLists, x, y)) m_drag = Drag::Lists;
        if (Contains(m_layout.splitValues, x, y)) m_drag = Drag::Values;
        if (Contains(m_layout.splitSpectrogram, x, y)) m_drag = Drag::Spectrogram;
        if (m_drag != Drag::None) SetCapture(m_window);
        return;
    }
    if (m_drag == Drag::None) return;
    if (message == WM_MOUSEMOVE) {
        const int top = m_layout.tabPath.top;
        const int height = m_layout.blocks.Bottom() - top - m_layout.splitLists.height;
        if (m_drag == Drag::Column) m_global.settings.listWidth = std::max(x - m_layout.splitColumn.width / 2, 1);
        if (m_drag == Drag::Lists && height > 0) m_global.settings.upperPercent = std::max((y - top) * 100 / height, 1);
        if (m_drag == Drag::Values)
            m_global.settings.valuesHeight =
                std::max(m_layout.values.Bottom() - y - m_layout.splitValues.height / 2, 1);
        const int shared = m_layout.spectrogram.Bottom() - m_layout.graph.top - m_layout.splitSpectrogram.height;
        if (m_drag == Drag::Spectrogram && shared > 0)
            m_global.settings.spectrogramPercent =
                std::max((m_layout.spectrogram.Bottom() - y - m_layout.splitSpectrogram.height / 2) * 100 / shared, 1);
        ArrangeControls();
        // What was reached counts, so that dragging beyond a limit and back has no dead travel.
        m_global.settings.listWidth = m_layout.listWidth;
        m_global.settings.upperPercent = m_layout.upperPercent;
        if (m_drag == Drag::Values) m_global.settings.valuesHeight = m_layout.valuesHeight;
        if (m_drag == Drag::Spectrogram && m_layout.spectrogramPercent > 0)
            m_global.settings.spectrogramPercent = m_layout.spectrogramPercent;
        Refresh();
        return;
    }
    m_drag = Drag::None;
    if (message == WM_LBUTTONUP) ReleaseCapture();
}

}  // namespace quillon
