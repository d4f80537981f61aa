#include "spectrum/QL_FFT.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>

#include "support/FakeRecording.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// Values as the contract says, and a count of what was read.
class ValueBlock : public FakeBlock {
  public:
    std::int32_t ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) override {
        std::vector<std::int16_t> codes(static_cast<std::size_t>(count));
        ReadCodes(channel, first, count, codes.data());
        for (const std::int16_t code : codes) *buffer++ = static_cast<float>(code) * 0.5F + static_cast<float>(channel);
        read += count;
        return 0;
    }
    std::int64_t read = 0;
};

ValueBlock Tones(int samples) {
    std::mt19937 random(17);
    ValueBlock block;
    block.samples.resize(2);
    for (int at = 0; at < samples; ++at) {
        const double tone = 900.0 * std::sin(at * 0.7) + 60.0 * std::sin(at * (2.1 + at * 1e-5));
        block.samples[0].push_back(static_cast<std::int16_t>(tone + static_cast<double>(random() % 5)));
        block.samples[1].push_back(static_cast<std::int16_t>(random() % 2000));
    }
    return block;
}

constexpr ValueRange kLimits{-500.0F, 500.0F};

/// One column by the definition, in double precision, before rounding.
std::vector<double> ExactColumn(ValueBlock& block, const SpectrumSettings& settings, std::int64_t column,
                                std::int64_t hop) {
    const std::int64_t length = std::int64_t{1} << settings.order;
    const std::int64_t samples = block.SampleCount();
    std::vector<double> indexes(static_cast<std::size_t>(length / 2 + 1), 0.0);
    const std::int64_t centre = column * hop + 1;
    if (centre > samples) return indexes;
    const std::int64_t start = std::max<std::int64_t>(std::min(centre - length / 2, samples - length + 1), 1);
    const std::int64_t count = std::min(length, samples - start + 1);
    if (static_cast<double>(count) < static_cast<double>(length) / 8) return indexes;
    // The coefficients are kept in single precision, as the system's are; all else is exact.
    std::vector<float> window(static_cast<std::size_t>(length));
    double sum = 0.0;
    for (std::size_t at = 0; at < window.size(); ++at) {
        const double x = static_cast<double>(at) / static_cast<double>(length - 1);
        const double angle = 2 * std::numbers::pi * x;
        window[at] =
            static_cast<float>(settings.window == 1   ? 1 - std::fabs(2 * x - 1)
                               : settings.window == 2 ? 0.5 - 0.5 * std::cos(angle)
                               : settings.window == 3 ? 0.54 - 0.46 * std::cos(angle)
                                                      : 0.42 - 0.5 * std::cos(angle) + 0.08 * std::cos(2 * angle));
        sum += static_cast<double>(window[at]);
    }
    const auto gain = static_cast<float>(static_cast<double>(length) / static_cast<double>(static_cast<float>(sum)));
    for (float& coefficient : window) coefficient *= gain;
    const double peak = 500.0 * static_cast<double>(length) / 2;
    for (std::size_t bin = 0; bin < indexes.size(); ++bin) {
        std::complex<double> total = 0.0;
        for (std::int64_t at = 0; at < count; ++at) {
            const auto place = static_cast<std::size_t>(start - 1 + at);
            const double value = block.samples[0][place] * 0.5 + 1.0;
            const auto turn = static_cast<double>(static_cast<std::int64_t>(bin) * at % length);
            total += value * static_cast<double>(window[static_cast<std::size_t>(at)]) *
                     std::polar(1.0, -2 * std::numbers::pi * turn / static_cast<double>(length));
        }
        const double share = std::max(std::abs(total), 1e-30) / peak;
        const double index = settings.type == 1
                                 ? 255 * 1.2 * share * static_cast<double>(settings.amplitudeScale) / 100.0
                                 : 255 * (1 + 20 * std::log10(share) / static_cast<double>(settings.decibelRange));
        indexes[bin] = std::clamp(index, 0.0, 255.0);
    }
    return indexes;
}

TEST(QL_FFT, ColumnsAreTheirDefinition) {
    for (const std::int32_t order : {5, 8, 11}) {
        for (std::int16_t window = 0; window < 4; ++window) {
            // Longer than the transform, shorter than it, and too short for it.
            for (const int samples : {5000, 700, 150}) {
                SpectrumSettings settings;
                settings.order = order;
                settings.window = window;
                settings.type = static_cast<std::int16_t>(window % 2);
                ValueBlock block = Tones(samples);
                QL_FFT fft(settings);
                fft.FFT_Init(30);
                fft.FFT_SetChannel(&block, 0, 0, kLimits);
                constexpr std::int32_t hop = 170;
                EXPECT_EQ(fft.FFT_Update(0, 31, hop, false), 31);
                for (const std::int32_t column : {0, 1, 4, 15, 29, 30}) {
                    const std::vector<double> exact = ExactColumn(block, settings, column, hop);
                    // Single precision tells apart what lies within 90 dB of a column's peak.
                    const double within = *std::max_element(exact.begin(), exact.end()) - 255 * 90.0 / 120.0;
                    for (std::int32_t bin = 0; bin < fft.BinCount(); ++bin) {
                        const double index = fft.Image()[static_cast<std::size_t>(bin * fft.ImageWidth() + column)];
                        const double expected = exact[static_cast<std::size_t>(bin)];
                        ASSERT_NEAR(index, expected, settings.type == 1 || expected >= within ? 1.0 : 3.5)
                            << order << ' ' << window << ' ' << samples << ' ' << column << ' ' << bin;
                    }
                }
            }
        }
    }
}

