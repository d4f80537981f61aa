#include "format/QL_Format.h"

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

/// The numbers of the time-unit option.
enum class TimeMode { Clock = 1, Minutes, Seconds, Milliseconds, Microseconds };

/// A number in the unit that it is shown in.
struct Quantity {
    double number = 0.0;
    std::u16string_view unit;
    int places = 3;  ///< decimal places where they do not depend on the number
};

Quantity InUnitOf(TimeMode mode, double seconds) {
    switch (mode) {  // a number of no mode counts as seconds
        case TimeMode::Minutes: return {seconds / 60.0, u"min", 5};
        case TimeMode::Milliseconds: return {seconds * 1e3, u"ms", 4};
        case TimeMode::Microseconds: return {seconds * 1e6, u"mks", 3};
        default: return {seconds, u"s", 6};
    }
}

Quantity InFrequencyUnit(double hertz) {
    if (hertz >= 1e9) return {hertz / 1e9, u"GHz"};
    // The Cyrillic em is deliberate: the family's other programs write it.
    if (hertz >= 1e6) return {hertz / 1e6, u"\u041CHz"};
    if (hertz >= 1e3) return {hertz / 1e3, u"kHz"};
    if (hertz < 1.0) return {hertz * 60.0, u"/min"};
    return {hertz, u"Hz"};
}

/// The mode that the options fix, else the automatic one.
TimeMode ModeOr(TimeMode automatic, const FormatOptions& options) {
    if (options.timeOfDay) return TimeMode::Clock;
    return options.timeUnit <= 0 ? automatic : static_cast<TimeMode>(options.timeUnit);
}

TimeMode ModeOfTime(double seconds) {
    const double magnitude = std::fabs(seconds);
    if (magnitude == 0.0) return TimeMode::Seconds;
    if (magnitude >= 60.0) return TimeMode::Clock;
    if (magnitude < 1e-5) return TimeMode::Microseconds;
    return magnitude < 0.01 ? TimeMode::Milliseconds : TimeMode::Seconds;
}

TimeMode ModeOfStep(double step) {
    const double magnitude = std::fabs(step);
    if (magnitude >= 60.0) return TimeMode::Clock;
    return magnitude < 0.001 ? TimeMode::Milliseconds : TimeMode::Seconds;
}

std::u16string_view PrefixText(int exponent) {
    switch (exponent) {
        case 12: return u"p";
        case 9: return u"n";
        case 6: return u"mk";
        case 3: return u"m";
        case -3: return u"k";
        case -6: return u"M";
        case -9: return u"G";
        case -12: return u"T";
        default: return u"";
    }
}

int PrefixExponent(float value) {
    if (value == 0.0F) return 6;
    // All bounds are powers of ten, so the exponent decides: the single nearest to a bound is in the higher range.
    const int exponent = DecimalExponent(value);
    if (exponent >= 5) return -6;
    if (exponent >= 2) return -3;
    if (exponent >= -1) return 0;
    return exponent >= -4 ? 3 : 6;
}

/// value * 10^exponent for the exponents of the prefixes, which are multiples of 3.
float Scaled(float value, int exponent) {
    constexpr std::array<double, 5> powers{1.0, 1e3, 1e6, 1e9, 1e12};
    const double power = powers[static_cast<std::size_t>(std::abs(exponent)) / 3];
    const double number = static_cast<double>(value);
    return static_cast<float>(exponent < 0 ? number / power : number * power);
}

/// Decimal places of a value that is shown without further scaling.
int ValuePlaces(float value, const FormatOptions& options) {
    constexpr int automaticDigits = 5;
    constexpr int mostDigits = 100;  // more than the text of any single has
    const bool automatic = options.digitsCount <= 0;
    const int digits = automatic ? automaticDigits : std::min(options.digitsCount, mostDigits);
    return !automatic && options.digitsAreDecimals ? digits : digits - DecimalExponent(value) - 1;
}

bool TakesPrefix(std::u16string_view unit) {
    const auto end = kUnits.begin() + kPrefixableUnits;
    return std::find(kUnits.begin(), end, unit) != end;
}

}  // namespace

