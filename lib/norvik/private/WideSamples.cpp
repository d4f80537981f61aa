#include "norvik/private/WideSamples.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "base/LittleEndian.h"

namespace quillon {

namespace {

/// Samples that are put side by side, so that vectors can be loaded from them.
constexpr std::size_t kRow = 512;
constexpr std::size_t kWhole = 16;

template <typename Sample>
using Row = std::array<Sample, kRow>;

/// row[i] = load(sample i).
template <typename Sample, typename Load>
void Fill(const std::uint8_t* at, std::size_t step, std::size_t count, Sample* row, const Load& load) {
    for (std::size_t i = 0; i < count; ++i, at += step) row[i] = static_cast<Sample>(load(at));
}

/// Three bytes are loaded with a fourth behind them, which goes; only the last sample may lie at the end of everything
/// that was read.
template <typename Load>
void FillThreeBytes(const std::uint8_t* at, std::size_t step, std::size_t count, std::int32_t* row, const Load& load) {
    if (count == 0) return;
    Fill(at, step, count - 1, row, [&](const std::uint8_t* bytes) { return load(Le32(bytes) << 8U); });
    const std::uint8_t* const last = at + (count - 1) * step;
    row[count - 1] = load(static_cast<std::uint32_t>(LeSigned24(last)) << 8U);
}

void Gather(SampleKind kind, const std::uint8_t* at, std::size_t step, std::size_t count, std::int32_t* row) {
    switch (kind) {
        case SampleKind::Int8:
            return Fill(at, step, count, row, [](auto* bytes) { return *bytes - (*bytes & 0x80) * 2; });
        case SampleKind::Uint8: return Fill(at, step, count, row, [](auto* bytes) { return *bytes; });
        case SampleKind::Uint16: return Fill(at, step, count, row, Le16);
        case SampleKind::Int24:
            return FillThreeBytes(at, step, count, row,
                                  [](std::uint32_t high) { return static_cast<std::int32_t>(high) >> 8; });
        case SampleKind::Uint24:
            return FillThreeBytes(at, step, count, row,
                                  [](std::uint32_t high) { return static_cast<std::int32_t>(high >> 8U); });
        default: return Fill(at, step, count, row, Le32);
    }
}

void Gather(SampleKind, const std::uint8_t* at, std::size_t step, std::size_t count, float* row) {
    Fill(at, step, count, row, LeFloat);
}

/// Whole numbers beyond 2^53 are rounded.
void Gather(SampleKind kind, const std::uint8_t* at, std::size_t step, std::size_t count, double* row) {
    switch (kind) {
        case SampleKind::Uint32: return Fill(at, step, count, row, Le32);
        case SampleKind::Int64:
            return Fill(at, step, count, row, [](auto* bytes) { return static_cast<std::int64_t>(Le64(bytes)); });
        case SampleKind::Uint64: return Fill(at, step, count, row, Le64);
        default: return Fill(at, step, count, row, LeDouble);
    }
}

/// Whether the samples lie in memory as they are in a row.
bool IsRow(SampleKind kind) {
    return kind == SampleKind::Int32 || kind == SampleKind::Float32 || kind == SampleKind::Float64;
}

/// Calls use(row, count) for one row of samples after the other; what follows the samples repeats the last one, up to
/// a multiple of kWhole.
template <typename Sample, typename Use>
void ForEachRow(const StoredSamples& samples, const Use& use) {
    Row<Sample> row;
    for (std::size_t done = 0; done < samples.count;) {
        const std::size_t part = std::min(kRow, samples.count - done);
        const std::uint8_t* const first = samples.first + done * samples.step;
        if (samples.step == sizeof(Sample) && IsRow(samples.kind)) {
            std::memcpy(row.data(), first, part * sizeof(Sample));
        } else {
            Gather(samples.kind, first, samples.step, part, row.data());
        }
        for (std::size_t at = part; at % kWhole != 0; ++at) row[at] = row[part - 1];
        use(row.data(), part);
        done += part;
    }
}

template <typename Use>
void WithRows(const StoredSamples& samples, const Use& use) {
    switch (samples.kind) {
        case SampleKind::Float32: return ForEachRow<float>(samples, use);
        case SampleKind::Float64:
        case SampleKind::Uint32:
        case SampleKind::Int64:
        case SampleKind::Uint64: return ForEachRow<double>(samples, use);
        default: return ForEachRow<std::int32_t>(samples, use);
    }
}

void SeeOne(double sample, SeenSamples& seen) {
    if (!std::isfinite(sample)) return;
    seen.minimum = std::min(seen.minimum, sample);
    seen.maximum = std::max(seen.maximum, sample);
    if (!seen.sixteenBits) return;
    const double code = sample * kSixteenBits;
    seen.sixteenBits = code >= -32768.0 && code <= 32767.0 && code == std::trunc(code);
}

__m128i Select(__m128i mask, __m128i whereSet, __m128i whereClear) {
    return _mm_or_si128(_mm_and_si128(mask, whereSet), _mm_andnot_si128(mask, whereClear));
}

/// What See needs of vectors of each type of sample.
template <typename Sample>
struct Lanes;

template <>
struct Lanes<std::int32_t> {
    using Vector = __m128i;
    static Vector Load(const std::int32_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
    static void Store(std::int32_t* at, Vector lanes) { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), lanes); }
    static Vector Lower(Vector a, Vector b) { return Select(_mm_cmpgt_epi32(a, b), b, a); }
    static Vector Higher(Vector a, Vector b) { return Select(_mm_cmpgt_epi32(b, a), b, a); }
};

template <>
struct Lanes<float> {
    using Vector = __m128;
    static Vector Load(const float* at) { return _mm_loadu_ps(at); }
    static void Store(float* at, Vector lanes) { _mm_storeu_ps(at, lanes); }
    static Vector Lower(Vector a, Vector b) { return _mm_min_ps(a, b); }
    static Vector Higher(Vector a, Vector b) { return _mm_max_ps(a, b); }
    static Vector Or(Vector a, Vector b) { return _mm_or_ps(a, b); }
    static bool Any(Vector mask) { return _mm_movemask_ps(mask) != 0; }
    /// Undefined or infinite: a number less itself is 0.
    static Vector NotFinite(Vector lanes) { return _mm_cmpneq_ps(_mm_sub_ps(lanes, lanes), _mm_setzero_ps()); }
    /// Not a multiple of 1/32768; of those beyond the range of 32-bit codes, some are taken for one.
    static Vector Odd(Vector lanes) {
        const Vector code = _mm_mul_ps(lanes, _mm_set1_ps(static_cast<float>(kSixteenBits)));
        return _mm_cmpneq_ps(code, _mm_cvtepi32_ps(_mm_cvttps_epi32(code)));
    }
};

template <>
struct Lanes<double> {
    using Vector = __m128d;
    static Vector Load(const double* at) { return _mm_loadu_pd(at); }
    static void Store(double* at, Vector lanes) { _mm_storeu_pd(at, lanes); }
    static Vector Lower(Vector a, Vector b) { return _mm_min_pd(a, b); }
    static Vector Higher(Vector a, Vector b) { return _mm_max_pd(a, b); }
    static Vector Or(Vector a, Vector b) { return _mm_or_pd(a, b); }
    static bool Any(Vector mask) { return _mm_movemask_pd(mask) != 0; }
    static Vector NotFinite(Vector lanes) { return _mm_cmpneq_pd(_mm_sub_pd(lanes, lanes), _mm_setzero_pd()); }
    static Vector Odd(Vector lanes) {
        const Vector code = _mm_mul_pd(lanes, _mm_set1_pd(kSixteenBits));
        return _mm_cmpneq_pd(code, _mm_cvtepi32_pd(_mm_cvttpd_epi32(code)));
    }
};

/// Adds a row. `Bits`: looks for samples that are not of 16 bits, too.
template <bool Bits, typename Sample>
void See(const Sample* row, std::size_t count, SeenSamples& seen) {
    using L = Lanes<Sample>;
    constexpr std::size_t size = 16 / sizeof(Sample);
    constexpr bool isFloat = std::is_floating_point_v<Sample>;
    // Four of each, because every instruction waits for the one before it of the same.
    typename L::Vector lowest[4] = {L::Load(row), L::Load(row), L::Load(row), L::Load(row)};
    typename L::Vector highest[4] = {lowest[0], lowest[0], lowest[0], lowest[0]};
    [[maybe_unused]] typename L::Vector odd{};
    [[maybe_unused]] typename L::Vector notFinite{};
    for (std::size_t at = 0; at < count; at += 4 * size) {
        for (std::size_t part = 0; part < 4; ++part) {
            const auto lanes = L::Load(row + at + part * size);
            lowest[part] = L::Lower(lowest[part], lanes);
            highest[part] = L::Higher(highest[part], lanes);
            if constexpr (isFloat) notFinite = L::Or(notFinite, L::NotFinite(lanes));
            if constexpr (Bits) odd = L::Or(odd, L::Odd(lanes));
        }
    }
    if constexpr (isFloat) {
        // Rare; the samples that count are told apart one by one.
        if (L::Any(notFinite)) {
            for (std::size_t at = 0; at < count; ++at) SeeOne(static_cast<double>(row[at]), seen);
            return;
        }
    }
    std::array<Sample, 4 * size> minima;
    std::array<Sample, 4 * size> maxima;
    for (std::size_t part = 0; part < 4; ++part) {
        L::Store(minima.data() + part * size, lowest[part]);
        L::Store(maxima.data() + part * size, highest[part]);
    }
    const auto minimum = static_cast<double>(*std::min_element(minima.begin(), minima.end()));
    const auto maximum = static_cast<double>(*std::max_element(maxima.begin(), maxima.end()));
    seen.minimum = std::min(seen.minimum, minimum);
    seen.maximum = std::max(seen.maximum, maximum);
    if constexpr (Bits) {
        if (L::Any(odd) || minimum < -1.0 || maximum > 32767.0 / kSixteenBits) seen.sixteenBits = false;
    }
}

/// Two samples as doubles.
__m128d LoadTwo(const float* samples) {
    return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples))));
}
__m128d LoadTwo(const double* samples) {
    return _mm_loadu_pd(samples);
}
__m128d LoadTwo(const std::int32_t* samples) {
    return _mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples)));
}

