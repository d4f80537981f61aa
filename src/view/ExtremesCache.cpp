#include "view/ExtremesCache.h"

#include <algorithm>
#include <exception>
#include <numeric>

#include "view/DataRange.h"

namespace quillon {

namespace {

/// Presents cells as the samples that they keep. The extremes of a run of cells, and their order, are those of the kept
/// samples, cell by cell.
const std::int16_t* CodesOf(const RunExtremes* cells) {
    static_assert(sizeof(RunExtremes) == 2 * sizeof(std::int16_t));
    return &cells->first;
}

constexpr std::int32_t kUnitsOfChunk = ExtremesCache::kChunk / ExtremesCache::kCoarseCell;

/// Unit that holds a sample from 1 on.
std::int32_t UnitOf(std::int32_t sample) {
    return (sample - 1) / ExtremesCache::kCoarseCell;
}

std::int32_t CeilDivide(std::int32_t value, std::int32_t divisor) {
    return value / divisor + (value % divisor != 0 ? 1 : 0);
}

}  // namespace

void ExtremesCache::Reset() {
    *this = ExtremesCache(m_limit);
}

void ExtremesCache::SetLimit(std::size_t byteLimit) {
    m_limit = byteLimit;
    DropOldest();
}

void ExtremesCache::Prepare(const RecordingBlock& block) {
    if (!m_coarse.empty()) return;
    m_samples = block.SampleCount();
    const auto channels = static_cast<std::size_t>(std::max<std::int16_t>(block.ChannelCount(), 1));
    m_coarse.resize(channels);
    m_coarseKnown.assign(channels, std::vector<bool>(static_cast<std::size_t>(UnitCount(m_samples))));
}

SampleSpan ExtremesCache::SamplesOf(std::int32_t unit) const {
    const std::int32_t before = unit * kCoarseCell;
    return {before + 1, std::min(kCoarseCell, m_samples - 1 - before)};
}

bool ExtremesCache::HasCells(std::int32_t unit, std::span<const std::int16_t> channels, bool coarse) const {
    const auto found = m_chunks.find(unit / kUnitsOfChunk);
    return std::all_of(channels.begin(), channels.end(), [&](std::int16_t channel) {
        const auto at = static_cast<std::size_t>(channel - 1);
        if (coarse) return static_cast<bool>(m_coarseKnown[at][static_cast<std::size_t>(unit)]);
        return found != m_chunks.end() && (found->second.known[at] >> (unit % kUnitsOfChunk) & 1U) != 0;
    });
}

std::int32_t ExtremesCache::KnownTo(const RecordingBlock& block, std::span<const std::int16_t> channels,
                                    const SampleSpan& samples, std::int32_t run) {
    Prepare(block);
    const bool coarse = run % kCoarseCell == 0;
    const std::int32_t end = std::min(samples.End(), m_samples);
    for (std::int32_t at = samples.first; at < end; at = SamplesOf(UnitOf(at)).End()) {
        if (!HasCells(UnitOf(at), channels, coarse)) return at;
    }
    return end;
}

bool ExtremesCache::Fill(RecordingBlock& block, std::span<const std::int16_t> channels, const SampleSpan& samples,
                         std::int32_t run, Eviction eviction) {
    const std::int32_t first = KnownTo(block, channels, samples, run);
    const std::int32_t end = std::min(samples.End(), m_samples);
    if (first < end && !block.Approach(first)) return true;
    const bool filled = first >= end || ReadUnits(block, channels, {first, end - first}, run, eviction);
    DropOldest();
    return filled;
}

bool ExtremesCache::ReadUnits(RecordingBlock& block, std::span<const std::int16_t> channels, const SampleSpan& samples,
                              std::int32_t run, Eviction eviction) {
    const bool coarse = run % kCoarseCell == 0;
    const std::int32_t most = std::max(block.SamplesPerPiece() / kCoarseCell, 1);
    const std::int32_t unit = UnitOf(samples.first);
    const std::int32_t end = std::min(UnitOf(samples.End() - 1) + 1, unit + most);
    std::int32_t count = 1;
    while (unit + count < end && !HasCells(unit + count, channels, coarse)) ++count;
    ++m_clock;
    return FillUnits(block, channels, unit, count, eviction);
}

bool ExtremesCache::FillUnits(RecordingBlock& block, std::span<const std::int16_t> channels, std::int32_t firstUnit,
                              std::int32_t unitCount, Eviction eviction) {
    // Where the samples are stored as frames, reading one channel costs as much as reading all of them.
    std::vector<std::int16_t> all;
    if (block.FramesAreCheap()) {
        all.resize(m_coarse.size());
        std::iota(all.begin(), all.end(), std::int16_t{1});
        channels = all;
    }
    const std::int32_t first = SamplesOf(firstUnit).first;
    const std::int32_t count = SamplesOf(firstUnit + unitCount - 1).End() - first;
    const auto cells = static_cast<std::size_t>(CeilDivide(count, kCell));
    m_buffer.resize(cells * channels.size());
    std::vector<RunExtremes*> targets(channels.size());
    for (std::size_t at = 0; at < targets.size(); ++at) targets[at] = m_buffer.data() + at * cells;
    if (!block.ColumnExtremes(channels, first, count, kCell, targets)) return false;
    // Cells are allocated for whole chunks, of which this may begin one more than it fills.
    const auto chunks = static_cast<std::size_t>(unitCount / kUnitsOfChunk + 2);
    const std::size_t most = chunks * (kChunk / kCell) * channels.size() * sizeof(RunExtremes);
    const bool keepFine = eviction == Eviction::Allowed || m_bytes + most <= m_limit;
    constexpr auto perUnit = static_cast<std::size_t>(kCoarseCell / kCell);
    for (std::int32_t unit = 0; unit < unitCount; ++unit) {
        const std::size_t from = static_cast<std::size_t>(unit) * perUnit;
        const std::size_t size = std::min(perUnit, cells - from);
        for (std::size_t at = 0; at < targets.size(); ++at) {
            const auto channel = static_cast<std::size_t>(channels[at] - 1);
            StoreCoarse(firstUnit + unit, channel, {targets[at] + from, size});
            if (keepFine) StoreFine(firstUnit + unit, channel, {targets[at] + from, size});
        }
    }
    return true;
}

void ExtremesCache::StoreFine(std::int32_t unit, std::size_t channel, std::span<const RunExtremes> cells) {
    constexpr auto perUnit = static_cast<std::size_t>(kCoarseCell / kCell);
    Chunk& entry = m_chunks[unit / kUnitsOfChunk];
    entry.used = m_clock;
    entry.fine.resize(m_coarse.size());
    entry.known.resize(m_coarse.size());
    std::vector<RunExtremes>& fine = entry.fine[channel];
    if (fine.empty()) {
        const std::int32_t units = std::min(kUnitsOfChunk, UnitCount(m_samples) - unit / kUnitsOfChunk * kUnitsOfChunk);
        fine.resize(static_cast<std::size_t>(units) * perUnit);
        m_bytes += fine.size() * sizeof(RunExtremes);
    }
    const std::int32_t place = unit % kUnitsOfChunk;
    std::copy(cells.begin(), cells.end(), fine.begin() + static_cast<std::ptrdiff_t>(place) * std::ptrdiff_t{perUnit});
    entry.known[channel] |= 1U << place;
}

void ExtremesCache::StoreCoarse(std::int32_t unit, std::size_t channel, std::span<const RunExtremes> cells) {
    std::vector<RunExtremes>& coarse = m_coarse[channel];
    if (coarse.empty()) {
        coarse.resize(static_cast<std::size_t>(UnitCount(m_samples)));
        m_bytes += coarse.size() * sizeof(RunExtremes);
    }
    nsp::PlanarRunReducer reducer(2 * kCoarseCell / kCell, coarse.data() + unit);
    reducer.Feed(CodesOf(cells.data()), 2 * cells.size());
    reducer.Finish();
    m_coarseKnown[channel][static_cast<std::size_t>(unit)] = true;
}

std::optional<std::vector<RunExtremes>> ExtremesCache::ExtremesOf(RecordingBlock& block,
                                                                  std::span<const std::int16_t> channels,
                                                                  const SampleSpan& samples) {
    Prepare(block);
    // Units that lie whole inside; sample 0 is before the first one.
    const std::int32_t firstUnit = CeilDivide(std::max(samples.first - 1, 0), kCoarseCell);
    const std::int32_t endUnit = samples.End() == m_samples ? UnitCount(m_samples) : (samples.End() - 1) / kCoarseCell;
    if (firstUnit >= endUnit) return ExtremeCodes(block, channels, samples);
    for (const std::int16_t channel : channels) {
        const std::vector<bool>& known = m_coarseKnown[static_cast<std::size_t>(channel - 1)];
        if (std::find(known.begin() + firstUnit, known.begin() + endUnit, false) != known.begin() + endUnit)
            return std::nullopt;
    }
    std::vector<RunExtremes> found(channels.size());
    for (std::size_t at = 0; at < channels.size(); ++at) {
        const RunExtremes* const cells = m_coarse[static_cast<std::size_t>(channels[at] - 1)].data();
        const auto [low, high] = std::minmax_element(CodesOf(cells + firstUnit), CodesOf(cells + endUnit));
        found[at] = {*low, *high};
    }
    const auto include = [&](std::int32_t first, std::int32_t end) {
        if (first >= end) return;
        const std::vector<RunExtremes> codes = ExtremeCodes(block, channels, {first, end - first});
        for (std::size_t at = 0; at < codes.size(); ++at) {
            const auto [low, high] =
                std::minmax({found[at].first, found[at].second, codes[at].first, codes[at].second});
            found[at] = {low, high};
        }
    };
    include(samples.first, SamplesOf(firstUnit).first);
    include(SamplesOf(endUnit - 1).End(), samples.End());
    return found;
}

std::optional<RunExtremes> ExtremesCache::KnownExtremes(std::int16_t channel) const {
    const auto at = static_cast<std::size_t>(channel - 1);
    if (at >= m_coarse.size()) return std::nullopt;
    std::optional<RunExtremes> found;
    for (std::size_t unit = 0; unit < m_coarseKnown[at].size(); ++unit) {
        if (!m_coarseKnown[at][unit]) continue;
        const RunExtremes& cell = m_coarse[at][unit];
        if (!found) found = cell;
        const auto [low, high] = std::minmax({found->first, found->second, cell.first, cell.second});
        found = {low, high};
    }
    return found;
}

std::int32_t ExtremesCache::UnitCount(std::int32_t samples) {
    return CeilDivide(std::max(samples - 1, 0), kCoarseCell);
}

SampleSpan ExtremesCache::UnitSamples(std::int32_t from, std::int32_t to, std::int32_t samples) {
    const std::int32_t first = from * kCoarseCell + 1;
    const auto end = static_cast<std::int32_t>(std::min<std::int64_t>(std::int64_t{to} * kCoarseCell + 1, samples));
    return {first, end - first};
}

bool ExtremesCache::Matches(RecordingBlock& block, std::int32_t unit) const {
    std::vector<std::int16_t> channels;
    for (std::size_t at = 0; at < m_coarse.size(); ++at) {
        if (m_coarseKnown[at][static_cast<std::size_t>(unit)]) channels.push_back(static_cast<std::int16_t>(at + 1));
    }
    if (channels.empty()) return true;
    std::vector<RunExtremes> found(channels.size());
    std::vector<RunExtremes*> targets;
    for (RunExtremes& each : found) targets.push_back(&each);
    const SampleSpan samples = SamplesOf(unit);
    if (!block.ColumnExtremes(channels, samples.first, samples.count, kCoarseCell, targets)) return false;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        if (found[at] != m_coarse[static_cast<std::size_t>(channels[at] - 1)][static_cast<std::size_t>(unit)])
            return false;
    }
    return true;
}

