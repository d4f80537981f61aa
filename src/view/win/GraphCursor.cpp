#include "view/win/GraphCursor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace quillon {

namespace {

/// The pictures, in pixels from the hot spot. All are symmetric about it.
class Shape {
  public:
    Shape(std::size_t style, SIZE size)
        : m_style(style), m_scale(static_cast<double>(std::min(size.cx, size.cy)) / 32.0), m_half(size.cx / 64) {}

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

/// The rows of a monochrome mask begin at whole words.
class Mask {
  public:
    Mask(SIZE size, std::uint8_t fill)
        : m_rowBytes(static_cast<std::size_t>((size.cx + 15) / 16 * 2)),
          m_bytes(m_rowBytes * static_cast<std::size_t>(size.cy), fill) {}
    void Flip(int x, int y) {
        m_bytes[static_cast<std::size_t>(y) * m_rowBytes + static_cast<std::size_t>(x / 8)] ^=
            static_cast<std::uint8_t>(0x80 >> x % 8);
    }
    [[nodiscard]] const void* Bytes() const { return m_bytes.data(); }

  private:
    std::size_t m_rowBytes;
    std::vector<std::uint8_t> m_bytes;
};

HCURSOR MakeCursor(std::size_t style, SIZE size) {
    const Shape shape(style, size);
    const POINT middle{size.cx / 2, size.cy / 2};
    const auto outlined = [&](int x, int y) {
        for (int at = 0; at < 9; ++at)
            if (shape.Covers(x + at % 3 - 1, y + at / 3 - 1)) return true;
        return false;
    };
    Mask screen(size, 0xFF);  // what of the screen is kept
    Mask inverted(size, 0x00);
    for (int y = 0; y < size.cy; ++y) {
        for (int x = 0; x < size.cx; ++x) {
            if (!outlined(x - middle.x, y - middle.y)) continue;
            screen.Flip(x, y);
            if (!shape.Covers(x - middle.x, y - middle.y)) inverted.Flip(x, y);
        }
    }
    return CreateCursor(GetModuleHandleW(nullptr), middle.x, middle.y, size.cx, size.cy, screen.Bytes(),
                        inverted.Bytes());
}

}  // namespace

SIZE GraphCursor::Size() {
    return {GetSystemMetrics(SM_CXCURSOR), GetSystemMetrics(SM_CYCURSOR)};
}

HCURSOR GraphCursor::Get(int style) {
    const std::size_t index = static_cast<std::size_t>(std::abs(style % kStyles));
    WinHandle<CursorTraits>& cursor = m_cursors[index];
    if (!cursor) cursor.Reset(MakeCursor(index, Size()));
    return cursor ? cursor.Get() : LoadCursorW(nullptr, IDC_CROSS);
}

void GraphCursor::Draw(HDC dc, int x, int y, int style) {
    DrawIconEx(dc, x, y, Get(style), 0, 0, 0, nullptr, DI_NORMAL);
}

}  // namespace quillon
