#include "view/ExtremesCache.h"

#include <algorithm>
#include <numeric>

namespace quillon {

namespace {

/// Presents cells as the samples that they keep. The extremes of a run of cells, and their order, are those of the kept
/// samples, cell by cell.
const std::int16_t* CodesOf(const RunExtremes* cells) {
    static_assert(sizeof(RunExtremes) == 2 * sizeof(std::int16_t));
    return &cells->first;
}

std::int32_t CeilDivide(std::int32_t value, std::int32_t divisor) {
    return value / divisor + (value % divisor != 0 ? 1 : 0);
}

}  // namespace

void ExtremesCache::Reset() {
    *this = ExtremesCache(m_limit);
}

void ExtremesCache::Prepare(const RecordingBlock& block) {
    if (!m_coarse.empty()) return;
    m_samples = block.SampleCount();
    const auto channels = static_cast<std::size_t>(std::max<std::int16_t>(block.ChannelCount(), 1));
    const std::int32_t gridSamples = std::max(m_samples - 1, 0);
    m_coarse.resize(channels);
    m_coarseKnown.assign(channels, std::vector<bool>(static_cast<std::size_t>(CeilDivide(gridSamples, kChunk))));
}

SampleSpan ExtremesCache::SamplesOf(std::int32_t chunk) const {
    const std::int32_t before = chunk * kChunk;
    return {before + 1, std::min(kChunk, m_samples - 1 - before)};
}

bool ExtremesCache::HasCells(std::int32_t chunk, std::span<const std::int16_t> channels, bool coarse) const {
    const auto found = m_chunks.find(chunk);
    return std::all_of(channels.begin(), channels.end(), [&](std::int16_t channel) {
        const auto at = static_cast<std::size_t>(channel - 1);
        if (coarse) return static_cast<bool>(m_coarseKnown[at][static_cast<std::size_t>(chunk)]);
        return found != m_chunks.end() && !found->second.fine[at].empty();
    });
}

bool ExtremesCache::Fill(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t firstChunk,
                         std::int32_t chunkCount) {
    // Where the samples are stored as frames, reading one channel costs as much as reading all of them.
    std::vector<std::int16_t> all;
    if (block.FramesAreCheap()) {
        all.resize(m_coarse.size());
        std::iota(all.begin(), all.end(), std::int16_t{1});
        channels = all;
    }
    const std::int32_t first = SamplesOf(firstChunk).first;
    const std::int32_t count = SamplesOf(firstChunk + chunkCount - 1).End() - first;
    const auto cells = static_cast<std::size_t>(CeilDivide(count, kCell));
    m_buffer.resize(cells * channels.size());
    std::vector<RunExtremes*> targets(channels.size());
    for (std::size_t at = 0; at < targets.size(); ++at) targets[at] = m_buffer.data() + at * cells;
    if (!block.ColumnExtremes(channels, first, count, kCell, targets)) return false;
    constexpr auto perChunk = static_cast<std::size_t>(kChunk / kCell);
    for (std::int32_t chunk = 0; chunk < chunkCount; ++chunk) {
        const std::size_t from = static_cast<std::size_t>(chunk) * perChunk;
        const std::size_t size = std::min(perChunk, cells - from);
        for (std::size_t at = 0; at < targets.size(); ++at) {
            Store(firstChunk + chunk, static_cast<std::size_t>(channels[at] - 1), {targets[at] + from, size});
        }
    }
    return true;
}

void ExtremesCache::Store(std::int32_t chunk, std::size_t channel, std::span<const RunExtremes> cells) {
    Chunk& entry = m_chunks[chunk];
    entry.used = m_clock;
    entry.fine.resize(m_coarse.size());
    std::vector<RunExtremes>& fine = entry.fine[channel];
    m_bytes += (cells.size() - fine.size()) * sizeof(RunExtremes);
    fine.assign(cells.begin(), cells.end());

    std::vector<RunExtremes>& coarse = m_coarse[channel];
    if (coarse.empty()) {
        coarse.resize(static_cast<std::size_t>(CeilDivide(m_samples - 1, kCoarseCell)));
        m_bytes += coarse.size() * sizeof(RunExtremes);
    }
    const std::size_t target = static_cast<std::size_t>(chunk) * static_cast<std::size_t>(kChunk / kCoarseCell);
    nsp::PlanarRunReducer reducer(2 * kCoarseCell / kCell, coarse.data() + target);
    reducer.Feed(CodesOf(cells.data()), 2 * cells.size());
    reducer.Finish();
    m_coarseKnown[channel][static_cast<std::size_t>(chunk)] = true;
}

void ExtremesCache::DropOldest() {
    while (m_bytes > m_limit && !m_chunks.empty()) {
        const auto oldest = std::min_element(m_chunks.begin(), m_chunks.end(), [](const auto& a, const auto& b) {
            return a.second.used < b.second.used;
        });
        for (const auto& fine : oldest->second.fine) m_bytes -= fine.size() * sizeof(RunExtremes);
        m_chunks.erase(oldest);
    }
}

bool ExtremesCache::ColumnExtremes(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t first,
                                   std::int32_t count, std::int32_t run, std::span<RunExtremes* const> out) {
    Prepare(block);
    const std::int32_t cellSamples = run % kCoarseCell == 0 && first % kCoarseCell == 1 ? kCoarseCell : kCell;
    const bool coarse = cellSamples == kCoarseCell;
    // What is left of the last run behind its whole cells is read: the view may end inside a cell.
    const std::int32_t end = first + count;
    const std::int32_t rest = end == m_samples ? 0 : (count % cellSamples);
    const std::int32_t cellsEnd = end - rest;
    std::vector<nsp::PlanarRunReducer> reducers;
    for (RunExtremes* target : out) reducers.emplace_back(2 * (run / cellSamples), target);
    // Few chunks at a time, so that a view of any length needs no more memory than the limit.
    constexpr std::int32_t chunksAtOnce = 32;
    const auto chunks = static_cast<std::int32_t>(m_coarseKnown.front().size());
    for (std::int32_t at = first; at < cellsEnd;) {
        const std::int32_t chunk = (at - 1) / kChunk;
        ++m_clock;
        if (!HasCells(chunk, channels, coarse)) {
            std::int32_t unknown = 1;
            while (unknown < chunksAtOnce && chunk + unknown < chunks && SamplesOf(chunk + unknown).first < cellsEnd &&
                   !HasCells(chunk + unknown, channels, coarse))
                ++unknown;
            if (!Fill(block, channels, chunk, unknown)) return false;
        }
        const SampleSpan samples = SamplesOf(chunk);
        const std::int32_t stop = std::min(samples.End(), cellsEnd);
        const auto cells = static_cast<std::size_t>(CeilDivide(stop - at, cellSamples));
        if (!coarse) m_chunks.at(chunk).used = m_clock;
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            const auto index = static_cast<std::size_t>(channels[channel] - 1);
            const RunExtremes* cell = coarse ? m_coarse[index].data() + (at - 1) / kCoarseCell
                                             : m_chunks.at(chunk).fine[index].data() + (at - samples.first) / kCell;
            reducers[channel].Feed(CodesOf(cell), 2 * cells);
        }
        at = stop;
        DropOldest();
    }
    if (rest > 0) {
        std::vector<RunExtremes> ends(channels.size());
        std::vector<RunExtremes*> endTargets;
        for (RunExtremes& entry : ends) endTargets.push_back(&entry);
        if (!block.ColumnExtremes(channels, cellsEnd, rest, rest, endTargets)) return false;
        for (std::size_t channel = 0; channel < channels.size(); ++channel)
            reducers[channel].Feed(CodesOf(&ends[channel]), 2);
    }
    for (nsp::PlanarRunReducer& reducer : reducers) reducer.Finish();
    return true;
}

}  // namespace quillon
