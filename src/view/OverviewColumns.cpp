#include "view/OverviewColumns.h"

#include <exception>
#include <numeric>
#include <utility>

namespace quillon {

namespace {

/// Columns of fewer samples are read.
constexpr double kShortColumn = ExtremesCache::kCell;

}  // namespace

OverviewColumns::Strip OverviewColumns::Begin(const ViewBlock& block, std::int32_t width) {
    Strip strip;
    strip.block = block.block;
    strip.samples = block.sampleCount;
    strip.grid = ColumnGrid(block.sampleCount, width);
    const auto columns = static_cast<std::size_t>(width);
    const auto channels = static_cast<std::size_t>(std::max<std::int16_t>(block.block->ChannelCount(), 0));
    strip.channels.assign(channels, std::vector<CodeRange>(columns));
    strip.known.resize(columns);
    if (strip.grid.SamplesPerColumn() < kShortColumn && !strip.channels.empty()) {
        strip.exact = strip.channels;
    } else {
        strip.read = strip.samples;
    }
    return strip;
}

OverviewColumns::Strip* OverviewColumns::StripOf(const ViewBlock& block) {
    const auto found = std::find_if(m_strips.begin(), m_strips.end(),
                                    [&](const Strip& strip) { return strip.block.lock() == block.block; });
    return found == m_strips.end() ? nullptr : &*found;
}

std::span<const CodeRange> OverviewColumns::Of(const ViewBlock& block, std::int16_t channel) const {
    for (const Strip& strip : m_strips) {
        if (strip.block.lock() == block.block) return strip.channels.at(static_cast<std::size_t>(channel - 1));
    }
    return {};
}

bool OverviewColumns::Update(const SceneBlocks& blocks, std::int32_t width) {
    if (std::exchange(m_width, width) != width) m_strips.clear();
    bool changed = std::erase_if(m_strips, [&](const Strip& strip) {
                       return std::none_of(blocks.begin(), blocks.end(), [&](const SceneBlock& shown) {
                           return strip.block.lock() == shown.block.block && strip.samples == shown.block.sampleCount;
                       });
                   }) > 0;
    std::int64_t most = m_cellsAtOnce;
    for (const SceneBlock& shown : blocks) {
        if (!shown.block.block || shown.block.sampleCount < 1 || width < 1) continue;
        Strip* strip = StripOf(shown.block);
        if (strip == nullptr) {
            strip = &m_strips.emplace_back(Begin(shown.block, width));
            changed = true;
        }
        changed |= Take(*strip, shown.extremes, *shown.block.block, most);
    }
    return changed;
}

bool OverviewColumns::HasMore() const {
    return std::any_of(m_strips.begin(), m_strips.end(),
                       [](const Strip& strip) { return strip.next >= 0 || strip.read < strip.samples; });
}

double OverviewColumns::ReadShare() const {
    double read = 0.0;
    double all = 0.0;
    for (const Strip& strip : m_strips) {
        read += strip.read;
        all += strip.samples;
    }
    return all > 0.0 ? read / all : 1.0;
}

bool OverviewColumns::ReadMore(const SceneBlocks& blocks) {
    for (const SceneBlock& shown : blocks) {
        Strip* const strip = StripOf(shown.block);
        if (strip != nullptr && strip->read < strip->samples) return Read(*strip, *shown.block.block);
    }
    return false;
}

bool OverviewColumns::Take(Strip& strip, ExtremesCache& extremes, RecordingBlock& block, std::int64_t& most) {
    // What is left of other blocks may be nothing, and the first sample alone has no cell.
    if (strip.samples < 2 || strip.channels.empty()) return false;
    std::vector<std::int16_t> all(strip.channels.size());
    std::iota(all.begin(), all.end(), std::int16_t{1});
    const bool coarse = strip.grid.SamplesPerColumn() >= ExtremesCache::kCoarseCell;
    bool changed = false;
    const auto columns = static_cast<std::int32_t>(strip.known.size());
    for (std::int32_t column = std::max(std::exchange(strip.next, -1), 0); column < columns; ++column) {
        const auto at = static_cast<std::size_t>(column);
        if (strip.known[at]) continue;
        if (most <= 0) {
            strip.next = column;
            return changed;
        }
        const SampleSpan samples = strip.grid.Samples(column, 1, strip.samples);
        const std::int32_t first = std::max(samples.first, 1);
        const std::int32_t end = std::max(samples.End(), first + 1);
        const auto isKnown = [&](std::int32_t cell) {
            return extremes.KnownTo(block, all, {first, end - first}, cell) >= end;
        };
        // Fine cells that found no room are missing where coarse ones are there.
        std::int32_t size = coarse ? ExtremesCache::kCoarseCell : ExtremesCache::kCell;
        if (!isKnown(size)) {
            if (coarse || !isKnown(ExtremesCache::kCoarseCell)) continue;
            size = ExtremesCache::kCoarseCell;
        }
        const std::int32_t from = (first - 1) / size;
        const std::int32_t to = (end - 2) / size + 1;
        for (const std::int16_t channel : all) {
            const RunExtremes found = extremes.OfCells(channel, from, to, size);
            CodeRange& range = strip.channels[static_cast<std::size_t>(channel - 1)][at];
            range.Add(found.first);
            range.Add(found.second);
        }
        most -= std::int64_t{to - from} * static_cast<std::int64_t>(all.size());
        strip.known[at] = true;
        changed = true;
    }
    return changed;
}

bool OverviewColumns::Read(Strip& strip, RecordingBlock& block) {
    if (!block.Approach(strip.read)) return false;
    const std::int32_t first = strip.read;
    const std::int32_t count = std::min(std::max(block.SamplesPerPiece(), 1), strip.samples - first);
    std::vector<std::int16_t> codes(static_cast<std::size_t>(count) * strip.channels.size());
    try {
        block.ReadRows(first, count, codes.data());
    } catch (const std::exception&) {
        strip.read = strip.samples;
        strip.exact.clear();
        return false;
    }
    strip.read += count;
    const std::int16_t* row = codes.data();
    for (std::vector<CodeRange>& columns : strip.exact) {
        const auto last = static_cast<std::int32_t>(strip.grid.LastColumn(strip.read - 1));
        for (auto column = static_cast<std::int32_t>(strip.grid.FirstColumn(first)); column <= last; ++column) {
            const SampleSpan samples = strip.grid.Samples(column, 1, strip.samples);
            const std::int32_t from = std::max(samples.first, first);
            const std::int32_t to = std::min(samples.End(), strip.read);
            for (std::int32_t at = from; at < to; ++at) columns[static_cast<std::size_t>(column)].Add(row[at - first]);
        }
        row += count;
    }
    if (strip.read < strip.samples) return false;
    strip.channels = std::exchange(strip.exact, {});
    strip.known.assign(strip.known.size(), true);
    strip.next = -1;
    return true;
}

}  // namespace quillon
