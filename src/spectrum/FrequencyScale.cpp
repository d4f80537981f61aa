#include "spectrum/FrequencyScale.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/Rounding.h"
#include "base/Text.h"

namespace quillon {

namespace {

constexpr double kWantedSpacing = 20.0;

/// value * 10^exponent. Negative powers divide, so that 5 thousandths are the double nearest to 0.005.
double TimesPowerOfTen(double value, int exponent) {
    const double power = std::pow(10.0, std::abs(exponent));
    return exponent < 0 ? value / power : value * power;
}

/// Step number k in Hz: 1, 2, 5, 10 ... mHz for k from 0, and finer ones for k below.
double StepHertz(int k) {
    constexpr std::array<double, 3> mantissas{1.0, 2.0, 5.0};
    const int mantissa = (k % 3 + 3) % 3;
    return TimesPowerOfTen(mantissas[static_cast<std::size_t>(mantissa)], (k - mantissa) / 3 - 3);
}

bool LabelFits(double row) {
    return row >= kFrequencyLabelRise;
}

}  // namespace

FrequencyScaleMarks FrequencyMarks(int height, double sampleRate, const FormatOptions& options, int labelHeight) {
    FrequencyScaleMarks marks;
    marks.unit = AxisUnit(AxisKind::Frequency);
    if (height < 1 || !(sampleRate > 0.0) || !std::isfinite(sampleRate)) return marks;

    const auto spacing = [&](int k) { return 2.0 * height * StepHertz(k) / sampleRate; };
    const double closest = std::max(labelHeight, kFrequencyLabelSpacing);
    int k = 0;
    while (spacing(k) < std::max(kWantedSpacing, closest)) ++k;
    while (!LabelFits(std::nearbyint(height - spacing(k))) && spacing(k - 1) >= closest) --k;

    FormatOptions scaled = options;
    scaled.unitScaling = true;
    marks.step = StepHertz(k);
    const PrefixedUnit prefixed = ChoosePrefix(static_cast<float>(marks.step), marks.unit, scaled);
    marks.unit = prefixed.unit;
    marks.shownStep = TimesPowerOfTen(marks.step, prefixed.exponent);
    const std::u16string pattern = ScaleNumberPattern(static_cast<float>(marks.shownStep));

    const double rows = spacing(k);
    const auto count = RoundHalfEven(height / rows);
    for (std::int32_t j = 1; j <= count; ++j) {
        const auto row = RoundHalfEven(height - j * rows);
        if (row < 0) break;
        marks.ticks.push_back({row, LabelFits(row) ? FormatPattern(TimesPowerOfTen(marks.step * j, prefixed.exponent),
                                                                   pattern, options.decimalSeparator)
                                                   : std::u16string()});
    }
    return marks;
}

std::int32_t ShownBins(double highest, double sampleRate, std::int32_t bins) {
    if (!(highest > 0.0) || !(sampleRate > 0.0) || !(2.0 * highest < sampleRate)) return bins;
    const auto least = std::min<std::int32_t>(2, bins);
    return std::max(static_cast<std::int32_t>(std::ceil(2.0 * highest / sampleRate * bins)), least);
}

std::u16string FrequencyCaption(std::u16string_view channelWord, int channelNumber, std::u16string_view unit) {
    return std::u16string(channelWord).append(u" ").append(Decimal(channelNumber)).append(u", ").append(unit);
}

}  // namespace quillon
