#include "app/QL_Global.h"

namespace quillon {

void ApplyDisplaySettings(QL_Global& global) {
    const DisplaySettings& display = global.settings.display;
    FormatOptions& format = global.format;
    format.unitScaling = display.unitScaling;
    format.digitsCount = display.digitsCount;
    format.digitsAreDecimals = display.digitsType != 0;
    format.timeUnit = display.timeIndex;
    format.timeOfDay = display.timeFormat == 0;
    format.sampleIndexes = display.timeFormat == 2;
    global.view->SetRawCodes(display.scaleFormat == 1);
}

}  // namespace quillon
