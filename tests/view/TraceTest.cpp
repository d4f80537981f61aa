#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "support/FakeRecording.h"
#include "view/AmplitudeScale.h"
#include "view/QL_ChUtils.h"
#include "view/TraceMapping.h"
#include "view/TraceSides.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

TEST(DrawChannelTrace, DrawsTheExtremesOfEveryRunInTheirOrder) {
    FakeBlock block;
    block.samples = {{0, 5, 1, 3, 2, 9, 4, 7, 7, 7, -8}};
    std::vector<std::int16_t> work;
    std::vector<TracePoint> points;
    // Runs of three start at 1, 4 and 7; a tail of one is left.
    DrawChannelTrace(block, 1, 0, 11, 3, work, points);
    EXPECT_EQ(points,
              (std::vector<TracePoint>{{0, 0}, {1, 5}, {2, 1}, {3, 2}, {4, 9}, {5, 7}, {6, 7}, {7, -8}, {8, -8}}));
    DrawChannelTrace(block, 1, 1, 3, 2, work, points);
    EXPECT_EQ(points, (std::vector<TracePoint>{{0, 5}, {1, 1}, {2, 3}})) << "every sample";
}

/// Signals of few values, so that ties are common, with stretches that do not change.
std::vector<std::vector<std::int16_t>> TiedSignals(std::mt19937& random, std::size_t channels, int count) {
    std::vector<std::vector<std::int16_t>> signals(channels);
    for (auto& signal : signals)
        for (int at = 0; at < count; ++at)
            signal.push_back(at % 1000 > 600 ? signal.back() : static_cast<std::int16_t>(random() % 7));
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
    ExtremesCache cache;
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
        TraceStretch stretch{{first, count}, perPixel};
        if (round % 2 == 0) {
            stretch.fromColumn = static_cast<std::int32_t>(random() % static_cast<unsigned>(width));
            stretch.toColumn = stretch.fromColumn + 1 + static_cast<std::int32_t>(random() % 50);
        }
        reader.Read(block, cache, channels, stretch);
        ASSERT_EQ(reader.points().size(), 2U);
        for (std::size_t at = 0; at < 2; ++at) {
            SCOPED_TRACE(::testing::Message() << first << ' ' << count << ' ' << perPixel << ' ' << stretch.fromColumn);
            DrawChannelTrace(block, channels[at], first, count, perPixel, work, expected);
            const auto& points = reader.points()[at];
            const std::int64_t unitsPerColumn = perPixel == 1 ? 1 : 2;
            if (points.empty()) {
                ASSERT_LT(expected.back().x, stretch.fromColumn * unitsPerColumn);
                continue;
            }
            // Every point of the part's columns, and nothing that is not in the whole but the first, outer point.
            const std::int32_t left = points.front().x;
            ASSERT_TRUE(left == 0 || left < stretch.fromColumn * unitsPerColumn);
            ASSERT_GE(points.back().x, std::min<std::int64_t>(stretch.toColumn * unitsPerColumn, expected.back().x));
            ASSERT_LE(points.back().x - left, (std::int64_t{stretch.toColumn} - stretch.fromColumn + 6) * 2);
            for (std::size_t in = left == 0 ? 0 : 1; in < points.size(); ++in)
                ASSERT_EQ(points[in], expected.at(static_cast<std::size_t>(left) + in));
        }
    }
    block.failing = {"ReadCodes", "ColumnExtremes"};
    reader.Read(block, cache, channels, {{0, 100}, 5});
    EXPECT_TRUE(reader.points()[0].empty()) << "what cannot be read is not drawn with old samples";
}

