#pragma once

#include <array>

#include "cli/Commands.h"
#include "cli/EdfPlusOptions.h"
#include "cli/Options.h"
#include "cli/ShownOptions.h"

namespace quillon::cli {

inline constexpr std::array kRangeOptions = {
    OptionRule{u"--block", true, u"number of the block, from 1 (1)", u"N"},
    OptionRule{u"--first", true, u"first sample to write, from 1 (1)", u"N"},
    OptionRule{u"--count", true, u"samples per channel to write (to the end of the block)", u"N"},
    OptionRule{u"--type", true, u"format of the file (what its extension says, in lower case)", u"bin|wav|edf|edf+"},
};
/// Options of the range and the type, then those of EDF+ with marks.
inline constexpr auto kExportOptions = JoinedRules(kRangeOptions, kEdfPlusOptions, kShownOptions);

/// Writes a stretch of a block to a new file: all its channels, and those of EDF+ with marks that are asked for.
void RunExport(const CommandContext& context);

}  // namespace quillon::cli
