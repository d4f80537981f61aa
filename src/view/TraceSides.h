#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "view/TraceCanvas.h"

namespace quillon {

/// Records for every trace whether it is above or below its lane in all columns, so that no part of it is inside.
class TraceSides {
  public:
    enum class Side { None, Above, Below };

    /// Resets to that many traces, with nothing recorded, in a graph of that width.
    void Reset(std::size_t traces, std::int32_t width);
    /// Moves the columns left by `shift`; nothing is recorded for the uncovered ones.
    void Scroll(std::int32_t shift);
    /// Clears columns from .. to-1 of all traces.
    void Forget(std::int32_t from, std::int32_t to);
    /// Records columns from .. to-1 of a trace whose x values never decrease, in a lane of rows top .. end-1.
    void Mark(std::size_t trace, std::int32_t from, std::int32_t to, std::span<const DevicePoint> points,
              std::int32_t top, std::int32_t end);
    /// The side, or none for a trace that is inside somewhere, crosses from one side to the other or has no points.
    [[nodiscard]] Side Of(std::size_t trace) const;

  private:
    static constexpr std::uint8_t kAbove = 1;
    static constexpr std::uint8_t kBelow = 2;

    std::int32_t m_width = 0;
    std::vector<std::vector<std::uint8_t>> m_columns;  ///< per trace and column, bit set of sides; both bits: inside
};

}  // namespace quillon
