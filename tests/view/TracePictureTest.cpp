#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/FakeRecording.h"
#include "view/InvertLightness.h"
#include "view/TraceCanvas.h"
#include "view/TracePicture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

constexpr std::int32_t kWidth = 300;
constexpr std::int32_t kHeight = 200;

/// A view of noise in a graph of kWidth x kHeight, one unit to a code.
struct Noise {
    explicit Noise(std::size_t channels) {
        std::mt19937 random(4);
        auto noise = std::make_shared<FakeBlock>();
        noise->samples.assign(channels, std::vector<std::int16_t>(60000));
        for (auto& channel : noise->samples)
            for (auto& code : channel) code = static_cast<std::int16_t>(random() % 100);
        block.block = noise;
        block.channelCount = static_cast<std::int16_t>(channels);
        block.sampleCount = 60000;
        block.invScale.assign(channels, 1.0F);
        block.offsets.assign(channels, 0.0F);
        for (std::size_t at = 0; at < channels; ++at) {
            block.channelNumbers.push_back(static_cast<std::int16_t>(at));
            lanes[0].channels.push_back(static_cast<std::int16_t>(at + 1));
        }
        axis.SetBlock(block.sampleCount);
        axis.SetWidth(kWidth);
        lanes[0].height = kHeight;
        lanes[0].scale.SetGraph(kHeight, kHeight / 2);
        lanes[0].scale.FindData(ValueRange{0.0F, 99.0F});
    }
    ViewBlock block;
    TimeAxis axis;
    Lanes lanes = Lanes(1);
    [[nodiscard]] GraphScene Scene() const { return {block, axis, lanes}; }
};

using Image = std::vector<std::uint32_t>;

Image Drawn(TracePicture& picture, const GraphScene& scene, std::size_t traces) {
    Image image(static_cast<std::size_t>(kWidth * kHeight), 0xFFFFFF);
    picture.Reset(traces, kWidth, kHeight);
    picture.Draw(scene, 0, kWidth);
    picture.Compose(image.data());
    return image;
}

TEST(TracePicture, EveryColumnHoldsItsRunOfSamplesAndLinesToItsNeighbours) {
    Noise noise(1);
    const auto& samples = static_cast<FakeBlock&>(*noise.block.block).samples[0];
    const double rowsPerCode = AmplitudeScale::kDivision / noise.lanes[0].scale.UnitsPerDivision();
    const auto rowOf = [&](double code) {
        return static_cast<std::int32_t>(
            std::floor(static_cast<double>(noise.lanes[0].ZeroRow()) - code * rowsPerCode + 0.5));
    };
    for (const int zoom : {0, 2, 4, 6}) {
        noise.axis.SelectZoom(zoom);
        noise.axis.ScrollBy(7);
        const std::int32_t perPixel = noise.axis.SamplesPerPixel();
        TracePicture picture;
        const Image image = Drawn(picture, noise.Scene(), 1);
        EXPECT_EQ(picture.SideOf(0), TraceSides::Side::None);
        // The first sample of the view is a point of its own, so that runs begin with the second one.
        const auto rows = [&](std::int32_t column, std::int32_t reach) {
            const auto first = samples.begin() + (noise.axis.FirstColumn() + column - 1 - reach) * perPixel + 1;
            const auto [low, high] = std::minmax_element(first, first + (2 * reach + 1) * perPixel);
            return std::pair(rowOf(*high), rowOf(*low));
        };
        for (std::int32_t column = 2; column < kWidth - 2; ++column) {
            const auto [top, bottom] = rows(column, 1);
            std::int32_t seen = 0;
            for (std::int32_t row = 0; row < kHeight; ++row) {
                if (image[static_cast<std::size_t>(row * kWidth + column)] == 0xFFFFFF) continue;
                ASSERT_TRUE(row >= top && row <= bottom) << zoom << ' ' << column << ' ' << row;
                ++seen;
            }
            const auto [least, most] = rows(column, 0);
            ASSERT_GE(seen, std::max(most - least, 1)) << zoom << ' ' << column;
        }
    }
}

TEST(TracePicture, DrawnInPartsAndScrolledItIsWhatItIsDrawnAtOnce) {
    Noise noise(3);
    noise.block.offsets[1] = 1e6F;
    std::mt19937 random(5);
    TracePicture scrolled;
    for (int round = 0; round < 60; ++round) {
        if (round % 6 == 0) noise.axis.SelectZoom(static_cast<int>(random() % 8));
        Image image = Drawn(scrolled, noise.Scene(), 3);
        const std::int32_t shift = noise.axis.ScrollBy(static_cast<std::int32_t>(random() % 400) - 200);
        if (std::abs(shift) >= kWidth) continue;
        scrolled.Scroll(shift);
        const std::int32_t left = std::min(std::max(-shift, 0) + 2, kWidth);
        const std::int32_t right = std::max(kWidth - std::max(shift, 0) - 2, left);
        Image moved(image.size(), 0xFFFFFF);
        for (std::int32_t row = 0; row < kHeight; ++row) {
            for (std::int32_t column = left; column < right; ++column)
                moved[static_cast<std::size_t>(row * kWidth + column)] =
                    image[static_cast<std::size_t>(row * kWidth + column + shift)];
        }
        for (const auto& [from, to] : {std::pair(0, left), std::pair(right, kWidth)}) {
            scrolled.Draw(noise.Scene(), from, to);
            scrolled.Compose(moved.data());
        }
        TracePicture anew;
        ASSERT_TRUE(moved == Drawn(anew, noise.Scene(), 3)) << round << ", shift " << shift;
        const bool empty = noise.axis.Visible().count < 1;
        EXPECT_EQ(scrolled.SideOf(1), empty ? TraceSides::Side::None : TraceSides::Side::Above);
    }
}

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
