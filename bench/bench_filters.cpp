#include <span>
#include <utility>

#include "BenchData.h"
#include "nsp/FilterStream.h"

namespace quillon::bench {
namespace {

constexpr std::size_t kSamples = std::size_t{1} << 25;       // of all channels
constexpr std::size_t kPieceSamples = std::size_t{1} << 19;  // the steps of 1 MiB that the window reads
constexpr double kRate = 256.0;

const std::vector<std::int16_t>& Samples() {
    static const std::vector<std::int16_t> samples = NoiseSamples(kSamples);
    return samples;
}

/// All samples as frames of so many channels, in pieces; the pass that a summary of the filtered block makes.
void FilterWhole(const nsp::FilterDesign& design, std::size_t channels, bool frames, nsp::LaneCount lanes) {
    const std::size_t count = kSamples / channels;
    const auto length = static_cast<std::int32_t>(count);
    nsp::FilterStream stream(design, channels, {0, length}, length, lanes);
    std::vector<const std::int16_t*> start(channels);
    for (std::size_t c = 0; c < channels; ++c) start[c] = Samples().data() + (frames ? c : c * count);
    const nsp::CodeSamples samples{start, frames ? static_cast<std::ptrdiff_t>(channels) : 1};
    const auto piece = static_cast<std::int32_t>(kPieceSamples / channels);
    for (SampleSpan next = stream.Next(); next.count > 0; next = stream.Next()) {
        stream.Feed(samples.From(next.first), static_cast<std::size_t>(std::min(piece, next.count)));
        if (stream.Ready().count > 0) benchmark::DoNotOptimize(stream.Row(0)[0]);
    }
}

/// The same sections in one plain loop over each channel, without cells.
void FilterPlainly(const nsp::FilterDesign& design, std::size_t channels, std::vector<float>& out) {
    const std::size_t count = kSamples / channels;
    for (std::size_t c = 0; c < channels; ++c) {
        std::vector<std::pair<double, double>> states(design.Sections().size());
        for (std::size_t t = 0; t < count; ++t) {
            double x = Samples()[c * count + t];
            for (std::size_t i = 0; i < states.size(); ++i) {
                const nsp::FilterSection& section = design.Sections()[i];
                auto& [s1, s2] = states[i];
                const double u = x - section.damping * s1 - s2;
                const double b = s1 + section.first * u;
                const double l = s2 + section.second * b;
                s1 += 2.0 * section.first * u;
                s2 += 2.0 * section.second * b;
                x = section.high * u + section.band * b + section.low * l;
            }
            out[t] = static_cast<float>(x);
        }
        benchmark::DoNotOptimize(out.data());
    }
}

void Filter(benchmark::State& state, nsp::FilterSettings settings, bool frames, nsp::LaneCount lanes) {
    const auto channels = static_cast<std::size_t>(state.range(0));
    const nsp::FilterDesign design(settings, kRate);
    std::vector<float> out(kSamples / channels);
    std::vector<double> seconds;
    Compare(
        state, kSamples * 2, true,
        [&] { seconds.push_back(Seconds([&] { FilterWhole(design, channels, frames, lanes); })); },
        [&] { FilterPlainly(design, channels, out); });
    state.counters["M samples/s"] = static_cast<double>(kSamples) / Median(seconds) * 1e-6;
}

/// A page of 10 s in the middle of a block of an hour, from the stored codes on.
void FilterPage(benchmark::State& state, nsp::FilterSettings settings) {
    const auto channels = static_cast<std::size_t>(state.range(0));
    const nsp::FilterDesign design(settings, kRate);
    const auto length = static_cast<std::int32_t>(kSamples / 32);
    std::vector<const std::int16_t*> start(channels);
    for (std::size_t c = 0; c < channels; ++c) start[c] = Samples().data() + c;
    const nsp::CodeSamples samples{start, 32};
    std::int32_t first = 0;
    for (auto _ : state) {
        first = (first + 98317) % (length - 2560);
        nsp::FilterStream stream(design, channels, {first, 2560}, length);
        for (SampleSpan next = stream.Next(); next.count > 0; next = stream.Next())
            stream.Feed(samples.From(next.first), static_cast<std::size_t>(next.count));
        benchmark::DoNotOptimize(stream.Row(0)[0]);
    }
}

constexpr nsp::FilterSettings kBand{.highPass = 0.5, .lowPass = 35.0};
constexpr nsp::FilterSettings kBandNotch{.highPass = 0.5, .lowPass = 35.0, .notch = 50.0};
constexpr nsp::FilterSettings kBandBothWays{.highPass = 0.5, .lowPass = 35.0, .bothWays = true};
constexpr nsp::FilterSettings kSlow{.highPass = 0.1, .lowPass = 35.0, .notch = 50.0};
constexpr nsp::FilterSettings kSlowBothWays{.highPass = 0.1, .lowPass = 35.0, .notch = 50.0, .bothWays = true};

void Widths(benchmark::internal::Benchmark* it) {
    it->ArgName("channels")->Arg(1)->Arg(8)->Arg(32)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
}

void Pages(benchmark::internal::Benchmark* it) {
    it->ArgName("channels")->Arg(32)->Unit(benchmark::kMillisecond);
}

const nsp::LaneCount kMost = nsp::MostLanes();

BENCHMARK_CAPTURE(Filter, band, kBand, false, kMost)->Apply(Widths);
BENCHMARK_CAPTURE(Filter, band_of_frames, kBand, true, kMost)->Apply(Widths);
BENCHMARK_CAPTURE(Filter, band_sse2, kBand, false, nsp::LaneCount::Eight)->Apply(Widths);
BENCHMARK_CAPTURE(Filter, band_notch, kBandNotch, false, kMost)->Apply(Widths);
BENCHMARK_CAPTURE(Filter, band_both_ways, kBandBothWays, false, kMost)->Apply(Widths);
BENCHMARK_CAPTURE(FilterPage, band, kBand)->Apply(Pages);
BENCHMARK_CAPTURE(FilterPage, band_both_ways, kBandBothWays)->Apply(Pages);
BENCHMARK_CAPTURE(FilterPage, slow, kSlow)->Apply(Pages);
BENCHMARK_CAPTURE(FilterPage, slow_both_ways, kSlowBothWays)->Apply(Pages);

}  // namespace
}  // namespace quillon::bench
