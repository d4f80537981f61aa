#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Texts and numbers of European Data Format headers (Kemp et al., 1992): printable ASCII in fields of fixed width,
/// with a decimal point in every locale.
namespace quillon {

/// A "?" stands for each character that is no printable ASCII. Filled up with blanks to `width`, never shortened.
[[nodiscard]] std::string EdfText(std::u16string_view text, std::size_t width);

/// The fewest digits that read back as the number. Where they do not fit `width`, as many as fit, with or without an
/// exponent, whichever is nearer to the number; never a text whose end is missing. Throws std::length_error for what
/// does not fit at all, NaN and infinities.
[[nodiscard]] std::string EdfNumber(double number, std::size_t width);
[[nodiscard]] std::string EdfNumber(float number, std::size_t width);

/// The text within `width` that is nearest to a positive number: the number's own or one like "90703E-9", which has a
/// digit more than that with a point.
[[nodiscard]] std::string NearestNumber(double number, std::size_t width);

/// A count: all of its digits or std::length_error.
[[nodiscard]] std::string EdfCount(std::int64_t count, std::size_t width);

}  // namespace quillon