/// As WideScale::Code, for two samples at once.
struct CodesOfTwo {
    __m128d factor;
    __m128d shift;
    __m128d step;

    [[nodiscard]] __m128i operator()(__m128d samples) const {
        const __m128d scaled = _mm_mul_pd(samples, factor);
        const __m128d defined = _mm_and_pd(scaled, _mm_cmpord_pd(scaled, scaled));
        const __m128d code = _mm_div_pd(_mm_sub_pd(defined, shift), step);
        return _mm_cvtpd_epi32(_mm_min_pd(_mm_max_pd(code, _mm_set1_pd(-32768.0)), _mm_set1_pd(32767.0)));
    }
};

template <typename Sample>
void CodeRow(const Sample* row, std::size_t count, const CodesOfTwo& codesOf, std::int16_t* codes) {
    for (std::size_t at = 0; at < count; at += 8) {
        const auto four = [&](std::size_t from) {
            return _mm_unpacklo_epi64(codesOf(LoadTwo(row + from)), codesOf(LoadTwo(row + from + 2)));
        };
        const __m128i eight = _mm_packs_epi32(four(at), four(at + 4));
        if (at + 8 <= count) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(codes + at), eight);
        } else {
            std::array<std::int16_t, 8> last;
            _mm_storeu_si128(reinterpret_cast<__m128i*>(last.data()), eight);
            std::copy_n(last.data(), count - at, codes + at);
        }
    }
}

}  // namespace

