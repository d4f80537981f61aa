#pragma once

#include <cstdint>

namespace quillon {

/// What the user chose about the spectrogram. QL_FFT::RepairSettings brings values out of range back to their defaults.
struct SpectrumSettings {
    std::int16_t type = 0;          ///< 1 linear, else logarithmic
    std::int16_t palette = 0;       ///< see BuildPalette
    std::int16_t window = 0;        ///< 1 triangular, 2 Hann, 3 Hamming, else Blackman
    float amplitudeScale = 100.0F;  ///< percent, gain of the linear plot; above 0
    float decibelRange = 120.0F;    ///< dB from the top colour to the bottom one; 10 .. 200
    std::int32_t order = 8;         ///< the transform has 2^order samples; 5 .. 11
    float topLevel = 0.0F;  ///< dB of the top colour of the logarithmic plot, 0 is a full-scale sine; -180 .. 40
    float highestFrequency = 0.0F;  ///< Hz that the picture reaches up to; 0: half the sampling rate
    bool blankEnds = false;         ///< columns whose window reaches beyond the block are blank
    friend bool operator==(const SpectrumSettings&, const SpectrumSettings&) = default;
};

}  // namespace quillon
