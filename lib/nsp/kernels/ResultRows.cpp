#include "nsp/kernels/ResultRows.h"

#include <emmintrin.h>

#include <algorithm>
#include <utility>

namespace quillon::nsp {

namespace {

/// Rows of `slots` results: writes those of four neighbouring slots to their channels.
void WriteFourSlots(const ExtremePair* rows, std::size_t slots, std::size_t runs, ExtremePair** out) {
    const auto load = [&](std::size_t run) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows + run * slots));
    };
    std::size_t run = 0;
    for (; run + 4 <= runs; run += 4) {
        const __m128i a = _mm_unpacklo_epi32(load(run), load(run + 1));
        const __m128i b = _mm_unpackhi_epi32(load(run), load(run + 1));
        const __m128i c = _mm_unpacklo_epi32(load(run + 2), load(run + 3));
        const __m128i d = _mm_unpackhi_epi32(load(run + 2), load(run + 3));
        const __m128i channels[4] = {_mm_unpacklo_epi64(a, c), _mm_unpackhi_epi64(a, c), _mm_unpacklo_epi64(b, d),
                                     _mm_unpackhi_epi64(b, d)};
        for (std::size_t i = 0; i < 4; ++i) {
            if (out[i] != nullptr) _mm_storeu_si128(reinterpret_cast<__m128i*>(out[i] + run), channels[i]);
        }
    }
    for (; run < runs; ++run) {
        for (std::size_t i = 0; i < 4; ++i) {
            if (out[i] != nullptr) out[i][run] = rows[run * slots + i];
        }
    }
    for (std::size_t i = 0; i < 4; ++i) {
        if (out[i] != nullptr) out[i] += runs;
    }
}

}  // namespace

ResultRows::ResultRows(std::vector<ExtremePair*> out) : m_out(std::move(out)), m_rows(m_out.size() * kRuns) {}

ResultRows::~ResultRows() = default;

void ResultRows::Write() {
    for (std::size_t slot = 0; slot < m_out.size(); slot += 4) {
        ExtremePair** const out = &m_out[slot];
        const bool wanted = std::any_of(out, out + 4, [](const ExtremePair* results) { return results != nullptr; });
        if (wanted) WriteFourSlots(&m_rows[slot], m_out.size(), m_runs, out);
    }
    m_runs = 0;
}

}  // namespace quillon::nsp
