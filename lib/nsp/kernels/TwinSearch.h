#pragma once

#include <array>
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
    [[nodiscard]] LaneExtremes<Lanes> Unordered(std::uint32_t wanted, std::uint32_t& open, std::int16_t* groups) const {
        return Apart().Unordered(wanted, open, groups);
    }
    template <typename MinimumFirst>
    [[nodiscard]] LaneExtremes<Lanes> Result(std::uint32_t wanted, const MinimumFirst& minimumFirst) const {
        return Apart().Result(wanted, minimumFirst);
    }

    /// All ones in the low half where the first occurrence of `minimum` in a group of vectors is before that of
    /// `maximum`.
    template <std::size_t Vectors>
    [[nodiscard]] static Vector MinimumFirst(const std::int16_t* group, Vector maximum, Vector minimum) {
        const Vector highest = Lanes::template Repeat<Channels>(maximum);
        const Vector lowest = Lanes::template Repeat<Channels>(minimum);
        // Places count from the end of the group, and the last one found is the first occurrence.
        Vector place = Lanes::Load(kPlaces.data());
        Vector maximumAt = Lanes::Zero();
        Vector minimumAt = Lanes::Zero();
        const std::int16_t* at = group + Vectors * kFrames * Channels;
#pragma GCC unroll 10
        for (std::size_t i = 0; i < Vectors; ++i) {
            at -= kFrames * Channels;
            const Vector samples = Lanes::Load(at);
            maximumAt = Lanes::Select(Lanes::Equal(samples, highest), place, maximumAt);
            minimumAt = Lanes::Select(Lanes::Equal(samples, lowest), place, minimumAt);
            place = Lanes::Add(place, Lanes::Fill(static_cast<std::int16_t>(kFrames)));
        }
        const Vector low = Lanes::LowHalves(maximumAt, minimumAt);
        const Vector places = FoldFrom<1>(low, Lanes::HighHalves(maximumAt, minimumAt), low);
        return Lanes::Greater(Lanes::Swap8(places), places);
    }

  private:
    static constexpr std::size_t kFrames = Lanes::kCount / Channels;
    /// Places of the frames of a vector, counted from its end.
    static constexpr std::array<std::int16_t, Lanes::kCount> kPlaces = [] {
        std::array<std::int16_t, Lanes::kCount> places{};
        for (std::size_t lane = 0; lane < kFrames * Channels; ++lane)
            places[lane] = static_cast<std::int16_t>(kFrames - lane / Channels);
        return places;
    }();

    explicit TwinSearch(Vector values) : m_highest(values), m_at(Lanes::Zero()) {}

    [[nodiscard]] LaneSearch<Lanes> Apart() const {
        return {m_highest, Complement(Lanes::Swap8(m_highest)), m_at, Lanes::Swap8(m_at)};
    }
    static Vector Complement(Vector v) {
        return Lanes::AndNot(v, Lanes::Fill(-1));
    }
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
