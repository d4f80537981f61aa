#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/DateTime.h"

/// Texts and numbers of European Data Format headers (Kemp et al., 1992): printable ASCII in fields of fixed width,
/// with a decimal point in every locale.
namespace quillon {

/// A "?" stands for each character that is no printable ASCII. Filled up with blanks to `width`, never shortened.
[[nodiscard]] std::string EdfText(std::u16string_view text, std::size_t width);

/// Bytes of a number in an EDF header.
constexpr std::size_t kEdfNumberWidth = 8;

/// The fewest digits that read back as the number. Where they do not fit `width`, as many as fit, with or without an
/// exponent, whichever is nearer to the number; never a text whose end is missing. Throws std::length_error for what
/// does not fit at all, NaN and infinities.
[[nodiscard]] std::string EdfNumber(double number, std::size_t width);
[[nodiscard]] std::string EdfNumber(float number, std::size_t width);

/// The text within `width` that is nearest to a positive number: the number's own or one like "90703E-9", which has a
/// digit more than that with a point.
[[nodiscard]] std::string NearestNumber(double number, std::size_t width);

/// What a reader makes of such a number. 0 for a text that is none.
[[nodiscard]] double EdfValue(std::string_view text);
/// The rate in Hz that a reader computes of the header.
[[nodiscard]] double EdfRate(std::int32_t samplesPerRecord, std::string_view recordSeconds);

/// Two digits tell the years 1985 to 2084.
[[nodiscard]] bool IsEdfYear(int year);
/// "dd.mm.yyhh.mm.ss"; in other years, as EDF+ has it (Kemp and Olivan, 2003), "yy" stands for the year itself.
[[nodiscard]] std::string EdfDateTime(const CivilTime& time);

/// Seconds as annotations of EDF+ tell them, to so many places behind the point, without zeros at the end: "+12.5".
[[nodiscard]] std::string EdfOnset(double seconds, int places = 9);

/// A count: all of its digits or std::length_error.
[[nodiscard]] std::string EdfCount(std::int64_t count, std::size_t width);

}  // namespace quillon
