#include "view/FreeColumns.h"

#include <algorithm>
#include <utility>

#include "nsp/RowRuns.h"
#include "nsp/RunReducer.h"
#include "view/CellColumns.h"

namespace quillon {

namespace {

/// Samples of some channels of a block.
class SampleReader {
  public:
    SampleReader(RecordingBlock& block, std::span<const std::int16_t> channels) : m_block(block), m_channels(channels) {
        // Reading all channels in one pass pays where a good part of them is wanted.
        const auto all = static_cast<std::size_t>(block.ChannelCount());
        m_rows = channels.size() > 1 && channels.size() * 4 > all ? all : 0;
    }
    /// One row per channel, until the next call.
    std::span<const std::int16_t* const> Read(std::int32_t first, std::int32_t count) {
        const auto length = static_cast<std::size_t>(count);
        const std::size_t rows = m_rows > 0 ? m_rows : m_channels.size();
        m_codes.resize(std::max(m_codes.size(), length * rows + nsp::kRowPadding));
        if (m_rows > 0) m_block.ReadRows(first, count, m_codes.data());
        m_starts.clear();
        for (std::size_t at = 0; at < m_channels.size(); ++at) {
            const std::size_t row = m_rows > 0 ? static_cast<std::size_t>(m_channels[at] - 1) : at;
            std::int16_t* const codes = m_codes.data() + length * row;
            if (m_rows == 0) m_block.ReadCodes(m_channels[at], first, count, codes);
            m_starts.push_back(codes);
        }
        return m_starts;
    }

  private:
    RecordingBlock& m_block;
    std::span<const std::int16_t> m_channels;
    std::size_t m_rows;  ///< channels of the block, where all are read at once
    std::vector<std::int16_t> m_codes;
    std::vector<const std::int16_t*> m_starts;
};

}  // namespace

std::int32_t FreeColumns::CellRun() const {
    constexpr std::int32_t coarse = ExtremesCache::kCoarseCell;
    // As CellColumns chooses the cells of a column.
    return m_grid.SamplesPerColumn() >= 2.0 * coarse + 1.0 ? coarse : ExtremesCache::kCell;
}

SampleSpan FreeColumns::SamplesOf(const ColumnRange& columns) const {
    const std::int64_t first = m_grid.FirstSample(columns.from);
    const std::int64_t end = std::min<std::int64_t>(m_grid.FirstSample(columns.to), m_block.SampleCount());
    if (end <= first) return {};
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - first)};
}

ColumnRange FreeColumns::Limited(const ColumnRange& columns) const {
    const std::int64_t strip = m_grid.ColumnCount(m_block.SampleCount());
    const auto to = static_cast<std::int32_t>(std::min<std::int64_t>(columns.to, strip));
    return {std::min(columns.from, to), to};
}

FreeColumns::Lists FreeColumns::Read(std::span<const std::int16_t> channels, const ColumnRange& columns) {
    Lists lists(channels.size());
    ColumnMemo& memo = m_extremes.Columns();
    if (const ColumnRange missing = memo.Missing(m_grid, channels, columns); missing.from < missing.to) {
        const Lists computed = Compute(channels, missing);
        for (std::size_t at = 0; at < channels.size(); ++at) memo.Store(channels[at], missing, computed[at]);
    }
    for (std::size_t at = 0; at < channels.size(); ++at) {
        const std::span<const RunExtremes> known = memo.Columns(channels[at], columns);
        lists[at].assign(known.begin(), known.end());
    }
    return lists;
}

FreeColumns::Lists FreeColumns::Compute(std::span<const std::int16_t> channels, const ColumnRange& columns) {
    const std::int32_t end = SamplesOf(columns).End();
    if (!AreOfCells()) return ReadSamples(channels, columns, end);
    std::vector<SampleSpan> runs;
    for (std::int32_t at = columns.from; at < columns.to; ++at) runs.push_back(SamplesOf({at, at + 1}));
    Lists lists(channels.size(), std::vector<RunExtremes>(runs.size()));
    std::vector<RunExtremes*> out;
    for (auto& list : lists) out.push_back(list.data());
    if (!CellColumns(m_block, m_extremes, channels).Reduce(runs, out)) return ReadSamples(channels, columns, end);
    return lists;
}

FreeColumns::Lists FreeColumns::ReadSamples(std::span<const std::int16_t> channels, const ColumnRange& columns,
                                            std::int32_t end) {
    constexpr std::int32_t most = 1 << 13;  // samples per channel at once, so that those of 32 stay in the cache
    SampleReader reader(m_block, channels);
    Lists lists(channels.size());
    std::vector<nsp::RowRun> runs;
    std::vector<RunExtremes*> out(channels.size());
    for (std::int32_t column = columns.from; column < columns.to;) {
        // As many columns as are read at once, or a longer one in pieces.
        const std::int32_t first = SamplesOf({column, column + 1}).first;
        if (first >= end) break;
        runs.clear();
        std::int32_t stop = first;
        for (; column < columns.to && stop < end; ++column) {
            const auto next = static_cast<std::int32_t>(std::min<std::int64_t>(m_grid.FirstSample(column + 1), end));
            if (!runs.empty() && next - first > most) break;
            runs.push_back({stop - first, next - first});
            stop = next;
        }
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            lists[channel].resize(lists[channel].size() + runs.size());
            out[channel] = &*(lists[channel].end() - static_cast<std::ptrdiff_t>(runs.size()));
        }
        if (stop - first <= most) {
            nsp::ReduceRowRuns(reader.Read(first, stop - first), runs, out);
        } else {
            nsp::PlanarSetReducer reducer(stop - first, out);
            for (std::int32_t at = first; at < stop; at += most) {
                const std::int32_t count = std::min(most, stop - at);
                reducer.Feed(reader.Read(at, count), static_cast<std::size_t>(count));
            }
            reducer.Finish();
        }
    }
    return lists;
}

std::vector<RunExtremes> FreeColumns::ReadBefore(std::int16_t channel, const ColumnRange& columns, std::int32_t end) {
    return std::move(ReadSamples({&channel, 1}, columns, end).front());
}

}  // namespace quillon
