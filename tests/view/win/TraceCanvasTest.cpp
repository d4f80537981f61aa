#include <gtest/gtest.h>

#include <random>

#include "view/TraceCanvas.h"
#include "view/win/GDI_Utils.h"
#include "view/win/cMemDC.h"

namespace quillon {
namespace {

/// Traces of all steepnesses, drawn over each other, are what the system draws, in the whole image and in a part of it.
TEST(TraceCanvas, DrawsThePixelsOfTheSystem) {
    constexpr int width = 300;
    constexpr int height = 200;
    std::mt19937 random(12);
    for (int round = 0; round < 60; ++round) {
        cMemDC expected;
        cMemDC actual;
        const std::uint32_t* expectedPixels = expected.CreatePixels(width, height);
        std::uint32_t* actualPixels = actual.CreatePixels(width, height);
        ASSERT_TRUE(expectedPixels != nullptr && actualPixels != nullptr);
        for (const cMemDC* image : {&expected, &actual}) FillWith(image->Handle(), {0, 0, width, height}, 0xFFFFFF);
        const int from = round % 2 == 0 ? 0 : static_cast<int>(random() % static_cast<unsigned>(width));
        const int to =
            round % 2 == 0 ? width : from + 1 + static_cast<int>(random() % static_cast<unsigned>(width - from));
        IntersectClipRect(expected.Handle(), from, 0, to, height);
        TraceCanvas canvas;
        canvas.Reset(0, 10, height);
        canvas.Reset(from, to, height);
        const std::vector<std::uint32_t> colors{0xCC0000, 0x008000, 0x0000FF};
        const auto reach = static_cast<unsigned>(1 + (round % 10) * (round % 10) * 4);
        for (std::uint8_t id = 3; id >= 1; --id) {
            std::vector<DevicePoint> points{{0, 100}};
            while (points.back().x < width + 3) {
                const auto rise = static_cast<std::int32_t>(random() % reach) - static_cast<std::int32_t>(reach / 2);
                points.push_back({points.back().x + static_cast<std::int32_t>(random() % 2), points.back().y + rise});
                if (random() % 50 == 0) points.back().y = 100;
            }
            if (round == 0) points = {{0, 50 + id}, {width + 40, 50 + id}};
            canvas.Draw(points, id);
            const GdiPen pen(CreatePen(PS_SOLID, 0, ColorOf(colors[id - 1U])));
            const SelectScope select(expected.Handle(), pen.Get());
            Polyline(expected.Handle(), reinterpret_cast<const POINT*>(points.data()), static_cast<int>(points.size()));
        }
        GdiFlush();
        canvas.Compose(actualPixels, width, colors);
        for (int at = 0; at < width * height; ++at) {
            ASSERT_EQ(actualPixels[at] & 0xFFFFFF, expectedPixels[at] & 0xFFFFFF)
                << "round " << round << ", column " << at % width << ", row " << at / width;
        }
    }
}

}  // namespace
}  // namespace quillon
