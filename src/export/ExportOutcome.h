#pragma once

#include <cstdint>
#include <string>

#include "base/Language.h"
#include "data/UserServices.h"

namespace quillon {

/// Differences between a written file and the recording.
struct ExportOutcome {
    std::int32_t asked = 0;    ///< samples per channel of the range
    std::int32_t written = 0;  ///< of these; EDF keeps whole records only
    std::int32_t filled = 0;   ///< samples behind them, which fill the last record of EDF+
    bool earlier = false;      ///< the file contains the block's start time, which is before that of the range
    bool otherDate = false;    ///< the format cannot hold the start date, so the file contains its earliest one
    double rate = 0.0;         ///< of the block, Hz
    double ratedAs = 0.0;      ///< what a reader of the file gets, Hz
};

/// Whether a rate stands for another to a millionth, a second in eleven days.
[[nodiscard]] bool IsSameRate(double one, double other);

/// The differences as text for the user, separated by commas; empty if there are none.
[[nodiscard]] std::u16string DescribeLoss(const ExportOutcome& outcome, Language language);

/// For the user: how many files a stopped command has written, and the names of the first and the last of them.
[[nodiscard]] std::u16string StoppedText(const UserServices& services, std::int64_t written, std::int64_t asked,
                                         const std::u16string& first, const std::u16string& last);

}  // namespace quillon
