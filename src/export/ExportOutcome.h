#pragma once

#include <cstdint>
#include <string>

#include "base/Language.h"

namespace quillon {

/// What a file that was written holds otherwise than the recording.
struct ExportOutcome {
    std::int32_t asked = 0;    ///< samples per channel of the range
    std::int32_t written = 0;  ///< of these; EDF keeps whole records only
    bool earlier = false;      ///< the file tells the block's start, which is before that of the range
    bool otherDate = false;    ///< the format has no such date as the start's and the file tells its first one
    double rate = 0.0;         ///< of the block, Hz
    double ratedAs = 0.0;      ///< what a reader of the file gets, Hz
};

/// Whether a rate stands for another to a millionth, a second in eleven days.
[[nodiscard]] bool IsSameRate(double one, double other);

/// What is otherwise, for the user, parted by commas; empty where all is kept.
[[nodiscard]] std::u16string DescribeLoss(const ExportOutcome& outcome, Language language);

}  // namespace quillon
