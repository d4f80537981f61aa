#include "spectrum/QL_FFT.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

#include "nsp/SpectrumBatch.h"
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

/// One column on its own: where its frame lies, the window of equal gain and the scale. The batch has tests of its own.
std::vector<std::uint8_t> Column(ValueBlock& block, const SpectrumSettings& settings, std::int64_t column,
                                 std::int64_t hop) {
    const std::int64_t length = std::int64_t{1} << settings.order;
    const std::int64_t samples = block.SampleCount();
    std::vector<std::uint8_t> indexes(static_cast<std::size_t>(length / 2 + 1), 0);
    const std::int64_t centre = column * hop + 1;
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

TEST(QL_FFT, ColumnsAreWhatEveryOneIsAlone) {
    // Longer than the transform, shorter than it, and too short for it.
    for (const int samples : {5000, 700, 150}) {
        ValueBlock block = Tones(samples);
        for (int round = 0; round < 12; ++round) {
            const auto window = static_cast<std::int16_t>(round / 3);
            SpectrumSettings settings{
                .type = static_cast<std::int16_t>(window % 2), .window = window, .order = 5 + round % 3 * 3};
            QL_FFT fft(settings);
            fft.FFT_Init(30);
            fft.FFT_SetChannel(&block, 0, 0, kLimits);
            constexpr std::int32_t hop = 170;
            EXPECT_EQ(fft.FFT_Update(0, 31, hop, false), 31);
            for (std::int32_t column = 0; column < 31; ++column) {
                const std::vector<std::uint8_t> expected = Column(block, settings, column, hop);
                for (std::size_t bin = 0; bin < expected.size(); ++bin) {
                    const std::size_t at = bin * static_cast<std::size_t>(fft.ImageWidth());
                    ASSERT_NEAR(fft.Image()[at + static_cast<std::size_t>(column)], expected[bin], 1)
                        << samples << ' ' << round << ' ' << column << ' ' << bin;
                }
            }
        }
    }
}

TEST(QL_FFT, AnyWayOfScrollingGivesTheSameImage) {
    std::mt19937 random(18);
    ValueBlock block = Tones(60000);
    SpectrumSettings settings{.order = 6};
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
        block.read = 0;
        const std::int32_t computed = scrolled.FFT_Update(first, width, hop, false);
        EXPECT_TRUE(computed != 1 || block.read <= 64 + hop) << block.read;
        fresh.FFT_SetChannel(&block, 0, 0, kLimits);
        fresh.FFT_Update(first, width, hop, true);
        for (std::int32_t at = 0; at < fresh.BinCount() * fresh.ImageWidth(); ++at) {
            if (at % fresh.ImageWidth() >= width) continue;
            const auto cell = static_cast<std::size_t>(at);
            ASSERT_EQ(scrolled.Image()[cell], fresh.Image()[cell]) << "round " << round << ", cell " << at;
        }
    }
    scrolled.FFT_Update(1000, 120, 20, false);
    EXPECT_EQ(scrolled.FFT_Update(1001, 120, 20, false), 1) << "one new column";
    EXPECT_EQ(scrolled.FFT_Update(1001, 120, 20, false), 0);
}

TEST(QL_FFT, SettingsAreRepairedAndWhatCannotBeShownStaysBlank) {
    const std::pair<std::int32_t, std::int32_t> orders[] = {{4, 8}, {5, 5}, {11, 11}, {12, 11}};
    for (const auto& [asked, taken] : orders) {
        SpectrumSettings settings{0, 0, 7, -1.0F, 9.9F, asked};
        QL_FFT fft(settings);
        fft.FFT_Init(10);
        EXPECT_EQ(settings.order, taken);
        EXPECT_EQ(fft.BinCount(), (1 << taken) / 2 + 1);
        EXPECT_EQ(settings.amplitudeScale, 100.0F);
        EXPECT_EQ(settings.decibelRange, 120.0F);
    }
    SpectrumSettings settings{.decibelRange = 200.0F};
    QL_FFT fft(settings);
    fft.FFT_Init(10);
    EXPECT_EQ(std::pair(fft.LevelOf(255), fft.LevelOf(0)), std::pair(0.0, -200.0));
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
    fft.FFT_Update(2000000000, 10, 1000000000, false);
    EXPECT_TRUE(blank()) << "behind the end";
    block.failing = {"ReadCodes"};
    fft.FFT_Update(0, 10, 10, true);
    EXPECT_TRUE(blank()) << "nothing can be read";
}

}  // namespace
}  // namespace quillon
