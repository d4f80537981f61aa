#pragma once

#include <cstdint>
#include <string>

#include "data/QL_Types.h"
#include "format/QL_Format.h"
#include "spectrum/QL_FFT.h"
#include "view/DataRange.h"
#include "view/TimeAxis.h"

namespace quillon {

/// What a readout of the spectrogram is taken from.
struct SpectrumSource {
    const QL_FFT& fft;
    const ViewBlock& block;
    const TimeAxis& axis;
    const FormatOptions& format;
    const SpectrumSettings& settings;
};

/// Time of a sample (from 1), frequency at a row of a picture of that height, and the level there. No level is given
/// outside the image or where samples could not be read; without an image the text is empty.
[[nodiscard]] std::u16string SpectrumReadout(const SpectrumSource& source, std::int32_t sample, std::int32_t row,
                                             std::int32_t height);

/// The range of values that a channel's spectrogram is scaled to, as it was found. Where there is none the channel
/// stays blank.
[[nodiscard]] ValueRange SpectrumRange(const RangeRecords& ranges, std::int16_t channel);

}  // namespace quillon
