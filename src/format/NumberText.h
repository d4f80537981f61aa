#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers as text, independent of locale settings: the caller passes the decimal separator. "NaN", "Inf" and "-Inf"
/// stand for what is no number; no text ever reads "-0".
namespace quillon {

/// floor(log10 |value|), where the value is the shortest decimal that reads back as it: the single nearest to 0.01 has
/// the exponent -2, although it lies a little below 0.01. 0 for zero, NaN and infinities.
[[nodiscard]] std::int16_t DecimalExponent(float value);
[[nodiscard]] std::int16_t DecimalExponent(double value);

/// Rounds to decimal places, halves to even. A half is judged on value * 10^places computed in double, so that 0.15,
/// whose binary value lies a little below, is a half at one place as a user expects. A value without digits beyond the
/// last place, NaN and infinities come back unchanged; places below 1 round to whole numbers.
[[nodiscard]] double RoundToPlaces(double value, int places);

/// The fewest digits that read back as the number, without trailing zeros: "0.05", "-1200". From 1E+15 on, and below
/// 1E-15, with an exponent.
[[nodiscard]] std::u16string NumberText(double value, char16_t separator);

/// The fewest digits that read back as the single nearest to the value; beyond the range of singles as NumberText.
[[nodiscard]] std::u16string SingleNumberText(double value, char16_t separator);

/// A number that was typed, with a point, a comma or the given separator, and nothing else but blanks around it. None
/// beyond the range of singles, and for what is no number.
[[nodiscard]] std::optional<float> SingleFromText(std::u16string_view text, char16_t separator);

/// Clock time of a number of seconds, `h:mm:ss` with up to four decimals of the second. Elapsed time counts hours on
/// beyond 24 and may be negative; a time of day is taken modulo 24 hours. From 1e14 s on the number of seconds alone.
[[nodiscard]] std::u16string ClockText(double seconds, bool timeOfDay, char16_t separator);

/// Writes a number by a pattern like "0", "#0", "0.0##", "0.0##%" or "0.0 k". Each "0" is a compulsory digit, each "#"
/// behind the point an optional one; what follows the last of them is appended, and a "%" in it multiplies the number
/// by 100.
[[nodiscard]] std::u16string FormatPattern(double value, std::u16string_view pattern, char16_t separator);

}  // namespace quillon
