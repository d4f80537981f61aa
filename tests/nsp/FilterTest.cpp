#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

#include "nsp/FilterReference.h"
#include "nsp/FilterStream.h"

namespace quillon::nsp {
namespace {

using Codes = std::vector<std::int16_t>;

/// As in scripts/check-filters.
Codes Noise(int count, std::uint32_t state = 1) {
    Codes codes(static_cast<std::size_t>(count));
    for (std::int16_t& code : codes) {
        state = state * 1664525U + 1013904223U;
        code = static_cast<std::int16_t>(static_cast<int>(state >> 16) - 32768);
    }
    return codes;
}

/// One channel in one run from the first sample on, without cells; from the last one back with both ways.
std::vector<float> Uncut(const FilterDesign& design, const Codes& codes) {
    FilterBank bank(design.Sections(), 1);
    const std::int16_t* from = codes.data();
    std::vector<float> result(codes.size());
    float* to = result.data();
    bank.Start({{&from, 1}});
    bank.Feed({{&from, 1}}, codes.size(), {{&to, 1}});
    if (!design.BothWays()) return result;
    to = &result.back();
    const float* last = to;
    bank.Start(FloatSamples{{&last, 1}, -1});
    bank.Feed(FloatSamples{{&last, 1}, -1}, codes.size(), {{&to, 1}, -1});
    return result;
}

/// The wanted samples of all channels, fed in random pieces.
std::vector<std::vector<float>> Part(const FilterDesign& design, CodeSamples samples, std::int32_t blockSamples,
                                     SampleSpan wanted, LaneCount lanes, std::mt19937& random) {
    const int codesAtOnce = std::array{700, 5000, FilterStream::kCodesAtOnce}[random() % 3];
    FilterStream stream(design, samples.start.size(), wanted, blockSamples, lanes, codesAtOnce);
    std::vector<std::vector<float>> result(samples.start.size());
    for (SampleSpan next = stream.Next(); next.count > 0; next = stream.Next()) {
        const std::int32_t most = std::min(next.count, random() % 2 == 0 ? 100 : 5000);
        const auto count = static_cast<std::int32_t>(random() % static_cast<unsigned>(most)) + 1;
        stream.Feed(samples.From(next.first), static_cast<std::size_t>(count));
        for (std::size_t c = 0; c < result.size(); ++c) {
            EXPECT_EQ(stream.Ready().first, wanted.first + static_cast<std::int32_t>(result[c].size()));
            result[c].insert(result[c].end(), stream.Row(c), stream.Row(c) + stream.Ready().count);
        }
    }
    return result;
}

std::vector<float> Whole(const FilterDesign& design, const Codes& codes) {
    std::mt19937 random(1);
    const std::int16_t* from = codes.data();
    const auto count = static_cast<std::int32_t>(codes.size());
    return Part(design, {{&from, 1}}, count, {0, count}, LaneCount::Eight, random)[0];
}

/// Magnitudes of the response to a sample of 1, by the difference equations of the sections.
std::vector<double> Response(const FilterDesign& design, std::size_t count) {
    std::vector<double> response(count);
    response[0] = 1.0;
    for (const FilterSection& section : design.Sections()) {
        double s1 = 0.0;
        double s2 = 0.0;
        for (double& sample : response) {
            const double u = sample - section.damping * s1 - s2;
            const double b = s1 + section.first * u;
            const double l = s2 + section.second * b;
            s1 += 2.0 * section.first * u;
            s2 += 2.0 * section.second * b;
            sample = section.high * u + section.band * b + section.low * l;
        }
    }
    return response;
}

TEST(Filter, EqualsTheReference) {
    for (const FilterReference& reference : kFilterReferences) {
        const FilterSettings& settings = reference.settings;
        SCOPED_TRACE(::testing::Message()
                     << settings.highPass << " to " << settings.lowPass << " Hz of order " << settings.order
                     << ", notch " << settings.notch << " at " << reference.rate);
        const FilterDesign design(settings, reference.rate);
        const Codes codes = Noise(reference.count);
        const std::vector<float> uncut = Uncut(design, codes);
        const std::vector<float> cut = Whole(design, codes);
        const std::size_t places[] = {0, 1, 59, codes.size() / 2, codes.size() - 1};
        for (std::size_t i = 0; i < 5; ++i) EXPECT_NEAR(uncut[places[i]], reference.values[i], 0.005) << places[i];
        double squares = 0.0;
        float worst = 0.0F;
        for (std::size_t i = 0; i < codes.size(); ++i) {
            squares += static_cast<double>(uncut[i]) * static_cast<double>(uncut[i]);
            worst = std::max(worst, std::fabs(cut[i] - uncut[i]));
        }
        EXPECT_NEAR(std::sqrt(squares / reference.count), reference.rms, 0.001);
        EXPECT_LE(worst, 0.505F);
    }
}

TEST(Filter, SettlingIsABoundAndNotMuchMore) {
    const std::pair<FilterSettings, double> cases[] = {
        {{.highPass = 0.1}, 256.0},
        {{.highPass = 0.1, .lowPass = 35.0, .order = 1}, 256.0},
        {{.highPass = 0.5, .lowPass = 35.0, .order = 4}, 500.0},
        {{.highPass = 5.0, .lowPass = 6.0}, 256.0},
        {{.lowPass = 0.49}, 1.0},
        {{.lowPass = 0.25, .order = 1}, 1.0},
        {{.highPass = 0.01, .order = 4}, 100.0},
        {{.highPass = 0.5, .lowPass = 35.0, .notch = 50.0}, 256.0},
        {{.notch = 60.0}, 5000.0},
        {{.notch = 49.99}, 100.0},
        {{.highPass = 0.3, .lowPass = 30.0, .bothWays = true}, 200.0},
        {{.notch = 50.0, .bothWays = true}, 1000.0},
    };
    for (const auto& [settings, rate] : cases) {
        SCOPED_TRACE(::testing::Message() << settings.highPass << ' ' << settings.lowPass << ' ' << settings.notch);
        const FilterDesign design(settings, rate);
        const auto settling = static_cast<std::size_t>(design.Settling());
        const std::vector<double> response = Response(design, 2 * settling + 100);
        double norm = 0.0;
        for (const double value : response) norm += std::fabs(value);
        // The least number of samples after which the rest of the response cannot make half a code of anything.
        const double room = settings.bothWays ? 0.25 / norm : 0.5;
        std::size_t least = response.size();
        for (double tail = 0.0; least > 0; --least) {
            tail += std::fabs(response[least - 1]);
            if (65536.0 * tail > room) break;
        }
        EXPECT_GE(settling, least);
        EXPECT_LE(static_cast<double>(settling), 1.35 * static_cast<double>(least) + 5.0);
        EXPECT_GE(design.CellLength(), 2 * design.Settling());
        EXPECT_FALSE(design.IsSettlingCut());
    }
    // Slower than what is worth waiting for, and poles that nearly or exactly meet.
    EXPECT_TRUE(FilterDesign({.highPass = 1e-4}, 250000.0).IsSettlingCut());
    EXPECT_TRUE(FilterDesign({.highPass = 1e-200}, 250000.0).IsSettlingCut());
    const FilterDesign crossing({.highPass = 10.0, .lowPass = 10.0001}, 256.0);
    EXPECT_GE(crossing.Settling(), FilterDesign({.highPass = 10.0}, 256.0).Settling());
    EXPECT_LE(crossing.Settling(), 5 * FilterDesign({.highPass = 10.0}, 256.0).Settling());
}

TEST(Filter, NothingOlderThanTheRunUpMakesHalfACode) {
    for (const bool bothWays : {false, true}) {
        const FilterDesign design({.highPass = 0.5, .lowPass = 35.0, .notch = 50.0, .bothWays = bothWays}, 256.0);
        const std::int32_t cell = design.CellLength();
        // Before the run-up of the second cell, the codes that change its first sample most.
        Codes codes(static_cast<std::size_t>(cell + 3 * design.Settling()), 32767);
        const std::vector<double> response = Response(design, static_cast<std::size_t>(cell) + 1);
        for (std::int32_t i = 0; i < cell - design.Settling(); ++i) {
            if (response[static_cast<std::size_t>(cell - i)] > 0.0) codes[static_cast<std::size_t>(i)] = -32768;
        }
        const std::vector<float> cut = Whole(design, codes);
        const std::vector<float> uncut = Uncut(design, codes);
        float worst = 0.0F;
        for (auto i = static_cast<std::size_t>(cell); i < codes.size(); ++i)
            worst = std::max(worst, std::fabs(cut[i] - uncut[i]));
        EXPECT_LE(worst, 0.505F);
        if (!bothWays) {
            EXPECT_GE(worst, 0.03F);
        }
    }
}

TEST(Filter, AnyPartIsTheSameBits) {
    std::mt19937 random(5);
    const std::pair<FilterSettings, double> cases[] = {
        {{.highPass = 0.5, .lowPass = 35.0}, 256.0},
        {{.highPass = 2.0, .lowPass = 70.0, .order = 1, .notch = 50.0}, 256.0},
        {{.highPass = 1.0, .order = 4, .bothWays = true}, 256.0},
        {{.lowPass = 0.3, .notch = 0.1, .bothWays = true}, 1.0},
        {{}, 256.0},
    };
    for (const auto& [settings, rate] : cases) {
        SCOPED_TRACE(::testing::Message() << settings.highPass << ' ' << settings.lowPass << ' ' << settings.notch);
        const FilterDesign design(settings, rate);
        const auto samples = static_cast<std::int32_t>(3 * design.CellLength() + 777);
        constexpr std::size_t kChannels = 19;
        const Codes frames = Noise(samples * static_cast<std::int32_t>(kChannels));
        std::vector<Codes> rows(kChannels);
        std::vector<std::vector<float>> whole;
        for (std::size_t c = 0; c < kChannels; ++c) {
            for (std::size_t i = c; i < frames.size(); i += kChannels) rows[c].push_back(frames[i]);
            whole.push_back(Whole(design, rows[c]));
        }
        for (int round = 0; round < 30; ++round) {
            const auto first = static_cast<std::int32_t>(random() % static_cast<unsigned>(samples));
            const auto most = static_cast<unsigned>(round % 3 == 0 ? samples - first : std::min(samples - first, 500));
            const SampleSpan wanted{first, static_cast<std::int32_t>(random() % most) + 1};
            std::vector<std::size_t> chosen;
            std::vector<const std::int16_t*> start;
            for (std::size_t count = random() % kChannels + 1; chosen.size() < count;)
                chosen.push_back(random() % kChannels);
            const bool ofFrames = random() % 2 == 0;
            for (const std::size_t c : chosen) start.push_back(ofFrames ? frames.data() + c : rows[c].data());
            const auto part = Part(design, {start, ofFrames ? std::ptrdiff_t{kChannels} : 1}, samples, wanted,
                                   random() % 2 == 0 ? LaneCount::Eight : MostLanes(), random);
            for (std::size_t i = 0; i < chosen.size(); ++i) {
                ASSERT_EQ(part[i].size(), static_cast<std::size_t>(wanted.count));
                ASSERT_TRUE(std::equal(part[i].begin(), part[i].end(), whole[chosen[i]].begin() + wanted.first))
                    << wanted.first << " + " << wanted.count << ", " << chosen.size() << " channels";
            }
        }
    }
}

TEST(Filter, AConstantPassesFromTheFirstSampleOn) {
    for (const int order : {1, 2, 4}) {
        for (const double rate : {1.0, 256.0, 250000.0}) {
            for (const bool bothWays : {false, true}) {
                const Codes codes(5000, -32768);
                const auto all = [&](const FilterSettings& settings, float value) {
                    const std::vector<float> result = Whole(FilterDesign(settings, rate), codes);
                    return std::all_of(result.begin(), result.end(), [&](float sample) { return sample == value; });
                };
                const double low = 0.003 * rate;
                EXPECT_TRUE(all({.lowPass = low, .order = order, .notch = low, .bothWays = bothWays}, -32768.0F));
                EXPECT_TRUE(all({.highPass = low, .order = order, .notch = low, .bothWays = bothWays}, 0.0F));
                EXPECT_TRUE(all({.highPass = low, .lowPass = 2 * low, .order = order, .bothWays = bothWays}, 0.0F));
            }
        }
    }
}

TEST(Filter, StaysStable) {
    const Codes noise = Noise(100000);
    Codes codes(noise.size() * 2, 0);
    std::copy(noise.begin(), noise.end(), codes.begin());
    for (const double corner : {1e-9, 1e-4, 0.1, 0.49, 0.4999999}) {
        for (const FilterSettings& settings :
             {FilterSettings{.highPass = corner, .order = 4}, FilterSettings{.lowPass = corner, .order = 4},
              FilterSettings{.lowPass = corner, .order = 1, .notch = corner}}) {
            const std::vector<float> result = Uncut(FilterDesign(settings, 1.0), codes);
            for (const float sample : result) ASSERT_LE(std::fabs(sample), 4 * 65536.0F) << corner;
            if (corner == 0.1 || corner == 0.49) {
                EXPECT_LT(std::fabs(result.back()), 1e-6F) << corner;
            }
        }
    }
}

TEST(Filter, TellsWhatCannotBe) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double below = std::nextafter(128.0, 0.0);
    const std::tuple<FilterSettings, double, FilterRefusal> cases[] = {
        {{}, 256.0, FilterRefusal::None},
        {{.highPass = 10.0, .lowPass = below}, 256.0, FilterRefusal::None},
        {{.highPass = below}, 256.0, FilterRefusal::None},
        {{.notch = below}, 256.0, FilterRefusal::None},
        {{.highPass = 128.0}, 256.0, FilterRefusal::HighPassTooHigh},
        {{.highPass = 10.0, .lowPass = 128.0}, 256.0, FilterRefusal::LowPassTooHigh},
        {{.notch = 50.0}, 100.0, FilterRefusal::NotchTooHigh},
        {{.highPass = 35.0, .lowPass = 35.0}, 256.0, FilterRefusal::CornersCross},
        {{.lowPass = -1.0}, 256.0, FilterRefusal::Unusable},
        {{.notch = nan}, 256.0, FilterRefusal::Unusable},
        {{.highPass = 1.0, .order = 3}, 256.0, FilterRefusal::Unusable},
        {{}, 0.0, FilterRefusal::Unusable},
        {{}, nan, FilterRefusal::Unusable},
    };
    for (const auto& [settings, rate, refusal] : cases) {
        EXPECT_EQ(RefusalOf(settings, rate), refusal) << settings.highPass << ' ' << settings.lowPass;
        if (refusal == FilterRefusal::None) {
            EXPECT_TRUE(std::isfinite(Whole(FilterDesign(settings, rate), Noise(100)).back()));
        } else {
            EXPECT_THROW(FilterDesign(settings, rate), std::invalid_argument);
        }
    }
    const FilterDesign design({.highPass = 1.0}, 256.0);
    EXPECT_THROW(FilterStream(design, 1, {10, 11}, 20), std::invalid_argument);
    EXPECT_THROW(FilterStream(design, 1, {0, 0}, 20), std::invalid_argument);
    FilterStream stream(design, 1, {0, 10}, 20);
    const Codes codes(20);
    const std::int16_t* const start = codes.data();
    EXPECT_THROW(stream.Feed({{&start, 1}}, 11), std::invalid_argument);
}

}  // namespace
}  // namespace quillon::nsp
