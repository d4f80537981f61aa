#include "view/ReadableColor.h"

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

double Part(std::uint32_t color, int shift) {
    return static_cast<double>(color >> shift & 0xFF);
}

double Luminance(std::uint32_t color) {
    const auto linear = [color](int shift) {
        const double part = Part(color, shift) / 255;
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
}

}  // namespace

double Contrast(std::uint32_t first, std::uint32_t second) {
    const auto [darker, lighter] = std::minmax({Luminance(first), Luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

std::uint32_t Mixed(std::uint32_t first, std::uint32_t second, double share) {
    std::uint32_t mixed = 0;
    for (const int shift : {16, 8, 0}) {
        const double part = Part(first, shift) + share * (Part(second, shift) - Part(first, shift));
        mixed |= static_cast<std::uint32_t>(std::lround(part)) << shift;
    }
    return mixed;
}

bool IsDark(std::uint32_t background) {
    return Contrast(background, 0xFFFFFF) > Contrast(background, 0);
}

std::uint32_t Readable(std::uint32_t color, std::uint32_t background, double contrast) {
    const std::uint32_t farthest = IsDark(background) ? 0xFFFFFF : 0;
    constexpr int steps = 32;
    for (int step = 0; step < steps; ++step) {
        const std::uint32_t mixed = Mixed(color, farthest, static_cast<double>(step) / steps);
        if (Contrast(mixed, background) >= contrast) return mixed;
    }
    return farthest;
}

}  // namespace quillon
