#pragma once

#include <array>

#include "cli/Commands.h"
#include "cli/Options.h"
#include "cli/ShownOptions.h"

namespace quillon::cli {

inline constexpr auto kPictureOptions = [] {
    constexpr std::array own{
        OptionRule{u"--block", true, u"number of the block, from 1 (1)", u"N"},
        OptionRule{u"--from", true, u"where the graph begins (start of the block)", u"PLACE"},
        OptionRule{u"--to", true, u"where it ends (end of the block)", u"PLACE"},
        OptionRule{u"--channels", true, u"numbers of the channels from top to bottom, or of the pairs (all)",
                   u"1,3,..."},
        OptionRule{u"--width", true, u"pixels, 200 to 8192 (1400)", u"N"},
        OptionRule{u"--height", true, u"pixels, 100 to 8192 (700, more for many channels)", u"N"},
        OptionRule{u"--scale", true, u"size of texts and distances (1)", u"1|2|3"},
        OptionRule{u"--line-width", true, u"of the traces, in pixels of scale 1 (1)", u"1|2|3"},
        OptionRule{u"--dark", false, u"light on a dark background", u""},
        OptionRule{u"--time", true, u"by the clock, since the start of the block, or samples (clock)",
                   u"clock|start|samples"},
    };
    return JoinedRules(own, kShownOptions);
}();

/// Draws a stretch of a block as a PNG file; reports on standard error what could not be read.
void RunPicture(const CommandContext& context);

}  // namespace quillon::cli
