#include "nsp/Spectrum.h"

#include <emmintrin.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <stdexcept>
#include <vector>

#include "nsp/FftLanes.h"

namespace quillon::nsp {
namespace {

/// Multiplies by coefficient(i / (n-1)). Computed for the first half and mirrored, so that symmetry is exact.
template <typename Coefficient>
void MultiplyWindow(float* samples, int n, Coefficient coefficient) {
    if (n < 2) return;
    for (int i = 0; i <= (n - 1) / 2; ++i) {
        const auto value = static_cast<float>(coefficient(static_cast<double>(i) / (n - 1)));
        const int mirrored = n - 1 - i;
        samples[i] *= value;
        if (mirrored != i) samples[mirrored] *= value;
    }
}

double Cosine(double turns) {
    return std::cos(2.0 * std::numbers::pi * turns);
}

std::vector<SCplx> MakeTwiddles(int order) {
    const std::size_t length = std::size_t{1} << order;
    std::vector<SCplx> twiddles(length);
    for (std::size_t k = 0; k < length; ++k) {
        const double angle = 2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(length);
        twiddles[k] = {static_cast<float>(std::cos(angle)), static_cast<float>(-std::sin(angle))};
    }
    return twiddles;
}

template <int kOrder>
const SCplx* TwiddlesOf() {
    static const std::vector<SCplx> twiddles = MakeTwiddles(kOrder);
    return twiddles.data();
}

}  // namespace

const SCplx* FftTwiddles(int order) {
    switch (order) {
        case 5: return TwiddlesOf<5>();
        case 6: return TwiddlesOf<6>();
        case 7: return TwiddlesOf<7>();
        case 8: return TwiddlesOf<8>();
        case 9: return TwiddlesOf<9>();
        case 10: return TwiddlesOf<10>();
        case 11: return TwiddlesOf<11>();
        default: throw std::invalid_argument("the order of a transform is 5 to 11");
    }
}

void nspsbSet(float value, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = value;
}

void nspsWinBartlett(float* samples, int n) {
    MultiplyWindow(samples, n, [](double turns) { return 1.0 - std::abs(2.0 * turns - 1.0); });
}

void nspsWinHann(float* samples, int n) {
    MultiplyWindow(samples, n, [](double turns) { return 0.5 - 0.5 * Cosine(turns); });
}

void nspsWinHamming(float* samples, int n) {
    MultiplyWindow(samples, n, [](double turns) { return 0.54 - 0.46 * Cosine(turns); });
}

void nspsWinBlackmanStd(float* samples, int n) {
    MultiplyWindow(samples, n, [](double turns) { return 0.42 - 0.5 * Cosine(turns) + 0.08 * Cosine(2.0 * turns); });
}

float nspsSum(const float* src, int n) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) sum += static_cast<double>(src[i]);
    return static_cast<float>(sum);
}

void nspsbMpy1(float value, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] *= value;
}

void nspsbMpy3(const float* a, const float* b, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = a[i] * b[i];
}

void nspsbAdd1(float value, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] += value;
}

void nspsRealFftNip(const float* in, SCplx* out, int order) {
    const SCplx* const twiddles = FftTwiddles(order);
    const std::size_t half = (std::size_t{1} << order) / 2;
    std::array<float, std::size_t{1} << kMostFftOrder> first;
    std::array<float, std::size_t{1} << kMostFftOrder> second;
    const float* const work = TransformComplex<OneLane>(in, half, twiddles, first.data(), second.data());
    SeparateReal<OneLane>(work, half, twiddles, [out](std::size_t k, const ComplexLanes<OneLane>& bin) {
        out[k] = {0.5F * bin.re, 0.5F * bin.im};
    });
}

void nspcbMag(const SCplx* src, float* dst, int n) {
    int i = 0;
    for (; i + 2 <= n; i += 2) {
        const __m128 pair = _mm_loadu_ps(&src[i].re);
        const __m128d first = _mm_cvtps_pd(pair);
        const __m128d second = _mm_cvtps_pd(_mm_movehl_ps(pair, pair));
        const __m128d re = _mm_unpacklo_pd(first, second);
        const __m128d im = _mm_unpackhi_pd(first, second);
        const __m128d power = _mm_add_pd(_mm_mul_pd(re, re), _mm_mul_pd(im, im));
        _mm_storel_pi(reinterpret_cast<__m64*>(dst + i), _mm_cvtpd_ps(_mm_sqrt_pd(power)));
    }
    if (i < n) {
        const auto re = static_cast<double>(src[i].re);
        const auto im = static_cast<double>(src[i].im);
        dst[i] = static_cast<float>(std::sqrt(re * re + im * im));
    }
}

void nspsbThresh1(float* dst, int n, float threshold) {
    for (int i = 0; i < n; ++i) dst[i] = dst[i] < threshold ? threshold : dst[i];
}

void nspsbLg1(float* dst, int n) {
    nspsbLg2(dst, dst, n);
}

void nspsbLg2(const float* src, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = static_cast<float>(std::log10(static_cast<double>(src[i])));
}

void nspsbFloatToInt(const float* src, std::uint8_t* dst, int n) {
    for (int i = 0; i < n; ++i) {
        // Of a NaN, the maximum instruction gives its second operand.
        const __m128 low = _mm_max_ss(_mm_set_ss(src[i]), _mm_setzero_ps());
        dst[i] = static_cast<std::uint8_t>(_mm_cvtss_si32(_mm_min_ss(low, _mm_set_ss(255.0F))));
    }
}

}  // namespace quillon::nsp
