#pragma once

#include "base/win/Win32.h"
#include "view/GraphColors.h"
#include "view/Measurement.h"

namespace quillon {

/// Paints a measurement over the graph whose rectangle is `client`.
void PaintMeasurement(HDC dc, const RECT& client, const Measurement& measurement, const GraphColors& colors);

}  // namespace quillon
