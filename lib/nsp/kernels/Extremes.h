#pragma once

#include <xmmintrin.h>

#include <cstddef>
#include <cstdint>

#include "nsp/RunReducer.h"

namespace quillon::nsp {

/// Software prefetch this far ahead: the processor's own prefetching stops at the end of each 4 KiB page, which costs
/// up to half of the speed beyond the caches. A prefetch past the end of the data is harmless.
inline constexpr std::size_t kPrefetchBytes = 6144;
inline constexpr std::size_t kLineSamples = 64 / sizeof(std::int16_t);

inline void PrefetchAhead(const std::int16_t* samples, std::size_t count) {
    const char* const from = reinterpret_cast<const char*>(samples) + kPrefetchBytes;
    for (std::size_t at = 0; at < count * sizeof(std::int16_t); at += 64) _mm_prefetch(from + at, _MM_HINT_T0);
}

/// Extremes of the samples seen so far. Only their order is kept, not their positions: each new extreme is the later
/// one, so the last of the two that changed tells the order. Strict comparison keeps first occurrences, and a sample
/// seen twice changes nothing, so a run's last vector may overlap the one before it.
struct Extremes {
    std::int16_t maximum = 0;
    std::int16_t minimum = 0;
    bool minimumFirst = false;

    static Extremes Of(std::int16_t sample) { return {sample, sample, false}; }
    void Add(std::int16_t sample) {
        if (sample > maximum) {
            maximum = sample;
            minimumFirst = true;
        } else if (sample < minimum) {
            minimum = sample;
            minimumFirst = false;
        }
    }
    /// Adds the extremes of the samples that follow.
    void Add(const Extremes& later) {
        const bool higher = later.maximum > maximum;
        const bool lower = later.minimum < minimum;
        if (higher && lower) {
            *this = later;
        } else if (higher) {
            maximum = later.maximum;
            minimumFirst = true;
        } else if (lower) {
            minimum = later.minimum;
            minimumFirst = false;
        }
    }
    [[nodiscard]] ExtremePair Pair() const {
        return minimumFirst ? ExtremePair{minimum, maximum} : ExtremePair{maximum, minimum};
    }
};

}  // namespace quillon::nsp
