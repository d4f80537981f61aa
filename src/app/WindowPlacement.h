#pragma once

#include <cstdint>
#include <string>

namespace quillon {

/// Where a window is when it is not maximized, in pixels. A width of 0: not known yet.
struct WindowPlace {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool maximized = false;
    std::int32_t dpi = 0;  ///< density at which width and height were measured; 0: that of the main monitor
};

/// Place of the main window and the sizes of its areas, in pixels. A size or share of 0: not chosen yet.
struct WindowPlacement {
    WindowPlace place{};
    std::int32_t sizesDpi = 0;  ///< density at which widths and heights below were measured; 0: see WindowPlace
    std::int32_t listWidth = 0;
    std::int32_t upperPercent = 0;  ///< share of the upper list
    std::int32_t valuesHeight = 0;
    std::int32_t spectrogramPercent = 0;  ///< share of the graph's height
    bool spectrogramShown = false;
    bool lanes = false;           ///< each channel has a lane of its own
    std::int32_t laneLabels = 0;  ///< width of the strip with their titles
    bool negativeUp = false;      ///< in lanes smaller values are higher up
    bool clipToLanes = false;
    bool allSignals = false;    ///< lanes for the signals of all blocks of a stretch
    std::int32_t overview = 0;  ///< 1: shown, 2: hidden; see WantsOverview
    bool darkGraph = false;
    std::int32_t lineWidth = 1;  ///< of the traces, in pixels at 96 dpi
    bool filters = false;        ///< the row of filters is shown
    std::u16string shown{};      ///< filters of groups of units, see ShownCommands
    std::u16string montages{};   ///< of the user, see ShownCommands
    float pageLength = 0.0F;     ///< of a free time axis, in seconds; 0: none was chosen
};

/// Whether the overview of the block is wanted: as the user has chosen, until then with lanes.
[[nodiscard]] inline bool WantsOverview(const WindowPlacement& placement) {
    return placement.overview == 0 ? placement.lanes : placement.overview == 1;
}

}  // namespace quillon
