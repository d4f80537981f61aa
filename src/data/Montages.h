#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "data/ShownSettings.h"

namespace quillon {

/// One signal of a montage: the first channel minus the second.
struct ChannelPair {
    std::u16string first;
    std::u16string second;
    friend bool operator==(const ChannelPair&, const ChannelPair&) = default;
    [[nodiscard]] std::u16string Title() const { return first + u'-' + second; }
};

/// The pairs of a text such as "Fp1-F7, F7-T3": separated by commas, semicolons or line breaks, blanks around names
/// ignored. A channel's title that holds a hyphen itself is written in quotation marks. `wrong` is then the first part
/// that is no pair; empty where all are.
[[nodiscard]] std::vector<ChannelPair> PairsOf(std::u16string_view text, std::u16string& wrong);

/// Index of the channel that a name of a montage means, from 0; titles.size() where there is none. Letter case does not
/// count. A title is found by itself, and by the electrode's label alone: without a leading "EEG ", without what
/// follows the label's first hyphen ("-REF", "-LE", "-A1"), with T7, T8, P7, P8 for T3, T4, T5, T6 and the other way
/// round. The exact title counts first.
[[nodiscard]] std::size_t ChannelNamed(std::u16string_view name, std::span<const std::u16string> titles);

/// The usual bipolar montages of the 10-20 system, of which those with at least one pair in `titles` are to be offered.
[[nodiscard]] std::span<const Montage> StandardMontages();

/// Whether at least one pair of it has both its channels.
[[nodiscard]] bool IsUsable(const Montage& montage, std::span<const std::u16string> titles);

}  // namespace quillon
