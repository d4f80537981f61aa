#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "view/TraceCanvas.h"

namespace quillon {

/// Knows of every trace of the graph whether it lies above or below it in all columns, so that nothing of it is seen.
class TraceSides {
  public:
    enum class Side { None, Above, Below };

    /// Nothing is known of that many traces in a graph of that size.
    void Reset(std::size_t traces, std::int32_t width, std::int32_t height);
    /// The columns moved to the left by `shift`; nothing is known of those that came in.
    void Scroll(std::int32_t shift);
    /// Nothing is known of columns from .. to-1 of any trace.
    void Forget(std::int32_t from, std::int32_t to);
    /// What columns from .. to-1 hold of a trace, whose points do not run to the left.
    void Mark(std::size_t trace, std::int32_t from, std::int32_t to, std::span<const DevicePoint> points);
    /// None for a trace that is seen somewhere, passes from one side to the other or has no points.
    [[nodiscard]] Side Of(std::size_t trace) const;

  private:
    static constexpr std::uint8_t kAbove = 1;
    static constexpr std::uint8_t kBelow = 2;

    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::vector<std::vector<std::uint8_t>> m_columns;  ///< per trace and column, the sides it was on; both when seen
};

}  // namespace quillon
