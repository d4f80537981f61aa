#pragma once

#include <string>
#include <string_view>

namespace quillon::cli {

/// A JSON string with its quotes, in UTF-8.
[[nodiscard]] std::string JsonText(std::u16string_view text);
/// The shortest decimal form that reads back as the same number; null for infinities and NaN, which JSON does not have.
[[nodiscard]] std::string JsonNumber(double number);
[[nodiscard]] std::string JsonNumber(float number);

}  // namespace quillon::cli
