#include "norvik/private/WfdbFields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/SectionedText.h"

namespace quillon {

namespace {

constexpr std::string_view kBlanks = " \t";

template <typename Value>
std::optional<Value> Parse(std::string_view text) {
    Value number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

}  // namespace

HeaderLines::HeaderLines(std::string_view text) : m_rest(WithoutByteOrderMark(text)) {}

std::string_view HeaderLines::Take() {
    const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
    const std::string_view line = Trim(m_rest.substr(0, end));
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    ++m_number;
    return line;
}

std::optional<HeaderLine> HeaderLines::Next() {
    while (!m_rest.empty()) {
        const std::string_view line = Take();
        if (!line.empty() && line.front() != '#') return HeaderLine{line, m_number};
    }
    return std::nullopt;
}

std::string HeaderLines::Comment() {
    std::string joined;
    while (!m_rest.empty()) {
        const std::string_view line = Take();
        if (!line.empty() && line.front() != '#') break;
        if (line.size() < 2) continue;
        if (!joined.empty()) joined += ' ';
        joined += Trim(line.substr(1));
    }
    std::replace_if(
        joined.begin(), joined.end(), [](char sign) { return sign >= 0 && sign < ' '; }, ' ');
    return joined;
}

std::string_view FieldText::Next() {
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kBlanks), m_rest.size()));
    const std::string_view field = m_rest.substr(0, m_rest.find_first_of(kBlanks));
    m_rest.remove_prefix(field.size());
    return field;
}

std::string_view FieldText::Rest() const {
    return Trim(m_rest);
}

std::optional<std::uint64_t> WholeNumber(std::string_view text) {
    return Parse<std::uint64_t>(text);
}

std::optional<std::int64_t> SignedNumber(std::string_view text) {
    return Parse<std::int64_t>(text);
}

std::optional<double> RealNumber(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    const std::optional<double> number = Parse<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<double> ParseWfdbClock(std::string_view text) {
    constexpr double longest = 1e9;
    double seconds = 0.0;
    for (int parts = 0;; ++parts) {
        const std::size_t colon = text.find(':');
        const bool last = colon == std::string_view::npos;
        const std::optional<double> part = RealNumber(text.substr(0, colon));
        const bool whole = part && *part == std::trunc(*part);
        if (parts > 2 || !part || *part < 0.0 || (!last && !whole) || (parts > 0 && *part > 61.0)) return std::nullopt;
        seconds = seconds * 60.0 + *part;
        if (seconds > longest) return std::nullopt;
        if (last) return seconds;
        text.remove_prefix(colon + 1);
    }
}

std::optional<double> ParseWfdbDate(std::string_view text) {
    std::array<std::uint64_t, 3> parts{};
    for (std::size_t at = 0; at < parts.size(); ++at) {
        const std::size_t slash = text.find('/');
        const std::optional<std::uint64_t> part = WholeNumber(text.substr(0, slash));
        if (!part || *part > 9999 || (slash == std::string_view::npos) != (at == 2)) return std::nullopt;
        parts[at] = *part;
        text.remove_prefix(std::min(slash, text.size() - 1) + 1);
    }
    const auto [day, month, year] = parts;
    if (day > 31 || month > 12 || year < 1) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(year)),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) return std::nullopt;
    CivilTime civil;
    civil.year = static_cast<int>(year);
    civil.month = static_cast<int>(month);
    civil.day = static_cast<int>(day);
    return DateFromCivil(civil);
}

}  // namespace quillon
