#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>

#include "nsp/RunLanes.h"

namespace quillon::nsp {

/// Highest and lowest by lane.
struct LaneRange {
    __m128i highest;
    __m128i lowest;

    void Add(const LaneRange& other) {
        highest = _mm_max_epi16(highest, other.highest);
        lowest = _mm_min_epi16(lowest, other.lowest);
    }
    /// Of `Count` vectors `step` samples apart. Many are taken in four parts, because in each of them every instruction
    /// waits for the one before it.
    template <std::size_t Count>
    static LaneRange Of(const std::int16_t* samples, std::size_t step) {
        constexpr std::size_t kParts = Count < 8 ? 1 : 4;
        LaneRange parts[kParts];
#pragma GCC unroll 20
        for (std::size_t i = 0; i < Count; ++i, samples += step) {
            const __m128i lanes = LoadLanes(samples);
            if (i < kParts) {
                parts[i] = {lanes, lanes};
            } else {
                parts[i % kParts].Add({lanes, lanes});
            }
        }
        for (std::size_t i = 1; i < kParts; ++i) parts[0].Add(parts[i]);
        return parts[0];
    }
};

/// Extremes by lane of samples that come in groups: the values of each group first, and which group they came from.
/// Groups are counted by 16-bit numbers, so a stretch has at most kMostGroups of them.
struct LaneSearch {
    static constexpr std::size_t kMostGroups = 32767;

    __m128i maximum;
    __m128i minimum;
    __m128i maximumAt;
    __m128i minimumAt;

    /// Of the first group, number 0.
    static LaneSearch Of(const LaneRange& group) {
        return {group.highest, group.lowest, _mm_setzero_si128(), _mm_setzero_si128()};
    }
    /// Of a later group; `number` in all lanes, higher than those before.
    void Add(const LaneRange& group, __m128i number) {
        const __m128i higher = _mm_cmpgt_epi16(group.highest, maximum);
        const __m128i lower = _mm_cmpgt_epi16(minimum, group.lowest);
        maximum = _mm_max_epi16(maximum, group.highest);
        minimum = _mm_min_epi16(minimum, group.lowest);
        maximumAt = _mm_max_epi16(maximumAt, _mm_and_si128(higher, number));
        minimumAt = _mm_max_epi16(minimumAt, _mm_and_si128(lower, number));
    }
    /// The result. Where both extremes are in one group, minimumFirst(lane, group, values) has to find the order.
    template <typename MinimumFirst>
    [[nodiscard]] LaneExtremes Result(const MinimumFirst& minimumFirst) const {
        LaneExtremes result{maximum, minimum, _mm_cmpgt_epi16(maximumAt, minimumAt)};
        // The order of equal extremes is known: the maximum is first.
        const __m128i open = _mm_andnot_si128(_mm_cmpeq_epi16(maximum, minimum), _mm_cmpeq_epi16(maximumAt, minimumAt));
        auto lanes = static_cast<unsigned>(_mm_movemask_epi8(open)) & 0x5555U;
        if (lanes == 0) return result;
        alignas(16) std::int16_t highest[8];
        alignas(16) std::int16_t lowest[8];
        alignas(16) std::int16_t groups[8];
        alignas(16) std::int16_t order[8];
        StoreLanes(highest, maximum);
        StoreLanes(lowest, minimum);
        StoreLanes(groups, maximumAt);
        StoreLanes(order, result.order);
        for (; lanes != 0; lanes &= lanes - 1) {
            const auto lane = static_cast<std::size_t>(std::countr_zero(lanes)) / 2;
            const Extremes values{highest[lane], lowest[lane], false};
            order[lane] = minimumFirst(lane, static_cast<std::size_t>(groups[lane]), values) ? -1 : 0;
        }
        result.order = LoadLanes(order);
        return result;
    }
};

}  // namespace quillon::nsp
