#include "norvik/private/EdfDate.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "base/DateTime.h"
#include "base/Text.h"

namespace quillon {

namespace {

/// Three groups of one or two digits, each but the last followed by one other sign: dots in the standard, also
/// colons, slashes and dashes in existing files.
std::optional<std::array<int, 3>> ThreeNumbers(std::string_view field) {
    field = Trim(field);
    const auto digit = [&] { return !field.empty() && field.front() >= '0' && field.front() <= '9'; };
    std::array<int, 3> numbers{};
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        if (at > 0) {
            if (field.empty()) return std::nullopt;
            field.remove_prefix(1);
        }
        // A blank stands for a leading zero in some files.
        if (!field.empty() && field.front() == ' ') field.remove_prefix(1);
        if (!digit()) return std::nullopt;
        for (int count = 0; count < 2 && digit(); ++count) {
            numbers[at] = numbers[at] * 10 + (field.front() - '0');
            field.remove_prefix(1);
        }
    }
    if (!field.empty()) return std::nullopt;
    return numbers;
}

bool IsDate(int year, int month, int day) {
    using namespace std::chrono;
    return month >= 1 && day >= 1 &&
           year_month_day{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                          std::chrono::day{static_cast<unsigned>(day)}}
               .ok();
}

struct Day {
    int year;
    int month;
    int day;
};

std::optional<Day> ShortDate(std::string_view field) {
    const auto numbers = ThreeNumbers(field);
    if (!numbers) return std::nullopt;
    const auto [day, month, shortYear] = *numbers;
    const int year = shortYear >= 85 ? 1900 + shortYear : 2000 + shortYear;
    if (!IsDate(year, month, day)) return std::nullopt;
    return Day{year, month, day};
}

/// "Startdate dd-MMM-yyyy" at the beginning of the recording field.
std::optional<Day> LongDate(std::string_view recording) {
    constexpr std::string_view introduction = "Startdate ";
    constexpr std::array<std::string_view, 12> months{"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                      "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
    constexpr std::size_t length = 11;
    if (!recording.starts_with(introduction)) return std::nullopt;
    recording.remove_prefix(introduction.size());
    if (recording.size() < length || recording[2] != '-' || recording[6] != '-') return std::nullopt;
    if (recording.size() > length && recording[length] != ' ') return std::nullopt;
    const auto number = [&](std::size_t from, std::size_t digits) {
        int value = 0;
        for (const char sign : recording.substr(from, digits)) {
            if (sign < '0' || sign > '9') return -1;
            value = value * 10 + (sign - '0');
        }
        return value;
    };
    std::array<char, 3> name{recording[3], recording[4], recording[5]};
    for (char& letter : name) {
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    }
    const auto found = std::find(months.begin(), months.end(), std::string_view(name.data(), name.size()));
    const Day day{number(7, 4), static_cast<int>(found - months.begin()) + 1, number(0, 2)};
    if (day.year < 0 || day.day < 0 || !IsDate(day.year, day.month, day.day)) return std::nullopt;
    return day;
}

std::optional<double> Clock(std::string_view field) {
    const auto numbers = ThreeNumbers(field);
    if (!numbers) return std::nullopt;
    const auto [hour, minute, second] = *numbers;
    // 24:00:00 and second 60 are written by devices around midnight and leap seconds.
    if (hour > 24 || minute > 59 || second > 60) return std::nullopt;
    return (hour * 60.0 + minute) * 60.0 + second;
}

}  // namespace

EdfStart ParseEdfStart(std::string_view date, std::string_view clock, std::string_view recording) {
    EdfStart start;
    start.clock = Clock(clock);
    std::optional<Day> day = ShortDate(date);
    const std::optional<Day> full = LongDate(recording);
    if (full && (!day || (full->day == day->day && full->month == day->month))) day = full;
    if (day) start.date = DateFromCivil({.year = day->year, .month = day->month, .day = day->day});
    return start;
}

}  // namespace quillon
