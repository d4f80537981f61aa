#pragma once

#include <emmintrin.h>

#include <cstddef>

#include "nsp/Spectrum.h"

/// The transform of real samples, for one frame or for several side by side. A frame's N samples count as N/2 complex
/// ones, even samples real and odd ones imaginary; element j of the work space is the real parts of all lanes followed
/// by their imaginary parts.
namespace quillon::nsp {

/// e^(-2 pi j k / N) for k = 0 .. N-1, N = 2^order; made once. Throws std::invalid_argument for an order out of range.
[[nodiscard]] const SCplx* FftTwiddles(int order);

/// A factor of the transform in double precision.
struct DCplx {
    double re = 0.0;
    double im = 0.0;
};

struct OneLane {
    using Real = float;
    using Twiddle = SCplx;
    using Value = float;
    static constexpr std::size_t kLanes = 1;
    static Value Load(const float* from) { return *from; }
    static void Store(float* to, Value value) { *to = value; }
};

struct FourLanes {
    using Real = float;
    using Twiddle = SCplx;
    using Value = __m128;
    static constexpr std::size_t kLanes = 4;
    static Value Load(const float* from) { return _mm_loadu_ps(from); }
    static void Store(float* to, Value value) { _mm_storeu_ps(to, value); }
};

struct TwoDoubleLanes {
    using Real = double;
    using Twiddle = DCplx;
    using Value = __m128d;
    static constexpr std::size_t kLanes = 2;
    static Value Load(const double* from) { return _mm_loadu_pd(from); }
    static void Store(double* to, Value value) { _mm_storeu_pd(to, value); }
};

template <typename Lanes>
struct ComplexLanes {
    typename Lanes::Value re;
    typename Lanes::Value im;

    static ComplexLanes Load(const typename Lanes::Real* work, std::size_t element) {
        const typename Lanes::Real* from = work + 2 * Lanes::kLanes * element;
        return {Lanes::Load(from), Lanes::Load(from + Lanes::kLanes)};
    }
    void Store(typename Lanes::Real* work, std::size_t element) const {
        typename Lanes::Real* to = work + 2 * Lanes::kLanes * element;
        Lanes::Store(to, re);
        Lanes::Store(to + Lanes::kLanes, im);
    }
    ComplexLanes operator+(const ComplexLanes& b) const { return {re + b.re, im + b.im}; }
    ComplexLanes operator-(const ComplexLanes& b) const { return {re - b.re, im - b.im}; }
    ComplexLanes operator*(const typename Lanes::Twiddle& w) const {
        return {w.re * re - w.im * im, w.re * im + w.im * re};
    }
    [[nodiscard]] ComplexLanes TimesMinusJ() const { return {im, -re}; }
};

/// The four-point transforms of one step, n elements apart by stride; results still to be turned by their twiddles.
template <typename Lanes>
struct FourPoints {
    FourPoints(const typename Lanes::Real* from, std::size_t at, std::size_t distance) {
        using Element = ComplexLanes<Lanes>;
        const Element a = Element::Load(from, at);
        const Element b = Element::Load(from, at + distance);
        const Element c = Element::Load(from, at + 2 * distance);
        const Element d = Element::Load(from, at + 3 * distance);
        const Element even = a + c;
        const Element odd = b + d;
        const Element evenDifference = a - c;
        const Element oddDifference = (b - d).TimesMinusJ();
        y0 = even + odd;
        y1 = evenDifference + oddDifference;
        y2 = even - odd;
        y3 = evenDifference - oddDifference;
    }
    ComplexLanes<Lanes> y0, y1, y2, y3;
};

/// Transforms `count` complex elements (a power of two, 16 or more), `twiddles` being those of 2 x count. Each step
/// goes from one work space to another and leaves its results in order, so there is no bit reversal (Stockham's
/// scheme, radix 4 with a last step of radix 2 where needed). Reads `from` only in the first step; returns which of
/// the two work spaces holds the result. `from` may be `second`.
template <typename Lanes>
[[nodiscard]] const typename Lanes::Real* TransformComplex(const typename Lanes::Real* from, std::size_t count,
                                                           const typename Lanes::Twiddle* twiddles,
                                                           typename Lanes::Real* first, typename Lanes::Real* second) {
    using Element = ComplexLanes<Lanes>;
    typename Lanes::Real* to = first;
    std::size_t stride = 1;
    for (std::size_t n = count; n > 2; n /= 4) {
        const std::size_t quarter = n / 4;
        const std::size_t distance = stride * quarter;
        for (std::size_t q = 0; q < stride; ++q) {
            const FourPoints<Lanes> points(from, q, distance);
            points.y0.Store(to, q);
            points.y1.Store(to, q + stride);
            points.y2.Store(to, q + 2 * stride);
            points.y3.Store(to, q + 3 * stride);
        }
        for (std::size_t p = 1; p < quarter; ++p) {
            const auto w1 = twiddles[2 * stride * p];
            const auto w2 = twiddles[4 * stride * p];
            const auto w3 = twiddles[6 * stride * p];
            for (std::size_t q = 0; q < stride; ++q) {
                const FourPoints<Lanes> points(from, stride * p + q, distance);
                const std::size_t at = 4 * stride * p + q;
                points.y0.Store(to, at);
                (points.y1 * w1).Store(to, at + stride);
                (points.y2 * w2).Store(to, at + 2 * stride);
                (points.y3 * w3).Store(to, at + 3 * stride);
            }
        }
        from = to;
        to = from == first ? second : first;
        stride *= 4;
    }
    if (stride == count) return from;
    for (std::size_t q = 0; q < stride; ++q) {
        const Element a = Element::Load(from, q);
        const Element b = Element::Load(from, q + stride);
        (a + b).Store(to, q);
        (a - b).Store(to, q + stride);
    }
    return to;
}

/// Separates the transform of even and odd samples into the bins of the real samples: calls sink(k, bin) with twice
/// the value of bin k for each k = 0 .. count (count/2 comes twice).
template <typename Lanes, typename Sink>
void SeparateReal(const typename Lanes::Real* work, std::size_t count, const typename Lanes::Twiddle* twiddles,
                  Sink sink) {
    using Element = ComplexLanes<Lanes>;
    constexpr typename Lanes::Real two = 2;
    const Element zeroth = Element::Load(work, 0);
    const typename Lanes::Value none = zeroth.re - zeroth.re;
    sink(std::size_t{0}, Element{two * (zeroth.re + zeroth.im), none});
    sink(count, Element{two * (zeroth.re - zeroth.im), none});
    for (std::size_t k = 1; k <= count / 2; ++k) {
        const Element a = Element::Load(work, k);
        const Element b = Element::Load(work, count - k);
        const Element even{a.re + b.re, a.im - b.im};
        const Element odd = Element{a.im + b.im, b.re - a.re} * twiddles[k];
        sink(count - k, Element{even.re - odd.re, odd.im - even.im});
        sink(k, even + odd);
    }
}

}  // namespace quillon::nsp
