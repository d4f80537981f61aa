#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

namespace quillon {

/// A press of the pointer that becomes a drag along an axis once it has moved far enough, and stays one.
class PlotDrag {
  public:
    void Press(std::int32_t column) {
        m_from = m_to = column;
        m_drags = false;
    }
    /// `least`: columns that make it a drag. Returns whether the band has changed.
    bool Move(std::int32_t column, std::int32_t least) {
        if (!m_from || m_to == column) return false;
        m_to = column;
        m_drags = m_drags || std::abs(column - *m_from) >= least;
        return m_drags;
    }
    [[nodiscard]] bool IsPressed() const { return m_from.has_value(); }
    /// The columns that are dragged over, from left to right; none before it is a drag.
    [[nodiscard]] std::optional<std::pair<std::int32_t, std::int32_t>> Columns() const {
        if (!m_from || !m_drags) return std::nullopt;
        return std::minmax(*m_from, m_to);
    }
    /// Ends it; see Columns before.
    void End() { m_from.reset(); }

  private:
    std::optional<std::int32_t> m_from;
    std::int32_t m_to = 0;
    bool m_drags = false;
};

}  // namespace quillon
