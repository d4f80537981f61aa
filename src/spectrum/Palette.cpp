#include "spectrum/Palette.h"

#include <algorithm>
#include <cmath>

#include "base/Rounding.h"

namespace quillon {

namespace {

std::uint8_t ToByte(double value) {
    return static_cast<std::uint8_t>(RoundHalfEven(value));
}

PaletteColor FromShares(double red, double green, double blue) {
    return {ToByte(255.0 * blue), ToByte(255.0 * green), ToByte(255.0 * red), 0};
}

/// Hue in degrees, 0 to 360; saturation and value in percent.
PaletteColor FromHsv(double hue, double saturation, double value) {
    const double s = saturation / 100.0;
    const double v = value / 100.0;
    if (s == 0.0) return FromShares(v, v, v);
    const double sextant = hue >= 360.0 ? 0.0 : hue / 60.0;
    const double f = sextant - std::floor(sextant);
    const double p = v * (1.0 - s);
    const double q = v * (1.0 - s * f);
    const double t = v * (1.0 - s * (1.0 - f));
    switch (static_cast<int>(sextant)) {
        case 0: return FromShares(v, t, p);
        case 1: return FromShares(q, v, p);
        case 2: return FromShares(p, v, t);
        case 3: return FromShares(p, q, v);
        case 4: return FromShares(t, p, v);
        default: return FromShares(v, p, q);
    }
}

/// Black through blue, magenta and, at index 155, pure red; then through orange and yellow to white.
PaletteColor ColorEntry(int index) {
    constexpr int red = 155;
    const double hue = (index + 205) % 360;
    if (index < red) return FromHsv(hue, 100.0, (static_cast<double>(index - red) / red + 1.0) * 100.0);
    return FromHsv(hue, 255 - index, 100.0);
}

/// The quotient is kept as a single: that decides the entries whose exact value is a half.
std::uint8_t RampByte(int numerator, int denominator) {
    return ToByte(static_cast<double>(static_cast<float>(static_cast<double>(numerator) / denominator)) * 255.0);
}

/// Black through green, at full value from index 200 on; from 140 on the saturation falls towards white.
PaletteColor GreenEntry(int index) {
    constexpr int fullGreen = 200;
    constexpr int whitening = 140;
    const std::uint8_t green = RampByte(std::min(index, fullGreen), fullGreen);
    const std::uint8_t others = RampByte(std::max(index - whitening, 0), 255 - whitening);
    return {others, green, others, 0};
}

PaletteColor GrayEntry(int index) {
    const auto level = static_cast<std::uint8_t>(index);
    return {level, level, level, 0};
}

}  // namespace

Palette BuildPalette(std::int16_t kind) {
    const auto entry = [kind](int index) {
        switch (static_cast<PaletteKind>(kind)) {
            case PaletteKind::Green: return GreenEntry(index);
            case PaletteKind::Gray: return GrayEntry(index);
            default: return ColorEntry(index);
        }
    };
    Palette palette;
    for (std::size_t index = 0; index < palette.size(); ++index) palette[index] = entry(static_cast<int>(index));
    return palette;
}

std::int16_t NextPalette(std::int16_t kind) {
    return kind >= static_cast<std::int16_t>(PaletteKind::Gray) ? std::int16_t{0} : static_cast<std::int16_t>(kind + 1);
}

std::uint8_t BarIndex(int y, int height) {
    const auto step = static_cast<float>(256.0 / std::max(height, 1));
    const double index = std::clamp(y * static_cast<double>(step), 0.0, 255.0);
    return ToByte(index);
}

}  // namespace quillon
