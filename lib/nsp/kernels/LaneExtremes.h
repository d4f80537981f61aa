#pragma once

#include <cstddef>
#include <cstdint>

#include "nsp/RunReducer.h"

/// The kernels are templates over Lanes8 or Lanes16.
namespace quillon::nsp {

/// As Extremes, for every lane; `order` is all ones where the minimum is first.
template <typename Lanes>
struct LaneExtremes {
    using Vector = typename Lanes::Vector;
    Vector maximum;
    Vector minimum;
    Vector order;

    static LaneExtremes Of(Vector samples) { return {samples, samples, Lanes::Zero()}; }
    void Add(Vector samples) {
        const Vector higher = Lanes::Greater(samples, maximum);
        const Vector lower = Lanes::Greater(minimum, samples);
        maximum = Lanes::Max(maximum, samples);
        minimum = Lanes::Min(minimum, samples);
        order = Lanes::AndNot(lower, Lanes::Or(order, higher));
    }
    /// Adds the extremes of the samples that follow.
    void Add(const LaneExtremes& later) {
        const Vector higher = Lanes::Greater(later.maximum, maximum);
        const Vector lower = Lanes::Greater(minimum, later.minimum);
        const Vector one = Lanes::AndNot(lower, Lanes::Or(order, higher));
        maximum = Lanes::Max(maximum, later.maximum);
        minimum = Lanes::Min(minimum, later.minimum);
        order = Lanes::Select(Lanes::And(higher, lower), later.order, one);
    }
    /// The results in drawing order, by lane.
    void StorePairs(ExtremePair* pairs) const {
        static_assert(sizeof(ExtremePair) == 4 && offsetof(ExtremePair, second) == 2);
        Lanes::StorePairs(pairs, Lanes::Select(order, minimum, maximum), Lanes::Select(order, maximum, minimum));
    }
};

/// LaneExtremes as they are kept in memory, where nothing has to be aligned.
template <typename Lanes>
class StoredExtremes {
  public:
    [[nodiscard]] LaneExtremes<Lanes> Load() const {
        return {Lanes::Load(m_maximum), Lanes::Load(m_minimum), Lanes::Load(m_order)};
    }
    void Store(const LaneExtremes<Lanes>& extremes) {
        Lanes::Store(m_maximum, extremes.maximum);
        Lanes::Store(m_minimum, extremes.minimum);
        Lanes::Store(m_order, extremes.order);
    }

  private:
    std::int16_t m_maximum[Lanes::kCount];
    std::int16_t m_minimum[Lanes::kCount];
    std::int16_t m_order[Lanes::kCount];
};

}  // namespace quillon::nsp
