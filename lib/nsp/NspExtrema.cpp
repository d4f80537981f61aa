#include "nsp/NspExtrema.h"

#include <algorithm>
#include <array>
#include <bit>

#include "nsp/kernels/Extremes.h"
#include "nsp/kernels/Lanes8.h"

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
    __m128i result = Lanes8::Load(src + (count - 8));
    for (std::size_t at = 0; at + 8 < count; at += 8) {
        PrefetchAhead(src + at, 8);
        result = join(result, Lanes8::Load(src + at));
    }
    result = join(result, Lanes8::Swap4(result));
    result = join(result, Lanes8::Swap2(result));
    result = join(result, Lanes8::Swap1(result));
    return static_cast<short>(_mm_extract_epi16(result, 0));
}

/// The value occurs in the samples.
int IndexOf(const short* src, std::size_t count, short value) {
    const __m128i wanted = Lanes8::Fill(value);
    std::size_t at = 0;
    for (; at + 8 <= count; at += 8) {
        const auto found = Lanes8::Bits(Lanes8::Equal(Lanes8::Load(src + at), wanted));
        if (found != 0) return static_cast<int>(at) + std::countr_zero(found) / 2;
    }
    return static_cast<int>(std::find(src + at, src + count, value) - src);
}

}  // namespace

short nspwMax(const short* src, int n) {
    if (n < 1) return 0;
    return Reduce(src, static_cast<std::size_t>(n), [](__m128i a, __m128i b) { return Lanes8::Max(a, b); });
}

short nspwMin(const short* src, int n) {
    if (n < 1) return 0;
    return Reduce(src, static_cast<std::size_t>(n), [](__m128i a, __m128i b) { return Lanes8::Min(a, b); });
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
