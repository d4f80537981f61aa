#pragma once

#include <cstdint>

#include "app/WindowPlacement.h"

namespace quillon {

struct SpectrumChoices;

/// What is kept of the window of averaged spectra between runs.
struct SpectrumWindowSettings {
    WindowPlace place{};
    std::int32_t length = 0;    ///< see SpectrumChoices
    std::int16_t window = -1;   ///< see SpectrumChoices; -1: that of the spectrogram
    bool logFrequency = false;  ///< see PlotScales
    std::int16_t levels = 0;    ///< see LevelScale

    /// What can be chosen of it, else the first choice. `spectrogram` is the window of the spectrogram.
    [[nodiscard]] SpectrumChoices Choices(std::int16_t spectrogram) const;
    /// The signal is not kept: another recording has others.
    void Remember(const SpectrumChoices& choices);
};

}  // namespace quillon
