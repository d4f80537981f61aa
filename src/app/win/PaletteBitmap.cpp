#include "app/win/PaletteBitmap.h"

#include "spectrum/Palette.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

GdiBitmap MakePaletteBitmap(std::int16_t palette, int dpi) {
    const int width = MulDiv(64, dpi, 96);
    const int height = MulDiv(12, dpi, 96);
    BITMAPINFO info{};
    info.bmiHeader = DibHeader(width, -height, 32);
    void* bits = nullptr;
    GdiBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap) return bitmap;
    auto* pixel = static_cast<std::uint32_t*>(bits);
    const Palette colors = BuildPalette(palette);
    // Themed menus blend by the fourth byte.
    constexpr std::uint32_t opaque = 0xFF000000;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const PaletteColor& color = colors[BarIndex(x, width)];
            *pixel++ = opaque | static_cast<std::uint32_t>(color.red << 16 | color.green << 8 | color.blue);
        }
    }
    return bitmap;
}

}  // namespace quillon
