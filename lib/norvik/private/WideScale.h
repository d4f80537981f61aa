#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "base/Rounding.h"

namespace quillon {

/// How the samples of one channel that are wider than 16 bits (24- and 32-bit integers, floats) become 16-bit codes.
/// code = (sample - shift) / step, rounded half to even and kept within 16 bits; value = code x scale + offset.
struct WideScale {
    double shift = 0.0;
    double step = 1.0;
    float scale = 1.0F;
    float offset = 0.0F;
    bool fills = false;  ///< see RecordingBlock::FillsCodes

    [[nodiscard]] std::int16_t Code(double sample) const {
        // An undefined sample is drawn on the zero line rather than at an arbitrary end of the range.
        const double code = ((std::isnan(sample) ? 0.0 : sample) - shift) / step;
        return static_cast<std::int16_t>(RoundHalfEvenInRange(std::clamp(code, -32768.0, 32767.0)));
    }
};

/// Chooses the mapping from the channel's extremes over the block. value = sample x unitsPerSample + unitsOffset.
/// `whole`: every sample is an integer: a span of at most 65535 is then kept exactly (step 1), moved by a
/// whole number where the samples themselves do not fit 16 bits. Any other span is scaled so that the codes reach from
/// -32000 to 32000, divided by `headroom`. Samples that are all equal (or none: minimum above maximum) give code 0 for
/// that value.
[[nodiscard]] WideScale ChooseWideScale(double minimum, double maximum, bool whole, double unitsPerSample,
                                        double unitsOffset, double headroom = 1.0);

}  // namespace quillon