bool IsPrefixable(std::u16string_view unit, const FormatOptions& options) {
    if (!options.unitScaling) return false;
    if (unit.empty() || TakesPrefix(unit)) return true;
    return (unit.front() == u'm' || unit.front() == u'k') && TakesPrefix(unit.substr(1));
}

PrefixedUnit ChoosePrefix(float value, std::u16string_view unit, const FormatOptions& options) {
    if (unit.empty()) unit = kUnits.front();
    if (!IsPrefixable(unit, options)) return {0, std::u16string(unit)};
    int exponent = PrefixExponent(value);
    // The letters alone decide, also where they are no prefix.
    if (unit.size() > 2 && unit.starts_with(u"mk")) {
        unit.remove_prefix(2);
        exponent += 6;
    } else if (unit.size() > 1 && (unit.front() == u'm' || unit.front() == u'k')) {
        exponent += unit.front() == u'm' ? 3 : -3;
        unit.remove_prefix(1);
    }
    return {exponent, std::u16string(PrefixText(exponent)).append(unit)};
}

std::u16string FormatValue(float value, std::u16string_view unit, const FormatOptions& options) {
    if (unit.empty()) unit = kUnits.front();
    if (value == 0.0F) return std::u16string(u" 0 ").append(unit);
    PrefixedUnit prefixed{0, std::u16string(unit)};
    if (IsPrefixable(unit, options)) {
        prefixed = ChoosePrefix(value, unit, options);
        value = Scaled(value, prefixed.exponent);
    }
    const double rounded = RoundToPlaces(static_cast<double>(value), ValuePlaces(value, options));
    std::u16string text = SingleNumberText(rounded, options.decimalSeparator);
    if (text.front() != u'-') text.insert(0, 1, u' ');
    return text + u' ' + prefixed.unit;
}

std::u16string ScaleNumberPattern(float step) {
    const int exponent = DecimalExponent(step);
    return exponent < 0 ? u"0.0" + std::u16string(static_cast<std::size_t>(-exponent), u'#') : u"0";
}

std::u16string FormatTime(double seconds, std::u16string_view separator, const FormatOptions& options) {
    const TimeMode mode = ModeOr(ModeOfTime(seconds), options);
    if (mode == TimeMode::Clock) return ClockText(seconds, options.timeOfDay, options.decimalSeparator);
    const Quantity time = InUnitOf(mode, seconds);
    const double rounded = RoundToPlaces(time.number, 5 - DecimalExponent(time.number));
    return SingleNumberText(rounded, options.decimalSeparator).append(separator).append(time.unit);
}

std::u16string FormatTimeNumber(double seconds, double step, const FormatOptions& options) {
    const TimeMode mode = ModeOr(ModeOfStep(step), options);
    if (mode == TimeMode::Clock) return ClockText(seconds, options.timeOfDay, options.decimalSeparator);
    const Quantity time = InUnitOf(mode, seconds);
    return NumberText(RoundToPlaces(time.number, time.places), options.decimalSeparator);
}

std::u16string FormatFrequency(double hertz, std::u16string_view separator, bool plainHertz,
                               const FormatOptions& options) {
    const Quantity shown = plainHertz ? Quantity{hertz, u"Hz"} : InFrequencyUnit(hertz);
    return NumberText(RoundToPlaces(shown.number, shown.places), options.decimalSeparator)
        .append(separator)
        .append(shown.unit);
}

std::u16string FormatAxisValue(double value, double step, AxisKind kind, const FormatOptions& options) {
    if (kind == AxisKind::Frequency) return NumberText(value, options.decimalSeparator);
    return FormatTimeNumber(value, step, options);
}

std::u16string FormatAxisValueWithUnit(double value, AxisKind kind, std::u16string_view separator,
                                       const FormatOptions& options) {
    if (kind != AxisKind::Frequency) return FormatTime(value, separator, options);
    return NumberText(value, options.decimalSeparator).append(separator).append(AxisUnit(kind));
}

std::u16string_view AxisUnit(AxisKind kind) {
    switch (kind) {
        case AxisKind::Frequency: return u"Hz";
        case AxisKind::Amplitude: return u"V";
        default: return u"s";
    }
}

int AxisTitleId(AxisKind kind) {
    constexpr int firstTitle = 580;
    return firstTitle + static_cast<int>(kind);
}

}  // namespace quillon
