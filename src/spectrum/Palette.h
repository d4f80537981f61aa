#pragma once

#include <array>
#include <cstdint>

/// The colours of the spectrogram: index 0 is the weakest level and a blank column, index 255 the strongest level.
namespace quillon {

/// One entry of an image's colour table, in the order of its bytes.
struct PaletteColor {
    std::uint8_t blue = 0;
    std::uint8_t green = 0;
    std::uint8_t red = 0;
    std::uint8_t reserved = 0;
};

using Palette = std::array<PaletteColor, 256>;

enum class PaletteKind : std::int16_t { Color = 0, Green = 1, Gray = 2 };

/// The colour table of a palette number; one that names no palette counts as Color.
[[nodiscard]] Palette BuildPalette(std::int16_t kind);

/// The number behind this one; the last one is followed by the first.
[[nodiscard]] std::int16_t NextPalette(std::int16_t kind);

/// Index shown in row y of a palette bar, 0 to height-1, counted from the bottom. A bar of 512 rows or more would round
/// up to 256 in its top row, which shows 255.
[[nodiscard]] std::uint8_t BarIndex(int y, int height);

}  // namespace quillon
