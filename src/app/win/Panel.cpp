#include "app/win/Panel.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "view/win/GDI_Utils.h"

namespace quillon {

bool Panel::Create(HWND parent, int id) {
    return m_box.Create(parent, id, *this, false);
}

namespace {

/// The lines of a text, each as its cells.
std::vector<std::vector<std::wstring>> Cells(const std::wstring& text) {
    std::vector<std::vector<std::wstring>> lines(1, std::vector<std::wstring>(1));
    for (const wchar_t letter : text) {
        if (letter == L'\r') continue;
        if (letter == L'\n') {
            lines.emplace_back(1);
        } else if (letter == L'\t') {
            lines.back().emplace_back();
        } else {
            lines.back().back().push_back(letter);
        }
    }
    if (lines.back() == std::vector<std::wstring>(1)) lines.pop_back();
    return lines;
}

int WidthOf(HDC dc, const std::wstring& text) {
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    return static_cast<int>(size.cx);
}

/// How a table lies in its place.
struct TableLayout {
    std::array<int, 2> widths{};  ///< of the cells before the last
    int lineHeight = 1;
    int rows = 1;
    int columns = 1;
    bool fits = false;  ///< all lines are seen whole
};

TableLayout Arrange(HDC dc, const RECT& place, const std::vector<std::vector<std::wstring>>& lines) {
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    const int gap = static_cast<int>(metrics.tmAveCharWidth);
    TableLayout layout;
    int last = 0;
    std::size_t aligned = 0;
    for (const auto& line : lines) {
        if (line.size() < 2) continue;
        const std::size_t before = std::min(line.size() - 1, layout.widths.size());
        for (std::size_t cell = 0; cell < before; ++cell)
            layout.widths[cell] = std::max(layout.widths[cell], WidthOf(dc, line[cell]) + gap);
        if (before > aligned) last = 0;
        if (before >= aligned) last = std::max(last, WidthOf(dc, line[before]) + gap);
        aligned = std::max(aligned, before);
    }
    const int widest = std::max(std::accumulate(layout.widths.begin(), layout.widths.end(), last), 1);
    const int room = static_cast<int>(place.right - place.left);
    const int total = static_cast<int>(lines.size());
    layout.lineHeight = static_cast<int>(metrics.tmHeight);
    layout.rows = std::max(static_cast<int>(place.bottom - place.top) / layout.lineHeight, 1);
    // More lines than fit below each other stand side by side, unless they would be cut.
    const int wanted = std::max((total + layout.rows - 1) / layout.rows, 1);
    layout.columns = std::clamp(room / widest, 1, wanted);
    layout.fits = layout.columns == wanted && widest <= room;
    return layout;
}

}  // namespace

void Panel::PaintPicture(int, HDC dc, const RECT& clip) {
    FillRect(dc, &clip, GetSysColorBrush(COLOR_BTNFACE));
    RECT client{};
    GetClientRect(Window(), &client);
    const int dpi = ScreenDpi();
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    InflateRect(&client, -MulDiv(4, dpi, 96), -MulDiv(2, dpi, 96));
    const std::wstring text = Wide(m_text);
    if (text.find(L'\t') == std::wstring::npos) {
        const GdiFont font = MakeFont(dpi, m_bold);
        const SelectScope select(dc, font.Get());
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &client,
                  DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL);
        return;
    }
    PaintTable(dc, client, text);
}

void Panel::PaintTable(HDC dc, const RECT& place, const std::wstring& text) {
    const std::vector<std::vector<std::wstring>> lines = Cells(text);
    // The values of many channels are written smaller, as far as they can still be read.
    GdiFont font;
    TableLayout layout;
    for (int percent = 100; percent >= 84 && !layout.fits; percent -= 8) {
        font = MakeFont(MulDiv(ScreenDpi(), percent, 100), m_bold);
        const SelectScope select(dc, font.Get());
        layout = Arrange(dc, place, lines);
    }
    const SelectScope select(dc, font.Get());
    const int total = static_cast<int>(lines.size());
    const int seen = std::min(total, layout.rows * layout.columns);
    m_first = std::clamp(m_first, 0, total - seen);
    const int width = static_cast<int>(place.right - place.left) / layout.columns;
    const int perColumn = (seen + layout.columns - 1) / layout.columns;
    for (int at = 0; at < seen; ++at) {
        const auto& line = lines[static_cast<std::size_t>(m_first + at)];
        const int left = static_cast<int>(place.left) + at / perColumn * width;
        const int top = static_cast<int>(place.top) + at % perColumn * layout.lineHeight;
        int x = left;
        for (std::size_t cell = 0; cell < line.size(); ++cell) {
            RECT box{x, top, left + width, top + layout.lineHeight};
            DrawTextW(dc, line[cell].c_str(), static_cast<int>(line[cell].size()), &box,
                      DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
            if (cell < layout.widths.size()) x += layout.widths[cell];
        }
    }
}

void Panel::Text(const std::u16string& text) {
    m_text = text;
    // The description of another recording ends what was looked for in the readout of this one.
    if (text.find(u'\t') == std::u16string::npos) m_first = m_wheelRest = 0;
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

}  // namespace quillon
