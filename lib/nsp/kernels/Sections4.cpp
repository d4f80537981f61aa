// Everything that is not of the kernels alone comes first, as in Kernels16.cpp.
#include <cstddef>

#include "nsp/FilterDesign.h"
#include "nsp/kernels/Lanes16.h"
#include "nsp/kernels/SectionKernel.h"

#if QUILLON_SIXTEEN_LANES
// From here on only templates over the lanes. FMA is not asked for: it would round differently.
#pragma GCC target("avx2")
#include "nsp/kernels/RunSections.h"

namespace quillon::nsp {

/// With AVX2.
struct Doubles4 {
    using Vector = __m256d;
    static constexpr std::size_t kCount = 4;
    static Vector Load(const double* from) { return _mm256_loadu_pd(from); }
    static void Store(double* to, Vector v) { _mm256_storeu_pd(to, v); }
    static Vector Fill(double value) { return _mm256_set1_pd(value); }
};

template void RunSections<Doubles4>(const FilterSection*, std::size_t, std::size_t, double*, double*, std::size_t);

}  // namespace quillon::nsp
#endif
