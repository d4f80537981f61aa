#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <numeric>
#include <random>
#include <stdexcept>
#include <vector>

#include "norvik/BlockChecks.h"
#include "nsp/RowRuns.h"
#include "nsp/RunReducer.h"
#include "nsp/Spectrum.h"
#include "nsp/SpectrumBatch.h"

namespace quillon::nsp {
namespace {

using Samples = std::vector<float>;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// A sine in noise, on an offset: bins of very different levels, all well above what rounding leaves.
Samples Recording(std::size_t count, float amplitude, float offset) {
    std::mt19937 random(7);
    std::normal_distribution<float> noise(0.0F, 0.2F);
    Samples samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = amplitude * (offset + 0.5F * std::sin(static_cast<float>(i) * 0.3F) + noise(random));
    }
    return samples;
}

/// Coefficient `at` of a window of `length` points: 1 Bartlett, 2 Hann, 3 Hamming, else Blackman.
double WindowAt(int kind, std::size_t at, std::size_t length) {
    const double x = static_cast<double>(at) / static_cast<double>(length - 1);
    const double cosine = std::cos(2.0 * std::numbers::pi * x);
    switch (kind) {
        case 1: return 1.0 - std::fabs(2.0 * x - 1.0);
        case 2: return 0.5 - 0.5 * cosine;
        case 3: return 0.54 - 0.46 * cosine;
        default: return 0.34 - 0.5 * cosine + 0.16 * cosine * cosine;
    }
}

/// The bins of as many samples as the window has, by the definition, in double precision.
std::vector<std::complex<double>> ExactBins(const float* samples, const std::vector<float>& window) {
    const std::size_t length = window.size();
    std::vector<std::complex<double>> turns(length);
    for (std::size_t k = 0; k < length; ++k)
        turns[k] = std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(length));
    std::vector<std::complex<double>> bins(length / 2 + 1);
    for (std::size_t k = 0; k < bins.size(); ++k)
        for (std::size_t i = 0; i < length; ++i)
            bins[k] += turns[i * k % length] * (static_cast<double>(samples[i]) * static_cast<double>(window[i]));
    return bins;
}

/// By the kinds of WindowAt.
constexpr void (*kWindows[])(float*, int) = {nspsWinBlackmanStd, nspsWinBartlett, nspsWinHann, nspsWinHamming};

int ExactIndex(double magnitude, const SpectrumBatch::Scale& scale) {
    const double level = std::log10(std::max(magnitude, 1e-30)) + static_cast<double>(scale.logOffset);
    const double index = scale.linear ? magnitude * static_cast<double>(scale.linearFactor)
                                      : level * static_cast<double>(scale.logMultiplier);
    return static_cast<int>(std::nearbyint(std::clamp(index, 0.0, 255.0)));
}

/// Of a plot of so many decibels, 0 for the linear plot; a sine of amplitude h is at the top.
SpectrumBatch::Scale ScaleOf(float decibels, float h, std::size_t length) {
    const float full = h * static_cast<float>(length) / 2.0F;
    if (decibels == 0.0F) return {true, 306.0F / full, 0.0F, 0.0F};
    return {false, 0.0F, 255.0F * 20.0F / decibels, decibels / 20.0F - std::log10(full)};
}

TEST(Spectrum, VectorRoutinesKeepNaN) {
    const Samples a{1.0F, -2.5F, 0.0F, kNaN, 1e20F};
    Samples b(a.size());
    nspsbLg2(a.data(), b.data(), 5);
    EXPECT_TRUE(b[0] == 0.0F && std::isnan(b[1]) && b[2] == -kInfinity && std::isnan(b[3]) && b[4] == 20.0F);
    b = a;
    nspsbThresh1(b.data(), 5, 0.5F);
    EXPECT_TRUE(b[0] == 1.0F && b[1] == 0.5F && b[2] == 0.5F && std::isnan(b[3]) && b[4] == 1e20F);
    const std::vector<SCplx> bins{{3.0F, -4.0F}, {1e-25F, 0.0F}, {3e30F, 4e30F}, {kNaN, 0.0F}};
    nspcbMag(bins.data(), b.data(), 4);
    EXPECT_TRUE(b[0] == 5.0F && b[1] == 1e-25F && b[2] == 5e30F && std::isnan(b[3]));
    const Samples levels{-kInfinity, -0.6F, 0.5F, 1.5F, 2.5F, 254.4F, 254.5F, 255.5F, 1e30F, kNaN, kInfinity};
    std::vector<std::uint8_t> indices(levels.size());
    nspsbFloatToInt(levels.data(), indices.data(), static_cast<int>(levels.size()));
    EXPECT_EQ(indices, (std::vector<std::uint8_t>{0, 0, 0, 2, 2, 254, 254, 255, 255, 0, 255}));
}