bool ExtremesCache::Grow(RecordingBlock& block) try {
    if (m_coarse.empty()) return true;
    if (m_coarse.size() != static_cast<std::size_t>(block.ChannelCount()) || block.SampleCount() < m_samples)
        return false;
    // The last unit had room for more samples, as had the chunk that holds it. Its whole units are read again too,
    // since nobody would miss the fine cells of known ones.
    const std::int32_t chunk = (m_samples - 1) / kCoarseCell / kUnitsOfChunk;
    const std::int32_t whole = chunk * kUnitsOfChunk;
    if (const auto last = m_chunks.find(chunk); last != m_chunks.end()) Drop(last);
    m_samples = block.SampleCount();
    const auto units = static_cast<std::size_t>(UnitCount(m_samples));
    for (std::size_t at = 0; at < m_coarse.size(); ++at) {
        m_coarseKnown[at].resize(static_cast<std::size_t>(whole));
        m_coarseKnown[at].resize(units);
        if (m_coarse[at].empty()) continue;
        m_bytes += (units - m_coarse[at].size()) * sizeof(RunExtremes);
        m_coarse[at].resize(units);
    }
    m_columns = {};
    // The last one, and some before it at equal distances.
    const std::int32_t step = std::max(whole / 8, 1);
    for (std::int32_t unit = whole - 1; unit >= 0; unit -= step) {
        if (!Matches(block, unit)) return false;
    }
    return true;
} catch (const std::exception&) {
    return false;
}

