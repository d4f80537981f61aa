#pragma once

#include <algorithm>
#include <cstdint>

#include "base/Density.h"

namespace quillon {

/// Which lanes are visible in a graph, and where: as many as fit at their least height, none cut, from one lane on.
class LaneLayout {
  public:
    /// Rows of the lowest lane at 96 dpi.
    static constexpr std::int32_t kLeastHeight = 28;

    LaneLayout() = default;
    /// `count` lanes in a graph of that many rows, of which `first` is wanted at the top.
    LaneLayout(std::int32_t count, std::int32_t height, int dpi, std::int32_t first) : m_count(count) {
        m_height = std::max(height, 0);
        const std::int32_t least = ScaledTo(dpi, kLeastHeight);
        m_visible = std::min(count, std::max(m_height / std::max(least, 1), 1));
        m_first = std::clamp(first, 0, m_count - m_visible);
    }

    [[nodiscard]] std::int32_t Count() const { return m_count; }
    [[nodiscard]] std::int32_t Visible() const { return m_visible; }
    [[nodiscard]] std::int32_t First() const { return m_first; }
    /// First row of a visible lane, from 0; of the lane behind the last one, the height of the graph.
    [[nodiscard]] std::int32_t Top(std::int32_t lane) const {
        return m_visible < 1 ? 0 : static_cast<std::int32_t>(std::int64_t{lane} * m_height / m_visible);
    }
    /// Rows that a scale counts as the height of a lane. Those of lanes differ by a row; scales do not.
    [[nodiscard]] double LaneHeight() const {
        return std::max(static_cast<double>(m_height) / std::max(m_visible, 1), 1.0);
    }
    /// How much higher a lane is than what a fit puts into it: a row is left at either edge.
    [[nodiscard]] double Margin() const {
        return LaneHeight() / std::max(static_cast<double>(static_cast<std::int32_t>(LaneHeight()) - 2), 1.0);
    }

  private:
    std::int32_t m_count = 0;
    std::int32_t m_height = 0;
    std::int32_t m_visible = 0;
    std::int32_t m_first = 0;
};

}  // namespace quillon
