#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts of header fields whose format names no encoding: programs write them in the bytes of the system that they run
/// on, the ANSI code page on Windows and UTF-8 elsewhere.
namespace quillon {

/// At most `size` bytes, ended behind a whole character; "?" for each character that the system's bytes have not.
[[nodiscard]] std::string SystemBytes(std::u16string_view text, std::size_t size);

/// UTF-8 where the bytes are valid UTF-8, which other text hardly ever is by chance; else the ANSI code page on
/// Windows, ISO 8859-1 elsewhere.
[[nodiscard]] std::u16string FromUtf8OrSystemBytes(std::string_view bytes);

}  // namespace quillon
