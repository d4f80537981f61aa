#include "view/TraceCanvas.h"

#include <algorithm>
#include <cstring>

namespace quillon {

void TraceCanvas::Reset(std::int32_t from, std::int32_t to, std::int32_t height) {
    const auto columns = static_cast<std::size_t>(std::max(to - from, 0));
    if (height == m_height && columns <= m_drawn.size()) {
        // Only what was drawn is not empty yet.
        for (std::size_t column = 0; column < m_drawn.size(); ++column) {
            const Rows& rows = m_drawn[column];
            if (rows.top < rows.bottom)
                std::memset(m_pixels.data() + column * static_cast<std::size_t>(height) + rows.top, 0,
                            static_cast<std::size_t>(rows.bottom - rows.top));
        }
        m_drawn.resize(columns);
        m_pixels.resize(columns * static_cast<std::size_t>(height));
    } else {
        m_drawn.resize(columns);
        m_pixels.assign(columns * static_cast<std::size_t>(height), 0);
    }
    std::fill(m_drawn.begin(), m_drawn.end(), Rows{height, 0});
    m_from = from;
    m_height = height;
    Limit(0, height);
    LimitColumns(from, to);
}

void TraceCanvas::LimitColumns(std::int32_t from, std::int32_t to) {
    m_left = std::max(from, m_from);
    m_right = std::min(to, m_from + static_cast<std::int32_t>(m_drawn.size()));
}

void TraceCanvas::Limit(std::int32_t top, std::int32_t end) {
    m_top = std::max(top, 0);
    m_end = std::min(end, m_height);
}

void TraceCanvas::Fill(std::int32_t column, std::int64_t first, std::int64_t last, std::uint8_t id) {
    if (first > last) std::swap(first, last);
    if (last < m_top || first >= m_end) return;
    const auto top = static_cast<std::int32_t>(std::max<std::int64_t>(first, m_top));
    const auto bottom = static_cast<std::int32_t>(std::min<std::int64_t>(last, m_end - 1)) + 1;
    const auto at = static_cast<std::size_t>(column - m_from);
    std::memset(m_pixels.data() + at * static_cast<std::size_t>(m_height) + top, id,
                static_cast<std::size_t>(bottom - top));
    m_drawn[at].top = std::min(m_drawn[at].top, top);
    m_drawn[at].bottom = std::max(m_drawn[at].bottom, bottom);
}

void TraceCanvas::Draw(std::span<const DevicePoint> points, std::uint8_t id) {
    const auto inside = [&](std::int32_t column) { return column >= m_left && column < m_right; };
    for (std::size_t at = 1; at < points.size(); ++at) {
        const DevicePoint start = points[at - 1];
        const DevicePoint end = points[at];
        const std::int64_t rise = std::int64_t{end.y} - start.y;
        const std::int64_t step = rise < 0 ? -1 : 1;
        const std::int64_t length = rise * step;
        if (length == 0) {
            // A level line, which may be as long as the graph is wide.
            const std::int32_t last = std::min(end.x, m_right);
            for (std::int32_t x = std::max(start.x, m_left); x < last; ++x) Fill(x, start.y, start.y, id);
        } else if (end.x == start.x) {
            if (inside(start.x)) Fill(start.x, start.y, end.y - step, id);
        } else {
            const std::int64_t half = length / 2;
            if (inside(start.x)) Fill(start.x, start.y, start.y + half * step, id);
            if (inside(end.x) && half + 1 < length) Fill(end.x, start.y + (half + 1) * step, end.y - step, id);
        }
    }
}

void TraceCanvas::DrawDots(std::span<const DevicePoint> points, std::uint8_t id) {
    for (const DevicePoint& point : points) {
        for (std::int32_t x = std::max(point.x - 1, m_left); x < std::min(point.x + 2, m_right); ++x)
            Fill(x, std::int64_t{point.y} - 1, std::int64_t{point.y} + 1, id);
    }
}

void TraceCanvas::Compose(std::uint32_t* pixels, std::int32_t width, std::span<const std::uint32_t> colors) const {
    // Tiles, so that both the columns read and the rows written stay in the cache.
    constexpr std::size_t tile = 32;
    const auto height = static_cast<std::size_t>(m_height);
    for (std::size_t left = 0; left < m_drawn.size(); left += tile) {
        const std::size_t right = std::min(left + tile, m_drawn.size());
        Rows rows{m_height, 0};
        for (std::size_t column = left; column < right; ++column) {
            rows.top = std::min(rows.top, m_drawn[column].top);
            rows.bottom = std::max(rows.bottom, m_drawn[column].bottom);
        }
        for (std::int32_t row = rows.top; row < rows.bottom; ++row) {
            std::uint32_t* target = pixels + static_cast<std::ptrdiff_t>(row) * width + m_from;
            const std::uint8_t* source = m_pixels.data() + static_cast<std::size_t>(row);
            for (std::size_t column = left; column < right; ++column) {
                const std::uint8_t id = source[column * height];
                if (id != 0) target[column] = colors[id - 1U];
            }
        }
    }
}

}  // namespace quillon
