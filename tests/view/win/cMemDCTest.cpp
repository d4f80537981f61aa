#include "view/win/cMemDC.h"

#include <gtest/gtest.h>

#include "base/win/WinHandle.h"

namespace quillon {
namespace {

bool IsObject(HGDIOBJ object) {
    return GetObjectType(object) != 0;
}

TEST(cMemDC, OwnsWhatItIsGivenAndIgnoresWhatItIsNot) {
    const HPEN first = CreatePen(PS_SOLID, 1, RGB(1, 2, 3));
    const HPEN second = CreatePen(PS_SOLID, 2, RGB(4, 5, 6));
    const GdiBrush brush(CreateSolidBrush(RGB(7, 8, 9)));
    HBITMAP copied = nullptr;
    {
        cMemDC canvas;
        const HPEN initial = canvas.Pen();
        canvas.Pen(first);
        EXPECT_EQ(canvas.Pen(), first);
        EXPECT_TRUE(IsObject(initial)) << "the context's own objects are never deleted";
        canvas.Pen(second);
        EXPECT_FALSE(IsObject(first)) << "owned, so deleted when another takes its place";
        // An object of another kind changes nothing and stays its owner's.
        canvas.Pen(reinterpret_cast<HPEN>(brush.Get()));
        EXPECT_EQ(canvas.Pen(), second);
        EXPECT_TRUE(IsObject(brush.Get()));
        canvas.Pen(second);
        EXPECT_TRUE(IsObject(second)) << "given once more, not deleted under the hand";

        std::uint32_t* pixels = canvas.CreatePixels(3, 2);
        ASSERT_NE(pixels, nullptr);
        pixels[4] = 0x123456;
        copied = canvas.CopyBitmap();
        canvas.Clear();
        EXPECT_EQ(GetPixel(canvas.Handle(), 1, 1), RGB(255, 255, 255));
        EXPECT_EQ(canvas.Size().cx, 3);
    }
    EXPECT_FALSE(IsObject(second)) << "and with the canvas";
    cMemDC other;
    other.Bitmap(copied);
    EXPECT_EQ(GetPixel(other.Handle(), 1, 1), RGB(0x12, 0x34, 0x56));
}

}  // namespace
}  // namespace quillon
