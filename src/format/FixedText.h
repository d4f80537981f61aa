#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/Rounding.h"

namespace quillon {

/// Pairs of decimal digits "00" to "99", so that two are written at a time.
inline constexpr std::array<char, 200> kDigitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

/// Writes the digits of a whole number without leading zeros; returns the end.
inline char* WriteWhole(char* out, std::uint64_t number) {
    std::array<char, 20> digits;
    std::size_t at = digits.size();
    for (; number >= 10; number /= 100) {
        const std::size_t pair = 2 * static_cast<std::size_t>(number % 100);
        digits[--at] = kDigitPairs[pair + 1];
        digits[--at] = kDigitPairs[pair];
    }
    // A last single digit, or the only one of zero.
    if (number > 0 || at == digits.size()) digits[--at] = static_cast<char>('0' + number);
    // Of a number like 105 the pairs are 05 and 1; of 1005 they are 05 and 10: there are no leading zeros.
    for (; at < digits.size(); ++at) *out++ = digits[at];
    return out;
}

/// Numbers with a fixed count of decimals, many per second. The text is that of the exact binary value rounded half to
/// even, digit for digit what printf's "%.*f" writes but without the minus before a zero; "NaN", "Inf" and "-Inf" stand
/// for what is no number.
class FixedText {
  public:
    static constexpr int kMostDecimals = 60;
    /// No text is longer.
    static constexpr std::size_t kRoom = 128;

    /// Decimals outside 0 .. kMostDecimals are taken as the nearer of the two.
    FixedText(int decimals, char separator);

    [[nodiscard]] int decimals() const { return m_decimals; }

    /// `out` has kRoom bytes; returns the end of the text.
    char* Write(char* out, float value) const {
        // 24 bits of a single times the at most 28 of 5^12 are exact in a double, so that the one conversion rounds the
        // true product.
        const double scaled = static_cast<double>(value) * m_power;
        if (!(std::fabs(scaled) < kFastLimit)) return WriteLong(out, value);
        const std::int32_t rounded = RoundHalfEvenInRange(scaled);
        *out = '-';
        out += rounded < 0 ? 1 : 0;
        const auto units = static_cast<std::uint32_t>(rounded < 0 ? -rounded : rounded);
        const auto whole = static_cast<std::uint32_t>(units * m_reciprocal >> m_shift);
        out = whole < 10000 ? WriteUpToFour(out, whole) : WriteWhole(out, whole);
        return m_decimals == 0 ? out : WriteFraction(out, units - whole * m_divisor);
    }

    /// The same for a double on which a half is judged after the multiplication, as RoundToPlaces does: for times,
    /// whose steps are not exact anyway.
    char* WriteTime(char* out, double value) const;

  private:
    static constexpr double kFastLimit = 2147483647.0;

    /// The two digits of a number below 100, the first one in the lower byte.
    static std::uint32_t PairOf(std::uint32_t number) {
        std::uint16_t pair = 0;
        std::memcpy(&pair, &kDigitPairs[2 * static_cast<std::size_t>(number)], sizeof pair);
        return pair;
    }
    /// A number below 10000. Its length is unpredictable, so no branch depends on it.
    static char* WriteUpToFour(char* out, std::uint32_t number) {
        const std::uint32_t digits = PairOf(number / 100) | PairOf(number % 100) << 16;
        // A zero is all bits clear once '0' is taken off; the last digit stays whatever it is.
        const int zeros = std::countr_zero((digits ^ 0x30303030U) | 0x01000000U) / 8;
        const std::uint32_t text = digits >> (8 * zeros);
        std::memcpy(out, &text, sizeof text);
        return out + 4 - zeros;
    }

    /// The last `count` digits of a number, ending before `end`.
    static void WriteDigits(char* end, std::uint32_t number, int count) {
        for (; count >= 2; count -= 2) {
            end -= 2;
            std::memcpy(end, &kDigitPairs[2 * static_cast<std::size_t>(number % 100)], 2);
            number /= 100;
        }
        if (count > 0) *--end = static_cast<char>('0' + number % 10);
    }

    char* WriteFraction(char* out, std::uint32_t fraction) const {
        *out++ = m_separator;
        out += m_decimals;
        WriteDigits(out, fraction, m_decimals);
        return out;
    }

    char* WriteLong(char* out, double value) const;

    int m_decimals;
    char m_separator;
    double m_power;               ///< 10^decimals; infinite where products are not exact, which rules out the fast way
    std::uint32_t m_divisor = 0;  ///< 10^decimals; 0 from 10 decimals on, where no fast number has a whole part
    std::uint64_t m_reciprocal = 0;  ///< number x reciprocal >> shift is number / divisor below 2^31
    int m_shift = 0;
};

}  // namespace quillon
