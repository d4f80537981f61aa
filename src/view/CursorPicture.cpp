#include "view/CursorPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace quillon {

namespace {

/// The pictures, in pixels from the hot spot. All are symmetric about it.
class Shape {
  public:
    Shape(std::size_t style, int width, int height)
        : m_style(style), m_scale(static_cast<double>(std::min(width, height)) / 32.0), m_half(width / 64) {}

    [[nodiscard]] bool Covers(int x, int y) const {
        switch (m_style) {
            case 0: return Ticks(x, y, 4, 14);
            case 1: return Ring(x, y, 8) || Ticks(x, y, 0, 13);
            case 2: return Ring(x, y, 8) || Ticks(x, y, 8, 13);
            default: return Square(x, y, 7) || Square(x, y, 1) || Square(x, y, 0);
        }
    }

  private:
    /// A length drawn for cursors of 32 pixels.
    [[nodiscard]] int Length(int length) const { return static_cast<int>(std::lround(length * m_scale)); }
    /// Parts of the two axes.
    [[nodiscard]] bool Ticks(int x, int y, int from, int to) const {
        const auto [across, along] = std::minmax({std::abs(x), std::abs(y)});
        return across <= m_half && along >= Length(from) && along <= Length(to);
    }
    [[nodiscard]] bool Ring(int x, int y, int radius) const {
        return std::fabs(std::hypot(x, y) - Length(radius)) <= m_half + 0.5;
    }
    /// An outline about the hot spot; with no side a point.
    [[nodiscard]] bool Square(int x, int y, int side) const {
        return std::abs(std::max(std::abs(x), std::abs(y)) - Length(side)) <= m_half;
    }

    std::size_t m_style;
    double m_scale;
    int m_half;  ///< a line is 2 * m_half + 1 pixels wide
};

}  // namespace

CursorPicture DrawCursor(std::size_t style, int width, int height) {
    const Shape shape(style, width, height);
    const auto outlined = [&](int x, int y) {
        for (int at = 0; at < 9; ++at)
            if (shape.Covers(x + at % 3 - 1, y + at / 3 - 1)) return true;
        return false;
    };
    const auto rowBytes = static_cast<std::size_t>((width + 15) / 16 * 2);
    const std::size_t bytes = rowBytes * static_cast<std::size_t>(height);
    CursorPicture picture{std::vector<std::uint8_t>(bytes, 0xFF), std::vector<std::uint8_t>(bytes, 0x00)};
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const int x = column - width / 2;
            const int y = row - height / 2;
            if (!outlined(x, y)) continue;
            const std::size_t at = static_cast<std::size_t>(row) * rowBytes + static_cast<std::size_t>(column / 8);
            const auto bit = static_cast<std::uint8_t>(0x80 >> column % 8);
            picture.kept[at] ^= bit;
            if (!shape.Covers(x, y)) picture.white[at] ^= bit;
        }
    }
    return picture;
}

}  // namespace quillon
