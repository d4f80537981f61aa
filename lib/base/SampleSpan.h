#pragma once

#include <cstdint>

namespace quillon {

/// Consecutive samples of a block; `first` counts from 0. Numbers from 1 exist only in texts and in calls that count
/// so.
struct SampleSpan {
    std::int32_t first = 0;
    std::int32_t count = 0;
    /// Behind the last sample.
    [[nodiscard]] std::int32_t End() const { return first + count; }
    friend bool operator==(const SampleSpan&, const SampleSpan&) = default;
};

}  // namespace quillon
