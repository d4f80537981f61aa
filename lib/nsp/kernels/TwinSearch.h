#pragma once

#include <cstddef>
#include <cstdint>

#include "nsp/kernels/LaneSearch.h"

namespace quillon::nsp {

/// As LaneSearch with Lanes16, of up to 8 channels whose frames lie several to a vector. The lowest values are looked
/// for as the highest of their complements, in the high half of the same vector.
template <typename Lanes, std::size_t Channels>
class TwinSearch {
  public:
    using Vector = typename Lanes::Vector;

    static TwinSearch Of(const LaneRange<Lanes>& group) { return TwinSearch(FoldFrames(group)); }
    void Add(const LaneRange<Lanes>& group, Vector number) {
        const Vector values = FoldFrames(group);
        m_at = Lanes::Max(m_at, Lanes::And(Lanes::Greater(values, m_highest), number));
        m_highest = Lanes::Max(m_highest, values);
    }
    /// In the low half of the lanes.
    template <typename MinimumFirst>
    [[nodiscard]] LaneExtremes<Lanes> Result(std::uint32_t wanted, const MinimumFirst& minimumFirst) const {
        const LaneSearch<Lanes> apart{m_highest, Complement(Lanes::Swap8(m_highest)), m_at, Lanes::Swap8(m_at)};
        return apart.Result(wanted, minimumFirst);
    }

  private:
    explicit TwinSearch(Vector values) : m_highest(values), m_at(Lanes::Zero()) {}

    static Vector Complement(Vector v) { return Lanes::AndNot(v, Lanes::Fill(-1)); }
    /// Joins the frames of a vector.
    static Vector FoldFrames(const LaneRange<Lanes>& group) {
        const Vector lowest = Complement(group.lowest);
        const Vector low = Lanes::LowHalves(group.highest, lowest);
        return FoldFrom<1>(low, Lanes::HighHalves(group.highest, lowest), low);
    }
    template <std::size_t Frame>
    static Vector FoldFrom(Vector low, Vector high, Vector highest) {
        if constexpr ((Frame + 1) * Channels > Lanes::kCount) {
            return highest;
        } else {
            const Vector frame = Lanes::template ShiftHalves<Frame * Channels>(low, high);
            return FoldFrom<Frame + 1>(low, high, Lanes::Max(highest, frame));
        }
    }

    Vector m_highest;
    Vector m_at;
};

}  // namespace quillon::nsp
