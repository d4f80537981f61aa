#include "nsp/NspExtrema.h"

#include <algorithm>
#include <array>
#include <bit>

#include "nsp/RunLanes.h"

namespace quillon::nsp {

namespace {

/// Joins all samples by `join`, which must not mind a sample that comes twice.
template <typename Join>
short Reduce(const short* src, std::size_t count, Join join) {
    std::array<std::int16_t, 8> lanes;
    if (count < lanes.size()) {
        for (std::size_t i = 0; i < lanes.size(); ++i) lanes[i] = src[std::min(i, count - 1)];
        src = lanes.data();
        count = lanes.size();
    }
    __m128i result = LoadLanes(src + (count - 8));
    for (std::size_t at = 0; at + 8 < count; at += 8) {
        PrefetchAhead(src + at);
        result = join(result, LoadLanes(src + at));
    }
    result = join(result, _mm_shuffle_epi32(result, 0x4E));
    result = join(result, _mm_shuffle_epi32(result, 0xB1));
    result = join(result, _mm_shufflelo_epi16(result, 0xB1));
    return static_cast<short>(_mm_extract_epi16(result, 0));
}

/// The value occurs in the samples.
int IndexOf(const short* src, std::size_t count, short value) {
    const __m128i wanted = _mm_set1_epi16(value);
    std::size_t at = 0;
    for (; at + 8 <= count; at += 8) {
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(LoadLanes(src + at), wanted)));
        if (found != 0) return static_cast<int>(at) + std::countr_zero(found) / 2;
    }
    return static_cast<int>(std::find(src + at, src + count, value) - src);
}

}  // namespace

short nspwMax(const short* src, int n) {
    if (n < 1) return 0;
    return Reduce(src, static_cast<std::size_t>(n), [](__m128i a, __m128i b) { return _mm_max_epi16(a, b); });
}

short nspwMin(const short* src, int n) {
    if (n < 1) return 0;
    return Reduce(src, static_cast<std::size_t>(n), [](__m128i a, __m128i b) { return _mm_min_epi16(a, b); });
}

short nspwMaxExt(const short* src, int n, int* index) {
    const short value = nspwMax(src, n);
    *index = n < 1 ? -1 : IndexOf(src, static_cast<std::size_t>(n), value);
    return value;
}

short nspwMinExt(const short* src, int n, int* index) {
    const short value = nspwMin(src, n);
    *index = n < 1 ? -1 : IndexOf(src, static_cast<std::size_t>(n), value);
    return value;
}

}  // namespace quillon::nsp
