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

    /// Where the results of the next run are to be put, by slot.
    [[nodiscard]] ExtremePair* Next() { return &m_rows[m_runs * m_out.size()]; }
    /// They have been put there.
    void Added() {
        if (++m_runs == kRuns) Write();
    }
    void Write();

  private:
    static constexpr std::size_t kRuns = 16;

    std::vector<ExtremePair*> m_out;
    std::vector<ExtremePair> m_rows;
    std::size_t m_runs = 0;
};

}  // namespace quillon::nsp
