#include "app/OverviewTexts.h"

#include <cmath>

#include "view/ScaleLabels.h"

namespace quillon {

OverviewTexts TextsOf(const ViewBlock& block, const FormatOptions& format) {
    const double samples = block.sampleCount;
    if (format.sampleIndexes || !(block.sampleRate > 0.0))
        return {NumberText(1.0, format.decimalSeparator), NumberText(samples, format.decimalSeparator)};
    // There is no room for fractions where they would hardly tell anything.
    constexpr double isLong = 100.0;
    const bool whole = samples / block.sampleRate >= isLong;
    const auto text = [&](double position) {
        const double seconds = AxisSeconds(block, position, format);
        return FormatTime(whole ? std::nearbyint(seconds) : seconds, u" ", format);
    };
    return {text(0.0), text(samples)};
}

}  // namespace quillon
