#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "data/QL_Types.h"
#include "data/UserServices.h"
#include "format/QL_Format.h"
#include "view/ChannelLanes.h"
#include "view/TimeAxis.h"

namespace quillon {

/// Panels of the status bar, in order.
enum class StatusPanel : std::size_t { Scale, XPart, Shown, Status, Size, Time, Rate, Volume, Date, Count };

/// Share of the block that the graph shows: "100%", "37%", "1.25%"; empty without a block.
[[nodiscard]] std::u16string VisiblePart(const TimeAxis& axis, char16_t separator);

using PanelTexts = std::array<std::u16string, static_cast<std::size_t>(StatusPanel::Count)>;

/// State that the panels describe.
struct PanelFacts {
    const ViewBlock& block;
    const ChannelSlots& slots;
    const TimeAxis& axis;
    const FormatOptions& format;
    std::int32_t scaleY = 0;  ///< index in the table of amplitude scales
    bool rawCodes = false;
    std::u16string shown{};      ///< how the current channel is shown, see ShownTexts
    std::u16string laneScale{};  ///< see LaneScaleText; empty without lanes
};

/// "200 uV": what the height of a signal's lane (from 1) stands for.
[[nodiscard]] std::u16string LaneScaleText(const ChannelLanes& lanes, std::int16_t signal, const std::u16string& unit,
                                           const PanelFacts& facts);

/// Texts of the panels that follow from the block; that of "Status" is left empty.
[[nodiscard]] PanelTexts BlockPanels(const PanelFacts& facts, const UserServices& services);

}  // namespace quillon
