#include <numeric>

#include "BenchData.h"
#include "nsp/NspExtrema.h"
#include "nsp/RunReducer.h"

namespace quillon::bench {
namespace {

constexpr std::size_t kBytes = std::size_t{512} << 20;  // beyond the caches
constexpr std::size_t kPieceSamples = 128 * 1024;       // the readers' pieces of 256 KiB

const std::vector<std::int16_t>& Samples() {
    static const std::vector<std::int16_t> samples = NoiseSamples(kBytes / 2);
    return samples;
}

struct Results {
    Results(std::size_t channels, std::size_t runs) : columns(channels, std::vector<nsp::ExtremePair>(runs)) {
        for (auto& column : columns) out.push_back(column.data());
    }
    std::vector<std::vector<nsp::ExtremePair>> columns;
    std::vector<nsp::ExtremePair*> out;
};

void ReduceFrames(std::size_t channels, std::size_t run, std::size_t frames, Results& results) {
    std::vector<std::size_t> selected(channels);
    std::iota(selected.begin(), selected.end(), std::size_t{0});
    nsp::FrameRunReducer reducer(channels, selected, static_cast<std::int32_t>(run), results.out);
    const std::size_t piece = kPieceSamples / channels;
    for (std::size_t at = 0; at < frames; at += piece) {
        reducer.Feed(Samples().data() + at * channels, std::min(piece, frames - at));
    }
    reducer.Finish();
}

void Interleaved(benchmark::State& state) {
    const auto channels = static_cast<std::size_t>(state.range(0));
    const auto run = static_cast<std::size_t>(state.range(1));
    const std::size_t frames = Samples().size() / channels;
    Results results(channels, frames / run + 1);
    Compare(
        state, kBytes, false, [&] { ReduceFrames(channels, run, frames, results); },
        [] { benchmark::DoNotOptimize(ReadPass(Samples().data(), Samples().size())); });
}

/// The calls of a plain library: one loop per call.
struct PlainCalls {
    static short Maximum(const short* src, int n, int* index) {
        return src[*index = static_cast<int>(std::max_element(src, src + n) - src)];
    }
    static short Minimum(const short* src, int n, int* index) {
        return src[*index = static_cast<int>(std::min_element(src, src + n) - src)];
    }
};

struct OwnCalls {
    static short Maximum(const short* src, int n, int* index) { return nsp::nspwMaxExt(src, n, index); }
    static short Minimum(const short* src, int n, int* index) { return nsp::nspwMinExt(src, n, index); }
};

template <typename Calls>
nsp::ExtremePair ByTwoCalls(const std::int16_t* samples, std::size_t run) {
    int highest = 0;
    int lowest = 0;
    const std::int16_t maximum = Calls::Maximum(samples, static_cast<int>(run), &highest);
    const std::int16_t minimum = Calls::Minimum(samples, static_cast<int>(run), &lowest);
    return lowest < highest ? nsp::ExtremePair{minimum, maximum} : nsp::ExtremePair{maximum, minimum};
}

/// Per channel and run: copy the codes out of the frames, then two calls.
template <typename Calls>
void LiteralRoute(benchmark::State& state) {
    const std::size_t channels = 32;
    const auto run = static_cast<std::size_t>(state.range(0));
    const std::size_t frames = Samples().size() / channels;
    Results results(channels, frames / run + 1);
    Results reference(channels, frames / run + 1);
    std::vector<std::int16_t> codes(run);
    Compare(
        state, kBytes, true, [&] { ReduceFrames(channels, run, frames, results); },
        [&] {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                for (std::size_t first = 0; first < frames; first += run) {
                    const std::size_t size = std::min(run, frames - first);
                    const std::int16_t* from = Samples().data() + first * channels + channel;
                    for (std::size_t i = 0; i < size; ++i) codes[i] = from[i * channels];
                    reference.out[channel][first / run] = ByTwoCalls<Calls>(codes.data(), size);
                }
            }
        });
    if (results.columns != reference.columns) state.SkipWithError("the two routes differ");
}

void ReducePlanar(std::size_t run, std::vector<nsp::ExtremePair>& results) {
    nsp::PlanarRunReducer reducer(static_cast<std::int32_t>(run), results.data());
    for (std::size_t at = 0; at < Samples().size(); at += kPieceSamples) {
        reducer.Feed(Samples().data() + at, std::min(kPieceSamples, Samples().size() - at));
    }
    reducer.Finish();
}

nsp::ExtremePair ByOneScalarLoop(const std::int16_t* samples, std::size_t run) {
    std::size_t highest = 0;
    std::size_t lowest = 0;
    for (std::size_t i = 1; i < run; ++i) {
        if (samples[i] > samples[highest]) highest = i;
        if (samples[i] < samples[lowest]) lowest = i;
    }
    return lowest < highest ? nsp::ExtremePair{samples[lowest], samples[highest]}
                            : nsp::ExtremePair{samples[highest], samples[lowest]};
}

struct LaneSearch {
    __m128i value;
    __m128i index;
    void Take(__m128i better, __m128i samples, __m128i at) {
        value = _mm_or_si128(_mm_and_si128(better, samples), _mm_andnot_si128(better, value));
        index = _mm_or_si128(_mm_and_si128(better, at), _mm_andnot_si128(better, index));
    }
    /// The lane that `better` prefers, the earlier position on equal values.
    template <typename Better>
    std::pair<std::int16_t, std::size_t> Best(Better better) const {
        std::int16_t values[8];
        std::int16_t places[8];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(values), value);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(places), index);
        std::size_t best = 0;
        for (std::size_t i = 1; i < 8; ++i) {
            if (better(values[i], values[best]) || (values[i] == values[best] && places[i] < places[best])) best = i;
        }
        return {values[best], static_cast<std::size_t>(places[best])};
    }
};

