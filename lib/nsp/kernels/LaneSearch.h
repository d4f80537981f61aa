#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "nsp/kernels/Extremes.h"
#include "nsp/kernels/LaneExtremes.h"

namespace quillon::nsp {

/// Highest and lowest by lane.
template <typename Lanes>
struct LaneRange {
    using Vector = typename Lanes::Vector;
    Vector highest;
    Vector lowest;

    void Add(const LaneRange& other) {
        highest = Lanes::Max(highest, other.highest);
        lowest = Lanes::Min(lowest, other.lowest);
    }
    /// Of `Count` vectors `step` samples apart. Many are taken in four parts, because in each of them every instruction
    /// waits for the one before it.
    template <std::size_t Count>
    static LaneRange Of(const std::int16_t* samples, std::size_t step) {
        constexpr std::size_t kParts = Count < 8 ? 1 : 4;
        LaneRange parts[kParts];
#pragma GCC unroll 20
        for (std::size_t i = 0; i < Count; ++i, samples += step) {
            Vector lanes = Lanes::Load(samples);
            // Read once: the compiler would read it for each of the two instructions, and half of the reads of frames
            // that are not a power of two touch two cache lines.
            asm("" : "+x"(lanes));
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
inline constexpr std::size_t kMostGroups = 32767;

template <typename Lanes>
struct LaneSearch {
    using Vector = typename Lanes::Vector;
    static constexpr std::int16_t kLaneBits[16] = {0x1,   0x2,   0x4,   0x8,   0x10,   0x20,   0x40,   0x80,
                                                   0x100, 0x200, 0x400, 0x800, 0x1000, 0x2000, 0x4000, -0x8000};
    Vector maximum;
    Vector minimum;
    Vector maximumAt;
    Vector minimumAt;

    /// Of the first group, number 0.
    static LaneSearch Of(const LaneRange<Lanes>& group) {
        return {group.highest, group.lowest, Lanes::Zero(), Lanes::Zero()};
    }
    /// Of a later group; `number` in all lanes, higher than those before.
    void Add(const LaneRange<Lanes>& group, Vector number) {
        const Vector higher = Lanes::Greater(group.highest, maximum);
        const Vector lower = Lanes::Greater(minimum, group.lowest);
        maximum = Lanes::Max(maximum, group.highest);
        minimum = Lanes::Min(minimum, group.lowest);
        maximumAt = Lanes::Max(maximumAt, Lanes::And(higher, number));
        minimumAt = Lanes::Max(minimumAt, Lanes::And(lower, number));
    }
    /// The result but for the lanes whose extremes are in one group: they have bits in `open`, as Lanes::Bits, and no
    /// order yet. Lanes that `wanted` has no bits for have none either. `groups` are those of the maxima.
    [[nodiscard]] LaneExtremes<Lanes> Unordered(std::uint32_t wanted, std::uint32_t& open, std::int16_t* groups) const {
        // The order of equal extremes is known: the maximum is first.
        open = Lanes::Bits(Lanes::AndNot(Lanes::Equal(maximum, minimum), Lanes::Equal(maximumAt, minimumAt))) & wanted;
        Lanes::Store(groups, maximumAt);
        return {maximum, minimum, Lanes::Greater(maximumAt, minimumAt)};
    }
    /// The result of the lanes that `wanted` has bits for; others have no order. minimumFirst(group, maximum, minimum)
    /// has to find, for all lanes at once, which extreme comes first in a group.
    template <typename MinimumFirst>
    [[nodiscard]] LaneExtremes<Lanes> Result(std::uint32_t wanted, const MinimumFirst& minimumFirst) const {
        std::uint32_t open = 0;
        std::int16_t groups[Lanes::kCount];
        LaneExtremes<Lanes> result = Unordered(wanted, open, groups);
        FindOrder(result, open, groups, minimumFirst);
        return result;
    }
    /// Orders the open lanes of a result; `groups` are those of their extremes.
    template <typename MinimumFirst>
    static void FindOrder(LaneExtremes<Lanes>& result, std::uint32_t open, const std::int16_t* groups,
                          const MinimumFirst& minimumFirst) {
        const Vector at = Lanes::Load(groups);
        while (open != 0) {
            const std::int16_t group = groups[std::countr_zero(open) / 2];
            const Vector here = Lanes::Equal(at, Lanes::Fill(group));
            const Vector found = minimumFirst(static_cast<std::size_t>(group), result.maximum, result.minimum);
            // Of lanes that are not open, the minimum's group tells.
            result.order = Lanes::Or(result.order, Lanes::And(here, found));
            open &= ~Lanes::Bits(here);
        }
    }
    /// As Result for lanes that must be looked at one by one, by minimumFirst(lane, group, values).
    template <typename MinimumFirst>
    [[nodiscard]] LaneExtremes<Lanes> ResultByLane(std::uint32_t wanted, const MinimumFirst& minimumFirst) const {
        LaneExtremes<Lanes> result{maximum, minimum, Lanes::Greater(maximumAt, minimumAt)};
        // The order of equal extremes is known: the maximum is first.
        const Vector open = Lanes::AndNot(Lanes::Equal(maximum, minimum), Lanes::Equal(maximumAt, minimumAt));
        std::uint32_t lanes = Lanes::Bits(open) & wanted & 0x55555555U;
        if (lanes == 0) return result;
        std::int16_t highest[Lanes::kCount];
        std::int16_t lowest[Lanes::kCount];
        std::int16_t groups[Lanes::kCount];
        Lanes::Store(highest, maximum);
        Lanes::Store(lowest, minimum);
        Lanes::Store(groups, maximumAt);
        std::uint32_t first = 0;  // one bit for each lane
        for (; lanes != 0; lanes &= lanes - 1) {
            const auto lane = static_cast<std::size_t>(std::countr_zero(lanes)) / 2;
            const Extremes values{highest[lane], lowest[lane], false};
            const bool found = minimumFirst(lane, static_cast<std::size_t>(groups[lane]), values);
            first |= static_cast<std::uint32_t>(found) << lane;
        }
        const Vector bits = Lanes::Load(kLaneBits);
        const Vector found = Lanes::And(Lanes::Fill(static_cast<std::int16_t>(first)), bits);
        result.order = Lanes::Or(result.order, Lanes::Equal(found, bits));
        return result;
    }
};

}  // namespace quillon::nsp
