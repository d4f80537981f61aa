#pragma once

#include <optional>

#include "app/SpectrumCommands.h"
#include "base/win/Win32.h"
#include "spectrum/SpectrumPlot.h"
#include "view/GraphColors.h"

namespace quillon {

/// Draws a plot of averaged spectra, which fills a rectangle at the origin, in the font that is selected. The line
/// width of `look` is in pixels.
void PaintSpectrum(HDC dc, const SIZE& size, const SpectrumPlot& plot, const SpectrumCommands& spectra,
                   const GraphLook& look, int dpi);

}  // namespace quillon
