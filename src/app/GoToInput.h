#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "view/PositionInput.h"

namespace quillon {

/// The texts of "Go To": a place or a range of the block and, where the time axis is free, the length of its page.
struct GoToTexts {
    std::u16string place;
    std::u16string page;
};

/// What they mean.
struct GoToMeaning {
    std::optional<std::int32_t> sample{};  ///< from 1
    std::optional<PositionRange> range{};
    std::optional<double> page{};  ///< seconds
    int refusal = 0;               ///< number of the text that says what was not understood; 0: nothing
};

/// `offered` are the texts that the user was shown, those of the sample `present` and of the present page. A text that
/// was left as it was means nothing, except for a place beside an unchanged page.
[[nodiscard]] GoToMeaning MeaningOf(const GoToTexts& typed, const GoToTexts& offered, const ViewBlock& block,
                                    const FormatOptions& format, std::int32_t present);

}  // namespace quillon
