#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "data/UserServices.h"
#include "spectrum/SpectrumSettings.h"

namespace quillon {

/// What the menu of the spectrogram offers, in the order of its commands.
enum class SpectrogramField { Colors, Range, TopLevel, Size, Window, Highest, BlankEnds };

/// One of them with its value: a number of SpectrumSettings; of sizes the order, of ranges and levels dB, Hz of
/// frequencies, where 0 is all of them. BlankEnds has no value, it is switched.
struct SpectrogramChoice {
    SpectrogramField field = SpectrogramField::Colors;
    double value = 0.0;
    friend bool operator==(const SpectrogramChoice&, const SpectrogramChoice&) = default;
};

/// None for a command that chooses nothing of the spectrogram. Frequencies are offered by the rate in samples per
/// second: the round ones below its half.
[[nodiscard]] std::optional<SpectrogramChoice> SpectrogramChoiceOf(int command, double rate);

[[nodiscard]] SpectrumSettings With(const SpectrumSettings& settings, const SpectrogramChoice& choice);
[[nodiscard]] bool IsChosen(const SpectrumSettings& settings, const SpectrogramChoice& choice);
/// Whether it makes a difference: levels in decibels are those of the logarithmic plot.
[[nodiscard]] bool IsOffered(const SpectrumSettings& settings, const SpectrogramChoice& choice);

/// Of a menu: "60 dB", "1024", "50 Hz".
[[nodiscard]] std::u16string CaptionOf(const SpectrogramChoice& choice, const UserServices& services,
                                       char16_t separator);

/// The settings with levels that were typed; none where these are no numbers or out of their limits.
[[nodiscard]] std::optional<SpectrumSettings> WithLevels(const SpectrumSettings& settings, std::u16string_view highest,
                                                         std::u16string_view lowest, char16_t separator);

}  // namespace quillon
