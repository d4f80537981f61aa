#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

// Clang does not know this pragma; where it builds, eight lanes have to do.
#if defined(__GNUC__) && !defined(__clang__)
#define QUILLON_SIXTEEN_LANES 1
#else
#define QUILLON_SIXTEEN_LANES 0
#endif

#if QUILLON_SIXTEEN_LANES
#pragma GCC push_options
#pragma GCC target("avx2")

namespace quillon::nsp {

/// As Lanes8, of sixteen lanes: for processors with AVX2. Whatever uses it has to be compiled for AVX2 as well.
struct Lanes16 {
    using Vector = __m256i;
    static constexpr std::size_t kCount = 16;

    static Vector Load(const std::int16_t* samples) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples));
    }
    static void Store(std::int16_t* samples, Vector v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(samples), v); }
    static Vector Zero() { return _mm256_setzero_si256(); }
    static Vector Fill(std::int16_t sample) { return _mm256_set1_epi16(sample); }
    static Vector Max(Vector a, Vector b) { return _mm256_max_epi16(a, b); }
    static Vector Min(Vector a, Vector b) { return _mm256_min_epi16(a, b); }
    static Vector Add(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
    static Vector Greater(Vector a, Vector b) { return _mm256_cmpgt_epi16(a, b); }
    static Vector Equal(Vector a, Vector b) { return _mm256_cmpeq_epi16(a, b); }
    static Vector And(Vector a, Vector b) { return _mm256_and_si256(a, b); }
    static Vector Or(Vector a, Vector b) { return _mm256_or_si256(a, b); }
    static Vector AndNot(Vector a, Vector b) { return _mm256_andnot_si256(a, b); }
    static Vector Select(Vector mask, Vector whereSet, Vector whereClear) {
        return _mm256_blendv_epi8(whereClear, whereSet, mask);
    }
    static std::uint32_t Bits(Vector mask) { return static_cast<std::uint32_t>(_mm256_movemask_epi8(mask)); }

    static Vector Low16(Vector a, Vector b) { return _mm256_unpacklo_epi16(a, b); }
    static Vector High16(Vector a, Vector b) { return _mm256_unpackhi_epi16(a, b); }
    static Vector Low32(Vector a, Vector b) { return _mm256_unpacklo_epi32(a, b); }
    static Vector High32(Vector a, Vector b) { return _mm256_unpackhi_epi32(a, b); }
    static Vector Low64(Vector a, Vector b) { return _mm256_unpacklo_epi64(a, b); }
    static Vector High64(Vector a, Vector b) { return _mm256_unpackhi_epi64(a, b); }
    static Vector Even32(Vector a, Vector b) {
        return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), 0x88));
    }
    static Vector Odd32(Vector a, Vector b) {
        return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), 0xDD));
    }
    static Vector Even16(Vector a, Vector b) { return _mm256_blend_epi16(a, _mm256_slli_epi32(b, 16), 0xAA); }
    static Vector Odd16(Vector a, Vector b) { return _mm256_blend_epi16(_mm256_srli_epi32(a, 16), b, 0xAA); }
    /// The low halves of a and b; their high halves.
    static Vector LowHalves(Vector a, Vector b) { return _mm256_permute2x128_si256(a, b, 0x20); }
    static Vector HighHalves(Vector a, Vector b) { return _mm256_permute2x128_si256(a, b, 0x31); }

    static Vector Swap1(Vector v) { return _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(v, 0xB1), 0xB1); }
    static Vector Swap2(Vector v) { return _mm256_shuffle_epi32(v, 0xB1); }
    static Vector Swap4(Vector v) { return _mm256_shuffle_epi32(v, 0x4E); }
    static Vector Swap8(Vector v) { return _mm256_permute4x64_epi64(v, 0x4E); }
    /// Of 16 lanes in the low halves of two vectors, and of those in their high halves, the eight from `Places` on.
    template <std::size_t Places>
    static Vector ShiftHalves(Vector low, Vector high) {
        if constexpr (Places < 8) {
            return _mm256_alignr_epi8(high, low, 2 * Places);
        } else {
            return _mm256_srli_si256(high, 2 * (Places - 8));
        }
    }

    /// The first `Channels` lanes, at most 8, one time after the other.
    template <std::size_t Channels>
    static Vector Repeat(Vector v) {
        struct Bytes {
            alignas(32) std::int8_t of[2 * kCount];
        };
        static constexpr Bytes kBytes = [] {
            Bytes bytes{};
            for (std::size_t i = 0; i < 2 * kCount; ++i)
                bytes.of[i] = static_cast<std::int8_t>(2 * (i / 2 % Channels) + i % 2);
            return bytes;
        }();
        const Vector low = _mm256_permute4x64_epi64(v, 0x44);
        return _mm256_shuffle_epi8(low, _mm256_load_si256(reinterpret_cast<const __m256i*>(kBytes.of)));
    }

    static Vector LoadSources(const std::int16_t* const* sources, std::size_t apart, std::size_t at) {
        const auto load = [at](const std::int16_t* source) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + at));
        };
        return _mm256_inserti128_si256(_mm256_castsi128_si256(load(sources[0])), load(sources[apart]), 1);
    }
    static void StorePairs(void* to, Vector a, Vector b) {
        const Vector low = Low16(a, b);
        const Vector high = High16(a, b);
        _mm256_storeu_si256(static_cast<__m256i*>(to), LowHalves(low, high));
        _mm256_storeu_si256(static_cast<__m256i*>(to) + 1, HighHalves(low, high));
    }
};

}  // namespace quillon::nsp

#pragma GCC pop_options
#endif
