#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "cli/CommandSupport.h"
#include "cli/Commands.h"
#include "cli/Options.h"
#include "spectrum/QL_FFT.h"

namespace quillon::cli {

// Not inline: GCC 12 for Windows puts one of two equal tables into a section that can be written, and both then
// collide.
[[maybe_unused]] constexpr std::array kSpectrumOptions = {
    OptionRule{u"--block", true, u"number of the block, from 1 (1)", u"N"},
    OptionRule{u"--channel", true, u"number of the channel, from 1 (1)", u"N"},
    OptionRule{u"--order", true, u"each spectrum is of 2^N samples (8)", u"5..11"},
    OptionRule{u"--window", true, u"analysis window (blackman)", u"blackman|triangular|hann|hamming"},
    OptionRule{u"--type", true, u"scale of the levels (log)", u"log|linear"},
    OptionRule{u"--range", true, u"decibels from the top colour to the bottom one, 10 to 200 (120)", u"DB"},
    OptionRule{u"--amplitude", true, u"gain of the linear scale, above 0 (100)", u"PERCENT"},
    OptionRule{u"--limits", true, u"the channel's range in its unit (its extremes over the block)", u"LO,HI"},
    OptionRule{u"--samples-per-column", true, u"samples from one column to the next (half a spectrum's)", u"N"},
    OptionRule{u"--first-column", true, u"columns left out at the start of the block (0)", u"N"},
    OptionRule{u"--columns", true, u"width of the image, 1 to 32768 (to the end of the block)", u"N"},
    OptionRule{u"--palette", true, u"colours of the levels (color)", u"color|green|gray"},
};

/// What the options ask to be drawn of a channel.
struct SpectrumRequest {
    SpectrumSettings settings;
    std::optional<ValueRange> limits;  ///< none: the channel's extremes
    std::int32_t samplesPerColumn = 1;
    std::int32_t firstColumn = 0;
    std::optional<std::int32_t> columns;  ///< none: to the end of the block
};

/// Writes the spectrogram of a channel as a bitmap of 256 colours: one column per spectrum, one row per frequency, 0 Hz
/// at the bottom. Columns that cannot be read are blank, and the extremes are those of what can be read; returns what
/// was lost, empty where nothing was. Throws Refusal where there is nothing to draw.
[[nodiscard]] std::u16string WriteSpectrum(const BlockChannel& source, SpectrumRequest request, OutputTarget& target,
                                           Language language);

/// WriteSpectrum of what the command line asks for; reports on standard error what was lost.
void RunSpectrum(const CommandContext& context);

}  // namespace quillon::cli
