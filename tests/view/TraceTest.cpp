#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <random>

#include "nsp/NspExtrema.h"
#include "support/FakeRecording.h"
#include "view/DataRange.h"
#include "view/QL_ChUtils.h"
#include "view/TraceMapping.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using namespace ::quillon::testing;

std::vector<TracePoint> Trace(std::vector<std::int16_t> samples, std::int32_t samplesPerPixel) {
    FakeBlock block;
    const auto count = static_cast<std::int32_t>(samples.size());
    block.samples = {std::move(samples)};
    std::vector<std::int16_t> work;
    std::vector<TracePoint> points;
    DrawChannelTrace(block, 1, 0, count, samplesPerPixel, work, points);
    return points;
}

std::vector<std::int32_t> Heights(const std::vector<TracePoint>& points) {
    std::vector<std::int32_t> heights;
    for (std::size_t at = 0; at < points.size(); ++at) {
        EXPECT_EQ(points[at].x, static_cast<std::int32_t>(at));
        heights.push_back(points[at].y);
    }
    return heights;
}

TEST(DrawChannelTrace, DrawsTheExtremesOfEveryRunInTheirOrder) {
    // Runs of three start at 1, 4 and 7; ten samples leave no tail, eleven a tail of one.
    EXPECT_THAT(Heights(Trace({0, 5, 1, 3, 2, 9, 4, 7, 7, 7}, 3)), ElementsAre(0, 5, 1, 2, 9, 7, 7));
    EXPECT_THAT(Heights(Trace({0, 5, 1, 3, 2, 9, 4, 7, 7, 7, -8}, 3)), ElementsAre(0, 5, 1, 2, 9, 7, 7, -8, -8));
    // The minimum at the same place as the maximum, or after it: the maximum first.
    EXPECT_THAT(Heights(Trace({0, 4, 4, 1, 1}, 4)), ElementsAre(0, 4, 1));
    EXPECT_THAT(Heights(Trace({0, 1, 4, 4, 1}, 4)), ElementsAre(0, 1, 4));
    // Fewer samples than a run: one shorter run.
    EXPECT_THAT(Heights(Trace({3, -1, 6}, 1000)), ElementsAre(3, -1, 6));
}

TEST(DrawChannelTrace, DrawsEverySampleAtOneOrTwoPerPixel) {
    EXPECT_THAT(Heights(Trace({3, 1, 2, 9}, 1)), ElementsAre(3, 1, 2, 9));
    EXPECT_THAT(Heights(Trace({3, 1, 2, 9}, 2)), ElementsAre(3, 1, 2, 9));
    EXPECT_THAT(Heights(Trace({3}, 1)), ElementsAre(3));
    EXPECT_THAT(Heights(Trace({3}, 5)), ElementsAre(3));
    EXPECT_TRUE(Trace({}, 5).empty());
}

/// Signals of few values, so that ties are common, with stretches that do not change.
std::vector<std::vector<std::int16_t>> TiedSignals(std::mt19937& random, int channels, int count) {
    std::vector<std::vector<std::int16_t>> signals(static_cast<std::size_t>(channels));
    for (auto& signal : signals) {
        for (int at = 0; at < count; ++at) {
            const bool still = at % 1000 > 300 && at % 1000 < 700;
            signal.push_back(still ? signal.back() : static_cast<std::int16_t>(random() % 7));
        }
    }
    return signals;
}

