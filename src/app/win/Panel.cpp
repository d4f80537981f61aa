#include "app/win/Panel.h"

#include "view/win/GDI_Utils.h"

namespace quillon {

bool Panel::Create(HWND parent, int id) {
    return m_box.Create(parent, id, *this, false);
}

void Panel::PaintPicture(int, HDC dc, const RECT& clip) {
    FillRect(dc, &clip, GetSysColorBrush(COLOR_BTNFACE));
    RECT client{};
    GetClientRect(Window(), &client);
    const int dpi = ScreenDpi();
    const GdiFont font = MakeFont(dpi, m_bold);
    const SelectScope select(dc, font.Get());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    DRAWTEXTPARAMS tabs{};
    tabs.cbSize = sizeof tabs;
    tabs.iTabLength = 6;
    InflateRect(&client, -MulDiv(4, dpi, 96), -MulDiv(2, dpi, 96));
    std::wstring text = Wide(m_text);
    DrawTextExW(dc, text.data(), static_cast<int>(text.size()), &client,
                DT_EXPANDTABS | DT_TABSTOP | DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL, &tabs);
}

}  // namespace quillon
