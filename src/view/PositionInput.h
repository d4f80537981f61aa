#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "data/QL_Types.h"
#include "format/QL_Format.h"

namespace quillon {

/// The sample number (from 1) that a typed place of the block means; the inverse of PositionText. Understood are, with
/// blanks between the parts and with a point or a comma before decimals:
/// - "#123", and a plain whole number where positions are sample numbers: a sample;
/// - a number without a unit otherwise, or in d, h, min, s, ms, mks, us (also by their Russian names): time from the
///   block's start;
/// - "h:mm:ss.fff", "m:ss": time from the block's start or, where times are times of day, of those in the block the one
///   next to the sample `present`; a time of day outside the block is time from its start.
/// A place outside the block means its nearer end, except for a time of day that is none from the start either. None
/// for that and what is not understood, and in a block without samples.
[[nodiscard]] std::optional<std::int32_t> ParsePosition(std::u16string_view text, const ViewBlock& block,
                                                        const FormatOptions& format, std::int32_t present = 1);

/// Seconds of a typed length: "12.5 s", "2 min", "1:30", a number of seconds. None for what is not understood, and for
/// 0.
[[nodiscard]] std::optional<double> ParseLength(std::u16string_view text, const FormatOptions& format);

/// Samples from 1, both included.
struct PositionRange {
    std::int32_t first = 0;
    std::int32_t last = 0;
    friend bool operator==(const PositionRange&, const PositionRange&) = default;
};

/// The range of samples that a text "a..b" of two places means, in any order. One that ends with a time ends before it,
/// so that 10 s have as many samples as 10 s have; one that ends with a sample number includes that sample, and none is
/// empty. None where one of them means no place.
[[nodiscard]] std::optional<PositionRange> ParseRange(std::u16string_view text, const ViewBlock& block,
                                                      const FormatOptions& format, std::int32_t present = 1);

}  // namespace quillon
