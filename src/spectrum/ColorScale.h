#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillon {

/// One figure beside the palette bar.
struct ColorTick {
    std::int32_t row = 0;   ///< of the bar, from its top
    std::int32_t text = 0;  ///< row of the upper edge of the figure, which lies within the bar
    std::u16string figure{};
    friend bool operator==(const ColorTick&, const ColorTick&) = default;
};

/// Figures of a palette bar (see BarIndex) of that height, from its bottom upwards: whole numbers in steps of 1, 2 or 5
/// times a power of ten, which lie apart. `low` and `high` are the levels of index 0 and 255, `textHeight` the rows
/// that a figure takes. None where there is no room for one.
[[nodiscard]] std::vector<ColorTick> ColorTicks(double low, double high, std::int32_t height, std::int32_t textHeight,
                                                char16_t separator);

}  // namespace quillon
