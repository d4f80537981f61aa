#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <random>

#include "base/Text.h"
#include "nsp/SpectrumBatch.h"
#include "spectrum/ColorScale.h"
#include "spectrum/FrequencyScale.h"
#include "spectrum/Palette.h"
#include "spectrum/QL_FFT.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

FakeBlock Tones(int samples) {
    std::mt19937 random(17);
    FakeBlock block;
    block.samples.resize(1);
    for (int at = 0; at < samples; ++at) {
        const double tone = 900.0 * std::sin(at * 0.7) + 60.0 * std::sin(at * (2.1 + at * 1e-5));
        block.samples[0].push_back(static_cast<std::int16_t>(tone + static_cast<double>(random() % 5)));
    }
    return block;
}

constexpr ValueRange kLimits{-500.0F, 500.0F};

/// One column on its own: where its frame lies, the window of equal gain and the scale. The batch has tests of its own.
std::vector<std::uint8_t> Column(FakeBlock& block, const SpectrumSettings& settings, std::int64_t column,
                                 const ColumnGrid& grid) {
    const std::int64_t length = std::int64_t{1} << settings.order;
    const std::int64_t samples = block.SampleCount();
    std::vector<std::uint8_t> indexes(static_cast<std::size_t>(length / 2 + 1), 0);
    const std::int64_t centre = grid.FirstSample(column) + 1;
    const std::int64_t start = std::max<std::int64_t>(std::min(centre - length / 2, samples - length + 1), 1);
    const std::int64_t count = std::min(length, samples - start + 1);
    if (centre > samples || count * 8 < length) return indexes;
    std::vector<float> frame(static_cast<std::size_t>(length));
    block.ReadValues(1, static_cast<std::int32_t>(start - 1), static_cast<std::int32_t>(count), frame.data());
    constexpr void (*windows[])(float*, int) = {nsp::nspsWinBlackmanStd, nsp::nspsWinBartlett, nsp::nspsWinHann,
                                                nsp::nspsWinHamming};
    std::vector<float> window(frame.size(), 1.0F);
    windows[settings.window](window.data(), static_cast<int>(length));
    const double gain = static_cast<double>(length) / std::accumulate(window.begin(), window.end(), 0.0);
    for (float& coefficient : window) coefficient *= static_cast<float>(gain);
    const float peak = 500.0F * static_cast<float>(length) / 2;
    const float decades = settings.decibelRange / 20;
    const nsp::SpectrumBatch::Scale scale{settings.type == 1, 255 * 1.2F / peak * settings.amplitudeScale / 100,
                                          255 / decades, decades - std::log10(peak)};
    const float* const frames[] = {frame.data()};
    nsp::SpectrumBatch(settings.order, window.data(), scale).Compute(frames, indexes.data(), 1);
    return indexes;
}

TEST(QL_FFT, AnyWayOfScrollingEqualsComputingEveryColumnAlone) {
    std::mt19937 random(18);
    for (int kind = 0; kind < 12; ++kind) {
        // Longer than the transform, shorter than it, and too short for it; frames that would end one sample too far
        // are among them.
        constexpr std::array samples{5015, 687, 161};
        FakeBlock block = Tones(samples[static_cast<std::size_t>(kind + kind / 3) % 3]);
        const auto window = static_cast<std::int16_t>(kind / 3);
        SpectrumSettings settings{
            .type = static_cast<std::int16_t>(window % 2), .window = window, .order = 5 + kind % 3 * 3};
        QL_FFT fft(settings);
        fft.FFT_Init(30);
        fft.FFT_SetChannel(&block, 0, 0, kLimits);
        // Also a rational number of samples per column, and one below 1.
        constexpr std::int32_t hop = 40;
        const std::array grids{ColumnGrid(hop), ColumnGrid(77, 3), ColumnGrid(2, 7), ColumnGrid(hop)};
        const ColumnGrid& grid = grids[static_cast<std::size_t>(kind) % grids.size()];
        std::map<std::int32_t, std::vector<std::uint8_t>> columns;
        std::int32_t first = 0;
        for (int round = 0; round < 60; ++round) {
            const std::int32_t width = round % 10 == 9 ? 25 : 31;
            const std::int32_t moves[] = {1, -1, 7, -13, 31, -31, 32, 70, 0};
            first = std::clamp(first + moves[random() % std::size(moves)], 0, 100);
            block.samplesRead = 0;
            const std::int32_t computed = fft.FFT_Update(first, width, grid, false);
            EXPECT_TRUE(computed != 1 || block.samplesRead <= (1 << settings.order) + hop) << block.samplesRead;
            for (std::int32_t column = first; column < first + width; ++column) {
                std::vector<std::uint8_t>& expected = columns[column];
                if (expected.empty()) expected = Column(block, settings, column, grid);
                for (std::size_t bin = 0; bin < expected.size(); ++bin) {
                    const std::uint8_t* const row = &fft.Image()[bin * static_cast<std::size_t>(fft.ImageWidth())];
                    ASSERT_NEAR(row[column - first], expected[bin], 1)
                        << kind << ' ' << round << ' ' << column << ' ' << bin;
                }
            }
        }
        fft.FFT_Update(50, 31, grid, false);
        EXPECT_EQ(fft.FFT_Update(51, 31, grid, false), 1) << "one new column";
        EXPECT_EQ(fft.FFT_Update(51, 31, grid, false), 0);
    }
}

