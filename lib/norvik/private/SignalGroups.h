#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "norvik/private/WideSamples.h"

namespace quillon {

/// What decides which signals can be in one block.
struct SignalShape {
    std::uint64_t samplesPerRecord = 0;  ///< or per any other stretch of time of one length
    SampleKind kind = SampleKind::Int16;
    double rate = 0.0;  ///< told by the samples per record, in Hz
};

/// Signals that form blocks together: of one shape, and of 32 that follow each other in the file, so that channel
/// numbers, which are their ordinals modulo 32, are unique in a block.
struct SignalGroup {
    std::vector<std::size_t> signals;  ///< ordinals
    std::u16string title;              ///< what tells it from the other groups; empty for the only one
};

/// All groups, in the order of their first signals.
[[nodiscard]] std::vector<SignalGroup> GroupSignals(std::span<const SignalShape> shapes);

/// Both titles, either of which may be empty.
[[nodiscard]] std::u16string JoinTitles(const std::u16string& first, const std::u16string& second);

}  // namespace quillon