void ExtremesCache::Drop(std::unordered_map<std::int32_t, Chunk>::iterator chunk) {
    for (const auto& fine : chunk->second.fine) m_bytes -= fine.size() * sizeof(RunExtremes);
    m_chunks.erase(chunk);
}

void ExtremesCache::DropOldest() {
    while (m_bytes > m_limit && !m_chunks.empty()) {
        const auto oldest = std::min_element(m_chunks.begin(), m_chunks.end(), [](const auto& a, const auto& b) {
            return a.second.used < b.second.used;
        });
        Drop(oldest);
    }
}

std::span<const RunExtremes> ExtremesCache::CellsFrom(std::int16_t channel, std::int32_t cell, std::int32_t end,
                                                      std::int32_t size) {
    const auto at = static_cast<std::size_t>(channel - 1);
    if (size == kCoarseCell) return {m_coarse[at].data() + cell, static_cast<std::size_t>(end - cell)};
    constexpr std::int32_t perChunk = kChunk / kCell;
    Chunk& chunk = m_chunks.at(cell / perChunk);
    chunk.used = ++m_clock;
    const std::int32_t place = cell % perChunk;
    return {chunk.fine[at].data() + place, static_cast<std::size_t>(std::min(end - cell, perChunk - place))};
}

RunExtremes ExtremesCache::OfCells(std::int16_t channel, std::int32_t first, std::int32_t end, std::int32_t size) {
    RunExtremes found;
    nsp::PlanarRunReducer reducer(2 * (end - first), &found);
    for (std::int32_t at = first; at < end;) {
        const std::span<const RunExtremes> cells = CellsFrom(channel, at, end, size);
        reducer.Feed(CodesOf(cells.data()), 2 * cells.size());
        at += static_cast<std::int32_t>(cells.size());
    }
    reducer.Finish();
    return found;
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
    for (std::int32_t at = first; at < cellsEnd;) {
        // Fine cells lie together within a chunk only.
        const std::int64_t chunkEnd = std::int64_t{(at - 1) / kChunk + 1} * kChunk + 1;
        const std::int32_t limit =
            coarse ? cellsEnd : static_cast<std::int32_t>(std::min<std::int64_t>(chunkEnd, cellsEnd));
        std::int32_t stop = KnownTo(block, channels, {at, limit - at}, cellSamples);
        if (stop == at) {
            if (!ReadUnits(block, channels, {at, cellsEnd - at}, cellSamples, Eviction::Allowed)) return false;
            stop = KnownTo(block, channels, {at, limit - at}, cellSamples);
        }
        const auto cells = static_cast<std::size_t>(CeilDivide(stop - at, cellSamples));
        Chunk* const chunk = coarse ? nullptr : &m_chunks.at((at - 1) / kChunk);
        if (chunk != nullptr) chunk->used = ++m_clock;
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            const auto index = static_cast<std::size_t>(channels[channel] - 1);
            const RunExtremes* cell =
                coarse ? m_coarse[index].data() + UnitOf(at) : chunk->fine[index].data() + (at - 1) % kChunk / kCell;
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
