#include "view/CellColumns.h"

#include <algorithm>
#include <array>

#include "nsp/RunReducer.h"

namespace quillon {

namespace {

constexpr std::int32_t kCell = ExtremesCache::kCell;
constexpr std::int32_t kCoarseCell = ExtremesCache::kCoarseCell;

/// Of the samples that both were found in, `later` behind `earlier`.
RunExtremes Joined(const RunExtremes& earlier, const RunExtremes& later) {
    const std::array<std::int16_t, 4> codes{earlier.first, earlier.second, later.first, later.second};
    const auto* const highest = std::max_element(codes.begin(), codes.end());
    const auto* const lowest = std::min_element(codes.begin(), codes.end());
    return lowest < highest ? RunExtremes{*lowest, *highest} : RunExtremes{*highest, *lowest};
}

/// Whether what lies in a cell is surely inside the extremes, so that it changes neither them nor their order. Behind
/// the samples that they were found in it may reach as far as they do.
bool IsInside(const RunExtremes& cell, const RunExtremes& found, bool before) {
    const int margin = before ? 1 : 0;
    return std::max(cell.first, cell.second) + margin <= std::max(found.first, found.second) &&
           std::min(cell.first, cell.second) - margin >= std::min(found.first, found.second);
}

RunExtremes ExtremesOf(const std::int16_t* codes, std::int32_t count) {
    RunExtremes found;
    nsp::PlanarRunReducer reducer(count, &found);
    reducer.Feed(codes, static_cast<std::size_t>(count));
    return found;
}

}  // namespace

CellColumns::CellColumns(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels)
    : m_block(block),
      m_extremes(extremes),
      m_channels(channels),
      m_samples(block.SampleCount()),
      m_allAtOnce(block.FramesAreCheap()),
      m_held(static_cast<std::size_t>(block.ChannelCount())),
      m_codes(m_held.size() * static_cast<std::size_t>(kCell)) {}

CellColumns::Inside CellColumns::CellsIn(const SampleSpan& run, std::int32_t size) const {
    // The first sample is before the first cell; the last cell ends with the block.
    const std::int32_t first = (std::max(run.first - 1, 0) + size - 1) / size;
    const std::int32_t end = run.End() == m_samples ? (m_samples - 1 + size - 1) / size : (run.End() - 1) / size;
    if (first >= end) return {};
    const std::int32_t from = 1 + first * size;
    const auto to = static_cast<std::int32_t>(std::min<std::int64_t>(1 + std::int64_t{end} * size, m_samples));
    return {first, end, {run.first, from - run.first}, {to, run.End() - to}};
}

bool CellColumns::MakeKnown(const SampleSpan& run, std::int32_t end, std::int32_t size) {
    const std::int32_t first = std::max(run.first, 1);
    Known& known = size == kCell ? m_fine : m_coarse;
    if (first >= known.from && run.End() <= known.to) return true;
    known = {first, m_extremes.KnownTo(m_block, m_channels, {first, end - first}, size)};
    while (known.to < run.End()) {
        const std::int32_t before = known.to;
        if (!m_extremes.Fill(m_block, m_channels, {before, end - before}, size, ExtremesCache::Eviction::Allowed))
            return false;
        // Reading may have evicted other cells.
        m_fine = {};
        known = {first, m_extremes.KnownTo(m_block, m_channels, {first, end - first}, size)};
        if (known.to <= before) return false;
    }
    return true;
}

void CellColumns::HoldAll(std::int32_t cell) {
    const std::int32_t first = 1 + cell * kCell;
    m_block.ReadRows(first, std::min(kCell, m_samples - first), m_codes.data());
    m_cell = cell;
    std::fill(m_held.begin(), m_held.end(), true);
}

const std::int16_t* CellColumns::SamplesOfCell(std::int16_t channel, std::int32_t cell) {
    if (cell != m_cell) std::fill(m_held.begin(), m_held.end(), false);
    m_cell = cell;
    const std::int32_t first = 1 + cell * kCell;
    const std::int32_t count = std::min(kCell, m_samples - first);
    const auto at = static_cast<std::size_t>(channel - 1);
    std::int16_t* const codes = m_codes.data() + at * static_cast<std::size_t>(count);
    if (m_held[at]) return codes;
    // Where the samples are stored as frames, reading one channel costs as much as reading all of them.
    if (m_allAtOnce) {
        HoldAll(cell);
    } else {
        m_block.ReadCodes(channel, first, count, codes);
        m_held[at] = true;
    }
    return codes;
}

RunExtremes CellColumns::OfSamples(std::int16_t channel, const SampleSpan& samples) {
    RunExtremes found;
    nsp::PlanarRunReducer reducer(samples.count, &found);
    std::int32_t at = samples.first;
    if (at == 0) {
        std::int16_t code = 0;
        m_block.ReadCodes(channel, at++, 1, &code);
        reducer.Feed(&code, 1);
    }
    while (at < samples.End()) {
        const std::int32_t cell = (at - 1) / kCell;
        const std::int32_t place = (at - 1) % kCell;
        const std::int32_t count = std::min(samples.End() - at, kCell - place);
        reducer.Feed(SamplesOfCell(channel, cell) + place, static_cast<std::size_t>(count));
        at += count;
    }
    reducer.Finish();
    return found;
}

bool CellColumns::AddEdge(std::int16_t channel, const SampleSpan& edge, std::int32_t size, bool before,
                          RunExtremes& found) {
    if (edge.count < 1) return true;
    if (edge.first > 0) {
        const std::int32_t cell = (edge.first - 1) / size;
        if (IsInside(m_extremes.CellsFrom(channel, cell, cell + 1, size).front(), found, before)) return true;
    }
    RunExtremes added;
    if (size == kCell || edge.first == 0) {
        added = OfSamples(channel, edge);
    } else if (!MakeKnown(edge, edge.End(), kCell) || !OfRun(channel, edge, kCell, added)) {
        return false;
    }
    found = before ? Joined(added, found) : Joined(found, added);
    return true;
}

bool CellColumns::OfRun(std::int16_t channel, const SampleSpan& run, std::int32_t size, RunExtremes& found) {
    const Inside inside = CellsIn(run, size);
    if (inside.first >= inside.end) {
        found = OfSamples(channel, run);
        return true;
    }
    found = m_extremes.OfCells(channel, inside.first, inside.end, size);
    return AddEdge(channel, inside.left, size, true, found) && AddEdge(channel, inside.right, size, false, found);
}

bool CellColumns::ReduceOne(std::span<const SampleSpan> runs, std::size_t at, std::span<RunExtremes* const> out) {
    const SampleSpan& run = runs[at];
    const std::int32_t size = run.count >= 2 * kCoarseCell ? kCoarseCell : kCell;
    if (run.End() > 1 && !MakeKnown(run, runs.back().End(), size)) return false;
    for (std::size_t channel = 0; channel < m_channels.size(); ++channel) {
        if (!OfRun(m_channels[channel], run, size, out[channel][at])) return false;
    }
    return true;
}

bool CellColumns::Reduce(std::span<const SampleSpan> runs, std::span<RunExtremes* const> out) {
    for (std::size_t at = 0; at < runs.size();) {
        m_batch.clear();
        std::int32_t firstCell = 0;
        for (; at < runs.size() && runs[at].first > 0 && runs[at].count < 2 * kCoarseCell; ++at) {
            const Inside inside = CellsIn(runs[at], kCell);
            if (inside.first >= inside.end) break;
            // The cells of a chunk lie together.
            constexpr std::int32_t inChunk = ExtremesCache::kChunk / kCell;
            const std::int32_t lastCell = (runs[at].End() - 2) / kCell;
            if (m_batch.empty()) firstCell = (runs[at].first - 1) / kCell;
            if (!m_batch.empty() && lastCell / inChunk > firstCell / inChunk) break;
            m_batch.push_back(inside);
        }
        if (m_batch.empty() ? !ReduceOne(runs, at++, out) : !ReduceBatch(runs, at - m_batch.size(), out)) return false;
    }
    return true;
}

bool CellColumns::ReduceBatch(std::span<const SampleSpan> runs, std::size_t first, std::span<RunExtremes* const> out) {
    const SampleSpan& last = runs[first + m_batch.size() - 1];
    const std::int32_t begin = runs[first].first;
    if (!MakeKnown({begin, last.End() - begin}, runs.back().End(), kCell)) return false;
    FindCells((begin - 1) / kCell, (last.End() - 2) / kCell + 1);
    m_runs.clear();
    for (const Inside& inside : m_batch)
        m_runs.push_back({2 * (inside.first - m_firstCell), 2 * (inside.end - m_firstCell)});
    std::vector<RunExtremes*> found;
    std::vector<const std::int16_t*> rows;
    for (std::size_t channel = 0; channel < m_channels.size(); ++channel) {
        found.push_back(out[channel] + first);
        rows.push_back(&m_rows[channel]->first);
    }
    nsp::ReduceRowRuns(rows, m_runs, found);
    AddEdges(found);
    return true;
}

void CellColumns::FindCells(std::int32_t first, std::int32_t end) {
    constexpr std::int32_t padding = nsp::kRowPadding / 2;
    const auto length = static_cast<std::size_t>(end - first);
    m_firstCell = first;
    m_rows.clear();
    m_cells.resize(std::max(m_cells.size(), (length + padding) * m_channels.size()));
    RunExtremes* row = m_cells.data();
    for (const std::int16_t channel : m_channels) {
        std::span<const RunExtremes> cells = m_extremes.CellsFrom(channel, first, end, kCell);
        if (cells.size() == length && m_batch.back().first + padding <= end) {
            m_rows.push_back(cells.data());
            continue;
        }
        m_rows.push_back(row);
        for (std::int32_t at = first;;) {
            row = std::copy(cells.begin(), cells.end(), row);
            at += static_cast<std::int32_t>(cells.size());
            if (at >= end) break;
            cells = m_extremes.CellsFrom(channel, at, end, kCell);
        }
        row += padding;
    }
}

void CellColumns::AddEdges(std::span<RunExtremes* const> found) {
    const std::size_t count = m_batch.size();
    for (std::size_t at = 0; at <= count; ++at) {
        // The cell between two runs: its first samples belong to the one, its last ones to the other.
        const SampleSpan left = at > 0 ? m_batch[at - 1].right : SampleSpan{};
        const SampleSpan right = at < count ? m_batch[at].left : SampleSpan{};
        if (left.count < 1 && right.count < 1) continue;
        const std::int32_t cell = ((left.count > 0 ? left : right).first - 1) / kCell;
        m_open.clear();
        for (std::size_t channel = 0; channel < m_channels.size(); ++channel) {
            const RunExtremes& extremes = CellOf(channel, cell);
            const bool ofLeft = left.count > 0 && !IsInside(extremes, found[channel][at - 1], false);
            const bool ofRight = right.count > 0 && !IsInside(extremes, found[channel][at], true);
            if (ofLeft || ofRight) m_open.push_back({channel, ofLeft, ofRight});
        }
        // Many channels are read faster in one pass over all.
        if (m_open.size() * 8 > m_held.size() && m_open.size() > 1) HoldAll(cell);
        for (const Open& open : m_open) {
            const std::int16_t* const codes = SamplesOfCell(m_channels[open.channel], cell) - (1 + cell * kCell);
            RunExtremes* const runs = found[open.channel] + at;
            if (open.left) runs[-1] = Joined(runs[-1], ExtremesOf(codes + left.first, left.count));
            if (open.right) runs[0] = Joined(ExtremesOf(codes + right.first, right.count), runs[0]);
        }
    }
}

}  // namespace quillon
