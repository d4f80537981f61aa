#pragma once

#include <cstdint>

/// The vector routines of a short-time spectrum, in single precision. Lengths are counts of elements; one of 0 or less
/// does nothing. Nothing is assumed about alignment. In the error bounds u is half a unit in the last place, 2^-24
/// relative.
///
/// The viewer computes many columns at a time by SpectrumBatch. It uses of these the windows and what scales them; the
/// others are the same steps one frame at a time.
namespace quillon::nsp {

struct SCplx {
    float re = 0.0F;
    float im = 0.0F;
};

/// dst[i] = value
void nspsbSet(float value, float* dst, int n);

/// Symmetric windows over n points, multiplied into the samples; x = 2 pi i / (n-1), and a window of one point is 1.
/// The coefficient is computed in double precision; coefficient and product are each rounded once: within 2u.
void nspsWinBartlett(float* samples, int n);     ///< 1 - |2i/(n-1) - 1|
void nspsWinHann(float* samples, int n);         ///< 0.5 - 0.5 cos x
void nspsWinHamming(float* samples, int n);      ///< 0.54 - 0.46 cos x
void nspsWinBlackmanStd(float* samples, int n);  ///< 0.42 - 0.5 cos x + 0.08 cos 2x

/// The sum, added up in double precision and rounded once: within u.
[[nodiscard]] float nspsSum(const float* src, int n);

/// dst[i] = value dst[i], rounded once
void nspsbMpy1(float value, float* dst, int n);
/// dst[i] = a[i] b[i], rounded once; dst may be a or b
void nspsbMpy3(const float* a, const float* b, float* dst, int n);
/// dst[i] = value + dst[i], rounded once
void nspsbAdd1(float value, float* dst, int n);

/// Orders of nspsRealFftNip and SpectrumBatch.
inline constexpr int kLeastFftOrder = 5;
inline constexpr int kMostFftOrder = 11;

/// Forward transform of N = 2^order real samples into N/2 + 1 bins, not scaled:
/// out[k] = sum over i of in[i] e^(-2 pi j i k / N). Bins 0 and N/2 are real.
/// The error of a bin is below 1e-6 of the largest magnitude. Throws std::invalid_argument for another order.
void nspsRealFftNip(const float* in, SCplx* out, int order);

/// dst[i] = sqrt(re^2 + im^2), within 2u; squares that overflow or underflow single precision do no harm.
void nspcbMag(const SCplx* src, float* dst, int n);

/// Raises what is less than the threshold to it; a NaN stays.
void nspsbThresh1(float* dst, int n, float threshold);

/// Decimal logarithms, within 2u; -infinity of 0, NaN of what is negative.
void nspsbLg1(float* dst, int n);
void nspsbLg2(const float* src, float* dst, int n);

/// Nearest integer, halves to even, 0 below 0 and 255 above 255; a NaN gives 0.
void nspsbFloatToInt(const float* src, std::uint8_t* dst, int n);

}  // namespace quillon::nsp
