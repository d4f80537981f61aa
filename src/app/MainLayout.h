#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

struct PixelRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    [[nodiscard]] std::int32_t Right() const { return left + width; }
    [[nodiscard]] std::int32_t Bottom() const { return top + height; }
};

/// Controls of the row of filters: the group's name, then label and box of high pass, low pass and notch, the boxes of
/// order and direction.
inline constexpr std::size_t kFilterControls = 9;

/// Input of the layout; lengths in pixels.
struct LayoutInput {
    std::int32_t clientWidth = 0;
    std::int32_t clientHeight = 0;
    std::int32_t statusHeight = 0;
    std::int32_t comboHeight = 0;  ///< of a closed drop-down list
    std::int32_t tabHeight = 0;    ///< of a strip of tabs
    std::int32_t toolHeight = 0;   ///< of a toolbar's buttons
    std::int32_t toolWidth = 0;    ///< of the main toolbar
    std::int32_t goToWidth = 0;    ///< of the toolbar of pages
    std::int32_t dpi = 96;
    std::int32_t listWidth = 0;           ///< of the lists' column; 0: the default
    std::int32_t upperPercent = 0;        ///< share of the upper list in the column; 0: the default
    bool spectrogram = false;             ///< whether it is shown
    std::int32_t spectrogramPercent = 0;  ///< its share of the graph's height; 0: the default
    std::int32_t valuesHeight = 0;        ///< of the values panel; 0: the default
    std::int32_t titlesWidth = 0;         ///< that the titles of lanes left of the graph want; 0: there are none
    std::int32_t laneLabels = 0;          ///< that the user chose for them; 0: none
    bool overview = false;                ///< whether it is shown where there is room for it
    bool filters = false;                 ///< whether their row is shown
    std::array<std::int32_t, kFilterControls> filterWidths{};  ///< that they want; 0 before they exist
};

/// One rectangle per control. The pages of a tab strip share its page rectangle.
struct MainLayout {
    PixelRect tools, goTo;
    std::array<PixelRect, kFilterControls> filters;  ///< below the toolbars; empty when they are not shown
    PixelRect tabPath, drive, pathList, folders, channels;
    PixelRect tabFile, fileType, files, blocks;
    PixelRect values;
    PixelRect scaleY, graph, scrollY, zoomX, scaleX, scrollX;
    PixelRect scaleF, spectrogram, palette;  ///< below the graph, column for column; empty when it is not shown
    PixelRect levels;                        ///< of the palette's colours, beside it; empty where there is no room
    PixelRect overview;                      ///< below all, from the scales' edge on; empty when it is not shown
    PixelRect splitColumn;                   ///< between the lists and the graph
    PixelRect splitLists;                    ///< between the upper and the lower list
    PixelRect splitValues;                   ///< between the lower list and the values
    PixelRect splitSpectrogram;              ///< between graph and spectrogram
    PixelRect splitLabels;                   ///< between the strip with titles and the graph; empty without lanes
    std::int32_t dpi = 96;                   ///< of the input
    std::int32_t laneLabels = 0;             ///< as used, within its limits; 0 without lanes
    std::int32_t listWidth = 0;              ///< as used, within its limits
    std::int32_t upperPercent = 0;           ///< as used, within its limits
    std::int32_t valuesHeight = 0;           ///< as used, within its limits
    std::int32_t spectrogramPercent = 0;     ///< as used, within its limits; 0 when it is not shown
};

[[nodiscard]] MainLayout ArrangeMain(const LayoutInput& input);

}  // namespace quillon
