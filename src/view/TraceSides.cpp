#include "view/TraceSides.h"

#include <algorithm>

namespace quillon {

void TraceSides::Reset(std::size_t traces, std::int32_t width) {
    m_width = width;
    m_columns.assign(traces, std::vector<std::uint8_t>(static_cast<std::size_t>(width), 0));
}

void TraceSides::Scroll(std::int32_t shift) {
    const std::int32_t distance = std::clamp(shift, -m_width, m_width);
    for (auto& columns : m_columns) {
        if (distance >= 0) {
            std::fill(std::copy(columns.begin() + distance, columns.end(), columns.begin()), columns.end(),
                      std::uint8_t{0});
        } else {
            std::fill(columns.begin(), std::copy_backward(columns.begin(), columns.end() + distance, columns.end()),
                      std::uint8_t{0});
        }
    }
}

void TraceSides::Forget(std::int32_t from, std::int32_t to) {
    for (auto& columns : m_columns) std::fill(columns.begin() + from, columns.begin() + to, std::uint8_t{0});
}

void TraceSides::Mark(std::size_t trace, std::int32_t from, std::int32_t to, std::span<const DevicePoint> points,
                      std::int32_t top, std::int32_t end) {
    std::vector<std::uint8_t>& columns = m_columns[trace];
    std::fill(columns.begin() + from, columns.begin() + to, std::uint8_t{0});
    std::uint8_t before = 0;
    for (const DevicePoint& point : points) {
        const std::uint8_t side = point.y < top ? kAbove : point.y >= end ? kBelow : kAbove | kBelow;
        // The line to the next side passes through the lane.
        if (point.x >= from && point.x < to)
            columns[static_cast<std::size_t>(point.x)] |= static_cast<std::uint8_t>(side | before);
        before = side;
    }
}

TraceSides::Side TraceSides::Of(std::size_t trace) const {
    std::uint8_t sides = 0;
    for (const std::uint8_t side : m_columns[trace]) sides |= side;
    return sides == kAbove ? Side::Above : sides == kBelow ? Side::Below : Side::None;
}

}  // namespace quillon
