#include "nsp/SpectrumBatch.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <utility>

#include "nsp/FftLanes.h"

namespace quillon::nsp {
namespace {

constexpr float kSilence = 1e-30F;  ///< magnitudes below count as this
constexpr int kTopIndex = 255;
constexpr double kLog2Of10 = std::numbers::ln10 * std::numbers::log2e;
constexpr int kMostExponent = 100;  ///< of the factors and powers in use: single precision ends at 126

/// `value`, at least `least`; a NaN becomes `least`, for the instruction then gives its second operand.
__m128 AtLeast(__m128 least, __m128 value) {
    return _mm_max_ps(value, least);
}

__m128 PowerOf(const ComplexLanes<FourLanes>& bin) {
    return bin.re * bin.re + bin.im * bin.im;
}

/// A bin of the samples without their means, and what the means add to it: their multiples of the window's bin.
ComplexLanes<FourLanes> WithMean(const ComplexLanes<FourLanes>& bin, const float* means, float re, float im) {
    const __m128 lanes = _mm_loadu_ps(means);
    return {bin.re + lanes * _mm_set1_ps(re), bin.im + lanes * _mm_set1_ps(im)};
}

void StoreFour(std::uint8_t* to, __m128i indices) {
    const __m128i words = _mm_packs_epi32(indices, indices);
    const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    std::memcpy(to, &bytes, sizeof bytes);
}

/// The least single-precision value that is not below the positive value.
float RoundedUp(double value) {
    const auto rounded = static_cast<float>(value);
    return static_cast<double>(rounded) < value ? std::nextafter(rounded, std::numeric_limits<float>::max()) : rounded;
}

}  // namespace

SpectrumBatch::SpectrumBatch(int order, const float* window, const Scale& scale)
    : m_twiddles(FftTwiddles(order)),
      m_length(std::size_t{1} << order),
      m_scale(scale),
      m_window(window, window + m_length),
      m_input(m_length * kLanes),
      m_work(m_length * kLanes),
      m_indices((m_length / 2 + 1) * kLanes) {
    if (!m_scale.linear) {
        MakeThresholds();
    } else {
        // A factor of 1 to 2 is left for the magnitudes, so that their squares stay far from the ends of single
        // precision.
        int exponent = 0;
        const float fraction = std::frexp(m_scale.linearFactor, &exponent);
        if (!std::isfinite(fraction) || std::abs(exponent) > kMostExponent) exponent = 0;
        m_scale.linearFactor = std::ldexp(m_scale.linearFactor, -exponent);
        ScaleWindow(exponent);
    }
    MakeWindowSpectrum();
}

/// Bins of the window itself, by the definition: beside the first few they are too small for the fast transform.
void SpectrumBatch::MakeWindowSpectrum() {
    std::vector<double> cosines(m_length);
    std::vector<double> sines(m_length);
    for (std::size_t i = 0; i < m_length; ++i) {
        const double angle = 2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(m_length);
        cosines[i] = std::cos(angle);
        sines[i] = std::sin(angle);
    }
    for (std::size_t k = 0; k <= m_length / 2; ++k) {
        double re = 0.0;
        double im = 0.0;
        for (std::size_t i = 0; i < m_length; ++i) {
            const auto coefficient = static_cast<double>(m_window[i]);
            re += coefficient * cosines[k * i % m_length];
            im -= coefficient * sines[k * i % m_length];
        }
        // The coefficients hold half of what the bins are to be.
        m_windowRe.push_back(static_cast<float>(2.0 * re));
        m_windowIm.push_back(static_cast<float>(2.0 * im));
    }
}

/// Multiplies by 2^exponent, which is exact, and by the half that separating the bins leaves to be done.
void SpectrumBatch::ScaleWindow(int exponent) {
    for (float& coefficient : m_window) coefficient = std::ldexp(coefficient, exponent - 1);
}

void SpectrumBatch::MakeThresholds() {
    const auto multiplier = static_cast<double>(m_scale.logMultiplier);
    const auto offset = static_cast<double>(m_scale.logOffset);
    const auto borderBelow = [=](double index) { return kLog2Of10 * ((index - 0.5) / multiplier - offset); };
    // The middle of the levels goes to 1.
    const double middle = std::nearbyint(borderBelow(kTopIndex / 2.0));
    const double reach = borderBelow(kTopIndex) - middle;
    if (!(multiplier > 0.0 && std::abs(middle) <= kMostExponent && 2.0 * reach <= kMostExponent)) {
        ScaleWindow(0);
        return;
    }
    const int exponent = -static_cast<int>(middle);
    std::uint32_t borders[kTopIndex + 1];
    for (int index = 1; index <= kTopIndex; ++index) {
        const float power = RoundedUp(std::exp2(2.0 * (borderBelow(index) + exponent)));
        borders[index - 1] = std::bit_cast<std::uint32_t>(power);
    }
    borders[kTopIndex] = std::numeric_limits<std::uint32_t>::max();
    const std::uint32_t firstCell = (borders[0] >> 16) - 1;
    const std::uint32_t lastCell = borders[kTopIndex - 1] >> 16;
    std::vector<std::uint32_t> cells;
    std::uint32_t index = 0;
    for (std::uint32_t cell = firstCell; cell <= lastCell; ++cell) {
        const std::uint32_t border = borders[index];
        if (border >> 16 != cell) {
            cells.push_back(index << 16);
            continue;
        }
        cells.push_back((index << 16) + 0x10000U - (border & 0xFFFFU));
        ++index;
        if (borders[index] >> 16 == cell) {
            ScaleWindow(0);
            return;
        }
    }
    ScaleWindow(exponent);
    m_cells = std::move(cells);
    m_greatestPower = std::bit_cast<float>((lastCell << 16) | 0xFFFFU);
    const double silence = std::ldexp(static_cast<double>(kSilence), exponent);
    m_leastPower = std::max(std::bit_cast<float>(firstCell << 16),
                            static_cast<float>(std::min(silence * silence, static_cast<double>(m_greatestPower))));
}

void SpectrumBatch::Compute(std::span<const float* const> frames, std::uint8_t* out, std::ptrdiff_t stride) {
    const std::size_t half = m_length / 2;
    for (std::size_t at = 0; at < frames.size(); at += kLanes) {
        const std::size_t count = std::min(kLanes, frames.size() - at);
        const float* lanes[kLanes];
        for (std::size_t lane = 0; lane < kLanes; ++lane) lanes[lane] = frames[at + std::min(lane, count - 1)];
        LoadFrames(lanes);
        // The input is not needed after the first step.
        const float* const bins =
            TransformComplex<FourLanes>(m_input.data(), half, m_twiddles, m_work.data(), m_input.data());
        if (m_scale.linear) {
            LevelLinear(bins);
        } else if (!m_cells.empty()) {
            LevelByTable(bins);
        } else {
            LevelExactly(bins);
        }
        const std::uint8_t* indices = m_indices.data();
        std::uint8_t* row = out + at;
        for (std::size_t k = 0; k <= half; ++k, indices += kLanes, row += stride) {
            if (count == kLanes) {
                std::memcpy(row, indices, kLanes);
            } else {
                std::memcpy(row, indices, count);
            }
        }
    }
}

/// Without their means, so that a large offset does not bury weak bins under the transform's error; what the mean makes
/// of every bin, its multiple of the window's own bin, is added behind the transform.
void SpectrumBatch::LoadFrames(const float* const* frames) {
    __m128 means[kLanes];
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        __m128 sums = _mm_setzero_ps();
        for (std::size_t i = 0; i < m_length; i += 4) sums = sums + _mm_loadu_ps(frames[lane] + i);
        float parts[4];
        _mm_storeu_ps(parts, sums);
        m_means[lane] = (parts[0] + parts[1] + parts[2] + parts[3]) / static_cast<float>(m_length);
        means[lane] = _mm_set1_ps(m_means[lane]);
    }
    float* to = m_input.data();
    for (std::size_t i = 0; i < m_length; i += 4, to += 4 * kLanes) {
        const __m128 window = _mm_loadu_ps(m_window.data() + i);
        __m128 a = window * (_mm_loadu_ps(frames[0] + i) - means[0]);
        __m128 b = window * (_mm_loadu_ps(frames[1] + i) - means[1]);
        __m128 c = window * (_mm_loadu_ps(frames[2] + i) - means[2]);
        __m128 d = window * (_mm_loadu_ps(frames[3] + i) - means[3]);
        _MM_TRANSPOSE4_PS(a, b, c, d);
        _mm_storeu_ps(to, a);
        _mm_storeu_ps(to + kLanes, b);
        _mm_storeu_ps(to + 2 * kLanes, c);
        _mm_storeu_ps(to + 3 * kLanes, d);
    }
}

