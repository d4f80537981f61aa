#include "nsp/PowerSpectrum.h"

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace quillon::nsp {

namespace {

std::size_t LengthOf(int order) {
    if (order < kLeastPowerOrder || order > kMostPowerOrder)
        throw std::invalid_argument("the order of a long transform is 5 to 16");
    return std::size_t{1} << order;
}

}  // namespace

PowerSpectrum::PowerSpectrum(int order)
    : m_length(LengthOf(order)), m_twiddles(m_length), m_frames(2 * m_length), m_work(2 * m_length) {
    for (std::size_t k = 0; k < m_length; ++k) {
        const double angle = 2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(m_length);
        m_twiddles[k] = {std::cos(angle), -std::sin(angle)};
    }
}

void PowerSpectrum::Add(std::span<double> sums) {
    const std::size_t half = m_length / 2;
    const double* const work =
        TransformComplex<TwoDoubleLanes>(m_frames.data(), half, m_twiddles.data(), m_work.data(), m_frames.data());
    double* const to = sums.data();
    // The bin in the middle comes twice with the same value.
    const double middle = to[half / 2];
    double once = 0.0;
    SeparateReal<TwoDoubleLanes>(
        work, half, m_twiddles.data(), [&](std::size_t k, const ComplexLanes<TwoDoubleLanes>& bin) {
            const __m128d power = bin.re * bin.re + bin.im * bin.im;
            const double added = 0.25 * (_mm_cvtsd_f64(power) + _mm_cvtsd_f64(_mm_unpackhi_pd(power, power)));
            to[k] += added;
            if (k == half / 2) once = added;
        });
    to[half / 2] = middle + once;
}

}  // namespace quillon::nsp
