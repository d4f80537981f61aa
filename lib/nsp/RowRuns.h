#pragma once

#include <cstdint>
#include <span>

#include "nsp/RunReducer.h"

namespace quillon::nsp {

/// Samples first .. end-1 of a row.
struct RowRun {
    std::int32_t first = 0;
    std::int32_t end = 0;
};

/// Samples that every row has to have behind the last run's first one: short runs are read whole vectors at a time.
inline constexpr std::int32_t kRowPadding = 8;

/// The extremes of the same runs of several rows: out[r][i] is that of run i of row r, see RunReducer.h. The runs are
/// of any length from 1 sample to a million; it is fast where they differ by few samples.
void ReduceRowRuns(std::span<const std::int16_t* const> rows, std::span<const RowRun> runs,
                   std::span<ExtremePair* const> out, LaneCount lanes = MostLanes());

}  // namespace quillon::nsp
