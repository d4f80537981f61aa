#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/FakeRecording.h"
#include "view/GraphPicture.h"
#include "view/InvertLightness.h"
#include "view/TraceCanvas.h"
#include "view/TracePicture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

constexpr std::int32_t kTraceWidth = 300;
constexpr std::int32_t kHeight = 200;

/// A view of noise in a graph of kTraceWidth x kHeight, one unit to a code.
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
        axis.SetWidth(kTraceWidth);
        lanes[0].height = kHeight;
        AmplitudeScale scale;
        scale.SetGraph(kHeight, kHeight / 2);
        scale.FindData(ValueRange{0.0F, 99.0F});
        lanes[0].zeroRow = scale.ZeroRow();
        lanes[0].unitsPerDivision = scale.UnitsPerDivision();
    }
    ViewBlock block;
    TimeAxis axis;
    Lanes lanes = Lanes(1);
    ExtremesCache extremes;
    [[nodiscard]] GraphScene Scene() { return {block, axis, lanes, extremes}; }
};

using Image = std::vector<std::uint32_t>;

Image Drawn(TracePicture& picture, const GraphScene& scene, std::size_t traces) {
    Image image(static_cast<std::size_t>(kTraceWidth * kHeight), 0xFFFFFF);
    picture.Reset(traces, kTraceWidth, kHeight);
    picture.Draw(scene, 0, kTraceWidth);
    picture.Compose(image.data());
    return image;
}

TEST(TracePicture, EveryColumnHoldsItsRunOfSamplesAndLinesToItsNeighbours) {
    Noise noise(1);
    const auto& samples = static_cast<FakeBlock&>(*noise.block.block).samples[0];
    const double rowsPerCode = AmplitudeScale::kDivision / noise.lanes[0].unitsPerDivision;
    const auto rowOf = [&](double code) {
        return static_cast<std::int32_t>(
            std::floor(static_cast<double>(noise.lanes[0].zeroRow) - code * rowsPerCode + 0.5));
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
        for (std::int32_t column = 2; column < kTraceWidth - 2; ++column) {
            const auto [top, bottom] = rows(column, 1);
            std::int32_t seen = 0;
            for (std::int32_t row = 0; row < kHeight; ++row) {
                if (image[static_cast<std::size_t>(row * kTraceWidth + column)] == 0xFFFFFF) continue;
                ASSERT_TRUE(row >= top && row <= bottom) << zoom << ' ' << column << ' ' << row;
                ++seen;
            }
            const auto [least, most] = rows(column, 0);
            ASSERT_GE(seen, std::max(most - least, 1)) << zoom << ' ' << column;
        }
    }
}

