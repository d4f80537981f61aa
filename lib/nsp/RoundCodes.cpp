#include "nsp/RoundCodes.h"

#include <emmintrin.h>

#include <algorithm>

namespace quillon::nsp {

namespace {

/// Eight values, which may lie at any address.
__m128i Rounded(const float* values) {
    const __m128 least = _mm_set1_ps(-32768.0F);
    const __m128 most = _mm_set1_ps(32767.0F);
    // The second operand is taken where the first is no number.
    const __m128 low = _mm_min_ps(_mm_max_ps(_mm_loadu_ps(values), least), most);
    const __m128 high = _mm_min_ps(_mm_max_ps(_mm_loadu_ps(values + 4), least), most);
    return _mm_packs_epi32(_mm_cvtps_epi32(low), _mm_cvtps_epi32(high));
}

}  // namespace

void RoundToCodes(const float* values, std::size_t count, std::int16_t* codes) {
    constexpr std::size_t lanes = 8;
    std::size_t at = 0;
    for (; at + lanes <= count; at += lanes)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(codes + at), Rounded(values + at));
    if (at == count) return;
    float rest[lanes] = {};
    std::copy(values + at, values + count, rest);
    std::int16_t rounded[lanes];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(rounded), Rounded(rest));
    std::copy_n(rounded, count - at, codes + at);
}

}  // namespace quillon::nsp