TEST(QL_FFT, SettingsAreRepairedAndWhatCannotBeShownStaysBlank) {
    SpectrumSettings settings{.decibelRange = 200.0F};
    QL_FFT fft(settings);
    fft.FFT_Init(10);
    EXPECT_EQ(std::pair(fft.LevelOf(255), fft.LevelOf(0)), std::pair(0.0, -200.0));
    FakeBlock block = Tones(1000);
    EXPECT_EQ(fft.FFT_Update(0, 10, 10, true), 0) << "no channel";
    fft.FFT_SetChannel(&block, 0, 1, kLimits);
    EXPECT_FALSE(fft.State().ready);
    const auto blank = [&] {
        return std::all_of(fft.Image().begin(), fft.Image().end(), [](std::uint8_t index) { return index == 0; });
    };
    const ValueRange none[] = {{1.0F, 1.0F}, {2.0F, 1.0F}, {NAN, 1.0F}};
    for (const ValueRange limits : none) {
        fft.FFT_SetChannel(&block, 0, 0, limits);
        fft.FFT_Update(0, 10, 10, false);
        EXPECT_TRUE(blank());
    }
    fft.FFT_SetChannel(&block, 0, 0, kLimits);
    fft.FFT_Update(2000000000, 10, 1000000000, false);
    EXPECT_TRUE(blank()) << "behind the end";
    settings.type = 1;
    EXPECT_EQ(std::pair(fft.LevelOf(255), fft.LevelOf(51)), std::pair(100.0, 20.0));
    fft.FFT_NextPalette();
    EXPECT_EQ(fft.Colors()[100].green, BuildPalette(settings.palette)[100].green);
    SpectrumSettings high{.amplitudeScale = INFINITY, .decibelRange = 200.1F, .order = -5};
    QL_FFT::RepairSettings(high);
    EXPECT_EQ(high, SpectrumSettings{});
}

TEST(QL_FFT, WhatCouldNotBeReadIsComputedOnceItCanBeWhereverItHasMoved) {
    std::mt19937 random(31);
    FakeBlock whole = Tones(6000);
    FakeBlock damaged = whole;
    SpectrumSettings settings{.order = 6};
    QL_FFT expected(settings);
    QL_FFT actual(settings);
    for (QL_FFT* fft : {&expected, &actual}) fft->FFT_Init(100);
    expected.FFT_SetChannel(&whole, 0, 0, kLimits);
    actual.FFT_SetChannel(&damaged, 0, 0, kLimits);
    const auto same = [&] {
        return std::equal(actual.Image().begin(), actual.Image().end(), expected.Image().begin());
    };
    std::int32_t first = 100;
    for (int round = 0; round < 200; ++round) {
        // Scrolled with a hole here or there, and then without one.
        damaged.holeFrom = 1000 + static_cast<std::int32_t>(random() % 3000);
        damaged.holeTo = damaged.holeFrom + 1;
        for (int step = 0; step < 3; ++step) {
            first = std::clamp(first + static_cast<std::int32_t>(random() % 61) - 30, 0, 300);
            actual.FFT_Update(first, 100, 10, step == 0);
            expected.FFT_Update(first, 100, 10, true);
            bool unread = false;
            for (std::int32_t column = 0; column < 100; ++column) {
                // Frames of 64 samples begin half their length before the sample of the column, from 1.
                const std::int32_t start = std::max((first + column) * 10 + 1 - 32, 1) - 1;
                const bool hit = start <= damaged.holeFrom && damaged.holeFrom < start + 64;
                ASSERT_EQ(actual.IsRead(column), !hit) << column;
                unread = unread || hit;
            }
            ASSERT_EQ(actual.ReadFailure(), unread ? "hole" : "");
            ASSERT_EQ(same(), !unread);
        }
        const bool unread = !actual.ReadFailure().empty();
        damaged.holeTo = 0;
        ASSERT_EQ(actual.FFT_Update(first, 100, 10, false) > 0, unread);
        ASSERT_EQ(actual.ReadFailure(), "");
        ASSERT_TRUE(same());
    }
}