/// A weak tone on an offset of many half ranges is found as if the offset were not there.
TEST(QL_FFT, ALargeOffsetHidesNothing) {
    for (const std::int32_t order : {5, 8, 11}) {
        for (std::int16_t window = 0; window < 4; ++window) {
            SpectrumSettings settings;
            settings.order = order;
            settings.window = window;
            ValueBlock block;
            block.samples.resize(1);
            for (int at = 0; at < 5000; ++at)
                block.samples[0].push_back(
                    static_cast<std::int16_t>(std::lround(20000.0 + 100.0 * std::sin(at * 0.9))));
            QL_FFT fft(settings);
            fft.FFT_Init(4);
            fft.FFT_SetChannel(&block, 0, 0, kLimits);
            fft.FFT_Update(0, 4, 1000, false);
            for (const std::int32_t column : {0, 2}) {
                const std::vector<double> exact = ExactColumn(block, settings, column, 1000);
                for (std::int32_t bin = 0; bin < fft.BinCount(); ++bin)
                    ASSERT_NEAR(fft.Image()[static_cast<std::size_t>(bin * fft.ImageWidth() + column)],
                                exact[static_cast<std::size_t>(bin)], 3.5)
                        << order << ' ' << window << ' ' << bin;
            }
        }
    }
}

TEST(QL_FFT, AnyWayOfScrollingGivesTheSameImage) {
    std::mt19937 random(18);
    ValueBlock block = Tones(60000);
    SpectrumSettings settings;
    settings.order = 6;
    QL_FFT scrolled(settings);
    QL_FFT fresh(settings);
    scrolled.FFT_Init(120);
    fresh.FFT_Init(120);
    std::int32_t first = 0;
    scrolled.FFT_SetChannel(&block, 0, 0, kLimits);
    for (int round = 0; round < 200; ++round) {
        constexpr std::int32_t hop = 20;
        const std::int32_t width = round % 10 == 9 ? 100 : 120;
        const std::int32_t moves[] = {1, -1, 7, -13, 60, -90, 120, -120, 121, 500, 0};
        first = std::clamp(first + moves[random() % std::size(moves)], 0, 3100);
        const std::int64_t readBefore = block.read;
        const std::int32_t computed = scrolled.FFT_Update(first, width, hop, false);
        if (computed == 1) {
            EXPECT_LE(block.read - readBefore, 64 + hop);
        }
        fresh.FFT_SetChannel(&block, 0, 0, kLimits);
        fresh.FFT_Update(first, width, hop, true);
        for (std::int32_t bin = 0; bin < fresh.BinCount(); ++bin) {
            for (std::int32_t column = 0; column < width; ++column) {
                const auto at = static_cast<std::size_t>(bin * fresh.ImageWidth() + column);
                ASSERT_EQ(scrolled.Image()[at], fresh.Image()[at]) << "round " << round << ", column " << column;
            }
        }
    }
    scrolled.FFT_Update(1000, 120, 20, false);
    EXPECT_EQ(scrolled.FFT_Update(1001, 120, 20, false), 1) << "one new column";
    EXPECT_EQ(scrolled.FFT_Update(1001, 120, 20, false), 0);
}

TEST(QL_FFT, SettingsAreRepairedAndWhatCannotBeShownStaysBlank) {
    const std::pair<std::int32_t, std::int32_t> orders[] = {{4, 8}, {5, 5}, {11, 11}, {12, 11}, {-7, 8}};
    for (const auto& [asked, taken] : orders) {
        SpectrumSettings settings{0, 0, 7, -1.0F, 9.9F, asked};
        QL_FFT fft(settings);
        fft.FFT_Init(10);
        EXPECT_EQ(settings.order, taken);
        EXPECT_EQ(fft.BinCount(), (1 << taken) / 2 + 1);
        EXPECT_EQ(fft.ImageWidth(), 12);
        EXPECT_EQ(settings.amplitudeScale, 100.0F);
        EXPECT_EQ(settings.decibelRange, 120.0F);
    }
    SpectrumSettings settings;
    settings.decibelRange = 200.0F;
    QL_FFT fft(settings);
    fft.FFT_Init(10);
    EXPECT_EQ(settings.decibelRange, 200.0F);
    EXPECT_EQ(fft.LevelOf(255), 0.0);
    EXPECT_EQ(fft.LevelOf(0), -200.0);
    ValueBlock block = Tones(1000);
    EXPECT_EQ(fft.FFT_Update(0, 10, 10, true), 0) << "no channel";
    fft.FFT_SetChannel(&block, 0, 2, kLimits);
    EXPECT_FALSE(fft.State().ready);
    const auto blank = [&] {
        return std::all_of(fft.Image().begin(), fft.Image().end(), [](std::uint8_t index) { return index == 0; });
    };
    for (const ValueRange limits : {ValueRange{1.0F, 1.0F}, ValueRange{2.0F, 1.0F}, ValueRange{NAN, 1.0F}}) {
        fft.FFT_SetChannel(&block, 0, 0, limits);
        fft.FFT_Update(0, 10, 10, false);
        EXPECT_TRUE(blank()) << "no range";
    }
    fft.FFT_SetChannel(&block, 0, 0, kLimits);
    fft.FFT_Update(500, 10, 10, false);
    EXPECT_TRUE(blank()) << "behind the end";
    block.failing = {"ReadCodes"};
    fft.FFT_Update(0, 10, 10, true);
    EXPECT_TRUE(blank()) << "nothing can be read";
    fft.FFT_Update(2000000000, 10, 1000000000, true);
    EXPECT_TRUE(blank());
}

}  // namespace
}  // namespace quillon
