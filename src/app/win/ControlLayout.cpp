#include "app/win/ControlLayout.h"

#include <algorithm>

#include "app/ControlIds.h"
#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

int HeightOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return static_cast<int>(rect.bottom - rect.top);
}

}  // namespace

void ControlLayout::SetWindow(HWND window, const ScreenDensity& density) {
    m_window = window;
    m_density = &density;
    // Versions that knew one density alone did not tell it.
    if (m_placement.sizesDpi < 1) m_placement.sizesDpi = ScreenDpi();
}

void ControlLayout::SetToolSizes(SIZE main, SIZE pages, const std::array<std::int32_t, kFilterControls>& filters) {
    m_filters = filters;
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
    // The graph is placed between toolbars and status bar before these exist: their heights must be predicted exactly,
    // or the graph would move when they are created.
    const WindowDC dc(m_window);
    const SelectScope font(dc.Get(), m_density->Font());
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc.Get(), &metrics);
    const int leading = metrics.tmInternalLeading > 0 ? static_cast<int>(metrics.tmInternalLeading) : 2;
    input.statusHeight = std::max(static_cast<int>(metrics.tmHeight) + leading + 4, 20);
    input.toolHeight = m_density->Scaled(16) + 6;
}

void ControlLayout::Arrange() {
    FindPlaces();
    if (m_mainTools.cx > 0) return PlaceControls(PlacesOf(m_layout));
    MoveWindow(Control(pbGraph), m_layout.graph.left, m_layout.graph.top, m_layout.graph.width, m_layout.graph.height,
               FALSE);
}

bool ControlLayout::ArrangePart(int part) {
    constexpr std::size_t parts = 3;
    if (part == 0) FindPlaces();
    const std::vector<ControlPlace> places = PlacesOf(m_layout);
    const std::size_t from = places.size() * static_cast<std::size_t>(part) / parts;
    const std::size_t end = places.size() * static_cast<std::size_t>(part + 1) / parts;
    PlaceControls(std::span(places).subspan(from, end - from));
    return end == places.size();
}

void ControlLayout::FindPlaces() {
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
    input.dpi = m_density->Dpi();
    TakeSizes(m_placement, input);
    input.titlesWidth = m_titles;
    input.filterWidths = m_filters;
    m_layout = ArrangeMain(input);
}

void ControlLayout::PlaceControls(std::span<const ControlPlace> places) const {
    HDWP positions = BeginDeferWindowPos(static_cast<int>(places.size()));
    for (const ControlPlace& place : places) {
        // The height of a drop-down list is that of its open list.
        const bool isCombo = place.id == lstDrive || place.id == cboFileType || place.id == cboHighPass ||
                             place.id == cboLowPass || (place.id >= cboNotch && place.id <= cboFilterDirection);
        const int height = isCombo ? m_density->Scaled(240) : place.rect.height;
        UINT flags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS;
        // Tab is to go to the spectrogram only while it is shown.
        if (place.id == pbFFT) flags |= height > 0 ? SWP_SHOWWINDOW : SWP_HIDEWINDOW;
        if (place.id == pbFFT && height == 0 && GetFocus() == Control(pbFFT)) SetFocus(Control(pbGraph));
        positions = DeferWindowPos(positions, Control(place.id), nullptr, place.rect.left, place.rect.top,
                                   place.rect.width, height, flags);
    }
    EndDeferWindowPos(positions);
    // No copied pixels (SWP_NOCOPYBITS), redraw everything: copied pixels were seen left behind in other controls.
    RedrawWindow(m_window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

bool ControlLayout::SetPointer() const {
    POINT point{};
    GetCursorPos(&point);
    ScreenToClient(m_window, &point);
    const Splitter splitter = SplitterAt(m_layout, point.x, point.y);
    if (splitter == Splitter::None) return false;
    SetCursor(
        LoadCursorW(nullptr, splitter == Splitter::Column || splitter == Splitter::Labels ? IDC_SIZEWE : IDC_SIZENS));
    return true;
}

bool ControlLayout::OnMouse(UINT message, int x, int y) {
    if (message == WM_MOUSEMOVE) return Move(x, y);
    if (message == WM_LBUTTONDOWN) {
        m_drag = SplitterAt(m_layout, x, y);
        if (IsDragging()) SetCapture(m_window);
    } else if (IsDragging()) {
        m_drag = Splitter::None;
        if (message == WM_LBUTTONUP) ReleaseCapture();
    }
    return false;
}

bool ControlLayout::Move(int x, int y) {
    if (!IsDragging()) return false;
    DragSplitter(m_drag, m_layout, x, y, m_placement);
    Arrange();
    KeepReached(m_drag, m_layout, m_placement);
    return true;
}

void ControlLayout::OnPaint(COLORREF strip) const {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(m_window, &paint);
    const PixelRect& gap = m_layout.splitLabels;
    FillWith(dc, {gap.left, gap.top, gap.Right(), gap.Bottom()}, strip);
    PaintFocus(dc);
    EndPaint(m_window, &paint);
}

void ControlLayout::PaintFocus(HDC dc) const {
    const HWND focus = GetFocus();
    const int id = focus == nullptr || GetParent(focus) != m_window ? 0 : GetDlgCtrlID(focus);
    const PixelRect place = FramedWith(m_layout, id);
    if (place.width > 0 && m_mainTools.cx > 0) {
        RECT frame{place.left, place.top, place.Right(), place.Bottom()};
        // A thin frame for the graph, which has the focus most of the time.
        const int lines = m_density->Line(id == pbGraph ? 1 : 2);
        for (int line = 0; line < lines; ++line) {
            InflateRect(&frame, 1, 1);
            FrameRect(dc, &frame, GetSysColorBrush(COLOR_HIGHLIGHT));
        }
    }
}

}  // namespace quillon
