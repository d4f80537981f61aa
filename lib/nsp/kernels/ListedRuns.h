#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "nsp/kernels/RunKernels.h"
#include "nsp/kernels/SideBySide.h"

namespace quillon::nsp {

/// Runs of several rows, as many at once as there are lanes: as many samples as the shortest of all has, then the last
/// ones of each. Of a run that is not as long some of these were seen before, which changes nothing.
template <typename Lanes>
class ListedRuns {
  public:
    static void Reduce(std::span<const std::int16_t* const> rows, std::span<const RowRun> runs, std::size_t shortest,
                       std::size_t longest, std::span<ExtremePair* const> out) {
        ListedRuns listed{shortest, longest - shortest};
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t run = 0; run < runs.size(); ++run) {
                const RowRun& place = runs[run];
                listed.Add(rows[row] + place.first, rows[row] + place.end, out[row] + run);
            }
        }
        listed.Finish();
    }

  private:
    static constexpr std::size_t kCount = Lanes::kCount;

    ListedRuns(std::size_t shortest, std::size_t more) : m_shortest(shortest), m_more(more) {}
    void Add(const std::int16_t* first, const std::int16_t* end, ExtremePair* out) {
        m_firsts[m_filled] = first;
        m_ends[m_filled] = end;
        m_out[m_filled] = out;
        if (++m_filled == kCount) Write();
    }
    void Finish() {
        if (m_filled == 0) return;
        std::fill(m_firsts + m_filled, m_firsts + kCount, m_firsts[0]);
        std::fill(m_ends + m_filled, m_ends + kCount, m_ends[0]);
        std::fill(m_out + m_filled, m_out + kCount, m_out[0]);
        Write();
    }
    void Write() {
        LaneExtremes<Lanes> extremes = SideBySide<Lanes, 1>::Reduce(m_firsts, m_shortest);
        for (std::size_t back = m_more; back > 0; --back) {
            std::int16_t gathered[kCount];
            for (std::size_t lane = 0; lane < kCount; ++lane) gathered[lane] = *(m_ends[lane] - back);
            extremes.Add(Lanes::Load(gathered));
        }
        ExtremePair pairs[kCount];
        extremes.StorePairs(pairs);
        for (std::size_t lane = 0; lane < kCount; ++lane) *m_out[lane] = pairs[lane];
        m_filled = 0;
    }

    std::size_t m_shortest;
    std::size_t m_more;
    std::size_t m_filled = 0;
    const std::int16_t* m_firsts[kCount];
    const std::int16_t* m_ends[kCount];
    ExtremePair* m_out[kCount];
};

}  // namespace quillon::nsp
