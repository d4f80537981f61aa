#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nsp/RunReducer.h"

namespace quillon::nsp {

/// Neighbouring channels of every frame that lie in one vector.
struct FrameColumn {
    std::size_t channel = 0;   ///< in lane 0
    std::uint32_t wanted = 0;  ///< two bits for each lane that is of use
};

/// The fewest vectors of `lanes` lanes that cover the selected channels; the last one of a frame overlaps the one
/// before it.
struct FrameColumns {
    FrameColumns(std::size_t channels, std::size_t lanes, std::span<const std::size_t> selected,
                 std::span<ExtremePair* const> results);

    ~FrameColumns();
    FrameColumns(const FrameColumns&) = delete;
    FrameColumns& operator=(const FrameColumns&) = delete;

    std::vector<FrameColumn> columns;
    std::vector<ExtremePair*> out;  ///< by slot = column x lanes + lane; null: not wanted
};

}  // namespace quillon::nsp
