#pragma once

#include <array>

#include "cli/Commands.h"
#include "cli/Options.h"

namespace quillon::cli {

inline constexpr std::array kTextOptions = {
    OptionRule{u"--block", true, u"number of the block, from 1 (1)", u"N"},
    OptionRule{u"--first", true, u"first sample to write, from 1 (1)", u"N"},
    OptionRule{u"--count", true, u"samples to write (to the end of the block)", u"N"},
    OptionRule{u"--channels", true, u"numbers of the channels, from 1, in the order of the columns (all)", u"1,3,..."},
    OptionRule{u"--codes", false, u"write the stored 16-bit codes instead of physical values", u""},
    OptionRule{u"--header", true, u"lines before the samples: any of size, rate, step, titles (none)", u"size,..."},
    OptionRule{u"--x", true, u"a first column: s since the first one written, or the number in the block",
               u"time|index"},
};

/// Writes a stretch of a block as text.
void RunText(const CommandContext& context);

}  // namespace quillon::cli
