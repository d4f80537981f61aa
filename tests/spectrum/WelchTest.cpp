#include "spectrum/Welch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>
#include <vector>

#include "nsp/PowerSpectrum.h"
#include "spectrum/AnalysisWindow.h"
#include "spectrum/Peaks.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using testing::FakeBlock;

constexpr double kRate = 200.0;

/// Noise, on a drift in every other channel.
std::shared_ptr<FakeBlock> Noise(std::size_t channels, std::size_t samples) {
    auto block = std::make_shared<FakeBlock>();
    block->rate = kRate;
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0.0, 100.0);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        auto& row = block->samples.emplace_back(samples);
        for (std::size_t i = 0; i < samples; ++i) {
            const double drift = channel % 2 == 0 ? 0.0 : 20000.0 - 3.0 * static_cast<double>(i);
            row[i] = static_cast<std::int16_t>(drift + noise(random));
        }
        block->scales.push_back(channel == 0 ? 0.5F : -0.25F);
    }
    return block;
}

std::vector<PowerDensity> DensitiesOf(const std::shared_ptr<FakeBlock>& block, std::vector<std::int16_t> channels,
                                      const SampleSpan& samples, const WelchSettings& settings) {
    WelchPass pass(block, std::move(channels), samples, settings);
    double before = 0.0;
    while (pass.Step()) {
        EXPECT_GE(pass.Share(), before);
        before = pass.Share();
        EXPECT_LT(before, 1.0);
    }
    EXPECT_EQ(pass.Share(), 1.0);
    return pass.Result();
}

/// The periodogram by its definition, averaged over segments that overlap by half.
std::vector<double> ByDefinition(const std::vector<std::int16_t>& codes, double scale, const SampleSpan& samples,
                                 const WelchSettings& settings) {
    const auto length = static_cast<std::size_t>(settings.length);
    const std::vector<float> window = AnalysisWindow(settings.window, settings.length);
    double squares = 0.0;
    for (const float coefficient : window) squares += std::pow(static_cast<double>(coefficient), 2);
    std::vector<std::complex<double>> turns(length);
    for (std::size_t k = 0; k < length; ++k)
        turns[k] = std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(length));
    std::vector<double> power(length / 2 + 1);
    int segments = 0;
    for (auto first = static_cast<std::size_t>(samples.first);
         first + length <= static_cast<std::size_t>(samples.End()); first += length / 2, ++segments) {
        const double mean = std::accumulate(&codes[first], &codes[first] + length, 0.0) / static_cast<double>(length);
        for (std::size_t k = 0; k < power.size(); ++k) {
            std::complex<double> bin;
            for (std::size_t i = 0; i < length; ++i)
                bin += (codes[first + i] - mean) * static_cast<double>(window[i]) * turns[i * k % length];
            power[k] += std::norm(bin) * (k == 0 || k == length / 2 ? 1.0 : 2.0);
        }
    }
    for (double& sum : power) sum *= scale * scale / (kRate * squares * segments);
    return power;
}

TEST(Welch, DensitiesAreThoseOfTheDefinitionHoweverTheBlockIsRead) {
    const auto block = Noise(3, 1500);
    for (std::int16_t window = 0; window < 4; ++window) {
        // Odd and even numbers of segments, with and without a rest.
        for (const SampleSpan& samples : {SampleSpan{0, 1500}, SampleSpan{7, 256}, SampleSpan{100, 640}}) {
            const WelchSettings settings{window, 256};
            block->framed = false;
            const std::vector<PowerDensity> found = DensitiesOf(block, {3, 1}, samples, settings);
            block->framed = true;
            EXPECT_EQ(DensitiesOf(block, {3, 1}, samples, settings), found);
            ASSERT_EQ(found.size(), 2U);
            for (const PowerDensity& density : found) {
                const auto at = static_cast<std::size_t>(density.channel - 1);
                const std::vector<double> expected =
                    ByDefinition(block->samples[at], static_cast<double>(block->scales[at]), samples, settings);
                EXPECT_EQ(density.segments, samples.count / 128 - 1);
                EXPECT_DOUBLE_EQ(density.Frequency(128), kRate / 2);
                ASSERT_EQ(density.power.size(), expected.size());
                const double largest = *std::max_element(expected.begin(), expected.end());
                for (std::size_t k = 0; k < expected.size(); ++k)
                    ASSERT_NEAR(density.power[k], expected[k], 1e-9 * expected[k] + 1e-14 * largest) << k;
            }
        }
    }
}