TEST(Spectrum, TransformAndIndicesAreThoseOfDoublePrecision) {
    std::size_t cells = 0;
    std::size_t differing = 0;
    for (int order = kLeastFftOrder; order <= kMostFftOrder; ++order) {
        const std::size_t length = std::size_t{1} << order;
        // Among them ranges whose squared magnitudes would leave single precision.
        const float h = order == 6 ? 1e-20F : order == 7 ? 1e20F : 1.0F;
        // A large offset does not change the result.
        const float offset = order % 2 == 0 ? 0.0F : 40.0F;
        const Samples recording = Recording(length + 450, h, offset);
        for (int kind = 0; kind < 4; ++kind) {
            Samples window(length);
            nspsbSet(-1.0F, window.data(), static_cast<int>(length));
            kWindows[kind](window.data(), static_cast<int>(length));
            for (std::size_t i = 0; i < length; ++i) ASSERT_NEAR(window[i], -WindowAt(kind, i, length), 1.2e-7);
            std::vector<const float*> frames;
            std::vector<std::vector<std::complex<double>>> exact;
            for (std::size_t i = 0; i < 9; ++i) {
                frames.push_back(recording.data() + 50 * i + 1);
                exact.push_back(ExactBins(frames.back(), window));
            }
            Samples frame(length);
            nspsbMpy3(window.data(), frames[0], frame.data(), static_cast<int>(length));
            std::vector<SCplx> bins(length / 2 + 1);
            nspsRealFftNip(frame.data(), bins.data(), order);
            for (std::size_t k = 0; k < bins.size(); ++k) {
                const std::complex<double> bin(bins[k].re, bins[k].im);
                const double largest = static_cast<double>(h * (0.1F + offset)) * static_cast<double>(length);
                ASSERT_LT(std::abs(bin - exact[0][k]), 1e-6 * largest) << order << " " << k;
            }
            // A range of 1 dB is finer than the table's cells.
            for (const float decibels : {0.0F, 1.0F, 10.0F, 120.0F, 200.0F}) {
                const auto scale = ScaleOf(decibels, h, length);
                SpectrumBatch batch(order, window.data(), scale);
                for (std::size_t count = 1; count <= 9; ++count) {
                    std::vector<std::uint8_t> image(bins.size() * 10, 77);
                    batch.Compute({frames.data(), count}, image.data(), 10);
                    for (std::size_t at = 0; at < image.size(); ++at) {
                        const bool inside = at % 10 < count;
                        const int expected = inside ? ExactIndex(std::abs(exact[at % 10][at / 10]), scale) : 77;
                        ASSERT_LE(std::abs(image[at] - expected), inside ? 1 : 0) << order << " " << decibels;
                        if (decibels < 10.0F) continue;
                        cells += inside;
                        differing += image[at] != expected;
                    }
                }
            }
        }
    }
    EXPECT_LT(static_cast<double>(differing), 1e-4 * static_cast<double>(cells)) << differing << " of " << cells;
    EXPECT_THROW(SpectrumBatch(kMostFftOrder + 1, nullptr, {}), std::invalid_argument);
}

TEST(Spectrum, ZerosAreBlankAndNaNAffectsItsFrameOnly) {
    const Samples window(32, 1.0F);
    const Samples noise = Recording(32, 1.0F, 0.0F);
    for (const float decibels : {0.0F, 1.0F, 120.0F}) {
        SpectrumBatch batch(5, window.data(), ScaleOf(decibels, 1.0F, 32));
        std::vector<std::uint8_t> image(3 * 17);
        for (const float value : {kNaN, kInfinity, 3e38F, 1e-45F, 0.0F}) {
            const Samples frame(32, value);
            const float* const frames[] = {noise.data(), frame.data(), noise.data()};
            batch.Compute({frames + 2, 1}, image.data() + 2, 3);
            batch.Compute({frames, 2}, image.data(), 3);
            for (std::size_t k = 0; k < 17; ++k) {
                ASSERT_EQ(image[3 * k], image[3 * k + 2]) << decibels << " " << value;
                ASSERT_TRUE(std::abs(value) >= 1.0F || image[3 * k + 1] == 0) << decibels << " " << value;
            }
        }
    }
}

