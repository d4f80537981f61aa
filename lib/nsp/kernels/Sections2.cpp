#include <emmintrin.h>

#include "nsp/kernels/RunSections.h"

namespace quillon::nsp {

/// On any processor.
struct Doubles2 {
    using Vector = __m128d;
    static constexpr std::size_t kCount = 2;
    static Vector Load(const double* from) { return _mm_loadu_pd(from); }
    static void Store(double* to, Vector v) { _mm_storeu_pd(to, v); }
    static Vector Fill(double value) { return _mm_set1_pd(value); }
};

template void RunSections<Doubles2>(const FilterSection*, std::size_t, std::size_t, double*, double*, std::size_t);

}  // namespace quillon::nsp
