#include "view/ColumnMemo.h"

#include <algorithm>
#include <utility>

namespace quillon {

ColumnRange ColumnMemo::Missing(const ColumnGrid& grid, std::span<const std::int16_t> channels,
                                const ColumnRange& wanted) {
    if (grid != m_grid) m_channels.clear();
    m_grid = grid;
    ColumnRange missing{wanted.to, wanted.from};
    for (const std::int16_t channel : channels) {
        const auto at = static_cast<std::size_t>(channel - 1);
        if (at >= m_channels.size()) return wanted;
        Known& known = m_channels[at];
        if (std::max(wanted.to, known.To()) - std::min(wanted.from, known.from) > kMost) known = {};
        const bool begins = known.from <= wanted.from && known.To() > wanted.from;
        const bool ends = known.from < wanted.to && known.To() >= wanted.to;
        missing.from = std::min(missing.from, begins ? std::min(known.To(), wanted.to) : wanted.from);
        missing.to = std::max(missing.to, ends ? std::max(known.from, wanted.from) : wanted.to);
    }
    if (missing.from >= missing.to) return {wanted.to, wanted.to};
    return missing;
}

void ColumnMemo::Store(std::int16_t channel, const ColumnRange& range, std::span<const RunExtremes> columns) {
    const auto at = static_cast<std::size_t>(channel - 1);
    if (at >= m_channels.size()) m_channels.resize(at + 1);
    Known& known = m_channels[at];
    const std::int32_t from = std::min(range.from, known.from);
    const std::int32_t to = std::max(range.to, known.To());
    const bool together = range.from <= known.To() && range.to >= known.from;
    if (known.columns.empty() || !together) {
        known = {range.from, {columns.begin(), columns.end()}};
        return;
    }
    Known joined{from, std::vector<RunExtremes>(static_cast<std::size_t>(to - from))};
    std::copy(known.columns.begin(), known.columns.end(), joined.columns.begin() + (known.from - from));
    std::copy(columns.begin(), columns.end(), joined.columns.begin() + (range.from - from));
    known = std::move(joined);
}

std::span<const RunExtremes> ColumnMemo::Columns(std::int16_t channel, const ColumnRange& range) const {
    const Known& known = m_channels[static_cast<std::size_t>(channel - 1)];
    return std::span(known.columns)
        .subspan(static_cast<std::size_t>(range.from - known.from), static_cast<std::size_t>(range.to - range.from));
}

}  // namespace quillon
