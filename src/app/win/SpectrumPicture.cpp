#include "app/win/SpectrumPicture.h"

#include <cmath>

#include "app/win/SpectrumPainter.h"
#include "base/win/WinHandle.h"
#include "export/win/ImageCopy.h"
#include "view/win/cMemDC.h"

namespace quillon {

namespace {

constexpr double kZoomStep = 0.5;  // part of the frequencies that a step inwards leaves

}  // namespace

void SpectrumPicture::Draw(char16_t separator) {
    m_separator = separator;
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    PlotRequest request;
    request.traces = m_spectra.Traces();
    request.scales = m_spectra.Choices().scales;
    request.width = static_cast<std::int32_t>(client.right);
    request.height = static_cast<std::int32_t>(client.bottom);
    request.dpi = m_density.Dpi();
    request.decimalSeparator = separator;
    request.band = m_band;
    request.sizeOf = [this](const std::u16string& text) { return SizeOf(text); };
    m_plot.emplace(request);
    m_picture.Invalidate();
}

void SpectrumPicture::ShowBand(const std::optional<FrequencyBand>& band) {
    m_band = band;
    Draw(m_separator);
}

void SpectrumPicture::ShowPeak(const SpectralPeak& peak) {
    const DevicePoint place = m_plot->PlaceOf(m_spectra.PeakTrace(), peak);
    if (!m_plot->IsInside(place)) ShowBand(m_plot->Moved(place.x - m_plot->Middle()));
}

TextSize SpectrumPicture::SizeOf(const std::u16string& text) const {
    const WindowDC dc(m_picture.Window());
    const SelectScope font(dc.Get(), m_density.Font());
    const std::wstring wide = Wide(text);
    SIZE size{};
    GetTextExtentPoint32W(dc.Get(), wide.c_str(), static_cast<int>(wide.size()), &size);
    return {static_cast<std::int32_t>(size.cx), static_cast<std::int32_t>(size.cy)};
}

void SpectrumPicture::PaintPicture(int, HDC dc, const RECT&) {
    Paint(dc, *m_view.Look().colors);
}

void SpectrumPicture::Paint(HDC dc, const GraphColors& colors) {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    const SIZE size{client.right, client.bottom};
    cMemDC canvas;
    if (!m_plot || !canvas.CreateBitmap(size.cx, size.cy)) return FillWith(dc, client, ColorOf(colors.paper));
    {
        const SelectScope font(canvas.Handle(), m_density.Font());
        PaintSpectrum(canvas.Handle(), size, *m_plot, m_spectra, {&colors, m_view.Look().At(m_density.Dpi()).lineWidth},
                      m_density.Dpi());
    }
    if (const auto columns = m_drag.Columns())
        PatBlt(canvas.Handle(), columns->first, 0, columns->second - columns->first + 1, size.cy, DSTINVERT);
    BitBlt(dc, 0, 0, size.cx, size.cy, canvas.Handle(), 0, 0, SRCCOPY);
}

bool SpectrumPicture::PictureMouse(int, UINT message, WPARAM, LPARAM lParam) {
    const std::int32_t x = GET_X_LPARAM(lParam);
    const std::int32_t y = GET_Y_LPARAM(lParam);
    if (message == WM_CANCELMODE || message == WM_CAPTURECHANGED) {
        m_drag.End();
        m_picture.Invalidate();
        return false;
    }
    if (!m_plot) return false;
    if (message == WM_MOUSELEAVE) return onReadout({}), true;
    if (message == WM_LBUTTONDOWN) return m_drag.Press(x), SetCapture(m_picture.Window()), true;
    if (message == WM_LBUTTONUP) return Release(x, y), true;
    if (message == WM_LBUTTONDBLCLK) return ShowBand(std::nullopt), true;
    if (message != WM_MOUSEMOVE) return false;
    if (m_drag.Move(x, m_density.Scaled(5))) m_picture.Invalidate();
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, m_picture.Window(), 0};
    TrackMouseEvent(&leave);
    onReadout(m_plot->Readout(x, y));
    return true;
}

void SpectrumPicture::Release(std::int32_t x, std::int32_t y) {
    if (!m_drag.IsPressed()) return;
    const auto columns = m_drag.Columns();
    m_drag.End();
    ReleaseCapture();
    if (!columns) return onClick(x, y);
    ShowBand(m_plot->Between(columns->first, columns->second));
}

bool SpectrumPicture::Translate(const MSG& message) {
    if (message.message == WM_MOUSEWHEEL) return ZoomByWheel(message);
    if (message.message != WM_KEYDOWN || !m_plot) return false;
    if (message.wParam == VK_ESCAPE && m_drag.IsPressed()) return ReleaseCapture(), true;
    return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0 && ZoomByKey(message.wParam);
}

bool SpectrumPicture::ZoomByKey(WPARAM key) {
    const std::int32_t half = m_plot->Middle() - m_plot->Inside().left;
    std::int32_t about = m_plot->Middle();
    if (const auto peak = m_spectra.ChosenPeak()) {
        const DevicePoint place = m_plot->PlaceOf(m_spectra.PeakTrace(), m_spectra.Peaks()[*peak]);
        if (m_plot->IsInside(place)) about = place.x;
    }
    switch (key) {
        case VK_ADD:
        case VK_OEM_PLUS: return ShowBand(m_plot->Zoomed(kZoomStep, about)), true;
        case VK_SUBTRACT:
        case VK_OEM_MINUS: return ShowBand(m_plot->Zoomed(1.0 / kZoomStep, about)), true;
        case VK_LEFT: return ShowBand(m_plot->Moved(-half)), true;
        case VK_RIGHT: return ShowBand(m_plot->Moved(half)), true;
        case 'F': return ShowBand(std::nullopt), true;
        default: return false;
    }
}

bool SpectrumPicture::ZoomByWheel(const MSG& message) {
    POINT point{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    if (!m_plot || WindowFromPoint(point) != m_picture.Window()) return false;
    ScreenToClient(m_picture.Window(), &point);
    const double steps = GET_WHEEL_DELTA_WPARAM(message.wParam) / static_cast<double>(WHEEL_DELTA);
    ShowBand(m_plot->Zoomed(std::pow(kZoomStep, steps), static_cast<std::int32_t>(point.x)));
    return true;
}

bool SpectrumPicture::Copy(const std::u16string& heading) {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    const LONG margin = m_density.Scaled(4);
    const LONG caption = SizeOf(u"0").height + 2 * margin;
    cMemDC canvas;
    cMemDC plot;
    if (!m_plot || !canvas.CreateBitmap(client.right, client.bottom + caption) ||
        !plot.CreateBitmap(client.right, client.bottom))
        return false;
    canvas.Clear();
    Paint(plot.Handle(), kLightColors);
    BitBlt(canvas.Handle(), 0, caption, client.right, client.bottom, plot.Handle(), 0, 0, SRCCOPY);
    {
        const SelectScope font(canvas.Handle(), m_density.Font());
        DrawTextAt(canvas.Handle(), margin, margin, heading);
    }
    return PictureToClipboard(canvas);
}

}  // namespace quillon
