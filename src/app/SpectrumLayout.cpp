#include "app/SpectrumLayout.h"

#include <algorithm>

#include "base/Density.h"

namespace quillon {

SpectrumLayout ArrangeSpectrum(const SpectrumLayoutInput& input) {
    const auto scaled = [&](std::int32_t length) { return ScaledTo(input.dpi, length); };
    const std::int32_t margin = scaled(8);
    const std::int32_t gap = scaled(6);
    const std::int32_t right = input.width - margin;
    SpectrumLayout layout;
    const std::int32_t labelHeight = input.textHeight + scaled(2);
    std::int32_t x = margin;
    std::int32_t y = margin;
    for (std::size_t box = 0; box < kSpectrumBoxes; ++box) {
        const std::int32_t width = std::min(input.boxWidths[box], std::max(right - margin, 1));
        if (x > margin && x + width > right) {
            x = margin;
            y += labelHeight + input.boxHeight + gap;
        }
        layout.labels[box] = {x, y, width, input.textHeight};
        layout.boxes[box] = {x, y + labelHeight, width, input.boxHeight};
        x += width + gap;
    }
    y += labelHeight + input.boxHeight + gap;
    layout.heading = {margin, y, std::max(right - margin, 1), input.textHeight};
    y += input.textHeight + gap;
    const std::int32_t rowHeight = std::max(input.boxHeight, input.textHeight);
    const std::int32_t rowTop = std::max(input.height - margin - rowHeight, y);
    layout.refresh = {right - input.refreshWidth, rowTop, input.refreshWidth, rowHeight};
    layout.readout = {margin, rowTop + (rowHeight - input.textHeight) / 2,
                      std::max(layout.refresh.left - gap - margin, 1), input.textHeight};
    const std::int32_t bottom = std::max(rowTop - gap, y + 1);
    const std::int32_t listWidth = std::min(input.listWidth, std::max((right - margin) / 2, 1));
    const std::int32_t listLeft = right - listWidth;
    layout.plot = {margin, y, std::max(listLeft - gap - margin, 1), bottom - y};
    const std::int32_t titles = 2 * (input.textHeight + scaled(3)) + gap;
    const std::int32_t lists = std::max(bottom - y - titles, 2);
    // The harmonics are fewer.
    const std::int32_t upper = lists * 3 / 5;
    layout.peaksTitle = {listLeft, y, listWidth, input.textHeight};
    layout.peaks = {listLeft, layout.peaksTitle.Bottom() + scaled(3), listWidth, upper};
    layout.harmonicsTitle = {listLeft, layout.peaks.Bottom() + gap, listWidth, input.textHeight};
    layout.harmonics = {listLeft, layout.harmonicsTitle.Bottom() + scaled(3), listWidth, lists - upper};
    return layout;
}

}  // namespace quillon
