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
        if (samples.size() == run || at + channels >= frames.size()) {
            result.push_back(NaiveExtremes(samples));
            samples.clear();
        }
    }
    return result;
}

enum class Shape { Noise, Ties, Constant, Rising, Falling, Spikes, FullScale, kCount };

std::vector<std::int16_t> MakeSamples(Shape shape, std::size_t count, std::mt19937& random) {
    std::vector<std::int16_t> samples(count);
    constexpr int kLowest = std::numeric_limits<std::int16_t>::min();
    constexpr int kHighest = std::numeric_limits<std::int16_t>::max();
    for (std::size_t i = 0; i < count; ++i) {
        const int noise = static_cast<int>(random() % 65536) + kLowest;
        int value = 7;
        switch (shape) {
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

/// Cuts the frames into pieces of random size; every piece is a copy of its own, so that reading past one is caught.
template <typename Feed>
void FeedInPieces(const std::vector<std::int16_t>& frames, std::size_t channels, std::mt19937& random, Feed feed) {
    const std::size_t count = frames.size() / channels;
    const std::size_t longest = 1 + random() % (count + 1);
    for (std::size_t at = 0; at < count;) {
        const std::size_t size = std::min<std::size_t>(count - at, random() % (longest + 1));
        const auto start = frames.begin() + static_cast<std::ptrdiff_t>(at * channels);
        const std::vector<std::int16_t> piece(start, start + static_cast<std::ptrdiff_t>(size * channels));
        feed(piece.data(), size);
        at += size;
    }
}

std::size_t RandomRun(std::mt19937& random) {
    constexpr std::size_t kLong[] = {1000, 2000, 2001};
    return random() % 5 == 0 ? kLong[random() % 3] : 1 + random() % 300;
}

TEST(RunReducerTest, PlanarRunsAreThoseOfThePlainLoop) {
    std::mt19937 random(1);
    for (std::size_t round = 0; round < 420; ++round) {
        const auto shape = static_cast<Shape>(round % static_cast<std::size_t>(Shape::kCount));
        const std::size_t run = round < 300 ? round + 1 : RandomRun(random);
        const auto samples = MakeSamples(shape, 1 + random() % (run * 20), random);
        const auto expected = NaiveRuns(samples, 1, 0, run);
        std::vector<ExtremePair> found(expected.size());
        PlanarRunReducer reducer(static_cast<std::int32_t>(run), found.data());
        FeedInPieces(samples, 1, random,
                     [&](const std::int16_t* piece, std::size_t size) { reducer.Feed(piece, size); });
        reducer.Finish();
        ASSERT_EQ(found, expected) << "run " << run << ", shape " << round % 7 << ", round " << round;
    }
}

TEST(RunReducerTest, FrameRunsOfAnySelectionAreThoseOfThePlainLoop) {
    std::mt19937 random(2);
    for (std::size_t round = 0; round < 700; ++round) {
        const auto shape = static_cast<Shape>(round % static_cast<std::size_t>(Shape::kCount));
        const std::size_t kind = random() % 36;
        const std::size_t channels = kind < 33 ? kind + 1 : kind == 33 ? 40 : kind == 34 ? 64 : 1 + random() % 8;
        const std::size_t run = random() % 2 == 0 ? 1 + random() % 12 : RandomRun(random);
        const auto frames = MakeSamples(shape, channels * (1 + random() % (run * 3 + 40)), random);
        std::vector<std::size_t> selected(channels);
        std::iota(selected.begin(), selected.end(), std::size_t{0});
        std::shuffle(selected.begin(), selected.end(), random);
        if (round % 3 != 0) selected.resize(random() % (channels + 1));

        std::vector<std::vector<ExtremePair>> found;
        for (std::size_t i = 0; i < selected.size(); ++i) {
            found.emplace_back((frames.size() / channels + run - 1) / run);
        }
        std::vector<ExtremePair*> out;
        for (auto& results : found) out.push_back(results.data());
        FrameRunReducer reducer(channels, selected, static_cast<std::int32_t>(run), out);
        FeedInPieces(frames, channels, random,
                     [&](const std::int16_t* piece, std::size_t size) { reducer.Feed(piece, size); });
        reducer.Finish();
        for (std::size_t i = 0; i < selected.size(); ++i) {
            ASSERT_EQ(found[i], NaiveRuns(frames, channels, selected[i], run))
                << "channel " << selected[i] << " of " << channels << ", run " << run << ", round " << round;
        }
    }
}

TEST(RunReducerTest, SignalLibraryCallsFindTheFirstOccurrence) {
    std::mt19937 random(3);
    for (std::size_t round = 0; round < 400; ++round) {
        const auto samples =
            MakeSamples(static_cast<Shape>(round % static_cast<std::size_t>(Shape::kCount)), 1 + random() % 90, random);
        const int count = static_cast<int>(samples.size());
        const auto maximum = std::max_element(samples.begin(), samples.end());
        const auto minimum = std::min_element(samples.begin(), samples.end());
        int at = -1;
        EXPECT_EQ(nspwMaxExt(samples.data(), count, &at), *maximum);
        EXPECT_EQ(at, maximum - samples.begin());
        EXPECT_EQ(nspwMinExt(samples.data(), count, &at), *minimum);
        EXPECT_EQ(at, minimum - samples.begin());
        EXPECT_EQ(nspwMax(samples.data(), count), *maximum);
        EXPECT_EQ(nspwMin(samples.data(), count), *minimum);
    }
    int at = 5;
    EXPECT_EQ(nspwMaxExt(nullptr, 0, &at), 0);
    EXPECT_EQ(at, -1);
}

TEST(PlanarSetReducer, EqualsTheNaiveRunsOfEveryChannel) {
    std::mt19937 random(31);
    for (int round = 0; round < 250; ++round) {
        const std::size_t channels = 1 + random() % 35;
        const std::size_t count = 1 + random() % 3000;
        const std::size_t run = round % 2 == 0 ? 1 + random() % 40 : 1 + random() % 600;
        std::vector<std::vector<std::int16_t>> samples;
        std::vector<std::vector<ExtremePair>> results(channels);
        std::vector<ExtremePair*> out;
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const auto shape = static_cast<Shape>(random() % static_cast<unsigned>(Shape::kCount));
            samples.push_back(MakeSamples(shape, count, random));
            results[channel].resize((count + run - 1) / run);
            out.push_back(results[channel].data());
        }
        PlanarSetReducer reducer(static_cast<std::int32_t>(run), out);
        std::vector<std::vector<std::int16_t>> pieces(channels);
        std::vector<const std::int16_t*> pointers(channels);
        for (std::size_t at = 0; at < count;) {
            const std::size_t size = std::min<std::size_t>(count - at, random() % (round % 5 == 0 ? 20 : 900));
            for (std::size_t channel = 0; channel < channels; ++channel) {
                // Copies of their own, so that reading past a piece is noticed.
                const auto from = samples[channel].begin() + static_cast<std::ptrdiff_t>(at);
                pieces[channel].assign(from, from + static_cast<std::ptrdiff_t>(size));
                pieces[channel].shrink_to_fit();
                pointers[channel] = pieces[channel].data();
            }
            reducer.Feed(pointers, size);
            at += size;
        }
        reducer.Finish();
        for (std::size_t channel = 0; channel < channels; ++channel) {
            ASSERT_EQ(results[channel], NaiveRuns(samples[channel], 1, 0, run))
                << channels << ' ' << count << ' ' << run;
        }
    }
}

}  // namespace
}  // namespace quillon::nsp
