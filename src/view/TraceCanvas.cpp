#include "view/TraceCanvas.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace quillon {

namespace {

/// Calls run(column, first, last) for the pixels of a trace in columns from .. to-1; `first` may be below `last`. What
/// a trace has in a column hangs together, and touches what it has in the next one.
template <class Run>
void ForRuns(std::span<const DevicePoint> points, std::int32_t from, std::int32_t to, const Run& run) {
    const auto inside = [&](std::int32_t column) { return column >= from && column < to; };
    for (std::size_t at = 1; at < points.size(); ++at) {
        const DevicePoint start = points[at - 1];
        const DevicePoint end = points[at];
        const std::int64_t rise = std::int64_t{end.y} - start.y;
        const std::int64_t step = rise < 0 ? -1 : 1;
        const std::int64_t length = rise * step;
        if (length == 0) {
            // A level line, which may be as long as the graph is wide.
            const std::int32_t last = std::min(end.x, to);
            for (std::int32_t x = std::max(start.x, from); x < last; ++x) run(x, start.y, start.y);
        } else if (end.x == start.x) {
            if (inside(start.x)) run(start.x, start.y, end.y - step);
        } else {
            const std::int64_t half = length / 2;
            if (inside(start.x)) run(start.x, start.y, start.y + half * step);
            if (inside(end.x) && half + 1 < length) run(end.x, start.y + (half + 1) * step, end.y - step);
        }
    }
}

}  // namespace

void TraceCanvas::Reset(std::int32_t from, std::int32_t to, std::int32_t height, std::int32_t lineWidth) {
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
    m_lineWidth = lineWidth;
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
    if (m_lineWidth > 1) return DrawWide(points, id);
    ForRuns(points, m_left, m_right,
            [&](std::int32_t column, std::int64_t first, std::int64_t last) { Fill(column, first, last, id); });
}

void TraceCanvas::DrawWide(std::span<const DevicePoint> points, std::uint8_t id) {
    const std::int32_t columns = std::max(m_right - m_left, 0);
    const std::int32_t from = m_left - After();
    constexpr Span none{std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()};
    const auto width = static_cast<std::size_t>(m_lineWidth);
    m_spans.assign(static_cast<std::size_t>(columns) + width - 1, none);
    const auto take = [](Span& span, std::int64_t first, std::int64_t last) {
        span.first = std::min({span.first, first, last});
        span.last = std::max({span.last, first, last});
    };
    ForRuns(points, from, m_right + Before(), [&](std::int32_t column, std::int64_t first, std::int64_t last) {
        take(m_spans[static_cast<std::size_t>(column - from)], first, last);
    });
    // The squares of neighbouring columns touch, so that each column is filled at once.
    for (std::int32_t column = 0; column < columns; ++column) {
        Span seen = none;
        for (const Span& span : std::span(m_spans).subspan(static_cast<std::size_t>(column), width)) {
            if (span.first <= span.last) take(seen, span.first, span.last);
        }
        if (seen.first <= seen.last) Fill(m_left + column, seen.first - Before(), seen.last + After(), id);
    }
}

void TraceCanvas::DrawDots(std::span<const DevicePoint> points, std::uint8_t id) {
    const std::int32_t before = 1 + Before();
    const std::int32_t after = 1 + After();
    for (const DevicePoint& point : points) {
        for (std::int32_t x = std::max(point.x - before, m_left); x < std::min(point.x + after + 1, m_right); ++x)
            Fill(x, std::int64_t{point.y} - before, std::int64_t{point.y} + after, id);
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