/// With all that the picture consists of: grid, marks and their texts, traces, arrows and bands; lanes clipped or over
/// their neighbours, upside down, in any order.
TEST(GraphPicture, LanesScrollAsTheyAreDrawnAndClippedTracesStayInTheirs) {
    std::mt19937 random(9);
    const auto some = [&](std::int32_t below) { return static_cast<std::int32_t>(random() % 65536) % below; };
    constexpr std::size_t channels = 5;
    std::size_t arrows = 0;
    for (int round = 0; round < 60; ++round) {
        Noise noise(channels);
        std::vector<std::int16_t> order{1, 2, 3, 4, 5};
        std::shuffle(order.begin(), order.end(), random);
        noise.lanes.clear();
        const bool clip = round % 2 == 0;
        for (std::int32_t at = 0; at < static_cast<std::int32_t>(channels); ++at) {
            Lane lane{.top = at * kHeight / 5, .height = kHeight / 5};
            const std::int32_t away = some(6) == 0 ? 100000 : 0;
            lane.zeroRow = lane.top + some(60) - (some(2) == 0 ? away : -away);
            lane.unitsPerDivision = 20.0 + some(100);
            lane.negativeUp = round % 3 == 0;
            lane.clip = clip;
            lane.single = true;
            lane.channels = {order[static_cast<std::size_t>(at)]};
            noise.lanes.push_back(lane);
        }
        for (std::int32_t at = some(900); at < noise.block.sampleCount; at += some(900))
            noise.block.marks.push_back({at, {}});
        noise.axis.SelectZoom(some(8));
        GraphScene scene = noise.Scene();
        scene.gridStyle = static_cast<GridStyle>(round % 3);
        scene.gridColor = 0x4080C0;
        scene.look = {round % 4 < 2 ? &kLightColors : &kDarkColors, 1 + round % 7};
        const std::int32_t beyond = scene.look.lineWidth / 2;
        GraphPicture scrolled, anew, plain;
        Image image(static_cast<std::size_t>(kTraceWidth * kHeight)), expected(image.size()), without(image.size());
        for (const auto& [picture, pixels] : {std::pair{&scrolled, &image}, {&anew, &expected}, {&plain, &without}})
            picture->SetPixels(pixels->data(), kTraceWidth, kHeight);
        // Texts of marks lie over the traces.
        constexpr std::uint32_t textColor = 0x123456;
        const auto isText = [&](std::int32_t column) { return (noise.axis.FirstColumn() + column) % 40 < 9; };
        const auto drawTexts = [&](Image& pixels) {
            return [&](const GraphScene&, std::int32_t from, std::int32_t to) {
                for (std::int32_t column = from; column < to; ++column) {
                    for (std::size_t row = 0; isText(column) && row < 14; ++row)
                        pixels[row * kTraceWidth + static_cast<std::size_t>(column)] = textColor;
                }
            };
        };
        scrolled.onMarkTexts = drawTexts(image);
        anew.onMarkTexts = drawTexts(expected);
        plain.onMarkTexts = drawTexts(without);
        scrolled.Draw(scene);
        for (int step = 0; step < 4; ++step) {
            for (const GraphBand which : {GraphBand::Selection, GraphBand::Cursor, GraphBand::Play}) {
                std::optional<ColumnBand> band;
                if (const std::int32_t left = some(kTraceWidth + 20) - 10; some(4) != 0)
                    band = {left, left + some(kTraceWidth)};
                scrolled.SetBand(which, band);
                anew.SetBand(which, band);
            }
            scrolled.Scroll(scene, noise.axis.ScrollBy(some(700) - 350));
            anew.Draw(scene);
            ASSERT_TRUE(image == expected) << round;
            // A band that is removed is erased completely.
            for (const GraphBand which : {GraphBand::Play, GraphBand::Selection, GraphBand::Cursor})
                scrolled.SetBand(which, {});
            plain.Draw(scene);
            ASSERT_TRUE(image == without) << round;
            for (std::int32_t column = 0; column < kTraceWidth; ++column)
                ASSERT_TRUE(!isText(column) || image[static_cast<std::size_t>(5 * kTraceWidth + column)] == textColor);
        }
        if (noise.axis.Visible().count < 1) continue;
        for (std::size_t at = 0; at < channels; ++at) {
            const Lane& lane = noise.lanes[at];
            const std::uint32_t color = scene.Colors().Trace(static_cast<std::int16_t>(lane.channels[0] - 1));
            // Noise from 0 to 99.
            const auto [low, high] = std::minmax({lane.RowOf(0.0), lane.RowOf(99.0)});
            std::size_t pixels = 0;
            for (std::int32_t row = 0; row < kHeight; ++row) {
                const auto* const from = image.data() + static_cast<std::ptrdiff_t>(row) * kTraceWidth;
                const auto found = static_cast<std::size_t>(std::count(from, from + kTraceWidth, color));
                pixels += found;
                if (found == 0) continue;
                ASSERT_TRUE(row >= low - 1.5 - beyond && row <= high + 1.5 + beyond) << "at the rows of its values";
                ASSERT_TRUE(!clip || (row >= lane.top && row < lane.End()));
            }
            const bool outside = high < lane.top - 1 || low > lane.End() + 1;
            const auto all = scrolled.Arrows(96);
            const auto arrow =
                std::find_if(all.begin(), all.end(), [&](const EdgeArrow& each) { return each.color == color; });
            if (outside) {
                ASSERT_TRUE(arrow != all.end());
                for (const DevicePoint& corner : arrow->corners)
                    ASSERT_TRUE(corner.y >= lane.top && corner.y < lane.End());
                ASSERT_EQ(arrow->corners[0].y < arrow->corners[1].y, high < lane.top) << "it points to the trace";
                ++arrows;
            } else if (low > lane.top + 1 && high < lane.End() - 1) {
                ASSERT_TRUE(arrow == all.end() && pixels > 0);
            }
        }
    }
    EXPECT_GT(arrows, 20U);
}

