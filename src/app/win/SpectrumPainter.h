#pragma once

#include <optional>

#include "app/SpectrumCommands.h"
#include "base/win/Win32.h"
#include "spectrum/SpectrumPlot.h"

namespace quillon {

/// Draws a plot of averaged spectra, which fills a rectangle at the origin, in the font that is selected.
void PaintSpectrum(HDC dc, const SIZE& size, const SpectrumPlot& plot, const SpectrumCommands& spectra, int dpi);

}  // namespace quillon
