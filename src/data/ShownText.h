#pragma once

#include <set>
#include <string>
#include <string_view>

#include "base/Language.h"
#include "data/ShownSettings.h"
#include "norvik/NorvikCore.h"

/// What the user is told of how signals are shown. The separator is that of decimals.
namespace quillon {

/// "0.5-35 Hz, order 4, both ways, 50 Hz": empty where the filter is off. A high pass alone is "> 0.5 Hz", a low pass
/// alone "< 35 Hz"; the order is told where it is not 2. The last frequency is that of the notch.
[[nodiscard]] std::u16string FilterText(const nsp::FilterSettings& filter, Language language,
                                        char16_t separator = u'.');

/// FilterText of a group of units, then reference and montage: "0.5-35 Hz, 50 Hz, average", "- Cz". Empty where all is
/// as stored.
[[nodiscard]] std::u16string ShownText(const ShownSettings& settings, const std::u16string& group, Language language,
                                       char16_t separator = u'.');

/// Of some channels of a block, from 1. Where their groups have different filters, each is told behind the group's
/// name: "V: 0.5-35 Hz; %: < 5 Hz; average"; then come the titles of those that no filter changes. Only what there is
/// at the block's rate and with its channels. Empty where all are as stored.
[[nodiscard]] std::u16string ShownText(const ShownSettings& settings, const RecordingBlock& block,
                                       const std::set<std::int16_t>& channels, Language language,
                                       char16_t separator = u'.');

/// Why there is no such filter at a rate, in Hz: "70 Hz is not below half the rate of 100 Hz". Empty where there is
/// one.
[[nodiscard]] std::u16string RefusalText(const nsp::FilterSettings& filter, double rate, Language language,
                                         char16_t separator = u'.');

/// High pass, low pass, order, notch, both ways (0 or 1): "0.5;35;2;50;0", with points in any language.
[[nodiscard]] std::u16string KeptText(const nsp::FilterSettings& filter);
/// Of such a text. One that is damaged, or is no filter at any rate, is off.
[[nodiscard]] nsp::FilterSettings FilterKept(std::u16string_view text);

}  // namespace quillon
