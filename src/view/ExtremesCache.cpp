#include "view/ExtremesCache.h"

#include <algorithm>
#include <numeric>

namespace quillon {

namespace {

/// Adds up the cells of one run in their order.
class Merger {
  public:
    void Add(RunExtremes cell) {
        const std::int16_t maximum = std::max(cell.first, cell.second);
        const std::int16_t minimum = std::min(cell.first, cell.second);
        if (m_empty) {
            m_empty = false;
            m_maximum = maximum;
            m_minimum = minimum;
            m_minimumFirst = cell.first < cell.second;
            return;
        }
        const bool higher = maximum > m_maximum;
        const bool lower = minimum < m_minimum;
        // The extreme that the cell does not exceed occurred earlier.
        if (higher) m_minimumFirst = lower ? cell.first < cell.second : true;
        if (lower && !higher) m_minimumFirst = false;
        m_maximum = std::max(m_maximum, maximum);
        m_minimum = std::min(m_minimum, minimum);
    }
    [[nodiscard]] RunExtremes Take() {
        m_empty = true;
        return m_minimumFirst ? RunExtremes{m_minimum, m_maximum} : RunExtremes{m_maximum, m_minimum};
    }
    [[nodiscard]] bool IsEmpty() const { return m_empty; }

  private:
    std::int16_t m_maximum = 0;
    std::int16_t m_minimum = 0;
    bool m_minimumFirst = false;
    bool m_empty = true;
};

RunExtremes Merge(std::span<const RunExtremes> cells) {
    Merger merger;
    for (const RunExtremes cell : cells) merger.Add(cell);
    return merger.Take();
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

ExtremesCache::Range ExtremesCache::SamplesOf(std::int32_t chunk) const {
    const std::int32_t before = chunk * kChunk;
    return {before + 1, std::min(kChunk, m_samples - 1 - before)};
}

bool ExtremesCache::Knows(std::int32_t chunk, std::span<const std::int16_t> channels, bool coarse) const {
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
    const Range last = SamplesOf(firstChunk + chunkCount - 1);
    const std::int32_t first = SamplesOf(firstChunk).first;
    const std::int32_t count = last.first + last.count - first;
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

    constexpr auto perCoarse = static_cast<std::size_t>(kCoarseCell / kCell);
    std::vector<RunExtremes>& coarse = m_coarse[channel];
    if (coarse.empty()) {
        coarse.resize(static_cast<std::size_t>(CeilDivide(m_samples - 1, kCoarseCell)));
        m_bytes += coarse.size() * sizeof(RunExtremes);
    }
    std::size_t target = static_cast<std::size_t>(chunk) * static_cast<std::size_t>(kChunk / kCoarseCell);
    for (std::size_t from = 0; from < cells.size(); from += perCoarse, ++target) {
        coarse[target] = Merge(cells.subspan(from, std::min(perCoarse, cells.size() - from)));
    }
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
    std::vector<Merger> mergers(channels.size());
    std::vector<RunExtremes*> targets(out.begin(), out.end());
    std::int32_t filled = 0;  // samples of the run under way
    // Few chunks at a time, so that a view of any length needs no more memory than the limit.
    constexpr std::int32_t chunksAtOnce = 32;
    for (std::int32_t at = first; at < cellsEnd;) {
        const std::int32_t chunk = (at - 1) / kChunk;
        ++m_clock;
        if (!Knows(chunk, channels, coarse)) {
            std::int32_t unknown = 1;
            while (unknown < chunksAtOnce && SamplesOf(chunk + unknown).first < cellsEnd &&
                   !Knows(chunk + unknown, channels, coarse))
                ++unknown;
            if (!Fill(block, channels, chunk, unknown)) return false;
        }
        const Range samples = SamplesOf(chunk);
        const std::int32_t stop = std::min(samples.first + samples.count, cellsEnd);
        const auto cells = static_cast<std::size_t>(CeilDivide(stop - at, cellSamples));
        if (!coarse) m_chunks.at(chunk).used = m_clock;
        std::int32_t chunkFilled = 0;
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            const auto index = static_cast<std::size_t>(channels[channel] - 1);
            const RunExtremes* cell = coarse ? m_coarse[index].data() + (at - 1) / kCoarseCell
                                             : m_chunks.at(chunk).fine[index].data() + (at - samples.first) / kCell;
            chunkFilled = filled;
            for (std::size_t n = 0; n < cells; ++n) {
                mergers[channel].Add(cell[n]);
                chunkFilled += cellSamples;
                if (chunkFilled < run) continue;
                *targets[channel]++ = mergers[channel].Take();
                chunkFilled = 0;
            }
        }
        filled = chunkFilled;
        at = stop;
        DropOldest();
    }
    if (rest > 0) {
        std::vector<RunExtremes> ends(channels.size());
        std::vector<RunExtremes*> endTargets;
        for (RunExtremes& entry : ends) endTargets.push_back(&entry);
        if (!block.ColumnExtremes(channels, cellsEnd, rest, rest, endTargets)) return false;
        for (std::size_t channel = 0; channel < channels.size(); ++channel) mergers[channel].Add(ends[channel]);
    }
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        if (!mergers[channel].IsEmpty()) *targets[channel] = mergers[channel].Take();
    }
    return true;
}

}  // namespace quillon
