#pragma once

#include <cstddef>
#include <cstdint>

#include "nsp/kernels/LaneSearch.h"

namespace quillon::nsp {

/// Highest and lowest in a group of vectors of each of Lanes::kCount / Channels sources, from vectors of every source
/// to one lane per source and channel.
template <typename Lanes, std::size_t Channels>
class GroupFold {
  public:
    /// Of `Size` vectors from sample `at` on.
    template <std::size_t Size>
    [[gnu::always_inline]] static inline LaneRange<Lanes> Of(const std::int16_t* const* sources, std::size_t at) {
        return Join<Size, kInHalf>(sources, 1, at);
    }

  private:
    using Range = LaneRange<Lanes>;
    static constexpr std::size_t kInHalf = 8 / Channels;  ///< sources in each half of a vector of 16 lanes

    /// Of `InHalf` sources, `step` from one to the next (in each half of a vector of 16 lanes), the same number of
    /// lanes of each.
    template <std::size_t Size, std::size_t InHalf>
    [[gnu::always_inline]] static inline Range Join(const std::int16_t* const* sources, std::size_t step,
                                                    std::size_t at) {
        if constexpr (InHalf == 1) {
            const Range a = Range::template Of<Size>(sources[0] + at, Lanes::kCount);
            if constexpr (Lanes::kCount == 8) return a;
            if constexpr (Lanes::kCount == 16) {
                const Range b = Range::template Of<Size>(sources[kInHalf] + at, Lanes::kCount);
                Range low{Lanes::LowHalves(a.highest, b.highest), Lanes::LowHalves(a.lowest, b.lowest)};
                low.Add({Lanes::HighHalves(a.highest, b.highest), Lanes::HighHalves(a.lowest, b.lowest)});
                return low;
            }
        } else if constexpr (InHalf == 2) {
            const Range a = Join<Size, 1>(sources, step, at);
            const Range b = Join<Size, 1>(sources + step, step, at);
            Range low{Lanes::Low64(a.highest, b.highest), Lanes::Low64(a.lowest, b.lowest)};
            low.Add({Lanes::High64(a.highest, b.highest), Lanes::High64(a.lowest, b.lowest)});
            return low;
        } else if constexpr (InHalf == 4) {
            const Range a = Join<Size, 2>(sources, step, at);
            const Range b = Join<Size, 2>(sources + 2 * step, step, at);
            Range even{Lanes::Even32(a.highest, b.highest), Lanes::Even32(a.lowest, b.lowest)};
            even.Add({Lanes::Odd32(a.highest, b.highest), Lanes::Odd32(a.lowest, b.lowest)});
            return even;
        } else {
            const Range a = Join<Size, 4>(sources, 2 * step, at);
            const Range b = Join<Size, 4>(sources + step, 2 * step, at);
            Range even{Lanes::Even16(a.highest, b.highest), Lanes::Even16(a.lowest, b.lowest)};
            even.Add({Lanes::Odd16(a.highest, b.highest), Lanes::Odd16(a.lowest, b.lowest)});
            return even;
        }
    }
};

}  // namespace quillon::nsp
