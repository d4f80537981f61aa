#include "app/win/OverviewPane.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "app/ControlIds.h"
#include "app/OverviewTexts.h"
#include "view/ReadableColor.h"

namespace quillon {

namespace {

/// Pixels between the texts and the strip.
constexpr int kBesideText = 5;

/// Those of the strips beside the graph. A single channel has its own colour.
OverviewColors ColorsOn(const StripColors& strip, std::optional<std::uint32_t> own) {
    OverviewColors colors;
    const auto& [face, text, pointed, pointedText, highlight] = strip;
    constexpr double tint = 0.12;
    constexpr double contrast = 3.0;
    colors.outside = face;
    colors.inside = Mixed(pointed, highlight, tint);
    constexpr double faded = 0.25;
    colors.traces = own ? Readable(*own, face, contrast) : Mixed(text, face, faded);
    colors.selection = text;
    colors.marks = text;
    colors.frame = Readable(highlight, face, contrast);
    return colors;
}

}  // namespace

OverviewPane::OverviewPane(const Document& document, WaveformView& view, const WindowPlacement& placement,
                           const FormatOptions& format, const ScreenDensity& density)
    : m_document(document), m_view(view), m_placement(placement), m_format(format), m_density(density), m_window(view) {
    m_window.SetDpi(density.Dpi());
}

void OverviewPane::DensityChanged() {
    m_window.SetDpi(m_density.Dpi());
    m_traced = false;
}

bool OverviewPane::Create(HWND parent) {
    return m_picture.Create(parent, pbOverview, *this, false);
}

bool OverviewPane::IsSeen() const {
    RECT client{};
    return m_picture.Window() != nullptr && WantsOverview(m_placement) &&
           GetClientRect(m_picture.Window(), &client) != FALSE && client.bottom > 0;
}

std::vector<std::int16_t> OverviewPane::ShownSignals() const {
    std::vector<std::int16_t> shown;
    for (std::int16_t signal = 1; signal <= m_document.SignalCount(); ++signal) {
        if (m_document.IsShown(signal)) shown.push_back(signal);
    }
    return shown;
}

void OverviewPane::Refresh() {
    if (!IsSeen()) return;
    Update();
    m_traced = m_traced && m_signals == ShownSignals();
    m_picture.Invalidate();
}

void OverviewPane::Update() {
    if (!IsSeen()) return;
    const SceneBlocks blocks = HasSamples() ? m_view.AllExtremes().All() : SceneBlocks();
    if (m_columns.Update(blocks, m_view.Axis().Width())) {
        m_traced = false;
        m_picture.Invalidate();
    }
    if (m_columns.HasMore()) onMore();
}

bool OverviewPane::ReadMore() {
    if (!IsSeen() || !HasSamples()) return false;
    const SceneBlocks blocks = m_view.AllExtremes().All();
    const bool taken = m_columns.Update(blocks, m_view.Axis().Width());
    if (m_columns.ReadMore(blocks) || taken) {
        m_traced = false;
        m_picture.Invalidate();
    }
    return m_columns.HasMore();
}

void OverviewPane::LeaveBlock() {
    EndGesture();
    m_columns.Forget();
    m_traced = false;
}

void OverviewPane::EndGesture() {
    if (!m_window.IsDragging()) return;
    m_window.Release();
    if (GetCapture() == m_picture.Window()) ReleaseCapture();
}

std::int32_t OverviewPane::MarginWidth() const {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    return std::max(static_cast<std::int32_t>(client.right) - m_view.Axis().Width(), 0);
}

void OverviewPane::Trace(std::int32_t height) {
    m_signals = ShownSignals();
    std::vector<std::span<const CodeRange>> traces;
    const SceneBlocks blocks = m_view.AllExtremes().All();
    for (const SignalsOfBlock& group : GroupsOf(blocks, m_signals)) {
        for (const std::int16_t channel : group.channels) traces.push_back(m_columns.Of(group.of.block, channel));
    }
    m_traces.SetTraces(traces, m_view.Axis().Width(), height, m_density.Scaled(OverviewPicture::kMarkRows));
    m_traced = true;
}

void OverviewPane::PaintPicture(int, HDC dc, const RECT&) {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    const std::int32_t margin = MarginWidth();
    if (!HasSamples()) return FillWith(dc, client, ColorOf(Strip().face));
    PaintTexts(dc, {0, 0, margin, client.bottom});
    const auto height = static_cast<std::int32_t>(client.bottom);
    if (!m_traced || m_traces.Width() != m_view.Axis().Width() || m_traces.Height() != height) Trace(height);
    const ViewBlock& block = m_document.Block();
    const std::vector<std::int32_t> marks = MarkColumns(block.marks, m_window.Grid(), m_traces.Width());
    const Selection& selection = m_view.Selected();
    OverviewScene scene;
    scene.window = m_window.Band();
    if (selection.active) scene.selection = m_window.BandOf(selection.Samples());
    scene.marks = marks;
    std::optional<std::uint32_t> own;
    if (m_signals.size() == 1) {
        const Signal signal = m_document.GetSignal(m_signals.front());
        own = m_view.Look().colors->Trace(signal.block.channelNumbers[static_cast<std::size_t>(signal.channel - 1)]);
    }
    scene.colors = ColorsOn(Strip(), own);
    scene.line = m_density.Line();
    const std::vector<std::uint32_t> pixels = m_traces.Draw(scene);
    BITMAPINFO info{};
    info.bmiHeader = DibHeader(m_traces.Width(), -m_traces.Height(), 32);
    SetDIBitsToDevice(dc, margin, 0, static_cast<DWORD>(m_traces.Width()), static_cast<DWORD>(m_traces.Height()), 0, 0,
                      0, static_cast<UINT>(m_traces.Height()), pixels.data(), &info, DIB_RGB_COLORS);
}

void OverviewPane::PaintTexts(HDC dc, const RECT& margin) const {
    FillWith(dc, margin, ColorOf(Strip().face));
    const SelectScope font(dc, m_density.Font());
    const OverviewTexts texts = TextsOf(m_document.Block(), m_format);
    SIZE start{};
    SIZE end{};
    for (const auto& [text, size] : {std::pair(&texts.start, &start), {&texts.end, &end}}) {
        const std::wstring wide = Wide(*text);
        GetTextExtentPoint32W(dc, wide.c_str(), static_cast<int>(wide.size()), size);
    }
    const auto room = margin.right - m_density.Scaled(kBesideText);
    if (std::max(start.cx, end.cx) > room || start.cy + end.cy > margin.bottom) return;
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ColorOf(Strip().text));
    SetTextAlign(dc, TA_RIGHT | TA_TOP);
    DrawTextAt(dc, static_cast<int>(room), 0, texts.start);
    DrawTextAt(dc, static_cast<int>(room), static_cast<int>(margin.bottom - end.cy), texts.end);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
}

