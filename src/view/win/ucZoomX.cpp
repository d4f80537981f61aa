#include "view/win/ucZoomX.h"

namespace quillon {

namespace {

/// Two bars of a plus, or one of a minus, in the middle of a button.
void DrawSign(HDC dc, const RECT& button, bool plus, const ScreenDensity& density) {
    const COLORREF ink = GetSysColor(COLOR_BTNTEXT);
    const int x = (button.left + button.right) / 2;
    const int y = (button.top + button.bottom) / 2;
    const int arm = density.Scaled(4);
    // Bars of an odd width have a middle.
    const int half = density.Dpi() / 192;
    FillWith(dc, {x - arm, y - half, x + arm + 1, y + half + 1}, ink);
    if (plus) FillWith(dc, {x - half, y - arm, x + half + 1, y + arm + 1}, ink);
}

}  // namespace

bool ucZoomX::Create(HWND parent, int id, ZoomXEvents& events) {
    m_events = &events;
    return m_box.Create(parent, id, *this, false);
}

void ucZoomX::SetCaption(const std::u16string& caption) {
    m_caption = caption;
    m_box.Invalidate();
}

ucZoomX::Parts ucZoomX::Split() const {
    RECT client{};
    GetClientRect(Window(), &client);
    const int middle = (client.top + client.bottom) / 2;
    const int half = (client.left + client.right) / 2;
    return {{client.left, middle, half, client.bottom},
            {client.left, client.top, client.right, middle},
            {half, middle, client.right, client.bottom}};
}

void ucZoomX::PaintPicture(int, HDC dc, const RECT& clip) {
    FillRect(dc, &clip, GetSysColorBrush(COLOR_BTNFACE));
    const Parts parts = Split();
    for (const RECT& part : {parts.minus, parts.caption, parts.plus}) {
        RECT edge = part;
        DrawFrameControl(dc, &edge, DFC_BUTTON, DFCS_BUTTONPUSH);
    }
    DrawSign(dc, parts.minus, false, m_density);
    DrawSign(dc, parts.plus, true, m_density);
    const SelectScope font(dc, m_density.Font());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    const std::wstring text = Wide(m_caption);
    RECT caption = parts.caption;
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &caption, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
}

bool ucZoomX::PictureMouse(int, UINT message, WPARAM, LPARAM lParam) {
    if (message != WM_LBUTTONDOWN && message != WM_LBUTTONDBLCLK) return false;
    const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    const Parts parts = Split();
    if (PtInRect(&parts.minus, point)) {
        m_events->ZoomDown(0);
    } else if (PtInRect(&parts.plus, point)) {
        m_events->ZoomDown(1);
    } else {
        m_events->ZoomButtonDown();
    }
    return true;
}

}  // namespace quillon
