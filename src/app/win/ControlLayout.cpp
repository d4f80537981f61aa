#include "app/win/ControlLayout.h"

#include <algorithm>

#include "app/ControlIds.h"
#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

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

void ControlLayout::SetWindow(HWND window, HFONT font, int dpi) {
    m_window = window;
    m_font = font;
    m_dpi = dpi;
}

void ControlLayout::SetToolSizes(SIZE main, SIZE pages) {
    m_mainTools = main;
    m_pageTools = pages;
}

bool ControlLayout::IsArranged() const {
    RECT client{};
    GetClientRect(m_window, &client);
    return client.right == m_size.cx && client.bottom == m_size.cy;
}

void ControlLayout::MeasureControls(LayoutInput& input) const {
    input.statusHeight = HeightOf(Control(sbInfo));
    input.comboHeight = HeightOf(Control(lstDrive));
    RECT page{0, 0, 200, 200};
    SendPointer(Control(tabPath), TCM_ADJUSTRECT, FALSE, &page);
    input.tabHeight = static_cast<std::int32_t>(page.top);
    input.toolHeight = static_cast<std::int32_t>(std::max(m_mainTools.cy, m_pageTools.cy));
    input.toolWidth = static_cast<std::int32_t>(m_mainTools.cx);
    input.goToWidth = static_cast<std::int32_t>(m_pageTools.cx);
}

void ControlLayout::ExpectBars(LayoutInput& input) const {
    // The graph stands between the toolbars and the status bar: as high as their controls make them, or it is moved
    // when they are there.
    const WindowDC dc(m_window);
    const SelectScope font(dc.Get(), m_font);
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc.Get(), &metrics);
    const int leading = metrics.tmInternalLeading > 0 ? static_cast<int>(metrics.tmInternalLeading) : 2;
    input.statusHeight = std::max(static_cast<int>(metrics.tmHeight) + leading + 4, 20);
    input.toolHeight = MulDiv(16, m_dpi, 96) + 6;
}

void ControlLayout::Arrange() {
    RECT client{};
    GetClientRect(m_window, &client);
    m_size = {client.right, client.bottom};
    LayoutInput input;
    input.clientWidth = client.right;
    input.clientHeight = client.bottom;
    const bool complete = m_mainTools.cx > 0;
    if (complete) {
        MeasureControls(input);
    } else {
        ExpectBars(input);
    }
    input.dpi = m_dpi;
    input.listWidth = m_placement.listWidth;
    input.upperPercent = m_placement.upperPercent;
    input.valuesHeight = m_placement.valuesHeight;
    input.spectrogram = m_placement.spectrogramShown;
    input.spectrogramPercent = m_placement.spectrogramPercent;
    m_layout = ArrangeMain(input);
    if (complete) return PlaceControls();
    MoveWindow(Control(pbGraph), m_layout.graph.left, m_layout.graph.top, m_layout.graph.width, m_layout.graph.height,
               FALSE);
}

void ControlLayout::PlaceControls() const {
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
    HDWP positions = BeginDeferWindowPos(static_cast<int>(std::size(places)));
    for (const Place& place : places) {
        // The height of a drop-down list is that of its open list.
        const bool isCombo = place.id == lstDrive || place.id == cboFileType;
        const int height = isCombo ? MulDiv(240, m_dpi, 96) : place.rect.height;
        positions = DeferWindowPos(positions, Control(place.id), nullptr, place.rect.left, place.rect.top,
                                   place.rect.width, height, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }
    EndDeferWindowPos(positions);
    // Everything anew: pixels moved along with their controls were seen to stay behind in other controls.
    RedrawWindow(m_window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

bool ControlLayout::SetPointer() const {
    POINT point{};
    GetCursorPos(&point);
    ScreenToClient(m_window, &point);
    const bool column = Contains(m_layout.splitColumn, point.x, point.y);
    bool rows = false;
    for (const PixelRect& split : {m_layout.splitLists, m_layout.splitValues, m_layout.splitSpectrogram})
        rows |= Contains(split, point.x, point.y);
    if (!column && !rows) return false;
    SetCursor(LoadCursorW(nullptr, column ? IDC_SIZEWE : IDC_SIZENS));
    return true;
}

void ControlLayout::Press(int x, int y) {
    if (Contains(m_layout.splitColumn, x, y)) m_drag = Drag::Column;
    if (Contains(m_layout.splitLists, x, y)) m_drag = Drag::Lists;
    if (Contains(m_layout.splitValues, x, y)) m_drag = Drag::Values;
    if (Contains(m_layout.splitSpectrogram, x, y)) m_drag = Drag::Spectrogram;
    if (m_drag != Drag::None) SetCapture(m_window);
}

bool ControlLayout::Move(int x, int y) {
    if (m_drag == Drag::None) return false;
    const int top = m_layout.tabPath.top;
    const int height = m_layout.blocks.Bottom() - top - m_layout.splitLists.height;
    if (m_drag == Drag::Column) m_placement.listWidth = std::max(x - m_layout.splitColumn.width / 2, 1);
    if (m_drag == Drag::Lists && height > 0) m_placement.upperPercent = std::max((y - top) * 100 / height, 1);
    if (m_drag == Drag::Values)
        m_placement.valuesHeight = std::max(m_layout.values.Bottom() - y - m_layout.splitValues.height / 2, 1);
    const int shared = m_layout.spectrogram.Bottom() - m_layout.graph.top - m_layout.splitSpectrogram.height;
    if (m_drag == Drag::Spectrogram && shared > 0)
        m_placement.spectrogramPercent =
            std::max((m_layout.spectrogram.Bottom() - y - m_layout.splitSpectrogram.height / 2) * 100 / shared, 1);
    Arrange();
    // What was reached counts, so that dragging beyond a limit and back has no dead travel.
    m_placement.listWidth = m_layout.listWidth;
    m_placement.upperPercent = m_layout.upperPercent;
    if (m_drag == Drag::Values) m_placement.valuesHeight = m_layout.valuesHeight;
    if (m_drag == Drag::Spectrogram && m_layout.spectrogramPercent > 0)
        m_placement.spectrogramPercent = m_layout.spectrogramPercent;
    return true;
}

void ControlLayout::Release(bool released) {
    if (m_drag == Drag::None) return;
    m_drag = Drag::None;
    if (released) ReleaseCapture();
}

void ControlLayout::PaintFocus(HDC dc) const {
    const HWND focus = GetFocus();
    const int id = focus == nullptr || GetParent(focus) != m_window ? 0 : GetDlgCtrlID(focus);
    PixelRect place;
    if (id == lstDir) place = m_layout.folders;
    if (id == lvCh) place = m_layout.channels;
    if (id == lstFile) place = m_layout.files;
    if (id == lstBlock) place = m_layout.blocks;
    if (id == pbGraph) {
        place = m_layout.scaleY;
        place.width = m_layout.scrollY.Right() - place.left;
        place.height = m_layout.scrollX.Bottom() - place.top;
    }
    if (place.width > 0 && m_mainTools.cx > 0) {
        RECT frame{place.left, place.top, place.Right(), place.Bottom()};
        // Thin round the graph, which has it most of the time.
        const int lines = MulDiv(id == pbGraph ? 1 : 2, m_dpi, 96);
        for (int line = 0; line < lines; ++line) {
            InflateRect(&frame, 1, 1);
            FrameRect(dc, &frame, GetSysColorBrush(COLOR_HIGHLIGHT));
        }
    }
}

}  // namespace quillon
