#include "nsp/RunReducer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "nsp/NspExtrema.h"

namespace quillon::nsp {
namespace {

/// The rule as it is written down: first occurrences by position, the maximum first on ties.
ExtremePair NaiveExtremes(const std::vector<std::int16_t>& samples) {
    const auto maximum = std::max_element(samples.begin(), samples.end());
    const auto minimum = std::min_element(samples.begin(), samples.end());
    return minimum < maximum ? ExtremePair{*minimum, *maximum} : ExtremePair{*maximum, *minimum};
}

std::vector<ExtremePair> NaiveRuns(const std::vector<std::int16_t>& frames, std::size_t channels, std::size_t channel,
                                   std::size_t run) {
    std::vector<ExtremePair> result;
    std::vector<std::int16_t> samples;
    for (std::size_t at = channel; at < frames.size(); at += channels) {
        samples.push_back(frames[at]);
        if (samples.size() < run && at + channels < frames.size()) continue;
        result.push_back(NaiveExtremes(samples));
        samples.clear();
    }
    return result;
}

enum class Shape { Noise, Ties, Constant, Rising, Falling, Spikes, FullScale, kCount };

std::vector<std::int16_t> MakeSamples(std::size_t shape, std::size_t count, std::mt19937& random) {
    std::vector<std::int16_t> samples(count);
    constexpr int kLowest = std::numeric_limits<std::int16_t>::min();
    constexpr int kHighest = std::numeric_limits<std::int16_t>::max();
    for (std::size_t i = 0; i < count; ++i) {
        const int noise = static_cast<int>(random() % 65536) + kLowest;
        int value = 7;
        switch (static_cast<Shape>(shape % static_cast<std::size_t>(Shape::kCount))) {
            case Shape::Noise: value = noise; break;
            case Shape::Ties: value = noise % 2; break;
            case Shape::Rising: value = static_cast<int>(i % 65536) + kLowest; break;
            case Shape::Falling: value = kHighest - static_cast<int>(i % 65536); break;
            case Shape::Spikes: value = random() % 97 == 0 ? noise : 0; break;
            case Shape::FullScale: value = noise % 3 == 0 ? kLowest : noise % 3 == 1 ? kHighest : 0; break;
            case Shape::Constant:
            case Shape::kCount: break;
        }
        samples[i] = static_cast<std::int16_t>(value);
    }
    return samples;
}

/// Cuts arrays of equal length into pieces of random size; every piece is a copy of its own, so that reading past one
/// is caught. One step takes `width` values of each array.
template <typename Feed>
void FeedInPieces(const std::vector<std::vector<std::int16_t>>& arrays, std::size_t width, std::mt19937& random,
                  Feed feed) {
    const std::size_t count = arrays[0].size() / width;
    const std::size_t longest = 1 + random() % (random() % 4 == 0 ? 20 : count + 1);
    for (std::size_t at = 0; at < count;) {
        const std::size_t size = std::min<std::size_t>(count - at, random() % (longest + 1));
        std::vector<std::vector<std::int16_t>> pieces;
        std::vector<const std::int16_t*> pointers;
        for (const auto& array : arrays) {
            const auto start = array.begin() + static_cast<std::ptrdiff_t>(at * width);
            pieces.emplace_back(start, start + static_cast<std::ptrdiff_t>(size * width));
            pointers.push_back(pieces.back().data());
        }
        feed(pointers, size);
        at += size;
    }
}

/// Room for the runs of every channel, and where each begins.
struct Results {
    Results(std::size_t channels, std::size_t runs) : pairs(channels, std::vector<ExtremePair>(runs)) {
        for (auto& channel : pairs) out.push_back(channel.data());
    }
    std::vector<std::vector<ExtremePair>> pairs;
    std::vector<ExtremePair*> out;
};

std::size_t RandomRun(std::mt19937& random) {
    constexpr std::size_t kLong[] = {1000, 2000, 2001};
    return random() % 5 == 0 ? kLong[random() % 3] : 1 + random() % 300;
}

TEST(RunReducerTest, FrameRunsOfAnySelectionAreThoseOfThePlainLoop) {
    std::mt19937 random(2);
    for (std::size_t round = 0; round < 700; ++round) {
        const std::size_t kind = random() % 36;
        const std::size_t channels = kind < 33 ? kind + 1 : kind == 33 ? 40 : kind == 34 ? 64 : 1 + random() % 8;
        const std::size_t run = random() % 2 == 0 ? 1 + random() % 12 : RandomRun(random);
        const auto frames = MakeSamples(round, channels * (1 + random() % (run * 3 + 40)), random);
        std::vector<std::size_t> selected(channels);
        std::iota(selected.begin(), selected.end(), std::size_t{0});
        std::shuffle(selected.begin(), selected.end(), random);
        if (round % 3 != 0) selected.resize(random() % (channels + 1));
        Results found(selected.size(), (frames.size() / channels + run - 1) / run);
        FrameRunReducer reducer(channels, selected, static_cast<std::int32_t>(run), found.out);
        FeedInPieces({frames}, channels, random,
                     [&](const auto& piece, std::size_t size) { reducer.Feed(piece[0], size); });
        reducer.Finish();
        for (std::size_t i = 0; i < selected.size(); ++i) {
            ASSERT_EQ(found.pairs[i], NaiveRuns(frames, channels, selected[i], run))
                << "channel " << selected[i] << " of " << channels << ", run " << run << ", round " << round;
        }
    }
}

TEST(RunReducerTest, PlanarSetsAreReducedLikeEveryChannelAlone) {
    std::mt19937 random(31);
    for (std::size_t round = 0; round < 250; ++round) {
        const std::size_t channels = 1 + random() % 35;
        const std::size_t count = 1 + random() % 3000;
        const std::size_t run = 1 + random() % (round % 2 == 0 ? 40 : 600);
        std::vector<std::vector<std::int16_t>> samples(channels);
        for (auto& channel : samples) channel = MakeSamples(random(), count, random);
        Results found(channels, (count + run - 1) / run);
        PlanarSetReducer reducer(static_cast<std::int32_t>(run), found.out);
        FeedInPieces(samples, 1, random, [&](const auto& piece, std::size_t size) { reducer.Feed(piece, size); });
        reducer.Finish();
        for (std::size_t channel = 0; channel < channels; ++channel) {
            ASSERT_EQ(found.pairs[channel], NaiveRuns(samples[channel], 1, 0, run)) << channels << ' ' << run;
        }
    }
}

TEST(RunReducerTest, SignalLibraryCallsFindTheFirstOccurrence) {
    std::mt19937 random(3);
    int at = 5;
    EXPECT_EQ(nspwMaxExt(nullptr, 0, &at), 0);
    EXPECT_EQ(at, -1);
    for (std::size_t round = 0; round < 400; ++round) {
        const auto samples = MakeSamples(round, 1 + random() % 90, random);
        const int count = static_cast<int>(samples.size());
        const auto maximum = std::max_element(samples.begin(), samples.end());
        const auto minimum = std::min_element(samples.begin(), samples.end());
        EXPECT_EQ(nspwMaxExt(samples.data(), count, &at), *maximum);
        EXPECT_EQ(at, maximum - samples.begin());
        EXPECT_EQ(nspwMinExt(samples.data(), count, &at), *minimum);
        EXPECT_EQ(at, minimum - samples.begin());
        EXPECT_EQ(nspwMax(samples.data(), count), *maximum);
        EXPECT_EQ(nspwMin(samples.data(), count), *minimum);
    }
}

}  // namespace
}  // namespace quillon::nsp
