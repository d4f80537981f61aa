#include "nsp/kernels/Lanes8.h"
#include "nsp/kernels/MakeKernels.h"

namespace quillon::nsp {

template std::unique_ptr<FrameKernel> MakeFrameKernel<Lanes8>(std::size_t, std::span<const std::size_t>, std::size_t,
                                                              std::span<ExtremePair* const>);
template std::unique_ptr<PlanarKernel> MakePlanarKernel<Lanes8>(std::size_t, std::span<ExtremePair* const>);
template void ReduceListed<Lanes8>(std::span<const std::int16_t* const>, std::span<const RowRun>, std::size_t,
                                   std::size_t, std::span<ExtremePair* const>);

}  // namespace quillon::nsp
