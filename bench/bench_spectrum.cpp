#include <cmath>
#include <cstring>
#include <numbers>
#include <random>

#include "BenchData.h"
#include "nsp/Spectrum.h"
#include "nsp/SpectrumBatch.h"
#ifdef QUILLON_BENCH_FFTW
#include <fftw3.h>
#endif
#ifdef QUILLON_BENCH_KISSFFT
#include <kissfft/kiss_fftr.h>
#endif

/// One screen of a spectrogram. Times are of 1000 columns, so microseconds are nanoseconds per column.
namespace quillon::bench {
namespace {

constexpr std::size_t kColumns = 1000;
constexpr std::size_t kHop = 50;
constexpr std::size_t kStride = 1504;

/// A sine in noise, its columns, and a logarithmic plot of 120 dB.
struct Screen {
    explicit Screen(int transformOrder)
        : order(transformOrder),
          length(std::size_t{1} << order),
          window(length, 1.0F),
          samples(kColumns * kHop + length),
          image(kStride * (length / 2 + 1)) {
        nsp::nspsWinBlackmanStd(window.data(), static_cast<int>(length));
        const float full = static_cast<float>(length) / 2.0F;
        scale = {false, 0.0F, 255.0F / 6.0F, 6.0F - std::log10(full)};
        std::mt19937 random(1);
        std::normal_distribution<float> noise(0.0F, 0.01F);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i] = 0.5F * std::sin(static_cast<float>(i) * 0.1F) + noise(random);
        }
        for (std::size_t column = 0; column < kColumns; ++column) frames.push_back(samples.data() + kHop * column);
    }
    int order;
    std::size_t length;
    std::vector<float> window;
    std::vector<float> samples;
    std::vector<const float*> frames;
    std::vector<std::uint8_t> image;
    nsp::SpectrumBatch::Scale scale;
};

void Own(Screen& screen, nsp::SpectrumBatch& batch) {
    batch.Compute(screen.frames, screen.image.data(), kStride);
    benchmark::DoNotOptimize(screen.image.data());
}

void Batch(benchmark::State& state) {
    Screen screen(static_cast<int>(state.range(0)));
    nsp::SpectrumBatch batch(screen.order, screen.window.data(), screen.scale);
    for (auto _ : state) state.SetIterationTime(Seconds([&] { Own(screen, batch); }));
}

void BatchMade(benchmark::State& state) {
    Screen screen(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.SetIterationTime(Seconds(
            [&] { benchmark::DoNotOptimize(nsp::SpectrumBatch(screen.order, screen.window.data(), screen.scale)); }));
    }
}

#if defined(QUILLON_BENCH_FFTW) || defined(QUILLON_BENCH_KISSFFT)
/// One column at a time, each step over the whole vector, logarithms by the C library: transform() goes from `work` to
/// the N/2 + 1 bins at `bins`.
template <typename Transform>
void Chain(Screen& screen, float* work, const float* bins, Transform transform) {
    const std::size_t count = screen.length / 2 + 1;
    for (std::size_t column = 0; column < kColumns; ++column) {
        const float* frame = screen.frames[column];
        for (std::size_t i = 0; i < screen.length; ++i) work[i] = screen.window[i] * frame[i];
        transform();
        for (std::size_t k = 0; k < count; ++k) {
            const float power = bins[2 * k] * bins[2 * k] + bins[2 * k + 1] * bins[2 * k + 1];
            work[k] = std::max(_mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(power))), 1e-30F);
        }
        for (std::size_t k = 0; k < count; ++k) work[k] = std::log10(work[k]);
        for (std::size_t k = 0; k < count; ++k)
            work[k] = (work[k] + screen.scale.logOffset) * screen.scale.logMultiplier;
        for (std::size_t k = 0; k < count; ++k) {
            const float level = std::clamp(work[k], 0.0F, 255.0F);
            screen.image[k * kStride + column] = static_cast<std::uint8_t>(_mm_cvtss_si32(_mm_set_ss(level)));
        }
    }
    benchmark::DoNotOptimize(screen.image.data());
}
#endif

#ifdef QUILLON_BENCH_FFTW
void BatchAgainstFftw(benchmark::State& state) {
    Screen screen(static_cast<int>(state.range(0)));
    nsp::SpectrumBatch batch(screen.order, screen.window.data(), screen.scale);
    float* const work = fftwf_alloc_real(screen.length + 2);
    fftwf_complex* const bins = fftwf_alloc_complex(screen.length / 2 + 1);
    const fftwf_plan plan = fftwf_plan_dft_r2c_1d(static_cast<int>(screen.length), work, bins, FFTW_MEASURE);
    Compare(
        state, kColumns * kHop * sizeof(float), false, [&] { Own(screen, batch); },
        [&] { Chain(screen, work, &bins[0][0], [&] { fftwf_execute(plan); }); });
    fftwf_destroy_plan(plan);
    fftwf_free(bins);
    fftwf_free(work);
}
BENCHMARK(BatchAgainstFftw)->DenseRange(5, 11)->UseManualTime()->Unit(benchmark::kMicrosecond);
#endif

#ifdef QUILLON_BENCH_KISSFFT
void BatchAgainstKissFft(benchmark::State& state) {
    Screen screen(static_cast<int>(state.range(0)));
    nsp::SpectrumBatch batch(screen.order, screen.window.data(), screen.scale);
    std::vector<float> work(screen.length);
    std::vector<kiss_fft_cpx> bins(screen.length / 2 + 1);
    const kiss_fftr_cfg plan = kiss_fftr_alloc(static_cast<int>(screen.length), 0, nullptr, nullptr);
    Compare(
        state, kColumns * kHop * sizeof(float), false, [&] { Own(screen, batch); },
        [&] { Chain(screen, work.data(), &bins[0].r, [&] { kiss_fftr(plan, work.data(), bins.data()); }); });
    kiss_fft_free(plan);
}
BENCHMARK(BatchAgainstKissFft)->DenseRange(5, 11)->UseManualTime()->Unit(benchmark::kMicrosecond);
#endif

BENCHMARK(Batch)->DenseRange(5, 11)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BatchMade)->Arg(8)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillon::bench
