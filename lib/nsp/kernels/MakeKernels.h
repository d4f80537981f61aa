#pragma once

#include <array>
#include <memory>

#include "nsp/kernels/FrameRuns.h"
#include "nsp/kernels/ListedRuns.h"
#include "nsp/kernels/PackedRuns.h"
#include "nsp/kernels/PlanarRuns.h"
#include "nsp/kernels/RunKernels.h"

/// Included once for each kind of lanes, where the kernels are compiled.
namespace quillon::nsp {

template <typename Lanes, std::size_t Channels>
class PackedFrames final : public FrameKernel {
  public:
    PackedFrames(std::span<const std::size_t> selected, std::size_t run, std::span<ExtremePair* const> out)
        : m_run(run) {
        for (std::size_t i = 0; i < selected.size(); ++i) m_out[selected[i]] = out[i];
    }
    void Feed(const std::int16_t* frames, std::size_t frameCount) override {
        PackedRuns<Lanes, Channels>::Feed(frames, frameCount, m_run, m_filled, m_extremes, m_out);
    }
    void Finish() override { PackedRuns<Lanes, Channels>::Finish(m_filled, m_extremes, m_out); }

  private:
    std::size_t m_run;
    std::size_t m_filled = 0;
    std::array<Extremes, Channels> m_extremes;
    std::array<ExtremePair*, Channels> m_out{};
};

template <typename Lanes>
std::unique_ptr<FrameKernel> MakeFrameKernel(std::size_t channels, std::span<const std::size_t> selected,
                                             std::size_t run, std::span<ExtremePair* const> out) {
    const auto packed = [&]<std::size_t Channels>() -> std::unique_ptr<FrameKernel> {
        return std::make_unique<PackedFrames<Lanes, Channels>>(selected, run, out);
    };
    const auto wide = [&]<std::size_t Channels>() -> std::unique_ptr<FrameKernel> {
        constexpr bool several = 2 * Channels <= Lanes::kCount;
        return std::make_unique<FrameRuns<Lanes, several ? Channels : 0>>(channels, selected, run, out);
    };
    switch (channels) {
        case 1: return packed.template operator()<1>();
        case 2: return packed.template operator()<2>();
        case 4: return packed.template operator()<4>();
        case 3: return wide.template operator()<3>();
        case 5: return wide.template operator()<5>();
        case 6: return wide.template operator()<6>();
        case 7: return wide.template operator()<7>();
        case 8: return wide.template operator()<8>();
        default: return wide.template operator()<0>();
    }
}

template <typename Lanes>
std::unique_ptr<PlanarKernel> MakePlanarKernel(std::size_t run, std::span<ExtremePair* const> out) {
    return std::make_unique<PlanarRuns<Lanes>>(run, out);
}

template <typename Lanes>
void ReduceListed(std::span<const std::int16_t* const> rows, std::span<const RowRun> runs, std::size_t shortest,
                  std::size_t longest, std::span<ExtremePair* const> out) {
    ListedRuns<Lanes>::Reduce(rows, runs, shortest, longest, out);
}

}  // namespace quillon::nsp
