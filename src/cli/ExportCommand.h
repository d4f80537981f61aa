#pragma once

#include <array>

#include "cli/Commands.h"
#include "cli/Options.h"

namespace quillon::cli {

inline constexpr std::array kExportOptions = {
    OptionRule{u"--block", true, u"number of the block, from 1 (1)", u"N"},
    OptionRule{u"--first", true, u"first sample to write, from 1 (1)", u"N"},
    OptionRule{u"--count", true, u"samples per channel to write (to the end of the block)", u"N"},
    OptionRule{u"--type", true, u"format of the file (what its extension says, in lower case)", u"bin|wav|edf"},
};

/// Writes a stretch of a block, all its channels, to a new file.
void RunExport(const CommandContext& context);

}  // namespace quillon::cli
