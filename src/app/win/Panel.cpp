#include "app/win/Panel.h"

#include <algorithm>
#include <array>

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

}  // namespace

void Panel::PaintPicture(int, HDC dc, const RECT& clip) {
    FillRect(dc, &clip, GetSysColorBrush(COLOR_BTNFACE));
    RECT client{};
    GetClientRect(Window(), &client);
    const int dpi = ScreenDpi();
    const GdiFont font = MakeFont(dpi, m_bold);
    const SelectScope select(dc, font.Get());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    InflateRect(&client, -MulDiv(4, dpi, 96), -MulDiv(2, dpi, 96));
    const std::wstring text = Wide(m_text);
    if (text.find(L'\t') == std::wstring::npos) {
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &client,
                  DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL);
        return;
    }
    PaintTable(dc, client, Cells(text));
}

void Panel::PaintTable(HDC dc, const RECT& place, const std::vector<std::vector<std::wstring>>& lines) {
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    const int gap = static_cast<int>(metrics.tmAveCharWidth);
    std::array<int, 2> widths{};
    int last = 0;
    for (const auto& line : lines) {
        if (line.size() < 2) continue;
        const std::size_t aligned = std::min(line.size() - 1, widths.size());
        for (std::size_t cell = 0; cell < aligned; ++cell)
            widths[cell] = std::max(widths[cell], WidthOf(dc, line[cell]) + gap);
        last = std::max(last, WidthOf(dc, line[aligned]) + gap);
    }
    // More lines than fit stand side by side, unless they would be cut.
    const int rows = std::max(static_cast<int>((place.bottom - place.top) / metrics.tmHeight), 1);
    const int total = static_cast<int>(lines.size());
    const int room = static_cast<int>(place.right - place.left);
    const bool threeCells = std::any_of(lines.begin(), lines.end(), [](const auto& line) { return line.size() > 2; });
    const int widest = widths[0] + (threeCells ? widths[1] : 0) + last;
    const int columns = std::clamp(room / std::max(widest, 1), 1, std::max((total + rows - 1) / rows, 1));
    m_first = std::clamp(m_first, 0, std::max(total - rows * columns, 0));
    const int count = std::min(total - m_first, rows * columns);
    const int width = room / columns;
    const int perColumn = (count + columns - 1) / columns;
    for (int at = 0; at < count; ++at) {
        const auto& line = lines[static_cast<std::size_t>(m_first + at)];
        const int left = static_cast<int>(place.left) + at / perColumn * width;
        const int top = static_cast<int>(place.top + at % perColumn * metrics.tmHeight);
        int x = left;
        for (std::size_t cell = 0; cell < line.size(); ++cell) {
            RECT box{x, top, left + width - gap / 2, top + static_cast<int>(metrics.tmHeight)};
            DrawTextW(dc, line[cell].c_str(), static_cast<int>(line[cell].size()), &box,
                      DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
            if (cell < widths.size()) x += widths[cell];
        }
    }
    if (count == total) return;
    // There is more, above or below.
    const std::wstring more = std::wstring(m_first > 0 ? L"\u25B2" : L"") + (m_first + count < total ? L"\u25BC" : L"");
    RECT corner{place.left, place.bottom - metrics.tmHeight, place.right, place.bottom};
    DrawTextW(dc, more.c_str(), static_cast<int>(more.size()), &corner, DT_SINGLELINE | DT_RIGHT | DT_BOTTOM);
}

bool Panel::PictureMouse(int, UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_MOUSEWHEEL) return false;
    m_first -= 3 * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA;
    Refresh();
    return true;
}

}  // namespace quillon
