#include "view/ColumnGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace quillon {

namespace {

__extension__ using Wide = __int128;

std::int64_t CeilDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor + (value % divisor > 0 ? 1 : 0);
}

/// factor x value / divisor, rounded down or up; the result fits 64 bits.
std::int64_t Multiplied(std::int64_t value, std::int64_t factor, std::int64_t divisor, bool up) {
    std::int64_t product = 0;
    if (!__builtin_mul_overflow(value, factor, &product)) return up ? CeilDivide(product, divisor) : product / divisor;
    const Wide wide = static_cast<Wide>(value) * factor;
    return static_cast<std::int64_t>(wide / divisor) + (up && wide % divisor > 0 ? 1 : 0);
}

}  // namespace

ColumnGrid::ColumnGrid(std::int64_t samples, std::int64_t parts) {
    const std::int64_t common = std::gcd(samples, parts);
    m_samples = samples / common;
    m_parts = parts / common;
}

ColumnGrid ColumnGrid::Scaled(std::int64_t samples, std::int64_t own) const {
    if (samples == own) return *this;
    // Both fractions are reduced, so that only factors of the other one are left to be divided by.
    const ColumnGrid ratio(samples, own);
    const ColumnGrid left(m_samples, ratio.m_parts);
    const ColumnGrid right(ratio.m_samples, m_parts);
    Wide dividend = static_cast<Wide>(left.m_samples) * right.m_samples;
    Wide divisor = static_cast<Wide>(left.m_parts) * right.m_parts;
    for (; std::max(dividend, divisor) > std::numeric_limits<std::int64_t>::max(); dividend /= 2) divisor /= 2;
    return {std::max(static_cast<std::int64_t>(dividend), std::int64_t{1}),
            std::max(static_cast<std::int64_t>(divisor), std::int64_t{1})};
}

std::int64_t ColumnGrid::FirstSample(std::int64_t column) const {
    return Multiplied(std::max<std::int64_t>(column, 0), m_samples, m_parts, false);
}

SampleSpan ColumnGrid::Samples(std::int64_t column) const {
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    const std::int64_t first = std::min(FirstSample(column), most - 1);
    const std::int64_t end = std::clamp(FirstSample(column + 1), first + 1, most);
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - first)};
}

SampleSpan ColumnGrid::Samples(std::int64_t firstColumn, std::int32_t columns, std::int32_t samples) const {
    const std::int64_t first = FirstSample(firstColumn);
    const std::int64_t end = std::min<std::int64_t>(Samples(firstColumn + columns - 1).End(), samples);
    if (end <= first) return {};
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - first)};
}

std::int64_t ColumnGrid::FirstColumn(std::int64_t sample) const {
    return ShowsEverySample() ? Multiplied(sample, m_parts, m_samples, true) : LastColumn(sample);
}

std::int64_t ColumnGrid::LastColumn(std::int64_t sample) const {
    return Multiplied(sample + 1, m_parts, m_samples, true) - 1;
}

std::int64_t ColumnGrid::ColumnCount(std::int64_t samples) const {
    return Multiplied(samples, m_parts, m_samples, true);
}

std::int64_t ColumnGrid::ColumnOfPlace(double samples) const {
    // What is that close to a sample is meant to be it.
    constexpr double tolerance = 1e-6;
    if (const double nearest = std::nearbyint(samples); std::fabs(samples - nearest) < tolerance)
        return FirstColumn(static_cast<std::int64_t>(nearest));
    if (!ShowsEverySample()) return LastColumn(static_cast<std::int64_t>(std::floor(samples)));
    return static_cast<std::int64_t>(std::ceil(samples / SamplesPerColumn()));
}

}  // namespace quillon
