#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "app/MainLayout.h"

namespace quillon {

/// Boxes of the window of averaged spectra: channel, length, window, frequencies, levels.
inline constexpr std::size_t kSpectrumBoxes = 5;

/// Input of the layout; lengths in pixels.
struct SpectrumLayoutInput {
    std::int32_t width = 0;  ///< of the client area
    std::int32_t height = 0;
    std::int32_t dpi = 96;
    std::int32_t boxHeight = 0;                            ///< of a closed drop-down list
    std::int32_t textHeight = 0;                           ///< of a line
    std::array<std::int32_t, kSpectrumBoxes> boxWidths{};  ///< that they and their labels want
    std::int32_t refreshWidth = 0;
    std::int32_t listWidth = 0;  ///< that the lists want
};

/// One rectangle per control.
struct SpectrumLayout {
    std::array<PixelRect, kSpectrumBoxes> labels;  ///< above their boxes
    std::array<PixelRect, kSpectrumBoxes> boxes;   ///< in rows, as many as they need
    PixelRect heading;
    PixelRect refresh;  ///< at the right of the readout
    PixelRect plot;
    PixelRect peaksTitle, peaks, harmonicsTitle, harmonics;  ///< a column at the right
    PixelRect readout;
};

[[nodiscard]] SpectrumLayout ArrangeSpectrum(const SpectrumLayoutInput& input);

}  // namespace quillon
