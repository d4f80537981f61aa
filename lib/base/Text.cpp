#include "base/Text.h"

#include <array>
#include <charconv>

namespace quillon {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// One decoded code point and the number of bytes it took; size 1 and U+FFFD for a byte that starts no valid sequence.
struct Decoded {
    char32_t point;
    std::size_t size;
    bool valid;
};

Decoded DecodeUtf8(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size) return {kReplacement, 1, false};
    char32_t point = lead & (0xFFU >> (size + 1));
    for (std::size_t at = 1; at < size; ++at) {
        if ((byte(at) & 0xC0) != 0x80) return {kReplacement, 1, false};
        point = point << 6 | (byte(at) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = point >= 0xD800 && point < 0xE000;
    if (point < smallest[size] || surrogate || point > 0x10FFFF) return {kReplacement, 1, false};
    return {point, size, true};
}

void AppendUtf8(std::string& out, char32_t point) {
    const auto add = [&](char32_t byte) { out.push_back(static_cast<char>(static_cast<std::uint8_t>(byte))); };
    if (point < 0x80) {
        add(point);
    } else if (point < 0x800) {
        add(0xC0 | point >> 6);
        add(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        add(0xE0 | point >> 12);
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    } else {
        add(0xF0 | point >> 18);
        add(0x80 | (point >> 12 & 0x3F));
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    }
}

}  // namespace

std::string Utf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        char32_t point = text[at];
        if (point >= 0xD800 && point < 0xE000) {
            const bool pair = point < 0xDC00 && at + 1 < text.size() && text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000;
            point = pair ? 0x10000 + ((point - 0xD800) << 10) + (text[at + 1] - 0xDC00U) : kReplacement;
            if (pair) ++at;
        }
        AppendUtf8(out, point);
    }
    return out;
}

std::string Utf8Within(std::u16string_view text, std::size_t size) {
    std::string out = Utf8(text);
    if (out.size() <= size) return out;
    const auto continues = [&](std::size_t at) { return (static_cast<std::uint8_t>(out[at]) & 0xC0) == 0x80; };
    while (size > 0 && continues(size)) --size;
    out.resize(size);
    return out;
}

std::u16string Utf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Decoded decoded = DecodeUtf8(text);
        if (decoded.point >= 0x10000) {
            out.push_back(static_cast<char16_t>(0xD800 + ((decoded.point - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (decoded.point & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(decoded.point));
        }
        text.remove_prefix(decoded.size);
    }
    return out;
}

std::size_t ValidUtf8Size(std::string_view text) {
    std::size_t size = 0;
    while (size < text.size()) {
        const Decoded decoded = DecodeUtf8(text.substr(size));
        if (!decoded.valid) break;
        size += decoded.size;
    }
    return size;
}

bool IsValidUtf8(std::string_view text) {
    return ValidUtf8Size(text) == text.size();
}

std::u16string FromLatin1(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (const char byte : text) out.push_back(static_cast<std::uint8_t>(byte));
    return out;
}

std::u16string FromUtf8OrLatin1(std::string_view text) {
    return IsValidUtf8(text) ? Utf16(text) : FromLatin1(text);
}

std::u16string LowerCase(std::u16string_view text) {
    std::u16string out(text);
    for (char16_t& letter : out) {
        const bool plus32 =
            (letter >= u'A' && letter <= u'Z') || (letter >= 0xC0 && letter <= 0xDE && letter != 0xD7) ||
            (letter >= 0x391 && letter <= 0x3A9 && letter != 0x3A2) || (letter >= 0x410 && letter <= 0x42F);
        const bool plus80 = letter >= 0x400 && letter <= 0x40F;
        const bool evenUpper = (letter >= 0x100 && letter <= 0x137 && letter != 0x130) ||
                               (letter >= 0x14A && letter <= 0x177) || (letter >= 0x460 && letter <= 0x481) ||
                               (letter >= 0x48A && letter <= 0x4BF) || (letter >= 0x4D0 && letter <= 0x52F);
        const bool oddUpper = (letter >= 0x139 && letter <= 0x148) || (letter >= 0x179 && letter <= 0x17E);
        if (plus32) letter = static_cast<char16_t>(letter + 32);
        if (plus80) letter = static_cast<char16_t>(letter + 80);
        if ((evenUpper && letter % 2 == 0) || (oddUpper && letter % 2 == 1)) letter = static_cast<char16_t>(letter + 1);
        if (letter == 0x178) letter = 0xFF;
    }
    return out;
}

std::u16string Decimal(std::int64_t number) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

std::u16string ShortestDecimal(double number) {
    std::array<char, 400> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed).ptr;
    return {digits.data(), end};
}

std::u16string FillPlaces(std::u16string_view text, std::initializer_list<std::u16string> arguments) {
    std::u16string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool place = text[at] == u'%' && at + 1 < text.size() && text[at + 1] >= u'1' && text[at + 1] <= u'9';
        const auto index = place ? static_cast<std::size_t>(text[at + 1] - u'1') : arguments.size();
        if (index < arguments.size()) {
            out += arguments.begin()[index];
            ++at;
        } else {
            out.push_back(text[at]);
        }
    }
    return out;
}

namespace {

template <typename View, typename IsBlank>
View Trimmed(View text, const IsBlank& isBlank) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace

std::string_view Trim(std::string_view text) {
    return Trimmed(text, [](char byte) { return static_cast<std::uint8_t>(byte) <= 0x20; });
}

std::u16string_view Trim(std::u16string_view text) {
    return Trimmed(text, [](char16_t letter) { return letter <= u' ' || letter == u'\u00A0'; });
}

}  // namespace quillon
