#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Dates as the automation date format keeps them: days since 30 December 1899 00:00 as a double, with the time of day
/// as the fraction. No time zone: every date is the recording's own local time.
namespace quillon {

/// Dates are counted in days.
inline constexpr double kSecondsPerDay = 86400.0;

struct CivilTime {
    int year = 1899;
    int month = 12;  ///< 1 to 12
    int day = 30;    ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

/// Fields out of range (a day 0, a second 61) carry over; the proleptic Gregorian calendar.
[[nodiscard]] double DateFromCivil(const CivilTime& time);

/// To the nearest millisecond.
[[nodiscard]] CivilTime CivilFromDate(double date);

/// "20110404125702": none where there is another letter than these 14 digits, or a field out of range.
[[nodiscard]] std::optional<CivilTime> CivilFromDigits(std::u16string_view text);

/// "2011-04-04T12:57:02.000"
[[nodiscard]] std::string Iso8601(double date);

}  // namespace quillon
