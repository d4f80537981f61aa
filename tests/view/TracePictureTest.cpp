#include "view/TracePicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/FakeRecording.h"

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
        const bool empty = noise.axis.Visible().Count() < 1;
        EXPECT_EQ(scrolled.SideOf(1), empty ? TraceSides::Side::None : TraceSides::Side::Above);
    }
}

}  // namespace
}  // namespace quillon
