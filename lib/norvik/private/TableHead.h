#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/private/TableLayout.h"

namespace quillon {

enum class TableRole { Channel, Time, Date, LeftOut };

/// How the column of times counts. `step` is 0 where there is none.
struct TableClock {
    enum class Origin {
        Unknown,
        Day,   ///< seconds since the automation date 0
        Unix,  ///< since 1970
        Clock  ///< seconds since midnight of an unknown day
    };
    double step = 0.0;      ///< the usual one, in the unit of the column
    double digit = 0.0;     ///< unit of the last place that times are written to
    double relative = 0.0;  ///< precision where it depends on the time, as part of that
    double unitsPerSecond = 1.0;
    bool unitTold = false;
    Origin origin = Origin::Unknown;
};

/// What stands above the rows of a table, and what its first rows tell.
struct TableHead {
    TableLayout layout;
    std::vector<TableRole> roles;
    std::vector<std::u16string> titles;  ///< of all columns; may be empty
    std::vector<std::u16string> units;
    std::vector<double> numbers;  ///< of lines with a single number above the rows
    double rate = 0.0;            ///< that a text states, in Hz
    std::optional<double> start;  ///< automation date that a text states
    TableClock clock;
};

/// Reads what stands above the rows. Throws FormatError for a table without a column of numbers, or of rows that are
/// not evenly spaced.
[[nodiscard]] TableHead ReadTableHead(const TableLines& lines, const TableLayout& layout);

/// Time that a field of the time column states, moments in seconds; not a number where it states none.
[[nodiscard]] double TableTimeOf(std::string_view field, char decimal);

}  // namespace quillon
