#include "app/win/LaneTitles.h"

#include <algorithm>
#include <utility>

#include "view/ReadableColor.h"

namespace quillon {

namespace {

constexpr int kMarker = 3;  ///< pixels at 96 dpi: the edge in the colour of the chosen channel

void Invalidate(HWND strip) {
    InvalidateRect(strip, nullptr, FALSE);
}

void DrawStripText(HDC dc, const StripText& text, COLORREF color) {
    SetTextColor(dc, color);
    DrawTextAt(dc, text.x, text.y, text.text);
}

}  // namespace

LaneTitles::LaneTitles(const Document& document, WaveformView& view, GraphGestures& gestures,
                       const FormatOptions& format, const ScreenDensity& density)
    : m_document(document), m_view(view), m_gestures(gestures), m_format(format), m_density(density) {}

LaneStrip LaneTitles::Strip(HDC dc, std::int32_t width) const {
    LaneStrip strip;
    strip.width = width;
    strip.dpi = m_density.Dpi();
    strip.decimalSeparator = m_format.decimalSeparator;
    strip.rawCodes = m_view.RawCodes();
    strip.colors = m_view.Look().colors;
    strip.sizeOf = [dc, font = m_density.Font()](const std::u16string& text) {
        const SelectScope selected(dc, font);
        const std::wstring wide = Wide(text.empty() ? u"0" : text);
        SIZE size{};
        GetTextExtentPoint32W(dc, wide.c_str(), static_cast<int>(wide.size()), &size);
        return TextSize{text.empty() ? 0 : static_cast<std::int32_t>(size.cx), static_cast<std::int32_t>(size.cy)};
    };
    return strip;
}

std::int32_t LaneTitles::WantedWidth() const {
    const WindowDC dc(nullptr);
    return quillon::WantedWidth(m_view.LanesOfChannels(), Strip(dc.Get(), 0));
}

void LaneTitles::Paint(HDC dc, const RECT& client) const {
    const StripColors colors = StripOf(*m_view.Look().colors);
    FillWith(dc, client, ColorOf(colors.face));
    const SelectScope font(dc, m_density.Font());
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    const Lanes& lanes = m_view.GetLanes();
    const std::vector<LaneLabel> labels =
        LaneLabels(m_view.LanesOfChannels(), lanes, Strip(dc, static_cast<int>(client.right)));
    for (std::size_t at = 0; at < std::min(labels.size(), lanes.size()); ++at)
        PaintLane(dc, client, lanes[at], labels[at]);
    if (m_gestures.Current() != GraphGestures::Kind::Title || m_gestures.DropLane() >= lanes.size()) return;
    // Where a dragged lane would be dropped.
    const Lane& target = lanes[m_gestures.DropLane()];
    const int row = m_gestures.DropsFromAbove() ? target.End() - m_density.Line(2) : target.top;
    FillWith(dc, {0, row, client.right, row + m_density.Line(2)}, ColorOf(colors.accent));
}

void LaneTitles::PaintLane(HDC dc, const RECT& client, const Lane& lane, const LaneLabel& label) const {
    const StripColors colors = StripOf(*m_view.Look().colors);
    const bool isPointed = label.channel == m_pointed;
    const std::uint32_t face = isPointed ? colors.pointed : colors.face;
    const COLORREF color = ColorOf(IsDark(face) ? Readable(label.color, face, 4) : label.color);
    const COLORREF text = ColorOf(isPointed ? colors.pointedText : colors.text);
    const auto faded = [&](double share) { return ColorOf(Mixed(colors.text, colors.face, share)); };
    const COLORREF barColor = faded(0.3);
    if (isPointed) FillWith(dc, {0, lane.top, client.right, lane.End()}, ColorOf(face));
    if (label.channel == m_document.CurrentChannel())
        FillWith(dc, {0, lane.top, m_density.Scaled(kMarker), lane.End()}, color);
    if (lane.top > 0) FillWith(dc, {0, lane.top, client.right, lane.top + m_density.Line()}, faded(0.8));
    DrawStripText(dc, label.title, color);
    DrawStripText(dc, label.factor, text);
    if (!label.bar) return;
    const ScaleBar& bar = *label.bar;
    // Caps at its ends say that it is a measure.
    const int line = m_density.Line();
    const int cap = 2 * line;
    FillWith(dc, {bar.x, bar.top, bar.x + line, bar.end}, barColor);
    FillWith(dc, {bar.x - cap, bar.top, bar.x + line + cap, bar.top + line}, barColor);
    FillWith(dc, {bar.x - cap, bar.end - line, bar.x + line + cap, bar.end}, barColor);
    DrawStripText(dc, bar.text, text);
}

GraphZone LaneTitles::ZoneAt(HWND strip, std::int32_t x, std::int32_t y) const {
    RECT client{};
    GetClientRect(strip, &client);
    const WindowDC dc(strip);
    const std::vector<LaneLabel> labels =
        LaneLabels(m_view.LanesOfChannels(), m_view.GetLanes(), Strip(dc.Get(), static_cast<int>(client.right)));
    return IsOnTitle(labels, x, y) ? GraphZone::LaneTitles : GraphZone::AmplitudeScale;
}

bool LaneTitles::Press(HWND strip, UINT message, const GraphPointer& pointer) {
    const std::int16_t channel = ChannelAt(pointer.y);
    if (channel == 0) return true;
    const GraphZone zone = ZoneAt(strip, pointer.x, pointer.y);
    if (message == WM_LBUTTONDOWN) {
        onChannel(channel);
        onPress(zone, pointer);
    } else if (zone == GraphZone::LaneTitles) {
        onAlone(channel);
    } else {
        onChange(m_view.FitLane(m_view.LaneAt(pointer.y)));
    }
    return true;
}

void LaneTitles::Move(HWND strip, const GraphPointer& pointer) {
    if (m_gestures.Current() != GraphGestures::Kind::None) {
        onDrag(pointer);
        return Invalidate(strip);
    }
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, strip, 0};
    TrackMouseEvent(&leave);
    if (Point(ChannelAt(pointer.y))) Invalidate(strip);
}

