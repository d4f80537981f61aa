#pragma once

#include <cstdint>
#include <optional>

namespace quillon {

/// Smallest and largest physical value of some samples.
struct ValueRange {
    float minimum = 0.0F;
    float maximum = 0.0F;
};

/// How many physical units one vertical division stands for, and where the zero level lies.
class AmplitudeScale {
  public:
    static constexpr float kCodesPerUnit =
        1000.0F;                                   ///< where codes are shown, a unit of the scale stands for that many
    static constexpr int kScaleCount = 19;         ///< 1000, 500, 200, ... 0.002, 0.001 units per division
    static constexpr std::int32_t kDivision = 40;  ///< pixels of one division
    /// Largest shift of a base line, in rows: a double could not hold larger ones to a row. The largest
    /// single-precision value at the finest scale would exceed it.
    static constexpr std::int64_t kFarthest = std::int64_t{1} << 52;

    /// Units per division of a table index, 0 .. kScaleCount-1.
    [[nodiscard]] static double TableEntry(int index);
    /// The same in units or, where codes are shown, in codes.
    [[nodiscard]] static double TableValue(int index, bool rawCodes) {
        return TableEntry(index) * (rawCodes ? static_cast<double>(kCodesPerUnit) : 1.0);
    }

    /// Height of the graph and the row of its middle, in pixels.
    void SetGraph(std::int32_t height, std::int32_t centreLine);

    [[nodiscard]] int Index() const { return m_index; }
    [[nodiscard]] double UnitsPerDivision() const { return TableEntry(m_index); }
    /// Pixels by which the zero level lies below the centre line. At a fine scale the zero level of data around a large
    /// value is outside the 32-bit range.
    [[nodiscard]] std::int64_t Shift() const { return m_shift; }
    [[nodiscard]] std::int64_t ZeroRow() const { return m_centreLine + m_shift; }
    [[nodiscard]] std::int32_t Height() const { return m_height; }

    /// Steps to a finer (+) or coarser (-) scale and keeps the position of the base line's value; the index is clamped
    /// to the table.
    void ZoomY(int step);
    /// Selects a scale of the table; the position of the base line's value is kept too.
    void SelectScale(int index);
    void SetBipolar() { m_shift = 0; }
    /// Moves the zero level by rows.
    void MoveBaseLine(std::int64_t rows);
    /// Chooses the finest scale at which the range fits the graph and centres the range. No range, or one whose maximum
    /// is not above its minimum, only sets the zero level to the centre line.
    void FindData(const std::optional<ValueRange>& range);
    /// Whether a range is readable at the current scale: it fills at least an eighth of the graph, and at least four
    /// fifths of it lie inside.
    [[nodiscard]] bool Shows(const ValueRange& range) const;

  private:
    int m_index = 0;
    std::int64_t m_shift = 0;
    std::int32_t m_height = 1;
    std::int32_t m_centreLine = 0;
};

}  // namespace quillon