std::size_t SampleBytes(SampleKind kind) {
    switch (kind) {
        case SampleKind::Unsigned8:
        case SampleKind::Int8:
        case SampleKind::Uint8: return 1;
        case SampleKind::Int16:
        case SampleKind::Uint16: return 2;
        case SampleKind::Int24:
        case SampleKind::Uint24: return 3;
        case SampleKind::Int32:
        case SampleKind::Uint32:
        case SampleKind::Float32: return 4;
        case SampleKind::Int64:
        case SampleKind::Uint64:
        case SampleKind::Float64: return 8;
    }
    return 0;
}

bool IsFloat(SampleKind kind) {
    return kind == SampleKind::Float32 || kind == SampleKind::Float64;
}

bool IsWide(SampleKind kind) {
    return kind != SampleKind::Unsigned8 && kind != SampleKind::Int16;
}

WideCoding ChooseCoding(SampleKind kind, const SeenSamples& seen, double unitsPerSample, double unitsOffset,
                        double headroom) {
    const bool recast = IsFloat(kind) && seen.sixteenBits;
    const double factor = recast ? kSixteenBits : 1.0;
    return {factor, ChooseWideScale(seen.minimum * factor, seen.maximum * factor, recast || !IsFloat(kind),
                                    unitsPerSample / factor, unitsOffset, headroom)};
}

void SeenSamples::Add(const StoredSamples& samples) {
    WithRows(samples, [this](const auto* row, std::size_t count) {
        constexpr bool isReal = std::is_floating_point_v<std::remove_cvref_t<decltype(*row)>>;
        isReal&& sixteenBits ? See<isReal>(row, count, *this) : See<false>(row, count, *this);
    });
}

void CodeSamples(const StoredSamples& samples, double factor, const WideScale& scale, std::int16_t* codes) {
    const CodesOfTwo codesOf{_mm_set1_pd(factor), _mm_set1_pd(scale.shift), _mm_set1_pd(scale.step)};
    WithRows(samples, [&](const auto* row, std::size_t count) {
        CodeRow(row, count, codesOf, codes);
        codes += count;
    });
}

}  // namespace quillon
