#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

#include "nsp/PackedRuns.h"
#include "nsp/RunReducer.h"
#include "nsp/SideBySide.h"

namespace quillon::nsp {

namespace {

constexpr std::size_t kLanes = 8;
/// Shorter runs come in such numbers that each channel's own are reduced together at full speed; longer ones are
/// searched for values first. In between, too few runs lie in a piece for either, so eight channels go through the
/// lanes.
constexpr std::size_t kTogetherFrom = 24;

using LaneSources = std::array<const std::int16_t*, kLanes>;

/// Eight samples of each channel from `at` on, as eight vectors of one sample of every channel.
void LoadTile(const LaneSources& sources, std::size_t at, __m128i* tile) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) tile[lane] = LoadLanes(sources[lane] + at);
    Transpose8x8(tile);
}

__m128i GatherLanes(const LaneSources& sources, std::size_t at) {
    std::array<std::int16_t, kLanes> samples;
    for (std::size_t lane = 0; lane < kLanes; ++lane) samples[lane] = sources[lane][at];
    return LoadLanes(samples.data());
}

/// Adds samples at .. at+count-1 of each channel, count >= 1.
void AddStretch(const LaneSources& sources, std::size_t at, std::size_t count, LaneExtremes& extremes) {
    if (count < kLanes) {
        for (std::size_t sample = at; sample < at + count; ++sample) extremes.Add(GatherLanes(sources, sample));
        return;
    }
    if (count >= kLeastSideBySide) {
        LaneSources from = sources;
        for (const std::int16_t*& source : from) source += at;
        return extremes.Add(ReduceSideBySide<1>(from.data(), count));
    }
    __m128i tile[kLanes];
    LaneExtremes running = extremes;
    const auto add = [&](std::size_t from) {
        LoadTile(sources, from, tile);
        for (const __m128i samples : tile) running.Add(samples);
    };
    std::size_t done = 0;
    for (; done + kLanes <= count; done += kLanes) add(at + done);
    // The last tile overlaps the one before: a sample seen twice changes nothing.
    if (done < count) add(at + count - kLanes);
    extremes = running;
}

}  // namespace

struct PlanarSetReducer::State {
    std::size_t run;
    std::vector<ExtremePair*> out;
    std::vector<Extremes> extremes;
    std::size_t filled = 0;  ///< samples of the run under way, the same for all channels

    void FeedTogether(std::span<const std::int16_t* const> samples, std::size_t count, std::size_t channel);
    void FeedOne(const std::int16_t* samples, std::size_t count, std::size_t channel) {
        std::size_t own = filled;
        PackedRuns<1>::Feed(samples, count, run, own, {&extremes[channel], 1}, {&out[channel], 1});
    }
    void StoreLaneState(const LaneExtremes& lanes, std::size_t channel);
    [[nodiscard]] LaneExtremes LoadLaneState(std::size_t channel) const;
};

LaneExtremes PlanarSetReducer::State::LoadLaneState(std::size_t channel) const {
    std::array<std::int16_t, kLanes> maxima;
    std::array<std::int16_t, kLanes> minima;
    std::array<std::int16_t, kLanes> order;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        const Extremes& own = extremes[channel + lane];
        maxima[lane] = own.maximum;
        minima[lane] = own.minimum;
        order[lane] = own.minimumFirst ? -1 : 0;
    }
    return {LoadLanes(maxima.data()), LoadLanes(minima.data()), LoadLanes(order.data())};
}

void PlanarSetReducer::State::StoreLaneState(const LaneExtremes& lanes, std::size_t channel) {
    std::array<std::int16_t, kLanes> maxima;
    std::array<std::int16_t, kLanes> minima;
    std::array<std::int16_t, kLanes> order;
    StoreLanes(maxima.data(), lanes.maximum);
    StoreLanes(minima.data(), lanes.minimum);
    StoreLanes(order.data(), lanes.order);
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        extremes[channel + lane] = {maxima[lane], minima[lane], order[lane] != 0};
    }
}

void PlanarSetReducer::State::FeedTogether(std::span<const std::int16_t* const> samples, std::size_t count,
                                           std::size_t channel) {
    LaneSources sources;
    std::copy_n(samples.begin() + static_cast<std::ptrdiff_t>(channel), kLanes, sources.begin());
    std::size_t own = filled;
    LaneExtremes lanes = own == 0 ? LaneExtremes::Of(GatherLanes(sources, 0)) : LoadLaneState(channel);
    for (std::size_t at = 0; at < count;) {
        const std::size_t stretch = std::min(run - own, count - at);
        if (own == 0) lanes = LaneExtremes::Of(GatherLanes(sources, at));
        AddStretch(sources, at, stretch, lanes);
        at += stretch;
        own += stretch;
        if (own < run) break;
        own = 0;
        std::array<ExtremePair, kLanes> pairs;
        lanes.StorePairs(pairs.data());
        for (std::size_t lane = 0; lane < kLanes; ++lane) *out[channel + lane]++ = pairs[lane];
    }
    StoreLaneState(lanes, channel);
}

PlanarSetReducer::PlanarSetReducer(std::int32_t run, std::span<ExtremePair* const> out) {
    if (run < 1) throw std::invalid_argument("a run has at least one sample");
    m_state = std::make_unique<State>();
    m_state->run = static_cast<std::size_t>(run);
    m_state->out.assign(out.begin(), out.end());
    m_state->extremes.resize(out.size());
}

PlanarSetReducer::~PlanarSetReducer() = default;

void PlanarSetReducer::Feed(std::span<const std::int16_t* const> samples, std::size_t count) {
    if (count == 0) return;
    State& state = *m_state;
    const bool together = state.run >= kTogetherFrom && state.run < kLongRunSamples;
    std::size_t channel = 0;
    if (together) {
        for (; channel + kLanes <= state.out.size(); channel += kLanes) state.FeedTogether(samples, count, channel);
    }
    for (; channel < state.out.size(); ++channel) state.FeedOne(samples[channel], count, channel);
    state.filled = (state.filled + count) % state.run;
}

void PlanarSetReducer::Finish() {
    State& state = *m_state;
    if (state.filled == 0) return;
    for (std::size_t channel = 0; channel < state.out.size(); ++channel) {
        *state.out[channel]++ = state.extremes[channel].Pair();
    }
    state.filled = 0;
}

}  // namespace quillon::nsp
