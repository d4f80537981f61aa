#include "view/win/GraphCursor.h"

#include <gtest/gtest.h>

#include <tuple>

#include "view/win/GDI_Utils.h"

namespace quillon {
namespace {

TEST(GraphCursor, DrawsAxesRingsAndSquare) {
    const SIZE size = GraphCursor::Size();
    const WindowDC screen(nullptr);
    const MemoryDC memory(CreateCompatibleDC(screen.Get()));
    const GdiBitmap bitmap(CreateCompatibleBitmap(screen.Get(), size.cx, size.cy));
    const SelectScope select(memory.Get(), bitmap.Get());
    GraphCursor cursors;
    // Black at the hot spot; on the axis at a quarter of the width (the ring and half-way along the cross) and beyond.
    using Case = std::tuple<int, bool, bool, bool>;
    for (const auto& [style, middle, quarter, outside] :
         {Case{0, false, true, true}, {1, true, true, true}, {2, false, true, true}, {3, true, false, false}}) {
        FillWith(memory.Get(), {0, 0, size.cx, size.cy}, RGB(255, 255, 0));
        cursors.Draw(memory.Get(), 0, 0, style);
        const auto isBlack = [&](LONG distance) {
            return GetPixel(memory.Get(), size.cx / 2 + distance, size.cy / 2) == RGB(0, 0, 0);
        };
        EXPECT_EQ(isBlack(0), middle) << style;
        EXPECT_EQ(isBlack(size.cx / 4), quarter) << style;
        EXPECT_EQ(isBlack(size.cx * 3 / 8), outside) << style;
    }
}

}  // namespace
}  // namespace quillon
