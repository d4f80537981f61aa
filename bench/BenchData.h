#pragma once

#include <benchmark/benchmark.h>
#include <emmintrin.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Shared by the benchmarks: a baseline that reads every byte once, and ratios measured inside one process.
namespace quillon::bench {

/// The maximum over all samples: the least that can be done with them. Prefetch as in the kernels, so that the ratio
/// compares the work and not the prefetching.
inline int ReadPass(const std::int16_t* samples, std::size_t count) {
    __m128i maxima[4] = {};
    for (std::size_t at = 0; at + 32 <= count; at += 32) {
        _mm_prefetch(reinterpret_cast<const char*>(samples + at) + 8192, _MM_HINT_T0);
        for (std::size_t i = 0; i < 4; ++i) {
            const auto* lanes = reinterpret_cast<const __m128i*>(samples + at + 8 * i);
            maxima[i] = _mm_max_epi16(maxima[i], _mm_loadu_si128(lanes));
        }
    }
    const __m128i all = _mm_max_epi16(_mm_max_epi16(maxima[0], maxima[1]), _mm_max_epi16(maxima[2], maxima[3]));
    return _mm_extract_epi16(all, 0) + _mm_extract_epi16(all, 5);
}

template <typename Work>
double Seconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Runs candidate and baseline alternately. The time reported is the candidate's; the counter "ratio" is the median
/// over the rounds of candidate / baseline (or its reciprocal as "speedup", for baselines that are slower).
template <typename Candidate, typename Baseline>
void Compare(benchmark::State& state, std::size_t bytes, bool speedup, Candidate candidate, Baseline baseline) {
    std::vector<double> ratios;
    std::vector<double> rates;
    for (auto _ : state) {
        const double ours = Seconds(candidate);
        const double theirs = Seconds(baseline);
        state.SetIterationTime(ours);
        ratios.push_back(speedup ? theirs / ours : ours / theirs);
        rates.push_back(static_cast<double>(bytes) / ours * 1e-9);
    }
    state.counters[speedup ? "speedup" : "ratio"] = Median(ratios);
    state.counters["GB/s"] = Median(rates);
}

/// Low-pass noise, as recordings are: neighbouring samples are close and extremes are rare. The pattern's length is a
/// prime number, so that channels and runs begin at ever different places of it.
inline std::vector<std::int16_t> NoiseSamples(std::size_t count) {
    constexpr std::size_t kPattern = 1000003;
    std::vector<std::int16_t> samples(count);
    std::uint32_t random = 1;
    double level = 0.0;
    for (std::size_t i = 0; i < std::min(count, kPattern); ++i) {
        random = random * 1664525U + 1013904223U;
        level = level * 0.98 + (static_cast<double>(random >> 16) - 32768.0) * 0.05;
        samples[i] = static_cast<std::int16_t>(std::clamp(level, -32000.0, 32000.0));
    }
    for (std::size_t i = kPattern; i < count; ++i) samples[i] = samples[i - kPattern];
    return samples;
}

}  // namespace quillon::bench