TEST(TraceReader, ATraceEndsWhereItCannotBeReadOn) {
    FakeBlock block;
    block.holeFrom = 250000;
    block.samples = {std::vector<std::int16_t>(6000000, 3)};
    const std::vector<std::int16_t> channels{1};
    for (int round = 0; round < 6; ++round) {
        const std::int32_t perPixel = std::array{1, 5, 100}[static_cast<std::size_t>(round % 3)];
        // A file that was cut, then one with a single bad place.
        block.holeTo = round < 3 ? 6000000 : 250001;
        // The last stretch ends before the cut, but not before that of the chunk which the cache would read.
        for (const std::int32_t count : {300000, perPixel == 1 ? 300000 : 6000000, 240000}) {
            block.offersExtremes = count > 300000 || perPixel > 5;
            TraceReader reader;
            ExtremesCache cache;
            reader.Read(block, cache, channels, {{0, count}, perPixel});
            const auto readable = static_cast<std::size_t>(std::min(count, 250000));
            const auto run = static_cast<std::size_t>(perPixel);
            EXPECT_EQ(reader.points()[0].size(), perPixel == 1 ? readable : 3 + (readable - 2) / run * 2);
            EXPECT_EQ(reader.Failure(), count > 250000 ? "hole" : "") << count << ' ' << perPixel;
        }
    }
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
    for (int round = 0; round < 300; ++round) {
        constexpr std::array<std::int32_t, 7> lengths{100, 200, 500, 2000, 10000, 50000, 1000000};
        const std::int32_t run = lengths[random() % lengths.size()];
        const std::int32_t first = static_cast<std::int32_t>(random() % (samples / 100)) * 100 + 1;
        if (!ExtremesCache::Serves(first, run)) continue;
        std::int32_t count = samples - first;
        if (round % 3 != 0) count = static_cast<std::int32_t>(1 + random() % static_cast<unsigned>(count));
        const auto runs = static_cast<std::size_t>((count + run - 1) / run);
        std::vector<RunExtremes> actual(runs * 2);
        std::vector<RunExtremes> expected(runs * 2);
        const std::vector<RunExtremes*> out{actual.data(), actual.data() + runs};
        const std::vector<RunExtremes*> expectedOut{expected.data(), expected.data() + runs};
        ASSERT_TRUE(cache.ColumnExtremes(block, channels, first, count, run, out));
        block.ColumnExtremes(channels, first, count, run, expectedOut);
        ASSERT_TRUE(actual == expected) << first << ' ' << count << ' ' << run;
        ASSERT_LE(cache.Bytes(), limit);
    }

    ExtremesCache roomy;
    std::vector<RunExtremes> out(12100);
    const std::vector<RunExtremes*> targets{out.data()};
    const std::vector<std::int16_t> one{1};
    ASSERT_TRUE(roomy.ColumnExtremes(block, one, 1, samples - 1, 200, targets));
    EXPECT_LE(roomy.Bytes(), samples * 2 / 40) << "2.5 % of the samples that the cells stand for";
    block.failing = {"ColumnExtremes", "ReadCodes"};
    EXPECT_TRUE(roomy.ColumnExtremes(block, one, 500001, 600000, 500, targets)) << "nothing is read again";
    EXPECT_TRUE(roomy.ColumnExtremes(block, one, 1, samples - 1, 10000, targets));
    // A summary of the whole block evicts nothing that a view has read.
    ExtremesCache full(limit);
    block.failing.clear();
    block.pieceSamples = 10000;
    ASSERT_TRUE(full.ColumnExtremes(block, one, 1, 100000, 100, targets));
    const SampleSpan all{1, samples - 1};
    while (full.KnownTo(block, one, all, 10000) < samples)
        ASSERT_TRUE(full.Fill(block, one, all, 10000, ExtremesCache::Eviction::Never));
    block.failing = {"ColumnExtremes", "ReadCodes"};
    EXPECT_TRUE(full.ColumnExtremes(block, one, 1, 100000, 100, targets));
    roomy.Reset();
    EXPECT_THROW(roomy.ColumnExtremes(block, one, 1, 200, 100, targets), std::exception);
}

/// A block as long as the contract allows, 0 but for its last sample.
struct LongestBlock : FakeBlock {
    static constexpr std::int32_t kSamples = 2147483647;
    std::int32_t SampleCount() const override { return kSamples; }
    std::int32_t ReadCodes(std::int16_t, std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        std::fill_n(buffer, count, std::int16_t{0});
        if (first + count == kSamples) buffer[count - 1] = 9;
        return 0;
    }
    bool ColumnExtremes(std::span<const std::int16_t>, std::int32_t first, std::int32_t count, std::int32_t run,
                        std::span<RunExtremes* const> out) override {
        const std::int32_t last = (count - 1) / run;
        std::fill_n(out[0], last + 1, RunExtremes{});
        if (first + count == kSamples) out[0][last] = {0, 9};
        return true;
    }
};

TEST(TraceReader, ReachesTheEndOfTheLongestBlock) {
    LongestBlock block;
    block.samples.resize(1);
    const std::vector<std::int16_t> channels{1};
    TraceReader reader;
    ExtremesCache cache;
    for (const std::int32_t perPixel : {1, 50, 100, 2000}) {
        const std::int32_t first = LongestBlock::kSamples / perPixel * perPixel - 900 * perPixel;
        reader.Read(block, cache, channels, {{first, LongestBlock::kSamples - first}, perPixel});
        ASSERT_FALSE(reader.points()[0].empty()) << perPixel;
        EXPECT_EQ(reader.points()[0].back().y, 9) << perPixel;
    }
}

/// Device row of a code, as an anisotropic mapping computes it.
double RowOf(const TraceMapping& mapping, double code) {
    return mapping.viewportOriginY + (code - mapping.windowOriginY) * mapping.viewportExtentY / mapping.windowExtentY;
}

