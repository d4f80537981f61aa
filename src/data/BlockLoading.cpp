#include "data/BlockLoading.h"

#include <algorithm>

#include "base/Resume.h"
#include "base/Text.h"
#include "data/CoreTexts.h"

namespace quillon {

void LoadDescription(ViewBlock& block) {
    RecordingBlock& source = *block.block;
    Resume([&] { source.PrepareQuickly(); });
    Resume([&] { block.sampleCount = source.SampleCount(); });
    Resume([&] { block.sampleRate = source.SampleRate(); });
    Resume([&] { block.startTime = source.StartTime(); });
    Resume([&] { block.channelCount = source.ChannelCount(); });
    block.channelNumbers.resize(static_cast<std::size_t>(std::max<std::int16_t>(block.channelCount, 0)));
    for (std::size_t at = 0; at < block.channelNumbers.size(); ++at)
        Resume([&] { block.channelNumbers[at] = source.ChannelNumber(static_cast<std::int16_t>(at + 1)); });
    LoadScales(block);
}

bool LoadScales(ViewBlock& block) {
    const std::vector<float> invScale = block.invScale;
    const std::vector<float> offsets = block.offsets;
    const std::size_t channels = block.channelNumbers.size();
    block.invScale.assign(channels, 0.0F);
    block.offsets.assign(channels, 0.0F);
    for (std::size_t at = 0; at < channels; ++at) {
        const auto channel = static_cast<std::int16_t>(at + 1);
        Resume([&] {
            // A scale of 0 has no reciprocal: the entry stays 0, and such a channel is drawn as a straight line.
            if (const float scale = block.block->ChannelScale(channel); scale != 0.0F)
                block.invScale[at] = 1.0F / scale;
        });
        Resume([&] { block.offsets[at] = block.block->ChannelOffset(channel); });
    }
    return invScale != block.invScale || offsets != block.offsets;
}

ChannelTexts LoadTexts(const ViewBlock& block, std::int16_t channel, const UserServices& texts) {
    ChannelTexts found;
    Resume([&] { found.title = block.block->ChannelTitle(channel); });
    const std::int16_t number = block.channelNumbers[static_cast<std::size_t>(channel - 1)];
    if (found.title.empty()) found.title = texts.Text(IDS_CHANNEL) + u' ' + Decimal(number + 1);
    Resume([&] { found.unit = block.block->ChannelUnit(channel); });
    return found;
}

}  // namespace quillon