using testing::Codes;

/// Noise, ties, a constant, slopes, spikes or the ends of the range.
Codes MakeSamples(std::size_t shape, std::size_t count, std::mt19937& random) {
    Codes samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const int noise = static_cast<int>(random() % 65536) - 32768;
        const int rising = static_cast<int>(i % 65536) - 32768;
        const int ends[] = {0, -32768, 32767};
        const int values[] = {
            noise, noise % 2, 7, rising, -1 - rising, noise % 97 == 0 ? noise : 0, ends[random() % 3]};
        samples[i] = static_cast<std::int16_t>(values[shape % std::size(values)]);
    }
    return samples;
}

/// Room for the runs of every channel, and where each begins.
struct Results {
    Results(std::size_t channels, std::size_t runs) : pairs(channels, std::vector<ExtremePair>(runs)) {
        for (auto& channel : pairs) out.push_back(channel.data());
    }
    std::vector<std::vector<ExtremePair>> pairs;
    std::vector<ExtremePair*> out;
};

/// By the plain loop: first occurrences by position, the maximum first on ties.
std::vector<ExtremePair> ExpectedPairs(const Codes& samples, std::size_t run) {
    std::vector<ExtremePair> expected;
    for (std::size_t at = 0; at < samples.size(); at += run) {
        const std::int16_t* const from = samples.data() + at;
        expected.push_back(fuzz::PlainExtremes(from, from + std::min(run, samples.size() - at)));
    }
    return expected;
}

/// The data are fed in pieces of random size; every piece is a copy of its own, so that reading past one is caught.
void ExpectPlainResults(const std::vector<Codes>& samples, std::size_t run, const std::vector<std::size_t>& selected,
                        LaneCount lanes, std::mt19937& random) {
    const std::size_t channels = samples.size();
    const std::size_t count = samples[0].size();
    Results planar(channels, (count + run - 1) / run);
    Results framed(selected.size(), (count + run - 1) / run);
    PlanarSetReducer planarReducer(static_cast<std::int32_t>(run), planar.out, lanes);
    FrameRunReducer frameReducer(channels, selected, static_cast<std::int32_t>(run), framed.out, lanes);
    const std::size_t longest = 1 + random() % (random() % 4 == 0 ? 20 : count + 1);
    for (std::size_t at = 0, size = 0; at < count; at += size) {
        size = std::min<std::size_t>(count - at, random() % (longest + 1));
        std::vector<Codes> pieces;
        std::vector<const std::int16_t*> pointers;
        Codes frames(size * channels);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            pieces.emplace_back(samples[channel].data() + at, samples[channel].data() + at + size);
            pointers.push_back(pieces.back().data());
            for (std::size_t i = 0; i < size; ++i) frames[i * channels + channel] = pieces.back()[i];
        }
        planarReducer.Feed(pointers, size);
        frameReducer.Feed(frames.data(), size);
    }
    planarReducer.Finish();
    frameReducer.Finish();
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto expected = ExpectedPairs(samples[channel], run);
        ASSERT_EQ(planar.pairs[channel], expected) << "channel " << channel << " of " << channels << ", run " << run;
        const auto found = std::find(selected.begin(), selected.end(), channel) - selected.begin();
        if (found == std::ssize(selected)) continue;
        ASSERT_EQ(framed.pairs[static_cast<std::size_t>(found)], expected)
            << "frames: channel " << channel << " of " << channels << ", run " << run;
    }
}

