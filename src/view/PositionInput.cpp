#include "view/PositionInput.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>
#include <utility>

#include "base/DateTime.h"
#include "base/Text.h"
#include "view/ScaleLabels.h"

namespace quillon {

namespace {

struct TypedNumber {
    double value = 0.0;
    bool whole = true;  ///< nothing but digits
};

/// Takes a typed text apart; blanks in front of a part are passed over.
class Scanner {
  public:
    Scanner(std::u16string_view text, char16_t separator) : m_text(LowerCase(text)), m_separator(separator) {}

    [[nodiscard]] bool AtEnd() {
        SkipBlanks();
        return m_at == m_text.size();
    }
    [[nodiscard]] bool NextIs(char16_t letter) {
        SkipBlanks();
        return Peek() == letter;
    }
    [[nodiscard]] bool Take(char16_t letter) {
        const bool there = NextIs(letter);
        if (there) ++m_at;
        return there;
    }
    /// None where no number stands, or one beyond the range of doubles.
    [[nodiscard]] std::optional<TypedNumber> Number(bool withExponent) {
        SkipBlanks();
        TypedNumber number;
        std::string text;
        TakeDigits(text);
        if (Peek() == u'.' || Peek() == u',' || Peek() == m_separator) {
            number.whole = false;
            text += '.';
            ++m_at;
            TakeDigits(text);
        }
        if (withExponent && TakeExponent(text)) number.whole = false;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number.value);
        if (error != std::errc() || stop != end) return std::nullopt;
        return number;
    }
    /// What is left, without the blanks around it.
    [[nodiscard]] std::u16string_view Rest() {
        SkipBlanks();
        std::u16string_view rest = std::u16string_view(m_text).substr(m_at);
        while (!rest.empty() && IsBlank(rest.back())) rest.remove_suffix(1);
        return rest;
    }

  private:
    static bool IsBlank(char16_t letter) {
        return letter == u' ' || letter == u'\t' || letter == u'\u00A0' || letter == u'\u202F';
    }
    static bool IsDigit(char16_t letter) { return letter >= u'0' && letter <= u'9'; }
    /// 0 at the end.
    [[nodiscard]] char16_t Peek(std::size_t ahead = 0) const {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : u'\0';
    }
    void SkipBlanks() {
        while (IsBlank(Peek())) ++m_at;
    }
    void TakeDigits(std::string& text) {
        for (; IsDigit(Peek()); ++m_at) text += static_cast<char>(Peek());
    }
    /// An "e" without digits behind it is left for the unit.
    bool TakeExponent(std::string& text) {
        const bool sign = Peek(1) == u'+' || Peek(1) == u'-';
        if (Peek() != u'e' || !IsDigit(Peek(sign ? 2 : 1))) return false;
        text += Peek(1) == u'-' ? "e-" : "e";
        m_at += sign ? 2 : 1;
        TakeDigits(text);
        return true;
    }

