#include "export/EdfText.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/Bilingual.h"

namespace quillon {

namespace {

constexpr std::size_t kLongestNumber = 400;

[[noreturn]] void RefuseNumber() {
    throw FormatError(Say(u"a number does not fit its field", u"число не помещается в поле"));
}

/// Rounding at the last place may leave "-0" or "0.500".
std::string Plain(std::string digits) {
    if (digits.find('.') != std::string::npos) {
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.') digits.pop_back();
    }
    return digits == "-0" ? "0" : digits;
}

/// "1.2e-05" as "1.2E-5", "1e+11" as "1E11": the mantissa gets the room that padding would take.
std::string Scientific(const std::string& digits) {
    const std::size_t mark = digits.find('e');
    std::string text = Plain(digits.substr(0, mark)) + 'E';
    if (digits[mark + 1] == '-') text += '-';
    const std::size_t first = digits.find_first_not_of('0', mark + 2);
    return text + (first == std::string::npos ? "0" : digits.substr(first));
}

/// The longest text within `width` of decreasing precision in that notation; empty where none fits.
std::string Longest(double number, std::chars_format notation, std::size_t width) {
    for (int places = static_cast<int>(width); places >= 0; --places) {
        std::array<char, kLongestNumber> room{};
        const auto [end, error] = std::to_chars(room.data(), room.data() + room.size(), number, notation, places);
        if (error != std::errc()) continue;
        const std::string raw(room.data(), end);
        const std::string text = notation == std::chars_format::scientific ? Scientific(raw) : Plain(raw);
        if (text.size() <= width) return text;
    }
    return {};
}

template <typename Real>
std::string FittingNumber(Real number, std::size_t width) {
    if (!std::isfinite(number)) RefuseNumber();
    std::array<char, kLongestNumber> room{};
    const auto end = std::to_chars(room.data(), room.data() + room.size(), number, std::chars_format::fixed).ptr;
    const std::string shortest = Plain({room.data(), end});
    if (shortest.size() <= width) return shortest;
    const auto value = static_cast<double>(number);
    const std::string fixed = Longest(value, std::chars_format::fixed, width);
    const std::string scientific = Longest(value, std::chars_format::scientific, width);
    if (fixed.empty() && scientific.empty()) RefuseNumber();
    if (scientific.empty()) return fixed;
    // Programs that read no exponents are common, so it is written only where it says more.
    const auto error = [&](const std::string& digits) { return std::abs(EdfValue(digits) - value); };
    return !fixed.empty() && error(fixed) <= error(scientific) ? fixed : scientific;
}

}  // namespace

std::string EdfText(std::u16string_view text, std::size_t width) {
    std::string result;
    for (const char16_t letter : text) result += letter < 32 || letter > 126 ? '?' : static_cast<char>(letter);
    if (result.size() < width) result.resize(width, ' ');
    return result;
}

std::string EdfNumber(double number, std::size_t width) {
    return FittingNumber(number, width);
}

std::string EdfNumber(float number, std::size_t width) {
    return FittingNumber(number, width);
}

std::string NearestNumber(double number, std::size_t width) {
    std::string nearest = EdfNumber(number, width);
    const auto miss = [&](const std::string& text) { return std::abs(EdfValue(text) - number); };
    for (int places = 1; places < 100; ++places) {
        const double mantissa = std::nearbyint(number * std::pow(10.0, places));
        if (mantissa >= std::pow(10.0, width)) break;
        const std::string text = EdfCount(static_cast<std::int64_t>(mantissa), width) + "E-" + std::to_string(places);
        if (text.size() <= width && miss(text) < miss(nearest)) nearest = text;
    }
    return nearest;
}

double EdfValue(std::string_view text) {
    double value = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

double EdfRate(std::int32_t samplesPerRecord, std::string_view recordSeconds) {
    return samplesPerRecord / EdfValue(recordSeconds);
}

bool IsEdfYear(int year) {
    return year >= 1985 && year <= 2084;
}

std::string EdfDateTime(const CivilTime& time) {
    std::string text;
    const auto two = [&](int number) {
        text += static_cast<char>('0' + number / 10);
        text += static_cast<char>('0' + number % 10);
    };
    two(time.day);
    text += '.';
    two(time.month);
    text += '.';
    if (IsEdfYear(time.year)) {
        two(time.year % 100);
    } else {
        text += "yy";
    }
    two(time.hour);
    text += '.';
    two(time.minute);
    text += '.';
    two(time.second);
    return text;
}

std::string EdfOnset(double seconds, int places) {
    std::array<char, kLongestNumber> room{};
    const auto end =
        std::to_chars(room.data(), room.data() + room.size(), seconds, std::chars_format::fixed, places).ptr;
    return '+' + Plain({room.data(), end});
}

std::string EdfCount(std::int64_t count, std::size_t width) {
    std::string digits = std::to_string(count);
    if (digits.size() > width) RefuseNumber();
    return digits;
}

}  // namespace quillon
