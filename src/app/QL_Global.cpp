#include "app/QL_Global.h"

namespace quillon {

void ApplyDisplaySettings(QL_Global& global) {
    const Settings& settings = global.settings;
    FormatOptions& format = global.format;
    format.unitScaling = settings.unitScaling;
    format.digitsCount = settings.digitsCount;
    format.digitsAreDecimals = settings.digitsType != 0;
    format.timeUnit = settings.timeIndex;
    format.timeOfDay = settings.timeFormat == 0;
    format.sampleIndexes = settings.timeFormat == 2;
    global.view->SetRawCodes(settings.scaleFormat == 1);
}

}  // namespace quillon
