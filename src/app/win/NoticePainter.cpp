#include "app/win/NoticePainter.h"

#include <algorithm>

#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

void PaintNotice(HDC dc, const RECT& place, const GraphNotice& notice, const GraphColors& colors, int dpi) {
    // A name or path without blanks is broken at any character.
    constexpr UINT format = DT_CENTER | DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX;
    const int margin = MulDiv(12, dpi, 96);
    const int width = std::min(static_cast<int>(place.right - place.left) - 2 * margin, MulDiv(520, dpi, 96));
    if (notice.title.empty() || width <= 0) return;
    const GdiFont bold = MakeFont(MulDiv(dpi, 9, 8), true);
    const GdiFont plain = MakeFont(dpi);
    struct Part {
        std::wstring text;
        HFONT font;
        COLORREF color;
        int height;
    };
    Part parts[] = {{Wide(notice.title), bold.Get(), ColorOf(colors.text), 0},
                    {Wide(notice.text), plain.Get(), ColorOf(colors.faintText), 0}};
    const int gap = notice.text.empty() ? 0 : MulDiv(6, dpi, 96);
    int total = gap;
    for (Part& part : parts) {
        const SelectScope font(dc, part.font);
        RECT box{0, 0, width, 0};
        DrawTextW(dc, part.text.c_str(), static_cast<int>(part.text.size()), &box, format | DT_CALCRECT);
        total += part.height = part.text.empty() ? 0 : static_cast<int>(box.bottom);
    }
    RECT box{};
    box.left = (place.left + place.right - width) / 2;
    box.right = box.left + width;
    // A text higher than the rectangle is aligned to its top.
    box.top = std::max(static_cast<int>(place.top + place.bottom - total) / 2, static_cast<int>(place.top) + margin);
    SetBkMode(dc, TRANSPARENT);
    for (const Part& part : parts) {
        const SelectScope font(dc, part.font);
        SetTextColor(dc, part.color);
        box.bottom = std::min(box.top + part.height, place.bottom);
        DrawTextW(dc, part.text.c_str(), static_cast<int>(part.text.size()), &box, format);
        box.top += part.height + gap;
    }
}

}  // namespace quillon
