#pragma once

#include <optional>
#include <string_view>

namespace quillon {

/// Start of a recording out of its header fields, as far as they can be read.
struct EdfStart {
    std::optional<double> date;   ///< midnight of the day as an automation date
    std::optional<double> clock;  ///< seconds since midnight
};

/// `date` is "dd.mm.yy" and stands for 1985 to 2084, `clock` is "hh.mm.ss". A valid "Startdate dd-MMM-yyyy" at the
/// beginning of `recording` (pass nothing where the file is no EDF+) gives the full year, and the day where `date` is
/// unreadable; one that contradicts the day or month of `date` is ignored.
[[nodiscard]] EdfStart ParseEdfStart(std::string_view date, std::string_view clock, std::string_view recording);

}  // namespace quillon
