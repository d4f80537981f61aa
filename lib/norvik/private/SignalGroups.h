#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace quillon {

/// Signals that form blocks together: at one rate, and of 32 that follow each other in the file, so that channel
/// numbers, which are their ordinals modulo 32, are unique in a block.
struct SignalGroup {
    std::vector<std::size_t> signals;  ///< ordinals
    std::u16string title;              ///< what tells it from the other groups; empty for the only one
};

/// `samples`: those of each signal in a stretch of time of one length. `rateOf` gives the rate of as many.
[[nodiscard]] std::vector<SignalGroup> GroupSignals(std::span<const std::uint64_t> samples,
                                                    const std::function<double(std::uint64_t)>& rateOf);

/// Both titles, either of which may be empty.
[[nodiscard]] std::u16string JoinTitles(const std::u16string& first, const std::u16string& second);

}  // namespace quillon
