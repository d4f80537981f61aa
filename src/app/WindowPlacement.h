#pragma once

#include <cstdint>

namespace quillon {

/// Where the main window was and how its areas share it, in pixels. A size or share of 0: none was chosen yet.
struct WindowPlacement {
    std::int32_t left = 0;  ///< with top, width and height the place of the window when it is not maximized
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool maximized = false;
    std::int32_t listWidth = 0;
    std::int32_t upperPercent = 0;  ///< share of the upper list
    std::int32_t valuesHeight = 0;
    std::int32_t spectrogramPercent = 0;  ///< share of the graph's height
    bool spectrogramShown = false;
};

}  // namespace quillon
