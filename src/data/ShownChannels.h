#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "data/ShownSettings.h"
#include "norvik/NorvikCore.h"

namespace quillon {

/// A sum of stored channels that is subtracted from others.
struct CommonSignal {
    struct Term {
        std::int16_t channel = 1;
        float weight = 0.0F;  ///< base units of the group per code
    };
    std::vector<Term> terms;
};

/// A channel as it is shown: the codes of a stored channel, less a common signal, then filtered.
struct ShownChannel {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::int16_t channel = 1;    ///< whose number and unit it has
    std::size_t common = kNone;  ///< index of the signal that is subtracted
    float factor = 0.0F;         ///< codes of the channel per base unit of its group
    float coarser = 1.0F;        ///< codes of the channel per code that is shown
    nsp::FilterSettings filter;  ///< only what there is at the block's rate
    float offset = 0.0F;         ///< value of code 0
    std::u16string title;
    /// Whether it is the stored channel itself.
    [[nodiscard]] bool IsStored() const { return common == kNone && filter.IsOff(); }
};

struct ShownChannelSet {
    std::vector<ShownChannel> channels;
    std::vector<CommonSignal> commons;
    bool arePairs = false;  ///< of a montage, else the stored channels in their order
    /// Whether each of them is the stored one.
    [[nodiscard]] bool AreStored() const;
};

/// What is left of a filter at a rate: a low pass or a notch at half the rate or above changes nothing there. Off where
/// there is no such filter for another reason.
[[nodiscard]] nsp::FilterSettings UsableAt(nsp::FilterSettings settings, double rate);

/// All channels of a prepared block with filter and reference. `shown` tells of each whether it is shown, for the
/// average.
[[nodiscard]] ShownChannelSet ChannelsShown(const RecordingBlock& stored, const ShownSettings& settings,
                                            const std::vector<bool>& shown);
/// The pairs of the montage whose channels the block has, at most as many as there are channel slots; none without a
/// montage. A pair is filtered as its first channel's group, whose scale it has.
[[nodiscard]] ShownChannelSet PairsShown(const RecordingBlock& stored, const ShownSettings& settings);

}  // namespace quillon
