#pragma once

#include <cstdint>
#include <string>

#include "data/QL_Types.h"
#include "data/UserServices.h"

namespace quillon {

/// What describes a channel to the user.
struct ChannelTexts {
    std::u16string title;
    std::u16string unit;
};

/// Prepares block.block quickly and fills in the fields that describe it, its scales included; not its marks. Library
/// failures are not reported: a failed step leaves its field empty.
void LoadDescription(ViewBlock& block);
/// Reads the scales and offsets anew; returns whether they differ from before.
bool LoadScales(ViewBlock& block);
/// `texts` supplies the title of a channel without one. Channels count from 1.
[[nodiscard]] ChannelTexts LoadTexts(const ViewBlock& block, std::int16_t channel, const UserServices& texts);

}  // namespace quillon
