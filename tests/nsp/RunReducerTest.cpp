#include "nsp/RunReducer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "norvik/BlockChecks.h"

namespace quillon::nsp {
namespace {

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

/// By the plain loop: first occurrences by position, the maximum first on ties. The data are fed in pieces of random
/// size; every piece is a copy of its own, so that reading past one is caught.
TEST(RunReducerTest, RunsOfFramesAndOfPlanarSetsAreThoseOfThePlainLoop) {
    std::mt19937 random(2);
    for (std::size_t round = 0; round < 700; ++round) {
        const std::size_t kind = random() % 36;
        const std::size_t channels = kind < 33 ? kind + 1 : kind == 33 ? 40 : kind == 34 ? 64 : 1 + random() % 8;
        const std::size_t lengths[] = {1 + random() % 12, 1 + random() % 300, 1000, 2000, 2001};
        const std::size_t run = lengths[random() % (round % 2 == 0 ? 2 : std::size(lengths))];
        const std::size_t count = 1 + random() % (round % 5 == 0 ? 3000 : run * 3 + 40);
        std::vector<Codes> samples(channels);
        for (auto& channel : samples) channel = MakeSamples(random() % 2 == 0 ? round : random(), count, random);
        std::vector<std::size_t> selected(channels);
        std::iota(selected.begin(), selected.end(), std::size_t{0});
        std::shuffle(selected.begin(), selected.end(), random);
        if (round % 3 != 0) selected.resize(random() % (channels + 1));

        Results planar(channels, (count + run - 1) / run);
        Results framed(selected.size(), (count + run - 1) / run);
        PlanarSetReducer planarReducer(static_cast<std::int32_t>(run), planar.out);
        FrameRunReducer frameReducer(channels, selected, static_cast<std::int32_t>(run), framed.out);
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
            std::vector<ExtremePair> expected;
            for (std::size_t at = 0; at < count; at += run) {
                const std::int16_t* const from = samples[channel].data() + at;
                expected.push_back(fuzz::PlainExtremes(from, from + std::min(run, count - at)));
            }
            ASSERT_EQ(planar.pairs[channel], expected) << channels << ' ' << run << ' ' << round;
            const auto found = std::find(selected.begin(), selected.end(), channel) - selected.begin();
            if (found == std::ssize(selected)) continue;
            ASSERT_EQ(framed.pairs[static_cast<std::size_t>(found)], expected)
                << "channel " << channel << " of " << channels << ", run " << run << ", round " << round;
        }
    }
}

}  // namespace
}  // namespace quillon::nsp
