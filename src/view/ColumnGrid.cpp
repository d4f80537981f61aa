#include "view/ColumnGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace quillon {

namespace {

std::int64_t CeilDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor + (value % divisor > 0 ? 1 : 0);
}

}  // namespace

ColumnGrid::ColumnGrid(std::int64_t samples, std::int64_t parts) {
    const std::int64_t common = std::gcd(samples, parts);
    m_samples = samples / common;
    m_parts = parts / common;
}

std::int64_t ColumnGrid::FirstSample(std::int64_t column) const {
    return std::max<std::int64_t>(column, 0) * m_samples / m_parts;
}

SampleSpan ColumnGrid::Samples(std::int64_t column) const {
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    const std::int64_t first = std::min(FirstSample(column), most - 1);
    const std::int64_t end = std::clamp(FirstSample(column + 1), first + 1, most);
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - first)};
}

std::int64_t ColumnGrid::FirstColumn(std::int64_t sample) const {
    return ShowsEverySample() ? CeilDivide(sample * m_parts, m_samples) : LastColumn(sample);
}

std::int64_t ColumnGrid::LastColumn(std::int64_t sample) const {
    return CeilDivide((sample + 1) * m_parts, m_samples) - 1;
}

std::int64_t ColumnGrid::ColumnCount(std::int64_t samples) const {
    return CeilDivide(samples * m_parts, m_samples);
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
