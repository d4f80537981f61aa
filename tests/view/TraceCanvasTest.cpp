#include "view/InvertLightness.h"
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

TEST(InvertLightness, MovesEveryPartByTheSameAndUndoesItself) {
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t red = 0; red < 256; red += 15)
        for (std::uint32_t green = 0; green < 256; green += 3)
            for (std::uint32_t blue = 0; blue < 256; blue += 5)
                pixels.push_back((red * 7 & 0xFF) << 24 | red << 16 | green << 8 | blue);
    std::vector<std::uint32_t> inverted = pixels;
    InvertLightness(inverted);
    for (std::size_t at = 0; at < pixels.size(); ++at) {
        const auto part = [](std::uint32_t pixel, int shift) { return static_cast<int>(pixel >> shift & 0xFF); };
        const std::uint32_t old = pixels[at];
        const int most = std::max({part(old, 0), part(old, 8), part(old, 16)});
        const int least = std::min({part(old, 0), part(old, 8), part(old, 16)});
        for (const int shift : {0, 8, 16}) ASSERT_EQ(part(inverted[at], shift), part(old, shift) + 255 - most - least);
        ASSERT_EQ(inverted[at] >> 24, old >> 24);
    }
    InvertLightness(inverted);
    EXPECT_TRUE(inverted == pixels);
}

}  // namespace
}  // namespace quillon
