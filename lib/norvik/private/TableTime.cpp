#include "norvik/private/TableTime.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/DateTime.h"
#include "base/Text.h"

namespace quillon {

namespace {

/// Steps of a stretch after which its own mean tells the usual step.
constexpr std::uint64_t kKnownSteps = 64;

/// Takes digits off the front of a text.
class Digits {
  public:
    explicit Digits(std::string_view text) : m_text(text) {}

    [[nodiscard]] bool AtEnd() const { return m_text.empty(); }
    [[nodiscard]] char Next() const { return m_text.empty() ? '\0' : m_text.front(); }
    bool Skip(std::string_view letters) {
        if (m_text.empty() || letters.find(m_text.front()) == std::string_view::npos) return false;
        m_text.remove_prefix(1);
        return true;
    }
    /// Nothing where there are none, or more than `most`. `count` gets how many there were.
    std::optional<int> Number(std::size_t most, std::size_t& count) {
        int number = 0;
        for (count = 0; count < m_text.size() && m_text[count] >= '0' && m_text[count] <= '9'; ++count) {
            if (count == most) return std::nullopt;
            number = number * 10 + (m_text[count] - '0');
        }
        m_text.remove_prefix(count);
        if (count == 0) return std::nullopt;
        return number;
    }

  private:
    std::string_view m_text;
};

bool ParseDate(Digits& text, TableMoment& moment) {
    std::size_t firstDigits = 0;
    std::size_t digits = 0;
    const std::optional<int> first = text.Number(4, firstDigits);
    const char separator = text.Next();
    if (!first || !text.Skip("-./")) return false;
    const std::optional<int> month = text.Number(2, digits);
    if (!month || text.Next() != separator || !text.Skip("-./")) return false;
    const std::optional<int> third = text.Number(4, digits);
    if (!third || (firstDigits == 4) == (digits == 4) || std::max(firstDigits, digits) != 4) return false;
    const int year = firstDigits == 4 ? *first : *third;
    const int day = firstDigits == 4 ? *third : *first;
    if (*month < 1 || *month > 12 || day < 1 || day > 31) return false;
    moment.day = DateFromCivil({year, *month, day, 0, 0, 0, 0});
    return true;
}

bool ParseClock(Digits& text, TableMoment& moment) {
    std::size_t digits = 0;
    const std::optional<int> hours = text.Number(7, digits);
    if (!hours || !text.Skip(":")) return false;
    const std::optional<int> minutes = text.Number(2, digits);
    if (!minutes || *minutes > 59) return false;
    double seconds = *hours * 3600.0 + *minutes * 60.0;
    if (text.Skip(":")) {
        const std::optional<int> whole = text.Number(2, digits);
        if (!whole || *whole > 60) return false;
        seconds += *whole;
        if (text.Skip(".,")) {
            const std::optional<int> fraction = text.Number(9, digits);
            if (!fraction) return false;
            moment.decimals = static_cast<int>(digits);
            seconds += *fraction / std::pow(10.0, moment.decimals);
        }
    }
    // "12:30 AM" is half an hour after midnight.
    Digits half = text;
    half.Skip(" ");
    const bool afternoon = half.Next() == 'P' || half.Next() == 'p';
    if (half.Skip("AaPp") && half.Skip("Mm") && *hours >= 1 && *hours <= 12) {
        text = half;
        seconds += (afternoon ? 43200.0 : 0.0) - (*hours == 12 ? 43200.0 : 0.0);
    }
    moment.seconds = seconds;
    return true;
}

/// The multiple of the largest power of ten that lies within the tolerance.
double FewestDigits(double rate, double tolerance) {
    for (int places = -static_cast<int>(std::floor(std::log10(rate))); places < 15; ++places) {
        const double power = std::pow(10.0, std::abs(places));
        const double rounded = places < 0 ? std::nearbyint(rate / power) * power : std::nearbyint(rate * power) / power;
        if (rounded > 0.0 && std::fabs(rounded - rate) <= tolerance) return rounded;
    }
    return rate;
}

}  // namespace

std::optional<TableMoment> ParseTableMoment(std::string_view text) {
    TableMoment moment;
    Digits rest(Trim(text));
    const bool negative = rest.Skip("-");
    Digits clock = rest;
    if (ParseClock(clock, moment)) {
        if (!clock.AtEnd()) return std::nullopt;
        if (negative) moment.seconds = -*moment.seconds;
        return moment;
    }
    moment = {};
    if (negative || !ParseDate(rest, moment)) return std::nullopt;
    if (rest.AtEnd()) return moment;
    if (!rest.Skip("T ") || !ParseClock(rest, moment)) return std::nullopt;
    // A time zone: what the clock showed is what counts.
    if (rest.Skip("+-")) {
        std::size_t digits = 0;
        if (!rest.Number(4, digits)) return std::nullopt;
        if (rest.Skip(":") && !rest.Number(2, digits)) return std::nullopt;
    } else {
        rest.Skip("Z");
    }
    if (!rest.AtEnd()) return std::nullopt;
    return moment;
}

double TableTiming::Digit(double time) const {
    return std::max(m_digit, std::fabs(time) * m_relative);
}

bool TableTiming::IsCut(double time) {
    const TableStretch& stretch = m_stretches.back();
    const double step = time - stretch.last;
    const double digit = Digit(time);
    if (step < -digit) {
        m_goneBack = true;
        return true;
    }
    const double mean = stretch.lastOffset < kKnownSteps
                            ? m_usual
                            : (stretch.last - stretch.first) / static_cast<double>(stretch.lastOffset);
    const auto steps = static_cast<double>(stretch.rows - stretch.lastOffset);
    // Two times that are each rounded, and the mean of some, may differ from the step by that much.
    return step >= (steps + 0.5) * mean && step > steps * mean + 2.5 * digit;
}

bool TableTiming::Add(double time) {
    const bool known = std::isfinite(time) && m_usual > 0.0;
    if (m_stretches.empty() || (known && IsCut(time))) {
        if (m_stretches.size() == kMostStretches) return false;
        const std::uint64_t row = m_stretches.empty() ? 0 : m_stretches.back().firstRow + m_stretches.back().rows;
        m_stretches.push_back({row, 1, known ? time : 0.0, known ? time : 0.0, 0});
        return true;
    }
    TableStretch& stretch = m_stretches.back();
    if (known) {
        stretch.last = time;
        stretch.lastOffset = stretch.rows;
    }
    ++stretch.rows;
    return true;
}

double TableTiming::Rate(double unitsPerSecond) const {
    const auto longest = std::max_element(
        m_stretches.begin(), m_stretches.end(),
        [](const TableStretch& one, const TableStretch& other) { return one.lastOffset < other.lastOffset; });
    if (longest == m_stretches.end() || !(longest->last > longest->first)) return 0.0;
    const double span = longest->last - longest->first;
    const double rate = static_cast<double>(longest->lastOffset) / span * unitsPerSecond;
    return PlainRate(rate, std::min(Digit(longest->last) / span, 0.01) * rate);
}

double PlainRate(double rate, double tolerance) {
    constexpr std::array usual{8000.0, 11025.0, 16000.0, 22050.0, 32000.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0,
                               128.0,  250.0,   256.0,   360.0,   500.0,   512.0,   1000.0,  1024.0,  2000.0,  2048.0};
    if (!(rate > 0.0) || !std::isfinite(rate)) return rate;
    const auto nearest = std::min_element(usual.begin(), usual.end(), [&](double one, double other) {
        return std::fabs(one - rate) < std::fabs(other - rate);
    });
    if (std::fabs(*nearest - rate) <= tolerance) return *nearest;
    const double whole = std::nearbyint(rate);
    if (whole > 0.0 && std::fabs(whole - rate) <= tolerance) return whole;
    const double inverse = std::nearbyint(1.0 / rate);
    if (inverse > 0.0 && std::fabs(1.0 / inverse - rate) <= tolerance) return 1.0 / inverse;
    return FewestDigits(rate, tolerance);
}

}  // namespace quillon
