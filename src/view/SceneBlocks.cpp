#include "view/SceneBlocks.h"

namespace quillon {

TraceStretch SignalsOfBlock::Stretch(const TimeAxis& axis, std::int32_t from, std::int32_t to) const {
    return of.before == 0 ? StretchOf(axis, from, to) : StretchOf(axis, of.block.sampleCount, from, to);
}

std::vector<SignalsOfBlock> GroupsOf(const SceneBlocks& blocks, std::span<const std::int16_t> signals) {
    std::vector<SignalsOfBlock> groups;
    std::size_t at = 0;
    for (const SceneBlock& block : blocks) {
        const auto behind = block.before + static_cast<std::int32_t>(block.block.channelNumbers.size());
        SignalsOfBlock group{.of = block, .first = at};
        for (; at < signals.size() && signals[at] <= behind; ++at)
            group.channels.push_back(static_cast<std::int16_t>(signals[at] - block.before));
        if (!group.channels.empty()) groups.push_back(std::move(group));
    }
    return groups;
}

}  // namespace quillon