TEST(MapTrace, PutsWhatIsSeenAtItsRowWhateverScaleOffsetZoomAndOrigin) {
    std::mt19937 random(21);
    const auto power = [&](double from, double to) {
        const double magnitude = std::pow(10.0, std::uniform_real_distribution<double>(from, to)(random));
        return random() % 2 == 0 ? magnitude : -magnitude;
    };
    constexpr int height = 600;
    int seen = 0;
    for (int round = 0; round < 200000; ++round) {
        const auto invScale = static_cast<float>(1.0 / power(-6, 4));
        const auto base = static_cast<float>(round % 4 == 0 ? 0.0 : power(-3, 8));
        AmplitudeScale amplitude;
        amplitude.SetGraph(height, height / 2);
        amplitude.SelectScale(static_cast<int>(random() % AmplitudeScale::kScaleCount));
        // The base line where Find Data would put it for values around that of some code, or anywhere.
        const auto code = static_cast<int>(random() % 65536) - 32768;
        const double unit = 1.0 / static_cast<double>(invScale);
        const double rowsPerUnit = 40.0 / amplitude.UnitsPerDivision();
        const double wanted = (code * unit + static_cast<double>(base)) * rowsPerUnit;
        amplitude.MoveBaseLine(round % 3 == 0 ? static_cast<std::int64_t>(power(0, 9))
                                              : static_cast<std::int64_t>(wanted) + static_cast<int>(random() % 300));
        TraceGeometry geometry{
            .zeroRow = amplitude.ZeroRow(), .height = height, .unitsPerDivision = amplitude.UnitsPerDivision()};
        const TraceMapping plain = MapTrace(geometry, invScale, base);
        geometry.foldOrigin = true;
        const TraceMapping folded = MapTrace(geometry, invScale, base);
        ASSERT_LT(std::abs(folded.viewportOriginY), 32768);
        const double rowsPerCode = std::fabs(unit * rowsPerUnit);
        // Extents are whole numbers of at most 32000, so steeper traces than one unit of them a code are drawn less
        // steep, and flatter ones as lines.
        if (plain.flat || rowsPerCode > 16000) continue;
        for (const int near : {code, code - 7, code + 300, 0}) {
            const double value = near * unit + static_cast<double>(base);
            const double row = static_cast<double>(amplitude.ZeroRow()) - value * rowsPerUnit;
            if (row < 0 || row >= height) continue;
            ++seen;
            // What is left is the rounding of the base line to a row, and that of the extents across the graph.
            const double error = 1.1 + height * std::max(rowsPerCode, 1 / rowsPerCode) / 64000;
            ASSERT_NEAR(RowOf(plain, near), row, error) << unit << ' ' << base << ' ' << geometry.unitsPerDivision;
            ASSERT_NEAR(RowOf(folded, near), row, error) << "folding moves no row";
        }
    }
    EXPECT_GT(seen, 100000);
    TraceGeometry far{.zeroRow = 280000000, .height = height, .unitsPerDivision = 0.001};
    EXPECT_NEAR(RowOf(MapTrace(far, 1000.0F, 7000.0F), 3), -120, 0.01) << "7000.003 three divisions above 7000";
    // Folding by whole extents is exact.
    far = {.zeroRow = 70001, .height = height, .unitsPerDivision = 10.0, .foldOrigin = true};
    EXPECT_NEAR(RowOf(MapTrace(far, 2.0F, 0.0F), -32768), 70001 + 65536, 1e-3);
}

TEST(TraceSides, EqualThoseOfAllColumnsInAnyOrderOfScrolling) {
    constexpr int width = 60;
    constexpr int height = 40;
    std::mt19937 random(8);
    std::array<int, 3> found{};
    for (int round = 0; round < 3000; ++round) {
        // A trace of a long strip that stays on one side for a while.
        std::vector<DevicePoint> strip;
        int row = 20;
        for (int column = 0; column < 400; ++column) {
            if (random() % 60 == 0) row = std::array{-50, -1, 0, 39, 40, 90}[random() % 6];
            strip.push_back({column, row});
        }
        const auto seen = [&](int first) {
            std::vector<DevicePoint> points;
            for (int column = 0; column < width; ++column)
                points.push_back({column, strip[static_cast<std::size_t>(first + column)].y});
            return points;
        };
        TraceSides sides;
        sides.Reset(1, width);
        int first = 150;
        sides.Mark(0, 0, width, seen(first), 0, height);
        for (int step = 0; step < 5; ++step) {
            const int shift = static_cast<int>(random() % 50) - 25;
            first += shift;
            sides.Scroll(shift);
            const int left = std::max(-shift, 0) + 2;
            sides.Mark(0, 0, left, seen(first), 0, height);
            sides.Mark(0, std::max(left, width - std::max(shift, 0) - 2), width, seen(first), 0, height);
            const std::vector<DevicePoint> points = seen(first);
            const auto all = [&](auto holds) { return std::all_of(points.begin(), points.end(), holds); };
            const auto expected = all([](DevicePoint point) { return point.y < 0; })         ? TraceSides::Side::Above
                                  : all([](DevicePoint point) { return point.y >= height; }) ? TraceSides::Side::Below
                                                                                             : TraceSides::Side::None;
            ASSERT_EQ(sides.Of(0), expected) << round;
            ++found[static_cast<std::size_t>(expected)];
        }
    }
    for (const int count : found) EXPECT_GT(count, 100);
    TraceSides none;
    none.Reset(1, width);
    EXPECT_EQ(none.Of(0), TraceSides::Side::None);
    none.Mark(0, 0, width, std::vector<DevicePoint>{{3, -9}, {3, 90}}, 0, height);
    EXPECT_EQ(none.Of(0), TraceSides::Side::None) << "it passes through";
}

}  // namespace
}  // namespace quillon