void OverviewPane::SetPointer() const {
    POINT at{};
    GetCursorPos(&at);
    ScreenToClient(m_picture.Window(), &at);
    const std::int32_t column = static_cast<std::int32_t>(at.x) - MarginWidth();
    const auto part = column < 0 ? OverviewWindow::Part::Nothing : m_window.PartAt(column);
    const bool edge = part == OverviewWindow::Part::LeftEdge || part == OverviewWindow::Part::RightEdge;
    const wchar_t* const inside = part == OverviewWindow::Part::Inside ? IDC_SIZEALL : IDC_ARROW;
    SetCursor(LoadCursorW(nullptr, edge ? IDC_SIZEWE : inside));
}

bool OverviewPane::PictureMouse(int, UINT message, WPARAM, LPARAM lParam) {
    if (message == WM_CAPTURECHANGED || message == WM_CANCELMODE) return EndGesture(), false;
    if (onBusy()) return message == WM_SETCURSOR && (SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true);
    if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN) onPress();
    const std::int32_t column = GET_X_LPARAM(lParam) - MarginWidth();
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: {
            if (column < 0) return true;
            const ViewChange change = m_window.Press(column);
            if (m_window.IsDragging()) SetCapture(m_picture.Window());
            onChange(change);
            return true;
        }
        case WM_MOUSEMOVE:
            if (m_window.IsDragging()) onChange(m_window.Move(column));
            return true;
        case WM_LBUTTONUP: return EndGesture(), true;
        case WM_SETCURSOR: return SetPointer(), true;
        default: return false;
    }
}

}  // namespace quillon
