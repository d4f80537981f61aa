#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Language.h"
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
/// ignored. A channel's title that holds a hyphen, a comma or a semicolon itself is written in quotation marks; one of
/// those within it is doubled. A pair that is there already is left out. `wrong` becomes the first part that is no pair
/// of two different names, as it is written; empty where there is none.
[[nodiscard]] std::vector<ChannelPair> PairsOf(std::u16string_view text, std::u16string& wrong);

/// Index of the channel that a name of a montage means, from 0; titles.size() where there is none. Letter case does not
/// count. A title is found by itself, and by the electrode's label alone: without a leading "EEG ", without the name of
/// a common reference behind its hyphen ("-REF", "-LE", "-A1") and dots behind it, with T7, T8, P7, P8 for T3, T4, T5,
/// T6 and the other way round. A title "Fp1-F7" is a difference of two electrodes and has no label. The exact title
/// counts first, then the exact label.
[[nodiscard]] std::size_t ChannelNamed(std::u16string_view name, std::span<const std::u16string> titles);

/// Indices of two channels, from 0.
struct ChannelIndices {
    std::size_t first = 0;
    std::size_t second = 0;
    friend bool operator==(const ChannelIndices&, const ChannelIndices&) = default;
};

/// Those that a pair means; none where one is not there, or where both names mean the same one.
[[nodiscard]] std::optional<ChannelIndices> ChannelsOf(const ChannelPair& pair, std::span<const std::u16string> titles);

/// The usual bipolar montages of the 10-20 system, of which those that are usable are to be offered. Their names are in
/// the language given.
[[nodiscard]] std::span<const Montage> StandardMontages(Language language);

/// Whether at least one pair of it has both its channels.
[[nodiscard]] bool IsUsable(const Montage& montage, std::span<const std::u16string> titles);

}  // namespace quillon
