#include "view/OverviewPicture.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "view/ReadableColor.h"

namespace quillon {

namespace {

/// Share of a single trace among many: it has to be seen.
constexpr std::int32_t kLeastShare = 80;
constexpr std::int32_t kFullShare = 255;
/// Share of the selection's colour in what is behind the traces.
constexpr double kSelected = 0.2;

std::size_t Index(std::int32_t value) {
    return static_cast<std::size_t>(value);
}

}  // namespace

std::optional<CodeRange> SpreadOf(std::span<const CodeRange> columns) {
    std::vector<std::int16_t> lows;
    std::vector<std::int16_t> highs;
    for (const CodeRange& column : columns) {
        if (column.IsEmpty()) continue;
        lows.push_back(column.low);
        highs.push_back(column.high);
    }
    if (lows.empty()) return std::nullopt;
    // One column in a hundred may be an artefact at either end.
    const auto outside = static_cast<std::ptrdiff_t>(lows.size() / 100);
    const auto low = lows.begin() + outside;
    const auto high = highs.end() - 1 - outside;
    std::nth_element(lows.begin(), low, lows.end());
    std::nth_element(highs.begin(), high, highs.end());
    const CodeRange all{*std::min_element(lows.begin(), lows.end()), *std::max_element(highs.begin(), highs.end())};
    constexpr int most = 2;
    const int central = *high - *low;
    return central > 0 && all.high - all.low > most * central ? CodeRange{*low, *high} : all;
}

std::vector<std::int32_t> MarkColumns(const std::vector<BlockMark>& marks, const ColumnGrid& grid, std::int32_t width) {
    std::vector<std::int32_t> columns;
    const auto before = [](const BlockMark& mark, std::int64_t sample) { return mark.position < sample; };
    // From column to column, not from mark to mark, of which there may be millions.
    for (auto mark = marks.begin(); mark != marks.end();) {
        const std::int64_t column = grid.FirstColumn(mark->position);
        if (column >= width) break;
        columns.push_back(static_cast<std::int32_t>(column));
        mark = std::lower_bound(mark + 1, marks.end(), std::int64_t{grid.Samples(column).End()}, before);
    }
    return columns;
}

void OverviewPicture::SetTraces(std::span<const std::span<const CodeRange>> traces, std::int32_t width,
                                std::int32_t height, std::int32_t markRows) {
    m_width = std::max(width, 0);
    m_height = std::max(height, 0);
    m_markRows = std::min(markRows, m_height);
    m_shares.assign(Index(m_width) * Index(m_height), 0);
    // A row is left below the marks and at the lower edge.
    const std::int32_t top = m_markRows + 1;
    const std::int32_t rows = m_height - 1 - top;
    if (rows < 1) return;
    // How many traces begin in a row less those that have ended above it.
    std::vector<std::int32_t> steps(Index(m_width) * Index(rows + 1));
    for (const std::span<const CodeRange> columns : traces) {
        const std::optional<CodeRange> spread = SpreadOf(columns);
        if (!spread) continue;
        const int reach = spread->high - spread->low;
        const auto rowOf = [&](int code) {
            // A channel of one value lies in the middle.
            if (reach == 0) return rows / 2;
            const int above = std::clamp(spread->high - code, 0, reach);
            return (above * (rows - 1) + reach / 2) / reach;
        };
        for (std::size_t column = 0; column < std::min(columns.size(), Index(m_width)); ++column) {
            if (columns[column].IsEmpty()) continue;
            ++steps[Index(rowOf(columns[column].high)) * Index(m_width) + column];
            --steps[Index(rowOf(columns[column].low) + 1) * Index(m_width) + column];
        }
    }
    const auto most = static_cast<std::int32_t>(traces.size());
    std::vector<std::int32_t> here(Index(m_width));
    for (std::int32_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < here.size(); ++column) {
            here[column] += steps[Index(row) * Index(m_width) + column];
            if (here[column] < 1) continue;
            const std::int32_t share =
                most < 2 ? kFullShare
                         : kLeastShare + (kFullShare - kLeastShare) * (here[column] - 1) / std::max(most - 1, 1);
            m_shares[Index(top + row) * Index(m_width) + column] = static_cast<std::uint8_t>(share);
        }
    }
}

std::vector<std::uint32_t> OverviewPicture::Draw(const OverviewScene& scene) const {
    const OverviewColors& colors = scene.colors;
    std::vector<std::uint32_t> pixels(m_shares.size());
    const auto isIn = [](const std::optional<ColumnBand>& band, std::int32_t column) {
        return band && column >= band->left && column <= band->right;
    };
    // Colours from what is behind to the traces: outside and inside the window, both also selected.
    std::array<std::array<std::uint32_t, kFullShare + 1>, 4> shades{};
    for (std::size_t kind = 0; kind < shades.size(); ++kind) {
        std::uint32_t behind = kind % 2 == 0 ? colors.outside : colors.inside;
        if (kind >= 2) behind = Mixed(behind, colors.selection, kSelected);
        for (std::int32_t share = 0; share <= kFullShare; ++share)
            shades[kind][Index(share)] = Mixed(behind, colors.traces, static_cast<double>(share) / kFullShare);
    }
    for (std::int32_t column = 0; column < m_width; ++column) {
        const std::size_t kind = (isIn(scene.window, column) ? 1U : 0U) + (isIn(scene.selection, column) ? 2U : 0U);
        for (std::size_t at = Index(column); at < pixels.size(); at += Index(m_width))
            pixels[at] = shades[kind][m_shares[at]];
    }
    const auto fill = [&](std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom,
                          std::uint32_t color) {
        for (std::int32_t row = std::max(top, 0); row < std::min(bottom, m_height); ++row) {
            for (std::int32_t column = std::max(left, 0); column < std::min(right, m_width); ++column)
                pixels[Index(row) * Index(m_width) + Index(column)] = color;
        }
    };
    for (const std::int32_t mark : scene.marks) fill(mark, 0, mark + scene.line, m_markRows, colors.marks);
    if (!scene.window) return pixels;
    const std::int32_t left = scene.window->left;
    const std::int32_t end = scene.window->right + 1;
    fill(left, 0, end, scene.line, colors.frame);
    fill(left, m_height - scene.line, end, m_height, colors.frame);
    fill(left, 0, left + scene.line, m_height, colors.frame);
    fill(end - scene.line, 0, end, m_height, colors.frame);
    return pixels;
}

}  // namespace quillon
