#pragma once

#include <cstdint>

namespace quillon {

/// What a command has changed of the view.
struct ViewChange {
    std::int32_t scrolled = 0;  ///< columns by which the view was moved along the block, where that is all
    bool redraw = false;        ///< more than a scroll: zoom or scales have changed
    bool newPlace = false;      ///< the user has gone to another part of the block
    bool selection = false;
    ViewChange& operator|=(const ViewChange& other);
};

}  // namespace quillon