void SpectrumBatch::LevelLinear(const float* work) {
    const __m128 factor = _mm_set1_ps(m_scale.linearFactor);
    const __m128 top = _mm_set1_ps(static_cast<float>(kTopIndex));
    std::uint8_t* const indices = m_indices.data();
    SeparateReal<FourLanes>(
        work, m_length / 2, m_twiddles, [=, this](std::size_t k, const ComplexLanes<FourLanes>& bin) {
            const __m128 level =
                AtLeast(_mm_setzero_ps(),
                        _mm_sqrt_ps(PowerOf(WithMean(bin, m_means.data(), m_windowRe[k], m_windowIm[k]))) * factor);
            StoreFour(indices + k * kLanes, _mm_cvtps_epi32(_mm_min_ps(level, top)));
        });
}

void SpectrumBatch::LevelByTable(const float* work) {
    const __m128 least = _mm_set1_ps(m_leastPower);
    const __m128 greatest = _mm_set1_ps(m_greatestPower);
    const __m128i lowerBits = _mm_set1_epi32(0xFFFF);
    // Indexed by the upper bits of the power, which lie between those of the limits.
    const std::uint32_t* const cells = m_cells.data();
    const std::size_t firstCell = (std::bit_cast<std::uint32_t>(m_greatestPower) >> 16) - (m_cells.size() - 1);
    std::uint8_t* const indices = m_indices.data();
    const auto entry = [=](int cell) {
        return _mm_cvtsi32_si128(static_cast<int>(cells[static_cast<std::size_t>(cell) - firstCell]));
    };
    SeparateReal<FourLanes>(
        work, m_length / 2, m_twiddles, [=, this](std::size_t k, const ComplexLanes<FourLanes>& bin) {
            const __m128 power = _mm_min_ps(
                AtLeast(least, PowerOf(WithMean(bin, m_means.data(), m_windowRe[k], m_windowIm[k]))), greatest);
            const __m128i bits = _mm_castps_si128(power);
            const __m128i even =
                _mm_unpacklo_epi32(entry(_mm_extract_epi16(bits, 1)), entry(_mm_extract_epi16(bits, 3)));
            const __m128i odd =
                _mm_unpacklo_epi32(entry(_mm_extract_epi16(bits, 5)), entry(_mm_extract_epi16(bits, 7)));
            const __m128i sums = _mm_add_epi32(_mm_unpacklo_epi64(even, odd), _mm_and_si128(bits, lowerBits));
            StoreFour(indices + k * kLanes, _mm_srli_epi32(sums, 16));
        });
}

/// For levels that the table does not reach: an index of less than 0.034 dB, or magnitudes at the ends of single
/// precision.
void SpectrumBatch::LevelExactly(const float* work) {
    const auto index = [this](float re, float im) {
        const double magnitude = std::hypot(static_cast<double>(re), static_cast<double>(im));
        const double level =
            (std::log10(std::max(magnitude, static_cast<double>(kSilence))) + static_cast<double>(m_scale.logOffset)) *
            static_cast<double>(m_scale.logMultiplier);
        const auto rounded = static_cast<float>(std::nearbyint(std::clamp(level, 0.0, double{kTopIndex})));
        std::uint8_t result = 0;
        nspsbFloatToInt(&rounded, &result, 1);
        return result;
    };
    SeparateReal<FourLanes>(work, m_length / 2, m_twiddles, [&](std::size_t k, const ComplexLanes<FourLanes>& rest) {
        const ComplexLanes<FourLanes> bin = WithMean(rest, m_means.data(), m_windowRe[k], m_windowIm[k]);
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            m_indices[k * kLanes + lane] = index(bin.re[lane], bin.im[lane]);
        }
    });
}

}  // namespace quillon::nsp
