#include "format/FixedText.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>
#include <string_view>

namespace quillon {

namespace {

constexpr int kExactDecimals = 12;  // 5^12 has 28 bits
constexpr int kDivisorDecimals = 9;

std::uint64_t PowerOfTen(int exponent) {
    std::uint64_t power = 1;
    for (; exponent > 0; --exponent) power *= 10;
    return power;
}

char* WriteText(char* out, std::string_view text) {
    return std::copy(text.begin(), text.end(), out);
}

}  // namespace

FixedText::FixedText(int decimals, char separator)
    : m_decimals(std::clamp(decimals, 0, kMostDecimals)),
      m_separator(separator),
      m_power(m_decimals <= kExactDecimals ? static_cast<double>(PowerOfTen(m_decimals))
                                           : std::numeric_limits<double>::infinity()) {
    if (m_decimals > kDivisorDecimals) return;
    // With 2^(shift - 31) >= divisor the reciprocal, rounded up, is too large by less than 2^(shift - 31) / divisor
    // units, which changes no quotient of a number below 2^31; the product stays below 2^63.
    m_divisor = static_cast<std::uint32_t>(PowerOfTen(m_decimals));
    m_shift = 31 + static_cast<int>(std::bit_width(m_divisor - 1));
    m_reciprocal = ((std::uint64_t{1} << m_shift) + m_divisor - 1) / m_divisor;
}

char* FixedText::WriteLong(char* out, double value) const {
    if (std::isnan(value)) return WriteText(out, "NaN");
    if (std::isinf(value)) return WriteText(out, value < 0.0 ? "-Inf" : "Inf");
    const auto [end, error] = std::to_chars(out, out + kRoom, value, std::chars_format::fixed, m_decimals);
    // Only a double of more than 60 digits does not fit.
    if (error != std::errc()) return std::to_chars(out, out + kRoom, value, std::chars_format::scientific).ptr;
    if (m_separator != '.') std::replace(out, end, '.', m_separator);
    const bool isZero = std::none_of(out, end, [](char digit) { return digit >= '1' && digit <= '9'; });
    return isZero && *out == '-' ? std::copy(out + 1, end, out) : end;
}

char* FixedText::WriteTime(char* out, double value) const {
    constexpr double whole = 4503599627370496.0;  // from here on a double is a whole number already
    const double scaled = value * m_power;
    if (!(std::fabs(scaled) < whole)) return WriteLong(out, value);
    const auto rounded = static_cast<std::int64_t>(std::nearbyint(scaled));
    if (rounded < 0) *out++ = '-';
    const auto units = static_cast<std::uint64_t>(rounded < 0 ? -rounded : rounded);
    const std::uint64_t divisor = PowerOfTen(m_decimals);
    out = WriteWhole(out, units / divisor);
    if (m_decimals == 0) return out;
    *out++ = m_separator;
    char* const end = out + m_decimals;
    std::uint64_t fraction = units % divisor;
    for (char* at = end; at != out; fraction /= 10) *--at = static_cast<char>('0' + fraction % 10);
    return end;
}

}  // namespace quillon
