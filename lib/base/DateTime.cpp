#include "base/DateTime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace quillon {

namespace {

constexpr double kMillisecondsPerDay = 86400000.0;

std::chrono::sys_days Epoch() {
    using namespace std::chrono;
    return sys_days{year{1899} / December / 30};
}

}  // namespace

double DateFromCivil(const CivilTime& time) {
    using namespace std::chrono;
    const auto month0 = year_month{year{time.year}, January} + months{time.month - 1};
    const sys_days date = sys_days{month0 / 1} + days{time.day - 1};
    const double milliseconds = ((time.hour * 60.0 + time.minute) * 60.0 + time.second) * 1000.0 + time.millisecond;
    return static_cast<double>((date - Epoch()).count()) + milliseconds / kMillisecondsPerDay;
}

std::optional<CivilTime> CivilFromDigits(std::u16string_view text) {
    constexpr std::array<std::size_t, 6> sizes{4, 2, 2, 2, 2, 2};
    std::array<int, sizes.size()> parts{};
    if (text.size() != 14) return std::nullopt;
    std::size_t at = 0;
    for (std::size_t part = 0; part < sizes.size(); ++part) {
        for (const std::size_t end = at + sizes[part]; at < end; ++at) {
            if (text[at] < u'0' || text[at] > u'9') return std::nullopt;
            parts[part] = parts[part] * 10 + (text[at] - u'0');
        }
    }
    const auto [year, month, day, hour, minute, second] = parts;
    const bool valid =
        year >= 1 && month >= 1 && month <= 12 && day >= 1 && day <= 31 && hour < 24 && minute < 60 && second < 61;
    if (!valid) return std::nullopt;
    return CivilTime{year, month, day, hour, minute, second, 0};
}

CivilTime CivilFromDate(double date) {
    using namespace std::chrono;
    // Years -32767 to 32767 are what the calendar classes hold; a date outside that range cannot be represented.
    const double limited = std::isfinite(date) ? std::clamp(date, -12000000.0, 11000000.0) : 0.0;
    const auto total = static_cast<long long>(std::llround(limited * kMillisecondsPerDay));
    const long long perDay = 86400000;
    const long long dayCount = total >= 0 ? total / perDay : -((-total + perDay - 1) / perDay);
    auto rest = static_cast<int>(total - dayCount * perDay);
    const year_month_day civil{Epoch() + days{static_cast<int>(dayCount)}};
    CivilTime result;
    result.year = static_cast<int>(civil.year());
    result.month = static_cast<int>(static_cast<unsigned>(civil.month()));
    result.day = static_cast<int>(static_cast<unsigned>(civil.day()));
    result.millisecond = rest % 1000;
    rest /= 1000;
    result.second = rest % 60;
    result.minute = rest / 60 % 60;
    result.hour = rest / 3600;
    return result;
}

std::string Iso8601(double date) {
    const CivilTime time = CivilFromDate(date);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d", time.year, time.month, time.day, time.hour,
                  time.minute, time.second, time.millisecond);
    return text;
}

}  // namespace quillon
