#include "view/win/ScreenDensity.h"

namespace quillon {

const ScreenDensity::Fonts& ScreenDensity::FontOf(int dpi) const {
    Fonts& fonts = m_fonts[dpi];
    if (fonts.upright) return fonts;
    fonts.upright = MakeFont(dpi);
    LOGFONTW font{};
    GetObjectW(fonts.upright.Get(), sizeof font, &font);
    font.lfEscapement = 900;  // tenths of a degree
    font.lfOrientation = 900;
    font.lfOutPrecision = OUT_TT_ONLY_PRECIS;
    fonts.vertical = GdiFont(CreateFontIndirectW(&font));
    return fonts;
}

}  // namespace quillon
