#include "data/ChannelSelection.h"

namespace quillon {

namespace {

/// Const or not, as the slots are.
template <typename Slots>
auto Find(Slots& slots, std::int16_t channelNumber) {
    const bool hasSlot = channelNumber >= 0 && channelNumber < kSlotCount;
    return hasSlot ? &slots[static_cast<std::size_t>(channelNumber)] : nullptr;
}

}  // namespace

ChannelSlot* SlotOf(ChannelSlots& slots, std::int16_t channelNumber) {
    return Find(slots, channelNumber);
}

const ChannelSlot* SlotOf(const ChannelSlots& slots, std::int16_t channelNumber) {
    return Find(slots, channelNumber);
}

std::vector<std::int16_t> ShownChannels(const ViewBlock& block, const ChannelSlots& slots) {
    std::vector<std::int16_t> shown;
    for (std::size_t at = 0; at < block.channelNumbers.size(); ++at) {
        const ChannelSlot* slot = SlotOf(slots, block.channelNumbers[at]);
        if (slot != nullptr && slot->shown) shown.push_back(static_cast<std::int16_t>(at + 1));
    }
    return shown;
}

}  // namespace quillon
