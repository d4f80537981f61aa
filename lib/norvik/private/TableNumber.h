#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace quillon {

/// Characters of a number at most.
inline constexpr std::size_t kLongestTableNumber = 400;

struct TableNumber {
    double value = 0.0;  ///< the nearest double; infinite beyond the largest one
    /// The value is a whole number times 10^-decimals that a double holds exactly.
    int decimals = 0;
    bool exact = false;
};

namespace table_number {

/// 10^22 is the largest power of ten that a double holds exactly.
inline constexpr int kExactPower = 22;
inline constexpr std::array<double, kExactPower + 1> kPowersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

[[nodiscard]] inline bool IsDigit(char letter) {
    return static_cast<unsigned char>(letter - '0') < 10;
}

/// Reads the digits between `at` and `end`, `power` being the exponent of the last one. False where they are too long.
[[nodiscard]] inline bool ParseSlowly(const char* at, const char* end, char decimal, std::int64_t power,
                                      TableNumber& number) {
    std::array<char, kLongestTableNumber> text;
    if (end - at >= static_cast<std::ptrdiff_t>(text.size())) return false;
    char* out = text.data();
    for (; at != end; ++at) *out++ = *at == decimal ? '.' : *at;
    const auto [last, error] = std::from_chars(text.data(), out, number.value);
    if (error == std::errc::result_out_of_range) {
        number.value = power > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return last == out;
}

}  // namespace table_number

/// Reads a number at `at`: a sign, digits with one decimal sign, an exponent. A comma is a decimal sign only with a
/// digit behind it. Behind the number a character must follow that belongs to none, such as a line end. Returns the end
/// of the number, null where there is none. The nearest double is what comes out: a mantissa up to 2^53 and a power of
/// ten up to 10^22 are both exact, so that one division or product rounds once; the rest takes the library's way.
[[nodiscard]] inline const char* ParseTableNumber(const char* at, char decimal, TableNumber& number) {
    using namespace table_number;
    constexpr std::ptrdiff_t mostDigits = 19;  // 10^19 fits 64 bits
    constexpr std::uint64_t largestMantissa = std::uint64_t{1} << 53;
    const bool negative = *at == '-' || (at[0] == '\xE2' && at[1] == '\x88' && at[2] == '\x92');
    if (negative) at += *at == '-' ? 1 : 3;
    if (!negative && *at == '+') ++at;
    const char* const first = at;
    std::uint64_t mantissa = 0;
    for (; IsDigit(*at); ++at) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*at - '0');
    std::ptrdiff_t digits = at - first;
    std::ptrdiff_t decimals = 0;
    if (*at == decimal && (decimal == '.' || IsDigit(at[1]))) {
        const char* const fraction = ++at;
        for (; IsDigit(*at); ++at) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*at - '0');
        decimals = at - fraction;
        digits += decimals;
    }
    if (digits == 0) return nullptr;
    const char* end = at;
    std::int64_t power = -static_cast<std::int64_t>(decimals);
    if ((*at | 0x20) == 'e') {
        const bool down = at[1] == '-';
        const char* power10 = at + (down || at[1] == '+' ? 2 : 1);
        std::int64_t exponent = 0;
        for (end = IsDigit(*power10) ? power10 : at; IsDigit(*end); ++end)
            exponent = exponent < 100000 ? exponent * 10 + (*end - '0') : exponent;
        power += down ? -exponent : exponent;
    }
    if (digits > mostDigits || mantissa > largestMantissa || power < -kExactPower || power > kExactPower) {
        number.exact = false;
        if (!ParseSlowly(first, end, decimal, power + digits, number)) return nullptr;
    } else {
        number.exact = true;
        number.decimals = power < 0 ? static_cast<int>(-power) : 0;
        const auto whole = static_cast<double>(mantissa);
        number.value = power < 0 ? whole / kPowersOfTen[static_cast<std::size_t>(-power)]
                                 : whole * kPowersOfTen[static_cast<std::size_t>(power)];
    }
    if (negative) number.value = -number.value;
    return end;
}

}  // namespace quillon
