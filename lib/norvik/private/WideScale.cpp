#include "norvik/private/WideScale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quillon {

namespace {

constexpr double kCodeMinimum = std::numeric_limits<std::int16_t>::min();
constexpr double kCodeMaximum = std::numeric_limits<std::int16_t>::max();
/// Largest code of a span that had to be scaled; a little below the limits, so that rounding never clips.
constexpr double kScaledReach = 32000.0;

/// The nearest single, kept finite.
float Single(double value) {
    constexpr double limit = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -limit, limit));
}

WideScale WithUnits(double shift, double step, double unitsPerSample, double unitsOffset) {
    return {shift, step, Single(step * unitsPerSample), Single(shift * unitsPerSample + unitsOffset), false};
}

}  // namespace

WideScale ChooseWideScale(double minimum, double maximum, bool whole, double unitsPerSample, double unitsOffset,
                          double headroom) {
    if (!std::isfinite(minimum) || !std::isfinite(maximum) || minimum > maximum) {
        return WithUnits(0.0, 1.0, unitsPerSample, unitsOffset);
    }
    if (minimum == maximum) return WithUnits(minimum, 1.0, unitsPerSample, unitsOffset);
    if (whole && maximum - minimum <= kCodeMaximum - kCodeMinimum) {
        const bool fits = minimum >= kCodeMinimum && maximum <= kCodeMaximum;
        const double shift = fits ? 0.0 : std::floor((minimum + maximum + 1.0) / 2.0);
        return WithUnits(shift, 1.0, unitsPerSample, unitsOffset);
    }
    // Halves first: the span of two large doubles may overflow.
    const double step = (maximum / 2.0 - minimum / 2.0) / kScaledReach * headroom;
    const double shift = maximum / 2.0 + minimum / 2.0;
    if (!(step > 0.0)) return WithUnits(minimum, 1.0, unitsPerSample, unitsOffset);
    WideScale scale = WithUnits(shift, step, unitsPerSample, unitsOffset);
    scale.fills = true;
    return scale;
}

}  // namespace quillon
