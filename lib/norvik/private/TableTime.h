#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/Bilingual.h"

namespace quillon {

/// A date, a time of day, or both, as tables write them.
struct TableMoment {
    std::optional<double> day;      ///< automation date of midnight
    std::optional<double> seconds;  ///< since midnight, or of a length of time; may be 86400 and more
    int decimals = 0;               ///< of the seconds
};

/// "2024-05-31T12:00:05.250", "31.05.2024 12:00", "2024/05/31", "12:00:05,250", "1:05:00 PM": years first, or days
/// first with points or slashes. Nothing where it is none.
[[nodiscard]] std::optional<TableMoment> ParseTableMoment(std::string_view text);

/// Rows between two gaps of a table.
struct TableStretch {
    std::uint64_t firstRow = 0;
    std::uint64_t rows = 0;
    double first = 0.0;  ///< time of the first row
    double last = 0.0;   ///< time of the row `lastOffset` rows on, the last one that has a time
    std::uint64_t lastOffset = 0;
};

/// The times of the rows of a table, one after the other, cut into stretches where a step is longer than 1.5 usual
/// ones, or backwards. Times are in the unit of their column.
class TableTiming {
  public:
    static constexpr std::size_t kMostStretches = 1000;

    /// `step`: the usual one at the beginning, 0 for rows without times, which make one stretch. `digit`: one unit of
    /// the last place that times are written to; `relative` the same as part of a time, where it depends on it.
    TableTiming(double step, double digit, double relative) : m_usual(step), m_digit(digit), m_relative(relative) {}

    /// Takes the next row; false, with the row not taken, where it would make one stretch too many. What is not finite
    /// stands for an unknown time.
    bool Add(double time);
    [[nodiscard]] const std::vector<TableStretch>& Stretches() const { return m_stretches; }
    /// Rows per second by the longest stretch: the number that a person would have chosen within what the written
    /// digits allow. 0 where no stretch has two times.
    [[nodiscard]] double Rate(double unitsPerSecond) const;
    /// Whether a time was before the one of the row above.
    [[nodiscard]] bool HasGoneBack() const { return m_goneBack; }

  private:
    [[nodiscard]] bool IsCut(double time);
    [[nodiscard]] double Digit(double time) const;

    double m_usual;
    double m_digit;
    double m_relative;
    std::vector<TableStretch> m_stretches;
    bool m_goneBack = false;
};

/// Among the rates that differ from `rate` by at most `tolerance`: the nearest usual one, else a whole number, else one
/// whose inverse is whole, else the one with the fewest digits.
[[nodiscard]] double PlainRate(double rate, double tolerance);

}  // namespace quillon
