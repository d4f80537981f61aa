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

/// Whether what lies in a cell is surely inside the extremes, so that it changes neither them nor their order.
bool IsInside(const RunExtremes& cell, const RunExtremes& found) {
    return std::max(cell.first, cell.second) < std::max(found.first, found.second) &&
           std::min(cell.first, cell.second) > std::min(found.first, found.second);
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

RunExtremes CellColumns::OfCells(std::int16_t channel, std::int32_t first, std::int32_t end, std::int32_t size) {
    static_assert(sizeof(RunExtremes) == 2 * sizeof(std::int16_t));
    RunExtremes found;
    nsp::PlanarRunReducer reducer(2 * (end - first), &found);
    for (std::int32_t at = first; at < end;) {
        const std::span<const RunExtremes> cells = m_extremes.CellsFrom(channel, at, end, size);
        // As the samples that they keep, cell by cell.
        reducer.Feed(&cells.front().first, 2 * cells.size());
        at += static_cast<std::int32_t>(cells.size());
    }
    reducer.Finish();
    return found;
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
        m_block.ReadRows(first, count, m_codes.data());
        std::fill(m_held.begin(), m_held.end(), true);
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
        if (IsInside(m_extremes.CellsFrom(channel, cell, cell + 1, size).front(), found)) return true;
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
    found = OfCells(channel, inside.first, inside.end, size);
    return AddEdge(channel, inside.left, size, true, found) && AddEdge(channel, inside.right, size, false, found);
}

bool CellColumns::Reduce(const SampleSpan& run, std::int32_t end, std::span<RunExtremes> out) {
    const std::int32_t size = run.count >= 2 * kCoarseCell ? kCoarseCell : kCell;
    if (run.End() > 1 && !MakeKnown(run, end, size)) return false;
    for (std::size_t at = 0; at < m_channels.size(); ++at) {
        if (!OfRun(m_channels[at], run, size, out[at])) return false;
    }
    return true;
}

}  // namespace quillon
