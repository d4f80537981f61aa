#pragma once

#include <cstddef>
#include <cstdint>

#include "nsp/RunLanes.h"

namespace quillon::nsp {

/// Samples of each source that ReduceSideBySide takes.
inline constexpr std::size_t kLeastSideBySide = 40;
inline constexpr std::size_t kMostSideBySide = std::size_t{1} << 20U;

/// Extremes of 8 / Channels stretches of frames of 1, 2 or 4 channels, of the same length, at once: lane `source` x
/// Channels + `channel`. `count` samples of each source, in whole frames.
template <std::size_t Channels>
LaneExtremes ReduceSideBySide(const std::int16_t* const* sources, std::size_t count);

extern template LaneExtremes ReduceSideBySide<1>(const std::int16_t* const*, std::size_t);
extern template LaneExtremes ReduceSideBySide<2>(const std::int16_t* const*, std::size_t);
extern template LaneExtremes ReduceSideBySide<4>(const std::int16_t* const*, std::size_t);

}  // namespace quillon::nsp