/// Drawn in slices and scrolled meanwhile it is in the end what it is drawn at once, with bands; a slice reads little.
TEST(GraphPicture, DrawnInSlicesItIsWhatItIsDrawnAtOnce) {
    std::mt19937 random(6);
    const auto some = [&](std::int32_t below) { return static_cast<std::int32_t>(random() % 65536) % below; };
    int slices = 0;
    for (int round = 0; round < 150; ++round) {
        Noise noise(2);
        auto& source = static_cast<FakeBlock&>(*noise.block.block);
        source.offersExtremes = round % 5 != 0;
        source.pieceSamples = 1 + some(15000);
        noise.axis.SelectZoom(some(10));
        noise.axis.ScrollBy(some(500));
        GraphPicture sliced;
        Image image(static_cast<std::size_t>(kTraceWidth * kHeight));
        sliced.SetPixels(image.data(), kTraceWidth, kHeight);
        sliced.SetPatience(std::chrono::milliseconds(0));
        sliced.SetBand(GraphBand::Selection, ColumnBand{50, 200});
        sliced.SetBand(GraphBand::Cursor, ColumnBand{120, 120});
        GraphScene scene = noise.Scene();
        scene.look.lineWidth = 1 + round % 7;
        sliced.Draw(scene);
        for (int slice = 0; sliced.IsIncomplete(); ++slice) {
            ASSERT_LT(slice, 3000);
            source.samplesRead = 0;
            const double before = sliced.MissingShare();
            const auto drawn = sliced.DrawMore(scene);
            EXPECT_EQ(drawn.has_value(), sliced.MissingShare() < before);
            // 16 units or pieces, the columns beside the drawn ones, and one sample per channel to begin with.
            const std::int64_t most = 16 * std::max(source.pieceSamples, ExtremesCache::kCoarseCell);
            EXPECT_LE(source.samplesRead, 2 * (most + (6 + scene.look.lineWidth) * noise.axis.SamplesPerPixel() + 2));
            // Not for ever: where a slice draws a column or two, scrolling uncovers more.
            if (slice < 100 && some(8) == 0) sliced.Scroll(scene, noise.axis.ScrollBy(some(400) - 200));
            ++slices;
        }
        GraphPicture anew;
        Image expected(image.size());
        anew.SetPixels(expected.data(), kTraceWidth, kHeight);
        anew.SetBand(GraphBand::Selection, ColumnBand{50, 200});
        anew.SetBand(GraphBand::Cursor, ColumnBand{120, 120});
        anew.Draw(scene);
        ASSERT_TRUE(image == expected) << round;
        EXPECT_EQ(sliced.Arrows(96).size(), anew.Arrows(96).size());
    }
    EXPECT_GT(slices, 50);
}

/// A wide line is the line of one pixel at every place of a square, also in a part of the image and within limits.
TEST(TraceCanvas, AWideLineIsTheUnionOfShiftedOnes) {
    std::mt19937 random(14);
    constexpr std::int32_t width = 90, height = 70, beside = 8;
    const std::uint32_t color = 1;
    for (int round = 0; round < 300; ++round) {
        const std::int32_t lineWidth = 2 + round % 6;
        const auto reach = static_cast<std::int32_t>(1 + random() % 90);
        std::vector<DevicePoint> points{{-beside, 35}};
        while (points.back().x < width + beside) {
            const auto rise = static_cast<std::int32_t>(random() % 65536) % reach - reach / 2;
            const bool level = random() % 12 == 0;
            points.push_back({points.back().x + static_cast<std::int32_t>(random() % 2) + (level ? 5 : 0),
                              level ? points.back().y : points.back().y + rise});
        }
        const bool dots = round % 3 == 0;
        const auto draw = [&](TraceCanvas& canvas, const std::vector<DevicePoint>& trace) {
            if (dots) canvas.DrawDots(trace, 1);
            canvas.Draw(trace, 1);
        };
        const auto from = static_cast<std::int32_t>(random() % 40);
        const auto to = from + 1 + static_cast<std::int32_t>(random() % 50);
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height)), expected(pixels.size());
        TraceCanvas wide;
        wide.Reset(from, to, height, lineWidth);
        wide.Limit(10, 60);
        draw(wide, points);
        wide.Compose(pixels.data(), width, {&color, 1});
        TraceCanvas thin;
        thin.Reset(from, to, height);
        thin.Limit(10, 60);
        for (std::int32_t right = -(lineWidth - 1) / 2; right <= lineWidth / 2; ++right) {
            for (std::int32_t down = -(lineWidth - 1) / 2; down <= lineWidth / 2; ++down) {
                std::vector<DevicePoint> moved = points;
                for (DevicePoint& point : moved) point = {point.x + right, point.y + down};
                draw(thin, moved);
            }
        }
        thin.Compose(expected.data(), width, {&color, 1});
        ASSERT_TRUE(pixels == expected) << round;
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
        canvas.Reset(from, width, height, 1 + round % 5);
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

TEST(InvertLightness, ShiftsEveryPartByTheSameAndIsItsOwnInverse) {
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
