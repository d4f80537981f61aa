#include "nsp/RowRuns.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include "nsp/kernels/Lanes16.h"
#include "nsp/kernels/Lanes8.h"
#include "nsp/kernels/PackedRuns.h"
#include "nsp/kernels/RunKernels.h"

namespace quillon::nsp {

namespace {

/// Runs that differ by more are better taken one by one.
constexpr std::size_t kMostDifference = 8;

std::size_t LengthOf(const RowRun& run) {
    return static_cast<std::size_t>(run.end - run.first);
}

}  // namespace

void ReduceRowRuns(std::span<const std::int16_t* const> rows, std::span<const RowRun> runs,
                   std::span<ExtremePair* const> out, [[maybe_unused]] LaneCount lanes) {
    if (runs.empty() || rows.empty()) return;
    const auto isShorter = [](const RowRun& a, const RowRun& b) { return LengthOf(a) < LengthOf(b); };
    const auto [first, last] = std::minmax_element(runs.begin(), runs.end(), isShorter);
    const std::size_t shortest = LengthOf(*first);
    const std::size_t longest = LengthOf(*last);
    if (first->end <= first->first || rows.size() != out.size()) throw std::invalid_argument("runs of rows");
    if (longest >= kLongRunSamples || longest - shortest > std::min(kMostDifference, shortest)) {
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t run = 0; run < runs.size(); ++run) {
                PlanarRunReducer reducer(static_cast<std::int32_t>(LengthOf(runs[run])), out[row] + run);
                reducer.Feed(rows[row] + runs[run].first, LengthOf(runs[run]));
            }
        }
        return;
    }
#if QUILLON_SIXTEEN_LANES
    if (lanes == LaneCount::Sixteen) return ReduceListed<Lanes16>(rows, runs, shortest, longest, out);
#endif
    ReduceListed<Lanes8>(rows, runs, shortest, longest, out);
}

}  // namespace quillon::nsp