/// The one-pass way, the cache and the reading of every sample give the same points, whatever the order of views, in a
/// block that reduces runs itself, one that does not and one that fails; a part is what the whole has there.
TEST(TraceReader, EqualsTheSampleBySampleWay) {
    std::mt19937 random(5);
    FakeBlock block;
    constexpr int samples = 250123;
    block.samples = TiedSignals(random, 3, samples);
    const std::vector<std::int16_t> channels{3, 1};
    std::vector<std::int16_t> work;
    std::vector<TracePoint> expected;
    TraceReader reader;
    for (int round = 0; round < 400; ++round) {
        constexpr std::array<std::int32_t, 10> steps{1, 2, 5, 50, 100, 200, 500, 1000, 10000, 20000};
        const std::int32_t perPixel = steps[random() % steps.size()];
        const auto columns = static_cast<unsigned>(samples / perPixel);
        const auto first = static_cast<std::int32_t>(random() % (columns + 1)) * perPixel;
        const auto width = static_cast<std::int32_t>(1 + random() % std::min(columns + 5, 800U));
        const std::int32_t count = std::min(width * perPixel, samples - first);
        if (count < 1) continue;
        block.offersExtremes = round % 3 != 0;
        block.failing = round % 7 == 0 ? std::vector<std::string>{"ColumnExtremes"} : std::vector<std::string>{};
        TraceStretch stretch{first, count, perPixel};
        if (round % 2 == 0) {
            stretch.fromColumn = static_cast<std::int32_t>(random() % static_cast<unsigned>(width));
            stretch.toColumn = stretch.fromColumn + 1 + static_cast<std::int32_t>(random() % 50);
        }
        reader.Read(block, channels, stretch);
        ASSERT_EQ(reader.points().size(), 2U);
        for (std::size_t at = 0; at < 2; ++at) {
            SCOPED_TRACE(::testing::Message() << first << ' ' << count << ' ' << perPixel << ' ' << stretch.fromColumn);
            DrawChannelTrace(block, channels[at], first, count, perPixel, work, expected);
            const auto& points = reader.points()[at];
            if (round % 2 != 0) {
                ASSERT_EQ(points, expected);
                continue;
            }
            // Every point of the part's columns, and nothing that is not in the whole but the first, outer point.
            const std::int32_t unitsPerColumn = perPixel == 1 ? 1 : 2;
            std::size_t in = 0;
            for (const TracePoint& point : expected) {
                const bool wanted =
                    point.x >= stretch.fromColumn * unitsPerColumn && point.x <= stretch.toColumn * unitsPerColumn;
                while (in < points.size() && points[in].x < point.x) ++in;
                if (wanted) {
                    ASSERT_TRUE(in < points.size() && points[in] == point);
                }
                if (in > 0 && in < points.size() && points[in].x == point.x) {
                    ASSERT_EQ(points[in], point);
                }
            }
            ASSERT_LE(points.size(), static_cast<std::size_t>(stretch.toColumn - stretch.fromColumn + 6) * 2);
        }
    }
    block.failing = {"ReadCodes", "ColumnExtremes"};
    reader.Read(block, channels, {0, 100, 5});
    EXPECT_TRUE(reader.points()[0].empty()) << "what cannot be read is not drawn with old samples";
}

