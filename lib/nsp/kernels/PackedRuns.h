#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "nsp/kernels/PackedStretch.h"
#include "nsp/kernels/SideBySide.h"

namespace quillon::nsp {

/// From this run length on, taking one run after the other is the faster way.
inline constexpr std::size_t kLongRunSamples = 4096;

/// Cuts pieces of frames of 1, 2 or 4 channels into runs: a vector holds several whole frames. `out[c]` moves on with
/// every result of channel c; null: not wanted.
template <typename Lanes, std::size_t Channels>
class PackedRuns {
  public:
    /// `state` holds one entry per channel, `filled` the frames of the run under way.
    static void Feed(const std::int16_t* samples, std::size_t frames, std::size_t run, std::size_t& filled,
                     std::span<Extremes> state, std::span<ExtremePair*> out) {
        while (frames > 0) {
            if (filled == 0 && run * Channels < kLongRunSamples) {
                const std::size_t done = ReduceTogether(samples, frames, run, out);
                for (ExtremePair*& channel : out) channel += channel != nullptr ? done : 0;
                samples += done * run * Channels;
                frames -= done * run;
                if (frames == 0) return;
            }
            const std::size_t part = std::min(frames, run - filled);
            PackedStretch<Lanes, Channels>::Reduce(samples, part, filled > 0, state.data());
            filled += part;
            samples += part * Channels;
            frames -= part;
            if (filled == run) Finish(filled, state, out);
        }
    }
    static void Finish(std::size_t& filled, std::span<Extremes> state, std::span<ExtremePair*> out) {
        if (filled == 0) return;
        for (std::size_t channel = 0; channel < Channels; ++channel) {
            if (out[channel] != nullptr) *out[channel]++ = state[channel].Pair();
        }
        filled = 0;
    }

  private:
    /// Reduces as many whole runs as fit well, several at a time; returns the number of runs done.
    static std::size_t ReduceTogether(const std::int16_t* samples, std::size_t frames, std::size_t run,
                                      std::span<ExtremePair* const> out);
};

template <typename Lanes, std::size_t Channels>
std::size_t PackedRuns<Lanes, Channels>::ReduceTogether(const std::int16_t* samples, std::size_t frames,
                                                        std::size_t run, std::span<ExtremePair* const> out) {
    constexpr std::size_t kTogether = Lanes::kCount / Channels;
    const std::size_t step = run * Channels;
    // Eight samples are read of shorter runs, of the last of the runs some that follow them all.
    constexpr std::size_t kTile = 8 / Channels;
    const std::size_t beyond = run < kTile ? kTile - run : 0;
    if (kTogether * run + beyond > frames) return 0;
    const std::size_t whole = (frames - beyond) / run;
    std::size_t finished = 0;
    while (whole - finished > kTogether / 8) {
        // The last runs are taken together with some that are done already: the same results once more.
        const std::size_t done = std::min(finished, whole - kTogether);
        finished = done + kTogether;
        const std::int16_t* const start = samples + done * step;
        PrefetchAhead(start, kTogether * step);
        const std::int16_t* sources[kTogether];
        for (std::size_t i = 0; i < kTogether; ++i) sources[i] = start + i * step;
        const LaneExtremes<Lanes> extremes = SideBySide<Lanes, Channels>::Reduce(sources, run);
        if constexpr (Channels == 1) {
            extremes.StorePairs(out[0] + done);
        } else {
            ExtremePair pairs[Lanes::kCount];
            extremes.StorePairs(pairs);
            for (std::size_t lane = 0; lane < Lanes::kCount; ++lane) {
                ExtremePair* channel = out[lane % Channels];
                if (channel != nullptr) channel[done + lane / Channels] = pairs[lane];
            }
        }
    }
    return finished;
}

}  // namespace quillon::nsp
