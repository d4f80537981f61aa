#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// Text in the ANSI code page, for the calls of the system that take it; nothing when a character has no exact
/// counterpart there. A substitute would name another file: '?' is a wildcard, and A may stand in for A with a macron.
[[nodiscard]] std::optional<std::string> ExactAnsi(std::wstring_view text);

}  // namespace quillon
