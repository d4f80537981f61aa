#include "spectrum/PlotAxis.h"

#include <cmath>

#include "format/NumberText.h"
#include "view/ScaleSteps.h"

namespace quillon {

namespace {

/// Marks at an end of the range are inside in spite of rounding.
constexpr double kTolerance = 1e-9;
/// Steps in StepValue per decade.
constexpr int kSteps = 3;

}  // namespace

PlotAxis::PlotAxis(double low, double high, bool logarithmic, double first, double last)
    : m_low(low), m_high(high), m_logarithmic(logarithmic), m_first(first), m_last(last) {
    if (m_high > m_low) return;
    m_high = logarithmic ? m_low * 10.0 : m_low + 1.0;
}

double PlotAxis::Share(double value) const {
    if (!m_logarithmic) return (value - m_low) / (m_high - m_low);
    return value > 0.0 ? std::log(value / m_low) / std::log(m_high / m_low) : 0.0;
}

double PlotAxis::PlaceOf(double value) const {
    return m_first + Share(value) * (m_last - m_first);
}

double PlotAxis::ValueAt(double place) const {
    const double share = (place - m_first) / (m_last - m_first);
    return m_logarithmic ? m_low * std::pow(m_high / m_low, share) : m_low + share * (m_high - m_low);
}

void PlotAxis::AddSteps(double step, std::vector<AxisTick>& ticks) const {
    for (double count = std::ceil(m_low / step - kTolerance); count * step <= m_high + step * kTolerance; ++count)
        ticks.push_back({.value = count * step, .text = u"1"});
}

void PlotAxis::AddDecades(double spacing, std::vector<AxisTick>& ticks) const {
    const double decade = std::fabs(m_last - m_first) / std::log10(m_high / m_low);
    const int every = static_cast<int>(std::ceil(spacing / decade));
    // The narrowest gaps are those before the powers of ten.
    const bool halves = decade * std::log10(2.0) >= spacing;
    const bool all = decade * std::log10(10.0 / 9.0) >= spacing;
    constexpr double leastGap = 3.0;
    const bool small = decade * std::log10(10.0 / 9.0) >= leastGap;
    const auto first = static_cast<int>(std::floor(std::log10(m_low)));
    const auto last = static_cast<int>(std::ceil(std::log10(m_high)));
    for (int power = first; power <= last; ++power) {
        const double base = StepValue(kSteps * power);
        for (int digit = 1; digit < 10; ++digit) {
            const double value = base * digit;
            const bool text = digit == 1 ? power % every == 0 : all || (halves && (digit == 2 || digit == 5));
            if (value < m_low * (1.0 - kTolerance) || value > m_high * (1.0 + kTolerance)) continue;
            if (text || digit == 1 || small) ticks.push_back({.value = value, .text = text ? u"1" : u""});
        }
    }
}

std::vector<AxisTick> PlotAxis::Ticks(double spacing, double unit, char16_t separator) const {
    std::vector<AxisTick> ticks;
    const double pixels = std::fabs(m_last - m_first);
    if (!(pixels > 0.0)) return ticks;
    if (!m_logarithmic) {
        AddSteps(StepValue(StepHolding((m_high - m_low) * spacing / pixels)), ticks);
    } else if (m_high / m_low < 10.0) {
        const double perPixel = std::log(m_high / m_low) / pixels;
        AddSteps(StepValue(StepHolding(m_high * perPixel * spacing)), ticks);
    } else {
        AddDecades(spacing, ticks);
    }
    for (AxisTick& tick : ticks) {
        tick.place = PlaceOf(tick.value);
        if (!tick.text.empty()) tick.text = SingleNumberText(tick.value / unit, separator);
    }
    return ticks;
}

}  // namespace quillon
