#pragma once

#include <array>

#include "cli/Commands.h"
#include "cli/Options.h"
#include "cli/ShownOptions.h"

namespace quillon::cli {

inline constexpr std::array kOwnPsdOptions = {
    OptionRule{u"--block", true, u"number of the block, from 1 (1)", u"N"},
    OptionRule{u"--from", true, u"where to begin, in seconds of the block (0)", u"S"},
    OptionRule{u"--to", true, u"where to end, in seconds of the block (its end)", u"S"},
    OptionRule{u"--channels", true, u"numbers of the channels, from 1, in the order of the columns (all)", u"1,3,..."},
    OptionRule{u"--length", true, u"samples of a segment, a power of 2 (4096, or less for a short range)",
               u"256..65536"},
    OptionRule{u"--window", true, u"analysis window (blackman)", u"blackman|triangular|hann|hamming"},
    OptionRule{u"--db", false, u"decibels relative to 1 unit/sqrt(Hz) instead of unit/sqrt(Hz)", u""},
};

/// The options of its own, and how signals are shown.
inline constexpr auto kPsdOptions = JoinedRules(kOwnPsdOptions, kShownOptions);

/// Writes averaged spectra as text. A channel that cannot be read has empty columns, which standard error tells.
void RunPsd(const CommandContext& context);

}  // namespace quillon::cli