TEST(QL_FFT, ColumnsLeftForLaterAreInTheEndThoseComputedAtOnce) {
    std::mt19937 random(32);
    FakeBlock block = Tones(9000);
    SpectrumSettings settings{.order = 6};
    QL_FFT patient(settings);
    QL_FFT hasty(settings);
    for (QL_FFT* fft : {&patient, &hasty}) {
        fft->FFT_Init(100);
        fft->FFT_SetChannel(&block, 0, 0, kLimits);
    }
    hasty.SetPatience(std::chrono::milliseconds(0));
    std::int32_t first = 0;
    for (int round = 0; round < 300; ++round) {
        // Scrolled, narrowed and widened while columns are missing.
        first = std::clamp(first + static_cast<std::int32_t>(random() % 121) - 60, 0, 800);
        const std::int32_t width = random() % 4 == 0 ? 60 : 100;
        hasty.FFT_Update(first, width, 10, false);
        const bool all = round % 4 == 3;
        for (bool more = random() % 2 == 0 || all; more;) more = hasty.FFT_ComputePending() && all;
        ASSERT_TRUE(!all || (!hasty.IsIncomplete() && hasty.ComputedShare() == 1.0));
        patient.FFT_Update(first, width, 10, true);
        for (std::int32_t column = 0; column < width; ++column) {
            for (std::int32_t bin = 0; bin < hasty.BinCount(); ++bin) {
                const auto at = static_cast<std::size_t>(bin * hasty.ImageWidth() + column);
                ASSERT_EQ(hasty.Image()[at], hasty.IsPending(column) ? 0 : patient.Image()[at]) << round;
            }
        }
    }
}

TEST(QL_FFT, AnotherTopLevelMovesTheLevelsAndBlankEndsAreThoseOfShiftedWindows) {
    FakeBlock block = Tones(3000);
    SpectrumSettings plain{.order = 7};
    SpectrumSettings chosen{.order = 7, .topLevel = -24.0F, .blankEnds = true};
    QL_FFT expected(plain);
    QL_FFT actual(chosen);
    for (QL_FFT* fft : {&expected, &actual}) {
        fft->FFT_Init(301);
        fft->FFT_SetChannel(&block, 0, 0, kLimits);
        fft->FFT_Update(0, 301, 10, true);
    }
    EXPECT_EQ(std::pair(actual.LevelOf(255), actual.LevelOf(0)), std::pair(-24.0, -144.0));
    int compared = 0;
    for (std::int32_t column = 0; column < 301; ++column) {
        const std::int32_t centre = column * 10 + 1;
        const bool whole = centre - 64 >= 1 && centre + 63 <= 3000;
        for (std::int32_t bin = 0; bin < actual.BinCount(); ++bin) {
            const auto at = static_cast<std::size_t>(bin * actual.ImageWidth() + column);
            const std::uint8_t index = actual.Image()[at];
            if (!whole) {
                ASSERT_EQ(index, 0) << column;
            } else if (index > 0 && index < 255) {
                ++compared;
                ASSERT_NEAR(actual.LevelOf(index), expected.LevelOf(expected.Image()[at]), 0.5);
            }
        }
    }
    EXPECT_GT(compared, 5000);
}

TEST(ColorTicks, StandAtTheirColoursInsideTheBarAndApart) {
    std::mt19937 random(5);
    for (int round = 0; round < 3000; ++round) {
        const double high = static_cast<double>(random() % 2200) / 10.0 - 180.0;
        const double low = high - 10.0 - static_cast<double>(random() % 190);
        const auto height = static_cast<std::int32_t>(20 + random() % 1200);
        const auto text = static_cast<std::int32_t>(13 + random() % 16);
        const auto ticks = ColorTicks(low, high, height, text, u'.');
        EXPECT_TRUE(ticks.size() >= 2 || height < 12 * text) << height << ' ' << text << ' ' << low << ' ' << high;
        std::int32_t before = height;
        for (const ColorTick& tick : ticks) {
            const double level = std::stod(Utf8(tick.figure));
            ASSERT_EQ(level, std::nearbyint(level));
            // The colour in that row, within a row or an index.
            const double shown = low + BarIndex(height - 1 - tick.row, height) / 255.0 * (high - low);
            ASSERT_NEAR(shown, level, (high - low) * std::max(1.0 / 255.0, 1.6 / height)) << height;
            ASSERT_TRUE(tick.text >= 0 && tick.text + text <= before);
            before = tick.text;
        }
    }
    EXPECT_TRUE(ColorTicks(-120.0, 0.0, 10, 13, u'.').empty());
}

