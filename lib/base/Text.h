#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

/// Text in the core is UTF-16 in std::u16string; these are its conversions.
namespace quillon {

/// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD.
[[nodiscard]] std::string Utf8(std::u16string_view text);

/// The same, at most `size` bytes, ended behind a whole character.
[[nodiscard]] std::string Utf8Within(std::u16string_view text, std::size_t size);

/// UTF-8 to UTF-16. Each byte that is not part of a valid sequence becomes U+FFFD.
[[nodiscard]] std::u16string Utf16(std::string_view text);

/// Bytes at the front that are valid UTF-8.
[[nodiscard]] std::size_t ValidUtf8Size(std::string_view text);
[[nodiscard]] bool IsValidUtf8(std::string_view text);

/// Bytes of ISO 8859-1 to UTF-16.
[[nodiscard]] std::u16string FromLatin1(std::string_view text);

/// Text of a recording's header: UTF-8 where the bytes are valid UTF-8, else ISO 8859-1.
[[nodiscard]] std::u16string FromUtf8OrLatin1(std::string_view text);

/// Lower-case form for comparing file names: Latin (to U+017F), Greek and Cyrillic letters; the rest is unchanged.
[[nodiscard]] std::u16string LowerCase(std::u16string_view text);

/// Decimal digits of a whole number.
[[nodiscard]] std::u16string Decimal(std::int64_t number);

/// The fewest decimal digits that read back as the number, with a point and without an exponent.
[[nodiscard]] std::u16string ShortestDecimal(double number);

/// The text with "%1", "%2", ... "%9" replaced by the arguments; those without an argument stay.
[[nodiscard]] std::u16string FillPlaces(std::u16string_view text, std::initializer_list<std::u16string> arguments);

/// Without blanks and control characters at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text);
/// The same, no-break spaces included.
[[nodiscard]] std::u16string_view Trim(std::u16string_view text);

}  // namespace quillon
