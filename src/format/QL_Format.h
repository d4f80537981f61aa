#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "format/NumberText.h"

/// The short texts of the scales, the cursor readout and exported tables. Pure functions of their arguments; numbers
/// are written as format/NumberText.h says, so NaN and infinities are safe everywhere.
namespace quillon {

/// What the user chose about the texts of values and times.
struct FormatOptions {
    bool unitScaling = true;         ///< metric prefixes are chosen by magnitude
    int digitsCount = 0;             ///< digits of a value; 0 or less: five significant ones
    bool digitsAreDecimals = false;  ///< digitsCount counts decimal places instead of significant digits
    int timeUnit = 0;                ///< 0 or less automatic, 1 clock time, 2 min, 3 s, 4 ms, 5 mks; others as 3
    bool timeOfDay = false;          ///< times are times of day, written as clock time
    bool sampleIndexes = false;      ///< positions are told as sample numbers instead of times
    char16_t decimalSeparator = u'.';
    friend bool operator==(const FormatOptions&, const FormatOptions&) = default;
};

enum class AxisKind { Time = 0, Frequency = 1, Amplitude = 2 };

/// The units known to the program. Those before kPrefixableUnits take metric prefixes, the others never do.
inline constexpr std::size_t kPrefixableUnits = 18;
inline constexpr std::array<std::u16string_view, 22> kUnits{
    u"V", u"A",  u"Ohm", u"W", u"Hz",  u"pps", u"ppm", u"m", u"s",       u"m/s",  u"m/s2",
    u"H", u"Pa", u"J",   u"L", u"L/s", u"g",   u"M",   u"K", u"\u00B0C", u"mmHg", u"%"};

/// Whether a prefix may be put in front of a unit: scaling is on and the unit is empty (a volt), one of the prefixable
/// ones, or such a one with "m" or "k" in front.
[[nodiscard]] bool IsPrefixable(std::u16string_view unit, const FormatOptions& options);

/// A unit and the decimal exponent of the factor that brings a value to it.
struct PrefixedUnit {
    int exponent = 0;
    std::u16string unit;
};

/// Chooses the prefix that suits the value. A prefix that the unit has already adds to the exponent what it is the
/// prefix of: 0.5 "mV" becomes 500 "mV", and "m/s" counts as a thousandth of "/s". Both are kept as the family's other
/// programs show them; with scaling off a unit stays as it is.
[[nodiscard]] PrefixedUnit ChoosePrefix(float value, std::u16string_view unit, const FormatOptions& options);

/// Value, blank, unit; a value that is not negative has a blank in front, where a negative one has its sign. An empty
/// unit is a volt.
[[nodiscard]] std::u16string FormatValue(float value, std::u16string_view unit, const FormatOptions& options);

/// Pattern of the labels of a scale with this step, for FormatPattern.
[[nodiscard]] std::u16string ScaleNumberPattern(float step);

/// Number, separator, unit, in the unit that suits the time; clock time has no unit.
[[nodiscard]] std::u16string FormatTime(double seconds, std::u16string_view separator, const FormatOptions& options);

/// The number alone, in the unit that suits the step, so that all labels of a scale agree.
[[nodiscard]] std::u16string FormatTimeNumber(double seconds, double step, const FormatOptions& options);

/// Number, separator, unit. Below 1 Hz per minute, unless plain hertz are asked for.
[[nodiscard]] std::u16string FormatFrequency(double hertz, std::u16string_view separator, bool plainHertz,
                                             const FormatOptions& options);

/// A position on an axis, without its unit: a frequency or sample number as it is, anything else as a time.
[[nodiscard]] std::u16string FormatAxisValue(double value, double step, AxisKind kind, const FormatOptions& options);
[[nodiscard]] std::u16string FormatAxisValueWithUnit(double value, AxisKind kind, std::u16string_view separator,
                                                     const FormatOptions& options);

[[nodiscard]] std::u16string_view AxisUnit(AxisKind kind);

/// Number of the localised string that names the axis. Kept for callers of the family's interface; the program itself
/// does not use it.
[[nodiscard]] int AxisTitleId(AxisKind kind);

}  // namespace quillon
