#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "nsp/RowRuns.h"
#include "nsp/RunReducer.h"

/// What the reducers run on. The kernels are compiled twice, for eight and for sixteen lanes.
namespace quillon::nsp {

class FrameKernel {
  public:
    // Not inline: they would be compiled for the processor of whichever kernel includes this.
    virtual ~FrameKernel();
    FrameKernel();
    FrameKernel(const FrameKernel&) = delete;
    FrameKernel& operator=(const FrameKernel&) = delete;
    virtual void Feed(const std::int16_t* frames, std::size_t frameCount) = 0;
    virtual void Finish() = 0;
};

class PlanarKernel {
  public:
    virtual ~PlanarKernel();
    PlanarKernel();
    PlanarKernel(const PlanarKernel&) = delete;
    PlanarKernel& operator=(const PlanarKernel&) = delete;
    virtual void Feed(std::span<const std::int16_t* const> samples, std::size_t count) = 0;
    virtual void Finish() = 0;
};

struct Lanes8;
struct Lanes16;

/// Arguments as those of the reducers, checked.
template <typename Lanes>
std::unique_ptr<FrameKernel> MakeFrameKernel(std::size_t channels, std::span<const std::size_t> selected,
                                             std::size_t run, std::span<ExtremePair* const> out);
template <typename Lanes>
std::unique_ptr<PlanarKernel> MakePlanarKernel(std::size_t run, std::span<ExtremePair* const> out);
/// Runs of `shortest` to `longest` samples, at most twice as many.
template <typename Lanes>
void ReduceListed(std::span<const std::int16_t* const> rows, std::span<const RowRun> runs, std::size_t shortest,
                  std::size_t longest, std::span<ExtremePair* const> out);

}  // namespace quillon::nsp