void LaneTitles::SetPointer(HWND strip) const {
    POINT at{};
    GetCursorPos(&at);
    ScreenToClient(strip, &at);
    const bool title = ZoneAt(strip, at.x, at.y) == GraphZone::LaneTitles;
    SetCursor(LoadCursorW(nullptr, title ? IDC_HAND : IDC_SIZENS));
}

bool LaneTitles::Mouse(HWND strip, UINT message, const GraphPointer& pointer) {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: return Press(strip, message, pointer);
        case WM_RBUTTONUP: {
            POINT screen{pointer.x, pointer.y};
            ClientToScreen(strip, &screen);
            return onMenu(screen, ChannelAt(pointer.y)), true;
        }
        case WM_MOUSEMOVE: return Move(strip, pointer), true;
        case WM_MOUSELEAVE:
            if (Point(0)) Invalidate(strip);
            return true;
        case WM_LBUTTONUP:
            if (m_gestures.Current() != GraphGestures::Kind::None) onChange(m_gestures.Release(pointer));
            ReleaseCapture();
            return Invalidate(strip), true;
        case WM_SETCURSOR: return SetPointer(strip), true;
        case WM_CAPTURECHANGED: return onCancel(), Invalidate(strip), false;
        default: return false;
    }
}

std::int16_t LaneTitles::ChannelAt(std::int32_t row) const {
    if (!m_view.UsesLanes()) return 0;
    const std::vector<std::int16_t>& channels = m_view.GetLanes()[m_view.LaneAt(row)].channels;
    return channels.empty() ? std::int16_t{0} : channels.front();
}

bool LaneTitles::Point(std::int16_t channel) {
    return std::exchange(m_pointed, channel) != channel;
}

}  // namespace quillon
