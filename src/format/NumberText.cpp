#include "format/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "base/Text.h"

namespace quillon {

namespace {

/// d.ddd * 10^exponent, without the point and without trailing zeros.
struct ShortDigits {
    std::string digits;
    int exponent = 0;
};

/// Of a finite magnitude other than zero.
template <typename Real>
ShortDigits Shortest(Real magnitude) {
    std::array<char, 32> buffer{};
    const char* const end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, std::chars_format::scientific).ptr;
    const char* const mark = std::find(static_cast<const char*>(buffer.data()), end, 'e');
    ShortDigits shortest{std::string(static_cast<const char*>(buffer.data()), mark), 0};
    std::erase(shortest.digits, '.');
    const char* const exponent = mark + (mark[1] == '+' ? 2 : 1);
    std::from_chars(exponent, end, shortest.exponent);
    return shortest;
}

template <typename Real>
std::int16_t ExponentOf(Real value) {
    if (value == Real{0} || !std::isfinite(value)) return 0;
    return static_cast<std::int16_t>(Shortest(std::fabs(value)).exponent);
}

std::size_t Count(int number) {
    return static_cast<std::size_t>(std::max(number, 0));
}

/// Replaces the point, which all other functions here write, by the caller's separator.
std::u16string WithSeparator(std::string_view text, char16_t separator) {
    std::u16string out(text.begin(), text.end());
    std::replace(out.begin(), out.end(), u'.', separator);
    return out;
}

template <typename Real>
std::u16string ShortestText(Real value, char16_t separator) {
    if (std::isnan(value)) return u"NaN";
    if (std::isinf(value)) return value < Real{0} ? u"-Inf" : u"Inf";
    if (value == Real{0}) return u"0";
    constexpr int longest = 15;
    auto [text, exponent] = Shortest(std::fabs(value));
    if (exponent >= longest || exponent < -longest) {
        if (text.size() > 1) text.insert(1, 1, '.');
        text += exponent < 0 ? "E-" : "E+";
        text += std::to_string(std::abs(exponent));
    } else if (exponent < 0) {
        text.insert(0, "0." + std::string(Count(-exponent - 1), '0'));
    } else if (const std::size_t whole = Count(exponent + 1); text.size() > whole) {
        text.insert(whole, 1, '.');
    } else {
        text.append(whole - text.size(), '0');
    }
    if (value < Real{0}) text.insert(0, 1, '-');
    return WithSeparator(text, separator);
}

/// Exact up to 10^22, infinite beyond the range of doubles.
double TenTo(int exponent) {
    constexpr std::array<double, 23> exact{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                           1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr int step = 22;
    double power = 1.0;
    for (exponent = std::min(exponent, 330); exponent > step; exponent -= step) power *= exact[step];
    return power * exact[Count(exponent)];
}

/// At least `width` decimal digits.
std::u16string Padded(std::int64_t number, std::size_t width) {
    std::u16string text = Decimal(number);
    if (text.size() < width) text.insert(0, width - text.size(), u'0');
    return text;
}

void DropTrailingZeros(std::u16string& text, std::size_t keep) {
    while (text.size() > keep && text.back() == u'0') text.pop_back();
}

/// What a pattern asks for.
struct NumberPattern {
    std::size_t wholeDigits = 0;
    std::size_t compulsoryDecimals = 0;
    int decimals = 0;
    std::u16string_view literal;
};

NumberPattern ParsePattern(std::u16string_view pattern) {
    NumberPattern parsed;
    std::size_t at = 0;
    const auto isDigit = [&] { return at < pattern.size() && (pattern[at] == u'0' || pattern[at] == u'#'); };
    for (; isDigit(); ++at) parsed.wholeDigits += pattern[at] == u'0' ? 1U : 0U;
    if (at < pattern.size() && pattern[at] == u'.') {
        for (++at; isDigit(); ++at) {
            ++parsed.decimals;
            if (pattern[at] == u'0') parsed.compulsoryDecimals = Count(parsed.decimals);
        }
    }
    parsed.literal = pattern.substr(at);
    return parsed;
}

}  // namespace

std::int16_t DecimalExponent(float value) {
    return ExponentOf(value);
}

std::int16_t DecimalExponent(double value) {
    return ExponentOf(value);
}

double RoundToPlaces(double value, int places) {
    const double power = TenTo(places);
    const double scaled = value * power;
    // From here on a double is a whole number already; the negation catches NaN too.
    constexpr double whole = 4503599627370496.0;
    if (!(std::fabs(scaled) < whole)) return value;
    return std::nearbyint(scaled) / power;
}

std::u16string NumberText(double value, char16_t separator) {
    return ShortestText(value, separator);
}

std::u16string SingleNumberText(double value, char16_t separator) {
    const bool fits = std::fabs(value) <= static_cast<double>(std::numeric_limits<float>::max());
    return fits ? ShortestText(static_cast<float>(value), separator) : ShortestText(value, separator);
}

std::u16string ClockText(double seconds, bool timeOfDay, char16_t separator) {
    constexpr double longest = 1e14;
    if (!(std::fabs(seconds) < longest)) return NumberText(seconds, separator);
    constexpr std::int64_t second = 10000, minute = 60 * second, hour = 60 * minute, day = 24 * hour;
    auto ticks = static_cast<std::int64_t>(std::nearbyint(seconds * static_cast<double>(second)));
    if (timeOfDay) ticks = (ticks % day + day) % day;
    std::u16string text = ticks < 0 ? u"-" : u"";
    ticks = std::abs(ticks);
    text += Decimal(ticks / hour) + u':' + Padded(ticks % hour / minute, 2) + u':' + Padded(ticks % minute / second, 2);
    if (ticks % second != 0) {
        text += separator + Padded(ticks % second, 4);
        DropTrailingZeros(text, 0);
    }
    return text;
}

std::u16string FormatPattern(double value, std::u16string_view pattern, char16_t separator) {
    const NumberPattern parsed = ParsePattern(pattern);
    if (parsed.literal.find(u'%') != std::u16string_view::npos) value *= 100.0;
    if (!std::isfinite(value)) return NumberText(value, separator).append(parsed.literal);
    const double rounded = RoundToPlaces(value, parsed.decimals);
    std::string digits(Count(std::numeric_limits<double>::max_exponent10 + 3 + parsed.decimals), '\0');
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), std::fabs(rounded),
                                          std::chars_format::fixed, parsed.decimals)
                                .ptr;
    std::u16string text = WithSeparator({digits.data(), end}, separator);
    if (parsed.decimals > 0) {
        const std::size_t point = text.size() - Count(parsed.decimals) - 1;
        DropTrailingZeros(text, point + 1 + parsed.compulsoryDecimals);
        if (text.size() == point + 1) text.pop_back();
    }
    const std::size_t whole = std::min(text.find(separator), text.size());
    if (whole < parsed.wholeDigits) text.insert(0, parsed.wholeDigits - whole, u'0');
    if (rounded < 0.0) text.insert(0, 1, u'-');
    return text.append(parsed.literal);
}

std::optional<float> SingleFromText(std::u16string_view text, char16_t separator) {
    const auto isBlank = [](char16_t letter) { return letter <= u' ' || letter == u'\u00A0' || letter == u'\u202F'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    std::string digits;
    for (const char16_t letter : text) {
        const bool point = letter == u',' || letter == separator;
        if (!point && letter > u'~') return std::nullopt;
        digits += point ? '.' : static_cast<char>(letter);
    }
    float value = 0.0F;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

}  // namespace quillon
