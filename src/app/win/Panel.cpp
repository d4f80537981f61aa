#include "app/win/Panel.h"

#include <algorithm>

#include "app/PanelTable.h"

namespace quillon {

namespace {

/// Beyond every line; painting takes the last that there is.
constexpr std::int32_t kLastLine = 1 << 20;

}  // namespace

bool Panel::Create(HWND parent, int id) {
    return m_box.Create(parent, id, *this, true);
}

void Panel::PaintPicture(int, HDC dc, const RECT& clip) {
    FillRect(dc, &clip, GetSysColorBrush(COLOR_BTNFACE));
    RECT client{};
    GetClientRect(Window(), &client);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    InflateRect(&client, -m_density.Scaled(4), -m_density.Scaled(2));
    if (m_text.find(u'\t') != std::u16string::npos) return PaintTable(dc, client);
    const std::wstring text = Wide(m_text);
    const GdiFont font = MakeFont(m_density.Dpi(), m_bold);
    const SelectScope select(dc, font.Get());
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &client, DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL);
}

void Panel::PaintTable(HDC dc, const RECT& place) {
    const CellLines lines = CellsOf(m_text);
    const auto width = static_cast<int>(place.right - place.left);
    // The values of many channels are set in a smaller font, down to a readable size.
    GdiFont font;
    PanelTable table;
    for (int percent = 100; percent >= 84 && !table.fits; percent -= 8) {
        font = MakeFont(MulDiv(m_density.Dpi(), percent, 100), m_bold);
        const SelectScope select(dc, font.Get());
        TEXTMETRICW metrics{};
        GetTextMetricsW(dc, &metrics);
        const auto widthOf = [dc](const std::u16string& text) {
            SIZE size{};
            GetTextExtentPoint32W(dc, Wide(text).c_str(), static_cast<int>(text.size()), &size);
            return static_cast<std::int32_t>(size.cx);
        };
        table = ArrangeCells(
            lines, width, static_cast<int>(place.bottom - place.top),
            {static_cast<int>(metrics.tmHeight), static_cast<int>(metrics.tmAveCharWidth) * 3 / 2, widthOf});
    }
    m_page = std::max<std::int32_t>(table.rows * table.columns - 1, 1);
    const SelectScope select(dc, font.Get());
    for (const SeenCell& cell : SeenCells(lines, table, width, m_first)) {
        RECT box{place.left + cell.left, place.top + cell.top, place.left + cell.right,
                 place.top + cell.top + table.lineHeight};
        DrawTextW(dc, Wide(cell.text).c_str(), static_cast<int>(cell.text.size()), &box,
                  DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
}

void Panel::Text(const std::u16string& text) {
    m_text = text;
    m_announcer.Tell(SpokenText(text));
    // A text without cells (the description of a recording) ends a readout: scroll back to the top.
    if (text.find(u'\t') == std::u16string::npos) m_first = m_wheelRest = 0;
}

void Panel::AnnounceBy(const TimerFactory& makeTimer, const std::u16string& name) {
    m_announcer.onAnnounce = [this, name](const std::u16string& text) {
        SetWindowTextW(Window(), Wide(name + u": " + text).c_str());
        for (const DWORD event : {DWORD{EVENT_OBJECT_NAMECHANGE}, DWORD{EVENT_OBJECT_VALUECHANGE}})
            NotifyWinEvent(event, Window(), OBJID_CLIENT, CHILDID_SELF);
    };
    m_announcer.Attach(makeTimer);
}

bool Panel::PictureMouse(int, UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_MOUSEWHEEL) return false;
    if (m_text.find(u'\t') == std::u16string::npos) return true;
    constexpr int line = WHEEL_DELTA / 3;
    m_wheelRest += GET_WHEEL_DELTA_WPARAM(wParam);
    m_first -= m_wheelRest / line;
    m_wheelRest %= line;
    Refresh();
    return true;
}

bool Panel::PictureKey(WPARAM key) {
    switch (key) {
        case VK_UP: --m_first; break;
        case VK_DOWN: ++m_first; break;
        case VK_PRIOR: m_first -= m_page; break;
        case VK_NEXT: m_first += m_page; break;
        case VK_HOME: m_first = 0; break;
        case VK_END: m_first = kLastLine; break;
        default: return false;
    }
    Refresh();
    return true;
}

}  // namespace quillon
