#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "norvik/private/FrameBlock.h"

/// Annotation files of WFDB records, in the format of the public manual page "annot".
namespace quillon {

struct WfdbAnnotation {
    std::int64_t time = 0;  ///< in ticks
    std::u16string text;    ///< the symbol of its kind, and what was noted
};

struct WfdbAnnotations {
    std::vector<WfdbAnnotation> all;  ///< in order of time and, at one time, of the file
    double ticksPerSecond = 0.0;      ///< 0: ticks are the frames of the record
    bool limitReached = false;        ///< there were more than memory is given for
};

/// Nothing for bytes that do not end as such a file does. `memory`: bytes that the annotations, made into marks, may
/// take.
[[nodiscard]] std::optional<WfdbAnnotations> ParseWfdbAnnotations(std::span<const std::uint8_t> bytes,
                                                                  std::size_t memory);

/// The marks of `count` samples from `first` on. `samplesPerTick` above 0.
[[nodiscard]] std::vector<FrameMark> WfdbMarks(const WfdbAnnotations& annotations, double samplesPerTick,
                                               std::uint64_t first, std::uint64_t count);

}  // namespace quillon
