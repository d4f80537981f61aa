#include "view/TimeAxis.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/Rounding.h"

namespace quillon {

namespace {

std::int32_t ColumnsOf(std::int32_t samples, std::int32_t perPixel) {
    return samples / perPixel + (samples % perPixel != 0 ? 1 : 0);
}

}  // namespace

std::int32_t TimeAxis::TableEntry(int index) {
    constexpr std::array<std::int32_t, 3> steps{1, 2, 5};
    std::int32_t entry = steps[static_cast<std::size_t>(index % 3)];
    for (int power = index / 3; power > 0; --power) entry *= 10;
    return entry;
}

void TimeAxis::SetBlock(std::int32_t sampleCount) {
    m_samples = std::max(sampleCount, 0);
    // A zoom coarser than the menu's was chosen to fit a longer block.
    m_zoom = std::min(m_zoom, kMenuZoomCount - 1);
    m_length = ColumnsOf(m_samples, SamplesPerPixel());
    m_first = 0;
}

void TimeAxis::SetWidth(std::int32_t pixels) {
    m_width = std::max(pixels, 1);
}

SampleSpan TimeAxis::Visible() const {
    const std::int64_t perPixel = SamplesPerPixel();
    const std::int64_t first = m_first * perPixel;
    const std::int64_t end = std::min<std::int64_t>((std::int64_t{m_first} + m_width) * perPixel, m_samples);
    if (end <= first) return {};
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - first)};
}

void TimeAxis::SetZoom(int index) {
    m_zoom = index;
    m_length = ColumnsOf(m_samples, SamplesPerPixel());
}

bool TimeAxis::SelectZoom(int index) {
    if (index == m_zoom || index < 0 || index >= kZoomCount) return false;
    const auto ratio = static_cast<float>(SamplesPerPixel()) / static_cast<float>(TableEntry(index));
    const double middle = m_first + m_width / 2.0;
    const bool sampleInMiddle = middle < m_length;
    const double first = std::nearbyint(ratio * middle - m_width / 2.0);
    SetZoom(index);
    // If the middle of the graph showed no sample, there is none to keep in place; clamp the view to the end of the
    // strip.
    const std::int32_t highest = sampleInMiddle ? m_length : std::max(m_length - m_width, 0);
    m_first = static_cast<std::int32_t>(std::clamp(first, 0.0, static_cast<double>(highest)));
    return true;
}

bool TimeAxis::SelectZoomAbout(int index, std::int32_t column) {
    if (index == m_zoom || index < 0 || index >= kZoomCount) return false;
    const std::int64_t sample = (std::int64_t{m_first} + column) * SamplesPerPixel();
    const bool sampleThere = sample < m_samples;
    SetZoom(index);
    const std::int64_t first = sample / SamplesPerPixel() - column;
    const std::int32_t highest = sampleThere ? m_length : std::max(m_length - m_width, 0);
    m_first = static_cast<std::int32_t>(std::clamp<std::int64_t>(first, 0, highest));
    return true;
}

void TimeAxis::ShowSamples(const SampleSpan& samples) {
    int index = 0;
    const auto columns = [&] {
        const std::int32_t perPixel = TableEntry(index);
        return (samples.End() - 1) / perPixel - samples.first / perPixel + 1;
    };
    while (index < kZoomCount - 1 && columns() > m_width) ++index;
    SetZoom(index);
    const std::int32_t left = samples.first / SamplesPerPixel();
    m_first = std::clamp(left - (m_width - columns()) / 2, 0, m_length);
}

void TimeAxis::Restore(int zoom, std::int32_t firstColumn) {
    SetZoom(std::clamp(zoom, 0, kZoomCount - 1));
    m_first = std::clamp(firstColumn, 0, m_length);
}

std::int32_t TimeAxis::ShiftTo(std::int32_t sample) const {
    const std::int32_t first = (sample - 1) / SamplesPerPixel() - m_width / 2;
    return std::clamp(first, 0, std::max(m_length - m_width, 0)) - m_first;
}

bool TimeAxis::MoveTo(std::int64_t column) {
    const auto target = static_cast<std::int32_t>(std::clamp<std::int64_t>(column, 0, m_length));
    if (target == m_first) return false;
    m_first = target;
    return true;
}

std::int32_t TimeAxis::ScrollBy(std::int32_t shift) {
    if (!CanScroll()) return 0;
    const std::int32_t old = m_first;
    MoveTo(std::int64_t{m_first} + shift);
    return m_first - old;
}

std::int32_t TimeAxis::PageShift(int command) const {
    const std::int32_t page = m_width - m_width % kDivision;
    switch (command) {
        case 0: return -m_first;
        case 1: return -page;
        case 2: return page;
        default: return m_length - m_first;
    }
}

std::int32_t TimeAxis::ScrollValue() const {
    if (m_length == 0) return 0;
    const float share = static_cast<float>(m_first) / static_cast<float>(m_length);
    return RoundHalfEven<std::int16_t>(static_cast<double>(share) * kScrollMax);
}

bool TimeAxis::SetScrollValue(std::int32_t value) {
    return MoveTo(RoundHalfEven(static_cast<double>(m_length) * std::clamp(value, 0, kScrollMax) / kScrollMax));
}

std::int32_t TimeAxis::ScrollPage() const {
    if (m_length <= m_width) return kScrollMax;
    return std::max(RoundHalfEven(static_cast<double>(m_width) / m_length * kScrollMax), 1);
}

}  // namespace quillon
