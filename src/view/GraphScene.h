#pragma once

#include <cstdint>
#include <vector>

#include "data/QL_Types.h"
#include "view/ExtremesCache.h"
#include "view/GraphColors.h"
#include "view/Lane.h"
#include "view/SceneBlocks.h"
#include "view/TimeAxis.h"

namespace quillon {

enum class GridStyle { None = 0, Lines = 1, Dots = 2 };

/// Everything that one drawing of the graph shows.
struct GraphScene {
    const ViewBlock& block;
    const TimeAxis& axis;
    const Lanes& lanes;
    ExtremesCache& extremes;  ///< of the block; drawing reads what it misses
    bool rawCodes = false;
    bool foldOrigin = false;  ///< only below system version 4, see TraceGeometry
    GridStyle gridStyle = GridStyle::None;
    std::uint32_t gridColor = 0;  ///< 0xRRGGBB; mixed with the paper, so that the traces stand out
    /// Columns of the graph with lines of the grid on a free axis; else they lie at every division.
    std::vector<std::int32_t> gridColumns{};
    /// The other blocks of the stretch, whose signals the lanes of a free axis may show.
    SceneBlocks others{};
    /// Pixels for one of the window's; levels are AmplitudeScale::kDivision of these apart.
    std::int32_t enlargement = 1;
    GraphLook look{};       ///< its line width is in pixels of this graph
    std::int32_t line = 1;  ///< pixels across the lines of grid, lanes and marks

    [[nodiscard]] const GraphColors& Colors() const { return *look.colors; }
    [[nodiscard]] SceneBlocks Blocks() const {
        SceneBlocks blocks{{block, extremes}};
        for (const SceneBlock& other : others) blocks.push_back(other);
        return blocks;
    }
};

}  // namespace quillon
