#pragma once

#include "view/GraphColors.h"
#include "view/Measurement.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// Paints a measurement over the graph whose rectangle is `client`.
void PaintMeasurement(HDC dc, const RECT& client, const Measurement& measurement, const GraphColors& colors,
                      const ScreenDensity& density);

}  // namespace quillon
