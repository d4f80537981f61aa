#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "app/QL_Global.h"
#include "data/UserServices.h"

namespace quillon {

/// Panels of the status bar, in order.
enum class StatusPanel : std::size_t { Scale, XPart, Status, Size, Time, Rate, Volume, Date, Count };

/// Share of the block that the graph shows: "100%", "37%", "1.25%"; empty without a block.
[[nodiscard]] std::u16string VisiblePart(const TimeAxis& axis, char16_t separator);

using PanelTexts = std::array<std::u16string, static_cast<std::size_t>(StatusPanel::Count)>;

/// Texts of the panels that follow from the block; that of "Status" is left empty.
[[nodiscard]] PanelTexts BlockPanels(const QL_Global& global, const UserServices& services);

}  // namespace quillon
