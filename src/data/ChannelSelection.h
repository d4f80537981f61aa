#pragma once

#include <cstdint>
#include <vector>

#include "data/QL_Types.h"

namespace quillon {

/// The slot of an acquisition channel number; null for a number beyond the slots, whose channel is never shown.
[[nodiscard]] ChannelSlot* SlotOf(ChannelSlots& slots, std::int16_t channelNumber);
[[nodiscard]] const ChannelSlot* SlotOf(const ChannelSlots& slots, std::int16_t channelNumber);

/// Positions in the block (from 1) of the channels to be drawn, in block order: those whose slot is shown.
[[nodiscard]] std::vector<std::int16_t> ShownChannels(const ViewBlock& block, const ChannelSlots& slots);

}  // namespace quillon
