#include "view/TraceCanvas.h"

#include <gtest/gtest.h>

#include <random>

namespace quillon {
namespace {

/// Points far outside, and traces that are cut by every side, stay inside the image.
TEST(TraceCanvas, NothingLeavesTheImage) {
    std::mt19937 random(13);
    TraceCanvas canvas;
    for (int round = 0; round < 200; ++round) {
        const auto width = static_cast<std::int32_t>(1 + random() % 90);
        const auto height = static_cast<std::int32_t>(1 + random() % 70);
        const auto from = static_cast<std::int32_t>(random() % static_cast<unsigned>(width));
        canvas.Reset(from, width, height);
        std::vector<DevicePoint> points{{-5, 0}};
        while (points.back().x < width + 5) {
            const bool far = random() % 4 == 0;
            points.push_back({points.back().x + static_cast<std::int32_t>(random() % 2),
                              far ? static_cast<std::int32_t>(random()) : static_cast<std::int32_t>(random() % 100)});
        }
        canvas.Draw(points, 1);
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height), 7);
        const std::uint32_t color = 1;
        canvas.Compose(pixels.data(), width, {&color, 1});
        for (std::int32_t at = 0; at < width * height; ++at) {
            const std::uint32_t pixel = pixels[static_cast<std::size_t>(at)];
            ASSERT_TRUE(pixel == 7 || (pixel == 1 && at % width >= from));
        }
        // A canvas that is used again holds nothing of before.
        canvas.Reset(from, width, height);
        std::vector<std::uint32_t> empty(pixels.size(), 7);
        canvas.Compose(empty.data(), width, {&color, 1});
        ASSERT_EQ(empty, std::vector<std::uint32_t>(pixels.size(), 7));
    }
}

}  // namespace
}  // namespace quillon