TEST(RunReducerTest, RunsOfFramesAndOfPlanarSetsAreThoseOfThePlainLoop) {
    std::mt19937 random(2);
    for (std::size_t round = 0; round < 700; ++round) {
        const std::size_t kind = random() % 36;
        const std::size_t channels = kind < 33 ? kind + 1 : kind == 33 ? 40 : kind == 34 ? 64 : 1 + random() % 8;
        const std::size_t lengths[] = {1 + random() % 12, 1 + random() % 300, 1000, 2001, 4200};
        const std::size_t run = lengths[random() % (round % 2 == 0 ? 2 : std::size(lengths))];
        const std::size_t count = 1 + random() % (round % 5 == 0 ? 3000 : run * 3 + 40);
        std::vector<Codes> samples(channels);
        for (auto& channel : samples) channel = MakeSamples(random() % 2 == 0 ? round : random(), count, random);
        std::vector<std::size_t> selected(channels);
        std::iota(selected.begin(), selected.end(), std::size_t{0});
        std::shuffle(selected.begin(), selected.end(), random);
        if (round % 3 != 0) selected.resize(random() % (channels + 1));
        for (const LaneCount lanes : {LaneCount::Eight, MostLanes()}) {
            ExpectPlainResults(samples, run, selected, lanes, random);
            if (HasFatalFailure()) FAIL() << "round " << round << ", lanes " << static_cast<int>(lanes);
        }
    }
}

TEST(RunReducerTest, RunsAnywhereInRowsAreThoseOfThePlainLoop) {
    std::mt19937 random(3);
    for (std::size_t round = 0; round < 500; ++round) {
        const std::size_t lengths[] = {1 + random() % 10, 1 + random() % 200, 4090 + random() % 10};
        const std::size_t shortest = lengths[round % 10 == 0 ? 2 : random() % 2];
        const std::size_t differences[] = {1, 2, 3, 30};
        const std::size_t difference = differences[random() % std::size(differences)];
        std::vector<RowRun> runs;
        std::int32_t end = 0;
        for (std::size_t left = 1 + random() % 40; left > 0; --left) {
            const auto first = end + static_cast<std::int32_t>(random() % 3 == 0 ? random() % 50 : 0);
            end = first + static_cast<std::int32_t>(shortest + random() % difference);
            runs.push_back({first, end});
        }
        const std::size_t count = std::max<std::size_t>(static_cast<std::size_t>(end),
                                                        static_cast<std::size_t>(runs.back().first + kRowPadding));
        std::vector<Codes> rows(1 + random() % 35);
        std::vector<const std::int16_t*> pointers;
        for (auto& row : rows) {
            row = MakeSamples(random() % 2 == 0 ? round : random(), count, random);
            pointers.push_back(row.data());
        }
        for (const LaneCount lanes : {LaneCount::Eight, MostLanes()}) {
            Results results(rows.size(), runs.size());
            ReduceRowRuns(pointers, runs, results.out, lanes);
            for (std::size_t row = 0; row < rows.size(); ++row) {
                for (std::size_t run = 0; run < runs.size(); ++run) {
                    const auto expected =
                        fuzz::PlainExtremes(pointers[row] + runs[run].first, pointers[row] + runs[run].end);
                    ASSERT_EQ(results.pairs[row][run], expected) << round << ", run " << run << " of row " << row;
                }
            }
        }
    }
}

TEST(RunReducerTest, ExtremesFarApartInARunKeepTheirOrder) {
    constexpr std::size_t frames = 800000;
    constexpr std::size_t channels = 3;
    Codes samples(frames * channels);
    // More groups lie between them than 16 bits count.
    const std::size_t places[] = {7, 790000};
    for (std::size_t channel = 0; channel < 2; ++channel) {
        samples[places[channel] * channels + channel] = 5;
        samples[places[1 - channel] * channels + channel] = -5;
    }
    Results results(channels, 1);
    std::vector<std::size_t> selected{0, 1, 2};
    for (const LaneCount lanes : {LaneCount::Eight, MostLanes()}) {
        FrameRunReducer reducer(channels, selected, frames, results.out, lanes);
        reducer.Feed(samples.data(), frames);
        EXPECT_EQ(results.pairs[0][0], (ExtremePair{5, -5}));
        EXPECT_EQ(results.pairs[1][0], (ExtremePair{-5, 5}));
        EXPECT_EQ(results.pairs[2][0], (ExtremePair{0, 0}));
    }
}

}  // namespace
}  // namespace quillon::nsp
