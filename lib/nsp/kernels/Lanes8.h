#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace quillon::nsp {

/// Vectors of eight 16-bit lanes, SSE2 only: what the kernels run on with any processor. Nothing is assumed about
/// alignment. Masks have all or no bits of a lane set.
struct Lanes8 {
    using Vector = __m128i;
    static constexpr std::size_t kCount = 8;

    static Vector Load(const std::int16_t* samples) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples));
    }
    static void Store(std::int16_t* samples, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(samples), v); }
    static Vector Zero() { return _mm_setzero_si128(); }
    static Vector Fill(std::int16_t sample) { return _mm_set1_epi16(sample); }
    static Vector Max(Vector a, Vector b) { return _mm_max_epi16(a, b); }
    static Vector Min(Vector a, Vector b) { return _mm_min_epi16(a, b); }
    static Vector Greater(Vector a, Vector b) { return _mm_cmpgt_epi16(a, b); }
    static Vector Equal(Vector a, Vector b) { return _mm_cmpeq_epi16(a, b); }
    static Vector And(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static Vector Or(Vector a, Vector b) { return _mm_or_si128(a, b); }
    /// The bits of b that a does not have.
    static Vector AndNot(Vector a, Vector b) { return _mm_andnot_si128(a, b); }
    static Vector Select(Vector mask, Vector whereSet, Vector whereClear) {
        return Or(And(mask, whereSet), AndNot(mask, whereClear));
    }
    /// Two bits for each lane of a mask.
    static std::uint32_t Bits(Vector mask) { return static_cast<std::uint32_t>(_mm_movemask_epi8(mask)); }

    // Within each half of a vector of 16 lanes as here.
    static Vector Low16(Vector a, Vector b) { return _mm_unpacklo_epi16(a, b); }
    static Vector High16(Vector a, Vector b) { return _mm_unpackhi_epi16(a, b); }
    static Vector Low32(Vector a, Vector b) { return _mm_unpacklo_epi32(a, b); }
    static Vector High32(Vector a, Vector b) { return _mm_unpackhi_epi32(a, b); }
    static Vector Low64(Vector a, Vector b) { return _mm_unpacklo_epi64(a, b); }
    static Vector High64(Vector a, Vector b) { return _mm_unpackhi_epi64(a, b); }
    /// Lanes 0, 1, 4, 5 of a, then of b.
    static Vector Even32(Vector a, Vector b) {
        return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0x88));
    }
    static Vector Odd32(Vector a, Vector b) {
        return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0xDD));
    }
    /// Lanes 0, 2, 4, 6 of a and of b in turns; lanes 1, 3, 5, 7.
    static Vector Even16(Vector a, Vector b) { return Select(_mm_set1_epi32(0xFFFF), a, _mm_slli_epi32(b, 16)); }
    static Vector Odd16(Vector a, Vector b) { return Select(_mm_set1_epi32(0xFFFF), _mm_srli_epi32(a, 16), b); }

    /// Lanes exchanged with their neighbours 1, 2 and 4 places away.
    static Vector Swap1(Vector v) { return _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0xB1), 0xB1); }
    static Vector Swap2(Vector v) { return _mm_shuffle_epi32(v, 0xB1); }
    static Vector Swap4(Vector v) { return _mm_shuffle_epi32(v, 0x4E); }
    /// Lane `Places` goes to lane 0.
    template <std::size_t Places>
    static Vector Shift(Vector v) {
        return _mm_srli_si128(v, 2 * Places);
    }

    /// Eight samples of every kCount / 8 sources, whose pointers lie `apart` places from one to the next.
    static Vector LoadSources(const std::int16_t* const* sources, [[maybe_unused]] std::size_t apart, std::size_t at) {
        return Load(*sources + at);
    }
    /// Stores a and b lane by lane in turns.
    static void StorePairs(void* to, Vector a, Vector b) {
        _mm_storeu_si128(static_cast<__m128i*>(to), Low16(a, b));
        _mm_storeu_si128(static_cast<__m128i*>(to) + 1, High16(a, b));
    }
};

}  // namespace quillon::nsp
