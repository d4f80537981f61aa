#include "app/PanelTable.h"

#include <algorithm>
#include <numeric>

namespace quillon {

CellLines CellsOf(const std::u16string& text) {
    CellLines lines(1, std::vector<std::u16string>(1));
    for (const char16_t letter : text) {
        if (letter == u'\r') continue;
        if (letter == u'\n') {
            lines.emplace_back(1);
        } else if (letter == u'\t') {
            lines.back().emplace_back();
        } else {
            lines.back().back().push_back(letter);
        }
    }
    if (lines.back() == std::vector<std::u16string>(1)) lines.pop_back();
    return lines;
}

PanelTable ArrangeCells(const CellLines& lines, std::int32_t width, std::int32_t height, const CellFont& font) {
    PanelTable table;
    std::int32_t last = 0;
    std::size_t aligned = 0;
    for (const auto& line : lines) {
        if (line.size() < 2) continue;
        const std::size_t before = std::min(line.size() - 1, table.widths.size());
        for (std::size_t cell = 0; cell < before; ++cell)
            table.widths[cell] = std::max(table.widths[cell], font.width(line[cell]) + font.gap);
        if (before > aligned) last = 0;
        if (before >= aligned) last = std::max(last, font.width(line[before]) + font.gap);
        aligned = std::max(aligned, before);
    }
    const std::int32_t widest = std::max(std::accumulate(table.widths.begin(), table.widths.end(), last), 1);
    const auto total = static_cast<std::int32_t>(lines.size());
    table.lineHeight = font.lineHeight;
    table.rows = std::max(height / table.lineHeight, 1);
    const std::int32_t wanted = std::max((total + table.rows - 1) / table.rows, 1);
    table.columns = std::clamp(width / widest, 1, wanted);
    table.fits = table.columns == wanted && widest <= width;
    return table;
}

std::vector<SeenCell> SeenCells(const CellLines& lines, const PanelTable& table, std::int32_t width,
                                std::int32_t& first) {
    const auto total = static_cast<std::int32_t>(lines.size());
    const std::int32_t seen = std::min(total, table.rows * table.columns);
    first = std::clamp(first, 0, total - seen);
    const std::int32_t columnWidth = width / table.columns;
    const std::int32_t perColumn = (seen + table.columns - 1) / table.columns;
    std::vector<SeenCell> cells;
    for (std::int32_t at = 0; at < seen; ++at) {
        const auto& line = lines[static_cast<std::size_t>(first + at)];
        const std::int32_t left = at / perColumn * columnWidth;
        std::int32_t x = left;
        for (std::size_t cell = 0; cell < line.size(); ++cell) {
            cells.push_back({line[cell], x, at % perColumn * table.lineHeight, left + columnWidth});
            if (cell < table.widths.size()) x += table.widths[cell];
        }
    }
    return cells;
}

}  // namespace quillon