TEST(ExtremesCache, EqualsTheBlockWithinItsMemoryAndReadsNothingTwice) {
    std::mt19937 random(6);
    FakeBlock block;
    constexpr int samples = 1200345;
    block.samples = TiedSignals(random, 2, samples);
    const std::vector<std::int16_t> channels{2, 1};
    // Room for four chunks of both channels.
    constexpr std::size_t limit = std::size_t{4} * 2 * 1000 * sizeof(RunExtremes) + 2000;
    ExtremesCache cache(limit);
    const auto check = [&](std::int32_t first, std::int32_t count, std::int32_t run) {
        const auto runs = static_cast<std::size_t>((count + run - 1) / run);
        std::vector<RunExtremes> actual(runs * 2);
        std::vector<RunExtremes> expected(runs * 2);
        const std::vector<RunExtremes*> out{actual.data(), actual.data() + runs};
        const std::vector<RunExtremes*> expectedOut{expected.data(), expected.data() + runs};
        ASSERT_TRUE(cache.ColumnExtremes(block, channels, first, count, run, out));
        block.ColumnExtremes(channels, first, count, run, expectedOut);
        ASSERT_TRUE(actual == expected) << first << ' ' << count << ' ' << run;
        ASSERT_LE(cache.Bytes(), limit);
    };
    for (int round = 0; round < 300; ++round) {
        constexpr std::array<std::int32_t, 7> runs{100, 200, 500, 2000, 10000, 50000, 1000000};
        const std::int32_t run = runs[random() % runs.size()];
        const std::int32_t first = static_cast<std::int32_t>(random() % (samples / 100)) * 100 + 1;
        if (!ExtremesCache::Serves(first, run)) continue;
        const auto count = static_cast<std::int32_t>(1 + random() % static_cast<unsigned>(samples - first));
        check(first, round % 3 == 0 ? samples - first : count, run);
    }
    EXPECT_FALSE(ExtremesCache::Serves(1, 50));
    EXPECT_FALSE(ExtremesCache::Serves(51, 100));

    ExtremesCache roomy;
    std::vector<RunExtremes> out(12100);
    const std::vector<RunExtremes*> targets{out.data()};
    const std::vector<std::int16_t> one{1};
    ASSERT_TRUE(roomy.ColumnExtremes(block, one, 1, samples - 1, 200, targets));
    // 2.5 % of the samples that the cells stand for.
    EXPECT_LE(roomy.Bytes(), samples * 2 / 40);
    block.failing = {"ColumnExtremes", "ReadCodes"};
    EXPECT_TRUE(roomy.ColumnExtremes(block, one, 500001, 600000, 500, targets)) << "nothing is read again";
    EXPECT_TRUE(roomy.ColumnExtremes(block, one, 1, samples - 1, 10000, targets));
    roomy.Reset();
    EXPECT_THROW(roomy.ColumnExtremes(block, one, 1, 200, 100, targets), std::exception);
}

/// A block as long as the contract allows, silent but for its last sample.
class LongestBlock : public FakeBlock {
  public:
    static constexpr std::int32_t kSamples = 2147483647;
    std::int32_t SampleCount() const override { return kSamples; }
    std::int16_t ChannelCount() const override { return 1; }
    std::int32_t ReadCodes(std::int16_t, std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        if (first < 0 || count < 0 || std::int64_t{first} + count > kSamples) throw std::out_of_range("samples");
        std::fill_n(buffer, count, std::int16_t{0});
        if (first + count == kSamples && count > 0) buffer[count - 1] = 9;
        return 0;
    }
    bool ColumnExtremes(std::span<const std::int16_t>, std::int32_t first, std::int32_t count, std::int32_t run,
                        std::span<RunExtremes* const> out) override {
        if (first < 0 || count < 0 || std::int64_t{first} + count > kSamples) throw std::out_of_range("samples");
        const std::int32_t runs = count / run + (count % run != 0 ? 1 : 0);
        std::fill_n(out[0], runs, RunExtremes{});
        if (first + count == kSamples) out[0][runs - 1] = {0, 9};
        return true;
    }
};

TEST(ExtremesCache, ReachesTheEndOfTheLongestBlock) {
    LongestBlock block;
    const std::vector<std::int16_t> channels{1};
    TraceReader reader;
    for (const std::int32_t perPixel : {1, 50, 100, 2000}) {
        const std::int32_t first = LongestBlock::kSamples / perPixel * perPixel - 900 * perPixel;
        reader.Read(block, channels, {first, LongestBlock::kSamples - first, perPixel});
        ASSERT_FALSE(reader.points()[0].empty()) << perPixel;
        EXPECT_EQ(reader.points()[0].back().y, 9) << perPixel;
    }
}