    std::u16string m_text;
    std::size_t m_at = 0;
    char16_t m_separator;
};

struct TimeUnit {
    std::u16string_view name;
    double seconds;
};

constexpr std::array<TimeUnit, 14> kTimeUnits{{{u"", 1.0},
                                               {u"d", 86400.0},
                                               {u"д", 86400.0},
                                               {u"h", 3600.0},
                                               {u"ч", 3600.0},
                                               {u"min", 60.0},
                                               {u"мин", 60.0},
                                               {u"s", 1.0},
                                               {u"с", 1.0},
                                               {u"ms", 1e-3},
                                               {u"мс", 1e-3},
                                               {u"mks", 1e-6},
                                               {u"us", 1e-6},
                                               {u"мкс", 1e-6}}};

/// Seconds of a clock time whose first number has been taken.
std::optional<double> ClockSeconds(const TypedNumber& first, Scanner& input) {
    constexpr int mostParts = 3;
    constexpr double perPart = 60.0;
    TypedNumber last = first;
    double seconds = first.value;
    for (int parts = 1; input.Take(u':'); ++parts) {
        const std::optional<TypedNumber> part = input.Number(false);
        if (!part || !last.whole || part->value >= perPart || parts == mostParts) return std::nullopt;
        last = *part;
        seconds = seconds * perPart + last.value;
    }
    if (!input.AtEnd()) return std::nullopt;
    return seconds;
}

/// Seconds of a number that the name of a unit follows, or nothing.
std::optional<double> InUnit(double number, Scanner& input) {
    const std::u16string_view name = input.Rest();
    const auto* const unit = std::find_if(kTimeUnits.begin(), kTimeUnits.end(),
                                          [&](const TimeUnit& candidate) { return candidate.name == name; });
    if (unit == kTimeUnits.end()) return std::nullopt;
    return number * unit->seconds;
}

/// Seconds from the block's start to a time of day, of several the one next to `present`. A time of day that the block
/// does not reach is taken as time from its start.
std::optional<double> ElapsedUntil(double timeOfDay, const ViewBlock& block, const FormatOptions& format,
                                   double present) {
    constexpr double day = kSecondsPerDay;
    constexpr double resolution = 1e-4;  // of the texts: that of a start may be a little earlier than the start
    if (timeOfDay >= day) return std::nullopt;
    double elapsed = timeOfDay - AxisSeconds(block, 0.0, format);
    if (elapsed < 0.0) elapsed += day;  // past midnight
    const double untilStart = day - elapsed;
    const double length = block.sampleCount / block.sampleRate;
    const double first = untilStart < resolution ? elapsed - day : elapsed;
    if (first > length + resolution) return timeOfDay <= length ? std::optional(timeOfDay) : std::nullopt;
    const double last = std::floor((length - first) / day);
    return std::max(first + day * std::clamp(std::nearbyint((present - first) / day), 0.0, std::max(last, 0.0)), 0.0);
}

std::int32_t Clamped(double number, const ViewBlock& block) {
    return static_cast<std::int32_t>(std::clamp(number, 1.0, static_cast<double>(block.sampleCount)));
}

/// A typed place.
struct Place {
    double number = 0.0;  ///< of the sample, from 1, which the block need not have
    bool isTime = false;  ///< typed as a time, not as a sample number
};

std::optional<Place> RoundedPlace(double number, bool isTime) {
    if (!std::isfinite(number)) return std::nullopt;
    return Place{std::nearbyint(number), isTime};
}

/// See ParsePosition.
std::optional<Place> ParsePlace(std::u16string_view text, const ViewBlock& block, const FormatOptions& format,
                                std::int32_t present) {
    if (block.sampleCount <= 0) return std::nullopt;
    Scanner input(text, format.decimalSeparator);
    const bool hasTimes = block.sampleRate > 0.0;
    const bool marked = input.Take(u'#');
    const std::optional<TypedNumber> number = input.Number(true);
    if (!number) return std::nullopt;
    if (marked || (input.AtEnd() && (format.sampleIndexes || !hasTimes))) {
        if (!number->whole || !input.AtEnd()) return std::nullopt;
        return RoundedPlace(number->value, false);
    }
    if (!hasTimes) return std::nullopt;
    std::optional<double> seconds;
    if (input.NextIs(u':')) {
        seconds = ClockSeconds(*number, input);
        if (seconds && format.timeOfDay)
            seconds = ElapsedUntil(*seconds, block, format, (present - 1) / block.sampleRate);
    } else {
        seconds = InUnit(number->value, input);
    }
    if (!seconds) return std::nullopt;
    return RoundedPlace(*seconds * block.sampleRate + 1.0, true);
}

}  // namespace

std::optional<std::int32_t> ParsePosition(std::u16string_view text, const ViewBlock& block, const FormatOptions& format,
                                          std::int32_t present) {
    const std::optional<Place> place = ParsePlace(text, block, format, present);
    return place ? std::optional(Clamped(place->number, block)) : std::nullopt;
}

std::optional<double> ParseLength(std::u16string_view text, const FormatOptions& format) {
    Scanner input(text, format.decimalSeparator);
    const std::optional<TypedNumber> number = input.Number(true);
    if (!number) return std::nullopt;
    const std::optional<double> seconds =
        input.NextIs(u':') ? ClockSeconds(*number, input) : InUnit(number->value, input);
    return seconds && std::isfinite(*seconds) && *seconds > 0.0 ? seconds : std::nullopt;
}

std::optional<PositionRange> ParseRange(std::u16string_view text, const ViewBlock& block, const FormatOptions& format,
                                        std::int32_t present) {
    const std::size_t dots = text.find(u"..");
    if (dots == std::u16string_view::npos) return std::nullopt;
    std::optional<Place> first = ParsePlace(text.substr(0, dots), block, format, present);
    std::optional<Place> end =
        ParsePlace(text.substr(dots + 2), block, format, first ? Clamped(first->number, block) : present);
    if (!first || !end) return std::nullopt;
    if (end->number < first->number) std::swap(first, end);
    const std::int32_t from = Clamped(first->number, block);
    return PositionRange{from, std::max(from, Clamped(end->number - (end->isTime ? 1.0 : 0.0), block))};
}

}  // namespace quillon
