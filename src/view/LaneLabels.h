#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "view/ChannelLanes.h"
#include "view/GraphPicture.h"
#include "view/Lane.h"

namespace quillon {

/// A text of the strip beside the lanes, at its place; empty where there is no room for it.
struct StripText {
    std::u16string text;
    std::int32_t x = 0;  ///< left
    std::int32_t y = 0;  ///< top, in rows of the graph
    TextSize size{};
};

/// A vertical line as high as a value, beside its text.
struct ScaleBar {
    std::int32_t x = 0;
    std::int32_t top = 0;  ///< first row
    std::int32_t end = 0;  ///< row behind the last one
    StripText text{};
};

/// What the strip says of a lane.
struct LaneLabel {
    std::int16_t channel = 0;  ///< number of its signal, from 1
    std::uint32_t color = 0;   ///< of its trace, 0xRRGGBB
    StripText title{};         ///< cut with an ellipsis where it is too wide
    StripText factor{};        ///< "x2": how much finer its scale is than that of its group; empty where it is not
    std::optional<ScaleBar> bar{};
};

/// The strip beside the lanes.
struct LaneStrip {
    std::int32_t width = 0;
    int dpi = 96;
    char16_t decimalSeparator = u'.';
    bool rawCodes = false;
    const GraphColors* colors = &kLightColors;
    bool barsBeside = false;  ///< lanes too low for a bar below the title have one beside it
    /// Pixels of a text in the font of the strip; the height is that of a line, whatever the text.
    std::function<TextSize(const std::u16string&)> sizeOf;
};

/// The text, or as much of its beginning as has room before an ellipsis; empty where not even that has. Its place is
/// left open.
[[nodiscard]] StripText CutText(const std::function<TextSize(const std::u16string&)>& sizeOf,
                                const std::u16string& text, std::int32_t room);

/// Whether lanes of that many rows, the lowest ones, are high enough for a bar below the title.
[[nodiscard]] bool HasRoomForBars(std::int32_t rows, const LaneStrip& strip);

/// Width of the strip in which the titles of all channels of the block have room.
[[nodiscard]] std::int32_t WantedWidth(const ChannelLanes& channels, const LaneStrip& strip);

/// The labels of the visible lanes, from top to bottom. Every lane has its title, and where HasRoomForBars or bars
/// stand beside the titles a bar of the largest 1-2-5 value that takes up to 60 % of it. No text or bar lies over
/// another or outside its lane; what has no room there is left out.
[[nodiscard]] std::vector<LaneLabel> LaneLabels(const ChannelLanes& channels, const Lanes& lanes,
                                                const LaneStrip& strip);

/// Whether a point of the strip is on the title of a lane; everything else of a lane is its scale.
[[nodiscard]] bool IsOnTitle(const std::vector<LaneLabel>& labels, std::int32_t x, std::int32_t y);

}  // namespace quillon
