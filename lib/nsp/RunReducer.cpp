#include "nsp/RunReducer.h"

#include <algorithm>
#include <stdexcept>

#include "nsp/kernels/Lanes16.h"
#include "nsp/kernels/Lanes8.h"
#include "nsp/kernels/PackedRuns.h"
#include "nsp/kernels/RunKernels.h"

namespace quillon::nsp {

LaneCount MostLanes() {
#if QUILLON_SIXTEEN_LANES
    if (__builtin_cpu_supports("avx2")) return LaneCount::Sixteen;
#endif
    return LaneCount::Eight;
}

FrameKernel::FrameKernel() = default;
FrameKernel::~FrameKernel() = default;
PlanarKernel::PlanarKernel() = default;
PlanarKernel::~PlanarKernel() = default;

PlanarRunReducer::PlanarRunReducer(std::int32_t run, ExtremePair* out) : m_run(run), m_out(out) {
    if (run < 1) throw std::invalid_argument("a run has at least one sample");
}

void PlanarRunReducer::Feed(const std::int16_t* samples, std::size_t count) {
    auto filled = static_cast<std::size_t>(m_filled);
    Extremes state{m_maximum, m_minimum, m_minimumFirst};
    PackedRuns<Lanes8, 1>::Feed(samples, count, static_cast<std::size_t>(m_run), filled, {&state, 1}, {&m_out, 1});
    m_filled = static_cast<std::int32_t>(filled);
    m_maximum = state.maximum;
    m_minimum = state.minimum;
    m_minimumFirst = state.minimumFirst;
}

void PlanarRunReducer::Finish() {
    if (m_filled == 0) return;
    *m_out++ = Extremes{m_maximum, m_minimum, m_minimumFirst}.Pair();
    m_filled = 0;
}

PlanarSetReducer::PlanarSetReducer(std::int32_t run, std::span<ExtremePair* const> out,
                                   [[maybe_unused]] LaneCount lanes) {
    if (run < 1) throw std::invalid_argument("a run has at least one sample");
    const auto length = static_cast<std::size_t>(run);
#if QUILLON_SIXTEEN_LANES
    if (lanes == LaneCount::Sixteen) m_kernel = MakePlanarKernel<Lanes16>(length, out);
#endif
    if (!m_kernel) m_kernel = MakePlanarKernel<Lanes8>(length, out);
}

PlanarSetReducer::~PlanarSetReducer() = default;

void PlanarSetReducer::Feed(std::span<const std::int16_t* const> samples, std::size_t count) {
    m_kernel->Feed(samples, count);
}

void PlanarSetReducer::Finish() {
    m_kernel->Finish();
}

FrameRunReducer::FrameRunReducer(std::size_t channels, std::span<const std::size_t> selected, std::int32_t run,
                                 std::span<ExtremePair* const> out, [[maybe_unused]] LaneCount lanes) {
    if (run < 1 || channels < 1 || selected.size() != out.size() ||
        std::any_of(selected.begin(), selected.end(), [&](std::size_t channel) { return channel >= channels; })) {
        throw std::invalid_argument("runs of frames");
    }
    if (selected.empty()) return;
    const auto length = static_cast<std::size_t>(run);
#if QUILLON_SIXTEEN_LANES
    if (lanes == LaneCount::Sixteen) m_kernel = MakeFrameKernel<Lanes16>(channels, selected, length, out);
#endif
    if (!m_kernel) m_kernel = MakeFrameKernel<Lanes8>(channels, selected, length, out);
}

FrameRunReducer::~FrameRunReducer() = default;

void FrameRunReducer::Feed(const std::int16_t* frames, std::size_t frameCount) {
    if (m_kernel) m_kernel->Feed(frames, frameCount);
}

void FrameRunReducer::Finish() {
    if (m_kernel) m_kernel->Finish();
}

}  // namespace quillon::nsp