std::array<int, 3> Rgb(std::int16_t kind, std::size_t index) {
    const PaletteColor color = BuildPalette(kind)[index];
    return {color.red, color.green, color.blue};
}

TEST(PaletteTest, LandmarksOfEveryPaletteAndOfTheBar) {
    EXPECT_EQ(Rgb(2, 128), (std::array{128, 128, 128}));
    // Halves but for the quotient's rounding to a single: 76.5 lies above, 229.5 below.
    EXPECT_EQ(Rgb(1, 60), (std::array{0, 77, 0}));
    EXPECT_EQ(Rgb(1, 180), (std::array{89, 229, 89}));
    EXPECT_EQ(BarIndex(100, 300), 85);
    EXPECT_EQ(BarIndex(1, 512), 0) << "halves to even";
    EXPECT_EQ(BarIndex(511, 512), 255) << "would be 256";
}

TEST(PaletteTest, ColorIsTheHueCircleByItsOtherFormula) {
    // A component is v - v s max(0, min(k, 4 - k, 1)) with k = (n + hue / 60) mod 6, n = 5, 3, 1 for red, green, blue.
    for (std::size_t i = 0; i < 256; ++i) {
        const auto index = static_cast<double>(i);
        const double value = std::min(index / 155.0, 1.0);
        const double depth = value * std::min((255.0 - index) / 100.0, 1.0);
        for (std::size_t part = 0; part < 3; ++part) {
            const double k = std::fmod(5.0 - 2.0 * static_cast<double>(part) + (index + 205.0) / 60.0, 6.0);
            const double share = value - depth * std::clamp(std::min(k, 4.0 - k), 0.0, 1.0);
            EXPECT_NEAR(Rgb(0, i)[part], 255.0 * share, 0.5 + 1e-9) << i;
        }
    }
}

TEST(FrequencyScaleTest, RowsTextsAndUnitFollowTheStep) {
    const FormatOptions options{.unitScaling = false, .decimalSeparator = u','};  // there is a prefix all the same
    const FrequencyScaleMarks marks = FrequencyMarks(200, 48000.0, options);
    std::u16string found;
    for (const FrequencyTick& tick : marks.ticks) found += tick.text + u" ";
    EXPECT_EQ(found, u"5 10 15 20 ");
    EXPECT_EQ(marks.ticks.back().row, 33);
    EXPECT_EQ(FrequencyCaption(u"Channel", 3, marks.unit), u"Channel 3, kHz");
    EXPECT_EQ(FrequencyMarks(300, 3000.0, options).ticks.front().text, u"0,1");
    for (double rate : {0.0, -1.0, std::nan(""), HUGE_VAL}) EXPECT_TRUE(FrequencyMarks(99, rate, {}).ticks.empty());
}

TEST(FrequencyScaleTest, ThePictureReachesUpToTheFrequencyByWholeBins) {
    for (const std::int32_t bins : {17, 129, 1025}) {
        for (double highest = 0.5; highest < 500.0; highest *= 1.3) {
            const std::int32_t shown = ShownBins(highest, 1000.0, bins);
            const double step = 500.0 / bins;
            EXPECT_GE(shown * step, highest);
            EXPECT_TRUE(shown <= bins && (shown == 2 || (shown - 1) * step < highest));
        }
        for (const double all : {0.0, 500.0, 900.0, std::nan("")}) EXPECT_EQ(ShownBins(all, 1000.0, bins), bins);
        EXPECT_EQ(ShownBins(10.0, 0.0, bins), bins);
    }
}

TEST(FrequencyScaleTest, LabelsExistAndNeverOverlapAtAnyRateAndHeight) {
    for (int height = 20; height <= 2000; height += height < 120 ? 1 : 37) {
        for (double rate = 0.01; rate <= 1e6; rate *= 1.11) {
            std::int32_t below = height;
            bool labelled = height < 40;
            for (const FrequencyTick& tick : FrequencyMarks(height, rate, {}).ticks) {
                ASSERT_GE(below - tick.row, kFrequencyLabelSpacing) << height << " rows at " << rate;
                ASSERT_GE(tick.row, tick.text.empty() ? 0 : kFrequencyLabelRise);
                below = tick.row;
                labelled |= !tick.text.empty();
            }
            ASSERT_TRUE(labelled) << height << " rows at " << rate;
        }
    }
}

}  // namespace
}  // namespace quillon