/// One call per run that keeps values and their positions in vector lanes: the usual way to vectorise it. Runs below
/// 32768, as positions are 16 bits wide.
nsp::ExtremePair ByIndexLanes(const std::int16_t* samples, std::size_t run) {
    if (run < 8) return ByOneScalarLoop(samples, run);
    const auto load = [&](std::size_t at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + at)); };
    const __m128i step = _mm_set1_epi16(8);
    __m128i at = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
    LaneSearch highest{load(0), at};
    LaneSearch lowest = highest;
    std::size_t i = 8;
    for (; i + 8 <= run; i += 8) {
        at = _mm_add_epi16(at, step);
        const __m128i lanes = load(i);
        highest.Take(_mm_cmpgt_epi16(lanes, highest.value), lanes, at);
        lowest.Take(_mm_cmpgt_epi16(lowest.value, lanes), lanes, at);
    }
    auto [maximum, maximumAt] = highest.Best([](int a, int b) { return a > b; });
    auto [minimum, minimumAt] = lowest.Best([](int a, int b) { return a < b; });
    for (; i < run; ++i) {
        if (samples[i] > maximum) maximum = samples[maximumAt = i];
        if (samples[i] < minimum) minimum = samples[minimumAt = i];
    }
    return minimumAt < maximumAt ? nsp::ExtremePair{minimum, maximum} : nsp::ExtremePair{maximum, minimum};
}

using RunFunction = nsp::ExtremePair (*)(const std::int16_t*, std::size_t);

void Planar(benchmark::State& state, RunFunction other) {
    const auto run = static_cast<std::size_t>(state.range(0));
    const std::size_t count = Samples().size();
    std::vector<nsp::ExtremePair> results((count + run - 1) / run);
    std::vector<nsp::ExtremePair> reference(results.size());
    Compare(
        state, kBytes, true, [&] { ReducePlanar(run, results); },
        [&] {
            for (std::size_t first = 0; first < count; first += run) {
                reference[first / run] = other(Samples().data() + first, std::min(run, count - first));
            }
        });
    if (results != reference) state.SkipWithError("the two ways differ");
}

void PlanarRead(benchmark::State& state) {
    const auto run = static_cast<std::size_t>(state.range(0));
    std::vector<nsp::ExtremePair> results((Samples().size() + run - 1) / run);
    Compare(
        state, kBytes, false, [&] { ReducePlanar(run, results); },
        [] { benchmark::DoNotOptimize(ReadPass(Samples().data(), Samples().size())); });
}

void Rounds(benchmark::internal::Benchmark* it) {
    it->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);
}

void UsualRuns(benchmark::internal::Benchmark* it) {
    it->ArgName("run");
    for (const int run : {3, 10, 100, 500, 2000}) it->Arg(run);
}

void FewRounds(benchmark::internal::Benchmark* it) {
    it->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
}

BENCHMARK(Interleaved)
    ->ArgNames({"channels", "run"})
    ->ArgsProduct({{32}, {3, 10, 100, 2000}})
    ->ArgsProduct({{1, 2, 3, 4, 5, 6, 7, 8, 19}, {10, 100, 2000}})
    ->Args({64, 2000})
    ->Apply(Rounds);
BENCHMARK(LiteralRoute<PlainCalls>)->ArgName("run")->Arg(10)->Arg(2000)->Apply(FewRounds);
BENCHMARK(LiteralRoute<OwnCalls>)->ArgName("run")->Arg(10)->Arg(2000)->Apply(FewRounds);
BENCHMARK(PlanarRead)->Apply(UsualRuns)->Apply(Rounds);
BENCHMARK_CAPTURE(Planar, index_lanes, ByIndexLanes)->Apply(UsualRuns)->Apply(FewRounds);
BENCHMARK_CAPTURE(Planar, values_then_find, ByTwoCalls<OwnCalls>)->Apply(UsualRuns)->Apply(FewRounds);
BENCHMARK_CAPTURE(Planar, scalar_loop, ByOneScalarLoop)->Apply(UsualRuns)->Apply(FewRounds);

}  // namespace
}  // namespace quillon::bench