TEST(Welch, AllOrdersKeepThePowerOfBothFrames) {
    std::mt19937 random(3);
    std::normal_distribution<double> noise;
    for (int order = nsp::kLeastPowerOrder; order <= nsp::kMostPowerOrder; ++order) {
        nsp::PowerSpectrum transform(order);
        const std::size_t length = transform.Length();
        double squares = 0.0;
        for (double& sample : transform.Frames()) squares += std::pow(sample = noise(random), 2);
        std::vector<double> sums(length / 2 + 1, 1.0);
        transform.Add(sums);
        const double all = 2.0 * std::accumulate(sums.begin(), sums.end(), -1.0 * static_cast<double>(sums.size())) -
                           (sums.front() - 1.0) - (sums.back() - 1.0);
        EXPECT_NEAR(all / (squares * static_cast<double>(length)), 1.0, 1e-12) << order;
        // Tones of other bins, one per frame.
        const std::size_t bins[] = {length / 4 - 1, length / 4};
        for (std::size_t i = 0; i < length; ++i)
            for (std::size_t frame = 0; frame < 2; ++frame)
                transform.Frames()[2 * i + frame] = std::cos(2.0 * std::numbers::pi / static_cast<double>(length) *
                                                             static_cast<double>(i * bins[frame] % length));
        std::fill(sums.begin(), sums.end(), 0.0);
        transform.Add(sums);
        const double full = std::pow(static_cast<double>(length) / 2.0, 2);
        for (std::size_t k = 0; k < sums.size(); ++k)
            ASSERT_NEAR(sums[k] / full, k == bins[0] || k == bins[1] ? 1.0 : 0.0, 1e-12) << order << ' ' << k;
    }
    EXPECT_THROW(nsp::PowerSpectrum(17), std::invalid_argument);
}

TEST(Welch, StepsAreSmallAndWhatCannotBeReadHasNoSpectrum) {
    const auto block = Noise(2, 600000);
    for (const bool framed : {false, true}) {
        block->framed = framed;
        WelchPass pass(block, {1, 2}, {1000, 599000}, {.length = 65536});
        int steps = 1;
        EXPECT_TRUE(pass.Result()[0].power.empty());
        for (bool more = true; more; ++steps) {
            block->samplesRead = 0;
            more = pass.Step();
            EXPECT_LE(block->samplesRead, framed ? 2 * 98304 : 98304);
            EXPECT_TRUE(steps != 4 || pass.Result()[0].segments >= 2);
        }
        EXPECT_EQ(pass.Result()[1].segments, 17);
    }
    block->holeFrom = 300000, block->holeTo = 300001;
    EXPECT_TRUE(DensitiesOf(block, {2}, {0, 600000}, {})[0].power.empty());
    EXPECT_FALSE(DensitiesOf(block, {2}, {300001, 2048}, {})[0].power.empty());
    EXPECT_TRUE(DensitiesOf(block, {}, {0, 2048}, {}).empty());
}

TEST(Welch, LengthsFitIntoTheRange) {
    EXPECT_EQ(FittingLength(1024, 100000), 1024);
    EXPECT_EQ(FittingLength(65536, 65535), 32768);
    EXPECT_EQ(FittingLength(1 << 20, 1 << 30), 65536);
    EXPECT_EQ(FittingLength(4096, 255), std::nullopt);
    for (const std::int32_t samples : {256, 300, 2048, 5000, 32768, 1 << 30})
        EXPECT_EQ(FittingLength(UsualLength(samples), samples), UsualLength(samples)) << samples;
    EXPECT_EQ(UsualLength(1 << 30), 4096);
}

