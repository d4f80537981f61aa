#include "cli/Json.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/Text.h"

namespace quillon::cli {

namespace {

template <typename Number>
std::string Shortest(Number number) {
    if (!std::isfinite(number)) return "null";
    std::array<char, 64> text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

}  // namespace

std::string JsonText(std::u16string_view text) {
    constexpr std::string_view kHex = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : Utf8(text)) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (c == '\n') {
            json += "\\n";
        } else if (c == '\r') {
            json += "\\r";
        } else if (c == '\t') {
            json += "\\t";
        } else if (code < 0x20 || code == 0x7F) {
            json += "\\u00";
            json += kHex[code >> 4];
            json += kHex[code & 15];
        } else {
            json += c;
        }
    }
    return json + '"';
}

std::string JsonNumber(double number) {
    return Shortest(number);
}

std::string JsonNumber(float number) {
    return Shortest(number);
}

}  // namespace quillon::cli
