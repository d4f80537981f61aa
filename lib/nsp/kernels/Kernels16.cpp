// Everything that is not of the kernels alone comes first: other files have the same functions, and the linker keeps
// any one of them, which must run on any processor.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "nsp/RowRuns.h"
#include "nsp/RunReducer.h"
#include "nsp/kernels/Extremes.h"
#include "nsp/kernels/FrameColumns.h"
#include "nsp/kernels/Lanes16.h"
#include "nsp/kernels/ResultRows.h"
#include "nsp/kernels/RunKernels.h"

#if QUILLON_SIXTEEN_LANES
// From here on only templates over the lanes.
#pragma GCC target("avx2")
#include "nsp/kernels/MakeKernels.h"

namespace quillon::nsp {

template std::unique_ptr<FrameKernel> MakeFrameKernel<Lanes16>(std::size_t, std::span<const std::size_t>, std::size_t,
                                                               std::span<ExtremePair* const>);
template std::unique_ptr<PlanarKernel> MakePlanarKernel<Lanes16>(std::size_t, std::span<ExtremePair* const>);
template void ReduceListed<Lanes16>(std::span<const std::int16_t* const>, std::span<const RowRun>, std::size_t,
                                    std::size_t, std::span<ExtremePair* const>);

}  // namespace quillon::nsp
#endif
