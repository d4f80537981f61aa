#pragma once

#include <array>

#include "cli/Commands.h"
#include "cli/EdfPlusOptions.h"
#include "cli/Options.h"
#include "cli/ShownOptions.h"

namespace quillon::cli {

inline constexpr std::array kPieceOptions = {
    OptionRule{u"--folder", true, u"folder for the pieces; made if need be", u"DIR"},
    OptionRule{u"--size", true, u"samples per channel of a piece", u"S"},
    OptionRule{u"--step", true, u"samples from the start of a piece to that of the next (the size)", u"T"},
    OptionRule{u"--seconds", false, u"size and step are seconds", u""},
    OptionRule{u"--block", true, u"number of the block, from 1 (1)", u"N"},
    OptionRule{u"--names", true, u"names by number of the piece or by samples (index)", u"index|samples"},
    OptionRule{u"--base", true, u"names begin with NAME_", u"NAME"},
    OptionRule{u"--type", true, u"edf+: the pieces are EDF+ with marks", u"edf+"},
};
/// Options of the pieces, then those of EDF+ with marks.
inline constexpr auto kSplitOptions = JoinedRules(kPieceOptions, kEdfPlusOptions, kShownOptions);

/// Cuts a block into pieces of equal length, each a file of its own, and lists them.
void RunSplitCommand(const CommandContext& context);

}  // namespace quillon::cli
