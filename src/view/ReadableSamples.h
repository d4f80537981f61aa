#pragma once

#include <cstdint>
#include <span>

#include "norvik/NorvikCore.h"

namespace quillon {

/// Whether all of those samples, at least one, can be read.
[[nodiscard]] bool CanRead(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t first,
                           std::int32_t count);

/// Number of samples from `first` on, at most `count`, that a truncated file still has; found by probing single
/// samples.
[[nodiscard]] std::int32_t CountBeforeCut(RecordingBlock& block, std::span<const std::int16_t> channels,
                                          std::int32_t first, std::int32_t count);

/// Number of readable samples from `first` on, at most `count`, before the first unreadable one.
[[nodiscard]] std::int32_t CountBeforeHole(RecordingBlock& block, std::span<const std::int16_t> channels,
                                           std::int32_t first, std::int32_t count);

}  // namespace quillon
