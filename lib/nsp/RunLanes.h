#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "nsp/RunReducer.h"

/// What the extremes kernels are built from: vectors of eight 16-bit lanes, SSE2 only. Nothing is assumed about
/// alignment.
namespace quillon::nsp {

/// Software prefetch this far ahead: the processor's own prefetching stops at the end of each 4 KiB page, which costs
/// up to half of the speed beyond the caches. A prefetch past the end of the data is harmless.
inline constexpr std::size_t kPrefetchBytes = 6144;

inline void PrefetchAhead(const std::int16_t* samples) {
    _mm_prefetch(reinterpret_cast<const char*>(samples) + kPrefetchBytes, _MM_HINT_T0);
}

inline __m128i LoadLanes(const std::int16_t* samples) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples));
}

inline void StoreLanes(std::int16_t* samples, __m128i lanes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(samples), lanes);
}

inline __m128i Select(__m128i mask, __m128i whereSet, __m128i whereClear) {
    return _mm_or_si128(_mm_and_si128(mask, whereSet), _mm_andnot_si128(mask, whereClear));
}

/// Transposes 8 x 8 samples in place.
inline void Transpose8x8(__m128i* v) {
    __m128i pairs[8];
    __m128i fours[8];
    for (std::size_t i = 0; i < 4; ++i) {
        pairs[2 * i] = _mm_unpacklo_epi16(v[2 * i], v[2 * i + 1]);
        pairs[2 * i + 1] = _mm_unpackhi_epi16(v[2 * i], v[2 * i + 1]);
    }
    for (std::size_t half = 0; half < 8; half += 4) {
        for (std::size_t i = 0; i < 2; ++i) {
            fours[half + 2 * i] = _mm_unpacklo_epi32(pairs[half + i], pairs[half + 2 + i]);
            fours[half + 2 * i + 1] = _mm_unpackhi_epi32(pairs[half + i], pairs[half + 2 + i]);
        }
    }
    for (std::size_t i = 0; i < 4; ++i) {
        v[2 * i] = _mm_unpacklo_epi64(fours[i], fours[4 + i]);
        v[2 * i + 1] = _mm_unpackhi_epi64(fours[i], fours[4 + i]);
    }
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

/// The same for eight lanes at once; `order` is all ones where the minimum is first.
struct LaneExtremes {
    __m128i maximum;
    __m128i minimum;
    __m128i order;

    static LaneExtremes Of(__m128i samples) { return {samples, samples, _mm_setzero_si128()}; }
    void Add(__m128i samples) {
        const __m128i higher = _mm_cmpgt_epi16(samples, maximum);
        const __m128i lower = _mm_cmpgt_epi16(minimum, samples);
        maximum = _mm_max_epi16(maximum, samples);
        minimum = _mm_min_epi16(minimum, samples);
        order = _mm_andnot_si128(lower, _mm_or_si128(order, higher));
    }
    /// Adds the extremes of the samples that follow.
    void Add(const LaneExtremes& later) {
        const __m128i higher = _mm_cmpgt_epi16(later.maximum, maximum);
        const __m128i lower = _mm_cmpgt_epi16(minimum, later.minimum);
        const __m128i one = _mm_andnot_si128(lower, _mm_or_si128(order, higher));
        maximum = _mm_max_epi16(maximum, later.maximum);
        minimum = _mm_min_epi16(minimum, later.minimum);
        order = Select(_mm_and_si128(higher, lower), later.order, one);
    }
    /// The results in drawing order: of lanes 0 to 3, then of lanes 4 to 7.
    void StorePairs(ExtremePair* pairs) const {
        static_assert(sizeof(ExtremePair) == 4 && offsetof(ExtremePair, second) == 2);
        const __m128i first = Select(order, minimum, maximum);
        const __m128i second = Select(order, maximum, minimum);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pairs), _mm_unpacklo_epi16(first, second));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pairs + 4), _mm_unpackhi_epi16(first, second));
    }
};

}  // namespace quillon::nsp
