#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "nsp/RunLanes.h"

/// Runs of 1, 2 or 4 interleaved channels: a vector holds eight, four or two whole frames.
namespace quillon::nsp {

/// Extremes of one stretch of `frames` >= 1 frames, one result per channel; `carriesOn` tells that `result` holds those
/// of the samples before. Fast for long stretches.
template <std::size_t Channels>
void ReduceStretch(const std::int16_t* samples, std::size_t frames, bool carriesOn, Extremes* result);

/// Reduces as many whole runs of `run` frames as fit well, 8 / Channels at a time; the results of channel c go to
/// out[c] onwards (a null pointer: not wanted). Returns the number of runs done; fast for short runs.
template <std::size_t Channels>
std::size_t ReduceRunsTogether(const std::int16_t* samples, std::size_t frames, std::size_t run,
                               std::span<ExtremePair* const> out);

/// From this run length on ReduceStretch, run by run, is the faster way.
inline constexpr std::size_t kLongRunSamples = 4096;

/// Cuts pieces of frames into runs. `out[c]` moves on with every result of channel c; null: not wanted.
template <std::size_t Channels>
class PackedRuns {
  public:
    /// `state` holds one entry per channel, `filled` the frames of the run under way.
    static void Feed(const std::int16_t* samples, std::size_t frames, std::size_t run, std::size_t& filled,
                     std::span<Extremes> state, std::span<ExtremePair*> out);
    static void Finish(std::size_t& filled, std::span<Extremes> state, std::span<ExtremePair*> out);
};

extern template class PackedRuns<1>;
extern template class PackedRuns<2>;
extern template class PackedRuns<4>;

}  // namespace quillon::nsp
