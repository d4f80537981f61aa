#include "spectrum/ColorScale.h"

#include <algorithm>

#include "base/Rounding.h"
#include "spectrum/PlotAxis.h"

namespace quillon {

std::vector<ColorTick> ColorTicks(double low, double high, std::int32_t height, std::int32_t textHeight,
                                  char16_t separator) {
    std::vector<ColorTick> ticks;
    if (height < textHeight || textHeight < 1 || !(high > low)) return ticks;
    // Row y from the bottom shows index y * 256 / height.
    const double bottom = height - 1.0;
    const double top = bottom - 255.0 * height / 256.0;
    const PlotAxis axis(low, high, false, bottom, top);
    // Figures at the ends are moved inside by half their height, towards their neighbours.
    const double spacing = std::max(2.0 * textHeight, (bottom - top) / (high - low));
    for (const AxisTick& tick : axis.Ticks(spacing, 1.0, separator)) {
        const std::int32_t row = std::clamp(RoundHalfEven(tick.place), 0, height - 1);
        ticks.push_back({row, std::clamp(row - textHeight / 2, 0, height - textHeight), tick.text});
    }
    return ticks;
}

}  // namespace quillon
