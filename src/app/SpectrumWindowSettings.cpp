#include "app/SpectrumWindowSettings.h"

#include <algorithm>

#include "app/SpectrumCommands.h"

namespace quillon {

SpectrumChoices SpectrumWindowSettings::Choices(std::int16_t spectrogram) const {
    SpectrumChoices choices;
    if (FittingLength(length, WelchSettings::kMostLength) == length) choices.length = length;
    choices.window = std::clamp<std::int16_t>(window >= 0 ? window : spectrogram, 0, 3);
    choices.scales.logFrequency = logFrequency;
    if (levels >= 0 && levels <= static_cast<std::int16_t>(LevelScale::Linear))
        choices.scales.levels = static_cast<LevelScale>(levels);
    return choices;
}

void SpectrumWindowSettings::Remember(const SpectrumChoices& choices) {
    length = choices.length;
    window = choices.window;
    logFrequency = choices.scales.logFrequency;
    levels = static_cast<std::int16_t>(choices.scales.levels);
}

}  // namespace quillon
