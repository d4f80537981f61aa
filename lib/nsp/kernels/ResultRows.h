#pragma once

#include <cstddef>
#include <vector>

#include "nsp/RunReducer.h"

namespace quillon::nsp {

/// Results by slot, run by run. Finished runs are written to their channels sixteen at a time, a cache line per
/// channel: single results would touch as many lines as there are channels, and these often compete for the same place
/// in the cache.
class ResultRows {
  public:
    /// `out`: where the results of each slot go; null: not wanted. Their number is a multiple of 4.
    explicit ResultRows(std::vector<ExtremePair*> out);
    ~ResultRows();
    ResultRows(const ResultRows&) = delete;
    ResultRows& operator=(const ResultRows&) = delete;

    static constexpr std::size_t kRuns = 16;

    /// Runs that there is room for, 1 to kRuns.
    [[nodiscard]] std::size_t Room() const { return kRuns - m_runs; }
    /// Where the results of a run that follows are to be put, by slot; the next one is number 0.
    [[nodiscard]] ExtremePair* Next(std::size_t run) { return &m_rows[(m_runs + run) * m_out.size()]; }
    /// Those of so many runs have been put there.
    void Added(std::size_t runs) {
        m_runs += runs;
        if (m_runs == kRuns) Write();
    }
    void Write();

  private:
    std::vector<ExtremePair*> m_out;
    std::vector<ExtremePair> m_rows;
    std::size_t m_runs = 0;
};

}  // namespace quillon::nsp