/// Tones of these amplitudes at multiples of a frequency, over noise.
PowerDensity Tones(double fundamental, const std::vector<double>& amplitudes, std::int16_t window) {
    const auto block = std::make_shared<FakeBlock>();
    block->rate = kRate;
    block->scales = {1.0F};
    std::mt19937 random(9);
    std::normal_distribution<double> noise(0.0, 3.0);
    auto& row = block->samples.emplace_back(40000);
    for (std::size_t i = 0; i < row.size(); ++i) {
        double value = noise(random);
        for (std::size_t k = 0; k < amplitudes.size(); ++k)
            value += amplitudes[k] *
                     std::sin(2.0 * std::numbers::pi * fundamental * static_cast<double>((k + 1) * i) / kRate +
                              static_cast<double>(k));
        row[i] = static_cast<std::int16_t>(std::nearbyint(value));
    }
    return DensitiesOf(block, {1}, {0, 40000}, {window, 2048})[0];
}

TEST(Peaks, TonesAreFoundBetweenBinsAndNoiseHasNone) {
    const double binWidth = kRate / 2048;
    for (std::int16_t window = 0; window < 4; ++window) {
        for (const double fundamental : {11.0, 17.03, 22.25}) {
            const std::vector<double> amplitudes{8000.0, 0.0, 400.0, 80.0};
            const PowerDensity density = Tones(fundamental, amplitudes, window);
            // Sidelobes of a window stand out beside a tone so strong.
            std::vector<SpectralPeak> peaks = FindPeaks(density);
            ASSERT_GE(peaks.size(), 3U);
            EXPECT_LE(peaks.size(), 20U);
            EXPECT_TRUE(std::is_sorted(peaks.begin(), peaks.end(),
                                       [](const auto& a, const auto& b) { return a.decibels > b.decibels; }));
            EXPECT_NEAR(peaks[0].frequency, fundamental, 0.1 * binWidth);
            const Harmonics harmonics = HarmonicsOf(density, peaks[0].frequency);
            EXPECT_LE(harmonics.list.size(), static_cast<std::size_t>(kRate / 2 / fundamental));
            for (const std::size_t k : {0U, 2U, 3U}) {
                const auto found =
                    std::find_if(harmonics.list.begin(), harmonics.list.end(),
                                 [&](const Harmonic& each) { return each.multiple == static_cast<int>(k + 1); });
                ASSERT_NE(found, harmonics.list.end()) << k;
                const Harmonic& harmonic = *found;
                EXPECT_NEAR(harmonic.peak.frequency, fundamental * static_cast<double>(k + 1), 0.15 * binWidth);
                EXPECT_NEAR(std::sqrt(2.0 * harmonic.power) / amplitudes[k], 1.0, 0.02) << window << ' ' << k;
            }
            const double distortion = std::hypot(400.0, 80.0) / 8000.0;
            EXPECT_NEAR(harmonics.distortion / distortion, 1.0, 0.02) << window << ' ' << fundamental;
        }
        EXPECT_TRUE(FindPeaks(Tones(1.0, {}, window)).empty());
    }
    EXPECT_EQ(FindPeaks(Tones(11.0, {100.0, 200.0, 300.0, 150.0}, 2), {.most = 2}).back().frequency,
              FindPeaks(Tones(11.0, {100.0, 200.0, 300.0, 150.0}, 2))[1].frequency);
    EXPECT_TRUE(HarmonicsOf({}, 10.0).list.empty());
    // 11 Hz and, a bin beside its fifth harmonic, another tone.
    const double step = 1.1 * binWidth;
    std::vector<double> strangers(402);
    strangers[79] = 8000.0;
    strangers[400] = 2000.0;
    const Harmonics own = HarmonicsOf(Tones(step, strangers, 2), 80.0 * step);
    EXPECT_TRUE(
        std::none_of(own.list.begin(), own.list.end(), [](const Harmonic& each) { return each.multiple == 5; }));
    EXPECT_LT(own.distortion, 0.01);
    EXPECT_TRUE(FindPeaks({}).empty());
    // A drift is no peak.
    EXPECT_TRUE(
        FindPeaks(DensitiesOf(Noise(2, 10000), {2}, {0, 10000}, {.length = 512})[0], {.leastAbove = 15.0}).empty());
    const PowerDensity low = Tones(5.0 * binWidth, {1000.0}, 0);
    EXPECT_TRUE(HarmonicsOf(low, FindPeaks(low).at(0).frequency).list.empty()) << "their lobes lie over each other";
    EXPECT_TRUE(HarmonicsOf(Tones(1.0, {}, 0), 1e6).list.empty());
}

}  // namespace
}  // namespace quillon
