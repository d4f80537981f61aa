#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "data/QL_Types.h"
#include "view/ExtremesCache.h"
#include "view/QL_ChUtils.h"
#include "view/TimeAxis.h"

namespace quillon {

/// A block of which signals are shown. Signals are numbered as in Document.
struct SceneBlock {
    const ViewBlock& block;
    ExtremesCache& extremes;  ///< of the block; drawing reads what it misses
    std::int16_t before = 0;  ///< number of the signal before its first channel; 0 for the loaded block
};

/// The loaded block, of whose samples the time axis tells, and the others of its stretch.
using SceneBlocks = std::vector<SceneBlock>;

/// Some signals of one of the blocks.
struct SignalsOfBlock {
    const SceneBlock& of;
    std::size_t first = 0;                 ///< place of its first signal in the list that was divided
    std::vector<std::int16_t> channels{};  ///< of the block, from 1
    /// Columns of the graph, each block with its own samples.
    [[nodiscard]] TraceStretch Stretch(const TimeAxis& axis, std::int32_t from, std::int32_t to) const;
};

/// Divides signals, in ascending order of their numbers, by their blocks, so that each is read in one pass.
[[nodiscard]] std::vector<SignalsOfBlock> GroupsOf(const SceneBlocks& blocks, std::span<const std::int16_t> signals);

}  // namespace quillon