TEST(TraceColor, IsLegibleOnWhiteAndRepeatsEverySixteenChannels) {
    const auto linear = [](std::uint32_t part) {
        const double share = part / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    for (std::int16_t number = 0; number < kTraceColors; ++number) {
        const std::uint32_t rgb = TraceColor(number);
        const double luminance =
            0.2126 * linear(rgb >> 16 & 255) + 0.7152 * linear(rgb >> 8 & 255) + 0.0722 * linear(rgb & 255);
        EXPECT_GE(1.05 / (luminance + 0.05), 3.0) << number;
        EXPECT_EQ(TraceColor(static_cast<std::int16_t>(number + 16)), rgb);
    }
}

/// Device row of a code, as an anisotropic mapping computes it.
double RowOf(const TraceMapping& mapping, double code) {
    return mapping.viewportOriginY + (code - mapping.windowOriginY) * mapping.viewportExtentY / mapping.windowExtentY;
}

TEST(MapTrace, PutsValuesAtTheirRows) {
    // value = code x scale + offset; a division is 40 rows; larger values go up.
    for (const float scale : {0.5F, -0.5F, 0.001F, 3.0F, 20.0F}) {
        for (const float zoom : {0.001F, 0.5F, 10.0F, 1000.0F}) {
            TraceGeometry geometry;
            geometry.zeroRow = 200;
            geometry.unitsPerDivision = zoom;
            const TraceMapping mapping = MapTrace(geometry, 1.0F / scale, 2.0F);
            if (mapping.flat) continue;
            const double codesPerPixel = std::fabs(static_cast<double>(zoom / scale / 40.0F));
            for (const int code : {0, 100, -100}) {
                const double rows = -40.0 * (code * static_cast<double>(scale)) / static_cast<double>(zoom) +
                                    std::nearbyint(static_cast<double>(-40.0F * 2.0F / zoom));
                // Extents are whole numbers of at most 32000: half a unit of the smaller one is the error.
                const double tolerance =
                    std::fabs(rows) * (codesPerPixel > 1.0 ? codesPerPixel : 1 / codesPerPixel) / 64000 + 0.01;
                EXPECT_NEAR(RowOf(mapping, code), 200 + rows, tolerance) << scale << ' ' << zoom << ' ' << code;
            }
        }
    }
}

TEST(MapTrace, KeepsExtentsInsideSixteenBitsAndEndsInAStraightLine) {
    TraceGeometry geometry;
    const auto map = [&](float zoom, float invScale) {
        geometry.unitsPerDivision = zoom;
        return MapTrace(geometry, invScale, 0.0F);
    };
    EXPECT_EQ(map(40.0F, 1.0F).windowExtentY, -32000);  // one code per pixel
    EXPECT_EQ(map(40.0F, 1.0F).viewportExtentY, 32000);
    EXPECT_EQ(map(40.0F, 0.5F).windowExtentY, -16000);
    EXPECT_EQ(map(40.0F, 4.0F).viewportExtentY, 8000);
    EXPECT_EQ(map(40.0F, -4.0F).viewportExtentY, -8000);
    EXPECT_EQ(map(40.0F, 1e-9F).windowExtentY, -1) << "rounds to 0: the sign stands for it";
    EXPECT_EQ(map(40.0F, -1e-9F).windowExtentY, 1);
    EXPECT_FALSE(map(40.0F, 31999.0F).flat);
    EXPECT_TRUE(map(40.0F, 32000.0F).flat);
    EXPECT_TRUE(map(40.0F, 1e9F).flat);
    EXPECT_TRUE(map(40.0F, 0.0F).flat) << "a channel without a scale";
    geometry.samplesPerPixel = 1;
    EXPECT_EQ(map(40.0F, 1.0F).windowExtentX, 1);
    geometry.samplesPerPixel = 2;
    EXPECT_EQ(map(40.0F, 1.0F).windowExtentX, 2);
    geometry.rawCodes = true;
    const TraceMapping raw = MapTrace(geometry, 123.0F, 9.0F);
    EXPECT_NEAR(RowOf(raw, 1000), -1.0, 0.01) << "1000 codes to a unit, 40 units to 40 rows";
    EXPECT_EQ(raw.viewportOriginY, 0);
}

/// Folding moves the origin into 16 bits without moving the picture.
TEST(MapTrace, FoldingKeepsEveryRow) {
    for (const float invScale : {0.3F, -0.3F, 2.0F, -2.0F, 400.0F}) {
        for (const std::int32_t zeroRow : {-200000, -33000, 100, 32767, 32768, 70001, 5000000}) {
            for (const float base : {0.0F, 900.0F, -900.0F}) {
                TraceGeometry geometry;
                geometry.unitsPerDivision = 1.0F;
                geometry.zeroRow = zeroRow;
                const TraceMapping plain = MapTrace(geometry, invScale, base);
                geometry.foldOrigin = true;
                const TraceMapping folded = MapTrace(geometry, invScale, base);
                EXPECT_LT(std::abs(folded.viewportOriginY), 32768);
                for (const int code : {0, 1000, -32768}) {
                    EXPECT_NEAR(RowOf(folded, code), RowOf(plain, code), 1e-3)
                        << invScale << ' ' << zeroRow << ' ' << base;
                }
            }
        }
    }
}

TEST(RangeOf, TakesTheShownChannelsInTheirUnits) {
    FakeBlock source;
    source.samples = {{1, -7, 3, 4}, {10, 20, 30, 40}};
    ViewBlock block;
    block.block = std::make_shared<FakeBlock>(source);
    block.sampleCount = 4;
    block.channelNumbers = {0, 1};
    block.invScale = {2.0F, -1.0F};
    block.offsets = {1.0F, 0.0F};
    ChannelSlots slots;
    for (const bool onePass : {true, false}) {
        static_cast<FakeBlock&>(*block.block).offersExtremes = onePass;
        slots[1].shown = true;
        EXPECT_EQ(RangeOf(block, slots, {2, 3})->minimum, -30.0F);
        EXPECT_EQ(RangeOf(block, slots, {2, 3})->maximum, 2.5F);
        slots[1].shown = false;
        EXPECT_EQ(RangeOf(block, slots, {1, 4})->minimum, -2.5F);
        EXPECT_EQ(RangeOf(block, slots, {1, 4})->maximum, 3.0F);
    }
    EXPECT_FALSE(RangeOf(block, slots, {1, 0}).has_value());

    // Records are read once per channel, and kept.
    slots[1].shown = true;
    RangeRecords records;
    EXPECT_EQ(records.OfShown(block, slots)->minimum, -40.0F);
    static_cast<FakeBlock&>(*block.block).failing = {"ReadCodes", "ColumnExtremes"};
    EXPECT_EQ(records.OfShown(block, slots)->minimum, -40.0F);
    slots[1].shown = false;
    EXPECT_EQ(records.OfShown(block, slots)->minimum, -2.5F);
    records.Reset();
    EXPECT_FALSE(records.OfShown(block, slots).has_value());
    static_cast<FakeBlock&>(*block.block).failing.clear();
    // A scale so large that values overflow: no range, and Find Data leaves the scale alone.
    block.invScale = {1e-36F, 0.0F};
    const std::optional<ValueRange> finite = RangeOf(block, slots, {1, 4});
    EXPECT_TRUE(!finite || (std::isfinite(finite->minimum) && std::isfinite(finite->maximum)));
    block.invScale = {2.0F, -1.0F};

    // A block too long to be read at once: its first and last samples count, and only stretches of it are read.
    auto& fake = static_cast<FakeBlock&>(*block.block);
    fake.samples = {std::vector<std::int16_t>(9000000, 0)};
    fake.samples[0].front() = -50;
    fake.samples[0].back() = 70;
    block.channelNumbers = {0};
    block.channelCount = 1;
    block.sampleCount = 9000000;
    EXPECT_EQ(TypicalRange(block, slots)->minimum, -24.0F);
    EXPECT_EQ(TypicalRange(block, slots)->maximum, 36.0F);
    fake.samples[0][20000] = 1000;
    EXPECT_EQ(TypicalRange(block, slots)->maximum, 36.0F);
    EXPECT_EQ(RangeOf(block, slots, {1, 9000000})->maximum, 501.0F);
}

}  // namespace
}  // namespace quillon
