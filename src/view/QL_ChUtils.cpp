#include "view/QL_ChUtils.h"

#include <algorithm>
#include <array>
#include <exception>

#include "nsp/NspExtrema.h"
#include "view/FreeColumns.h"
#include "view/ReadableSamples.h"

namespace quillon {

namespace {

RunExtremes ExtremesOf(const std::int16_t* samples, std::int32_t count) {
    int maximumAt = 0;
    int minimumAt = 0;
    const std::int16_t maximum = nsp::nspwMaxExt(samples, count, &maximumAt);
    const std::int16_t minimum = nsp::nspwMinExt(samples, count, &minimumAt);
    return minimumAt < maximumAt ? RunExtremes{minimum, maximum} : RunExtremes{maximum, minimum};
}

void AddRun(std::vector<TracePoint>& points, RunExtremes run) {
    const auto x = static_cast<std::int32_t>(points.size());
    points.push_back({x, run.first});
    points.push_back({x + 1, run.second});
}

std::int32_t RunCount(std::int32_t count, std::int32_t samplesPerPixel) {
    return count > 1 ? (count - 2) / samplesPerPixel + 1 : 0;
}

}  // namespace

std::int16_t DrawChannelTrace(RecordingBlock& block, std::int16_t channel, std::int32_t first, std::int32_t count,
                              std::int32_t samplesPerPixel, std::vector<std::int16_t>& work,
                              std::vector<TracePoint>& points) {
    points.clear();
    if (count < 1) return 0;
    work.resize(static_cast<std::size_t>(count));
    block.ReadCodes(channel, first, count, work.data());
    points.push_back({0, work[0]});
    if (samplesPerPixel > 2) {
        std::int32_t at = 1;
        for (; at <= count - samplesPerPixel; at += samplesPerPixel) {
            AddRun(points, ExtremesOf(work.data() + at, samplesPerPixel));
        }
        if (at < count) AddRun(points, ExtremesOf(work.data() + at, count - at));
    } else {
        for (std::int32_t at = 1; at < count; ++at) points.push_back({at, work[static_cast<std::size_t>(at)]});
    }
    return work.back();
}

bool TraceReader::ReadExtremes(RecordingBlock& block, ExtremesCache* extremes, std::span<const std::int16_t> channels,
                               std::int32_t first, std::int32_t count, std::int32_t samplesPerPixel) {
    const auto runs = static_cast<std::size_t>(RunCount(count, samplesPerPixel));
    m_extremes.resize(runs * channels.size());
    m_targets.resize(channels.size());
    for (std::size_t at = 0; at < channels.size(); ++at) m_targets[at] = m_extremes.data() + at * runs;
    if (!(extremes != nullptr
              ? extremes->ColumnExtremes(block, channels, first + 1, count - 1, samplesPerPixel, m_targets)
              : block.ColumnExtremes(channels, first + 1, count - 1, samplesPerPixel, m_targets)))
        return false;
    for (std::size_t at = 0; at < channels.size(); ++at) {
        std::vector<TracePoint>& points = m_points[at];
        std::int16_t start = 0;
        block.ReadCodes(channels[at], first, 1, &start);
        points.reserve(1 + 2 * runs);
        points.push_back({0, start});
        for (std::size_t run = 0; run < runs; ++run) AddRun(points, m_targets[at][run]);
    }
    return true;
}

namespace {

/// A line into the part may start a column outside, and a run's points lie at its column's middle and right edge.
constexpr std::int64_t kMargin = 2;

/// The samples that columns from .. to-1 of a trace need; empty where there are none.
SampleSpan SamplesFor(const TraceStretch& stretch) {
    const std::int64_t perPixel = stretch.samplesPerPixel;
    const std::int64_t skipped = std::max<std::int64_t>(stretch.fromColumn - kMargin, 0) * perPixel;
    const std::int64_t end = std::min<std::int64_t>((stretch.toColumn + kMargin) * perPixel + 1, stretch.samples.count);
    if (end <= skipped) return {};
    return {static_cast<std::int32_t>(stretch.samples.first + skipped), static_cast<std::int32_t>(end - skipped)};
}

/// The columns of the strip whose points a part of a free axis needs: those beside it too, to which its lines lead.
ColumnRange ColumnsFor(const TraceStretch& stretch) {
    const std::int64_t first = stretch.free->firstColumn;
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return {static_cast<std::int32_t>(std::max<std::int64_t>(first + stretch.fromColumn - 1, 0)),
            static_cast<std::int32_t>(std::min(first + stretch.toColumn + 1, most))};
}

/// The samples that a part of a free axis needs where every sample is a point: from the one to its left, from which a
/// line leads into it, to the one to its right.
SampleSpan EverySampleFor(const RecordingBlock& block, const TraceStretch& stretch) {
    const ColumnGrid& grid = stretch.free->grid;
    const ColumnRange columns = ColumnsFor(stretch);
    const auto first = static_cast<std::int32_t>(std::max<std::int64_t>(grid.FirstSample(columns.from) - 1, 0));
    const std::int64_t end = std::min<std::int64_t>(grid.FirstSample(columns.to) + 2, block.SampleCount());
    return {first, static_cast<std::int32_t>(std::max<std::int64_t>(end - first, 0))};
}

SampleSpan NeededBy(RecordingBlock& block, ExtremesCache& extremes, const TraceStretch& stretch) {
    if (!stretch.free) return SamplesFor(stretch);
    if (stretch.free->grid.ShowsEverySample()) return EverySampleFor(block, stretch);
    const FreeColumns columns(block, extremes, stretch.free->grid);
    return columns.SamplesOf(columns.Limited(ColumnsFor(stretch)));
}

std::int32_t ApproachFree(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                          const TraceStretch& stretch) {
    const ColumnGrid& grid = stretch.free->grid;
    if (channels.empty()) return stretch.toColumn;
    if (grid.ShowsEverySample()) {
        const SampleSpan samples = EverySampleFor(block, stretch);
        return samples.count < 1 || block.Approach(samples.first) ? stretch.toColumn : stretch.fromColumn;
    }
    const FreeColumns columns(block, extremes, grid);
    const ColumnRange missing = extremes.Columns().Missing(grid, channels, columns.Limited(ColumnsFor(stretch)));
    const double most = std::max(block.SamplesPerPiece() / grid.SamplesPerColumn(), 1.0);
    const std::int32_t direct = most < stretch.toColumn - stretch.fromColumn
                                    ? stretch.fromColumn + static_cast<std::int32_t>(most)
                                    : stretch.toColumn;
    if (missing.from >= missing.to) return stretch.toColumn;
    const SampleSpan wanted = columns.SamplesOf(missing);
    if (!columns.AreOfCells()) return block.Approach(wanted.first) ? direct : stretch.fromColumn;
    const std::int32_t skipped = std::max(1 - wanted.first, 0);  // the first sample of a block is in no cell
    const SampleSpan samples{wanted.first + skipped, wanted.count - skipped};
    try {
        if (!extremes.Fill(block, channels, samples, columns.CellRun(), ExtremesCache::Eviction::Allowed))
            return direct;
    } catch (const std::exception&) {
        return direct;
    }
    const std::int32_t known = extremes.KnownTo(block, channels, samples, columns.CellRun());
    // The last column that begins before is not known yet, and the one before it needs that as its neighbour.
    const std::int64_t column =
        known >= samples.End() ? stretch.toColumn : grid.FirstColumn(known) - 1 - stretch.free->firstColumn;
    // At the edges of columns samples are read. Two more than are made stand beside them.
    const std::int64_t reach = std::int64_t{missing.from} - stretch.free->firstColumn + 2 + block.PlacesPerPiece();
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::min(column, reach), stretch.fromColumn, stretch.toColumn));
}

}  // namespace

std::int32_t TraceReader::Approach(RecordingBlock& block, ExtremesCache& extremes,
                                   std::span<const std::int16_t> channels, const TraceStretch& stretch) {
    if (stretch.free) return ApproachFree(block, extremes, channels, stretch);
    const SampleSpan wanted = SamplesFor(stretch);
    if (wanted.count < 2 || channels.empty()) return stretch.toColumn;
    const std::int32_t perPixel = stretch.samplesPerPixel;
    const std::int32_t piece = block.SamplesPerPiece();
    const std::int32_t columns = std::max(piece / perPixel, 1);
    const std::int32_t direct =
        columns < stretch.toColumn - stretch.fromColumn ? stretch.fromColumn + columns : stretch.toColumn;
    if (!ExtremesCache::Serves(wanted.first + 1, perPixel))
        return block.Approach(wanted.first) ? direct : stretch.fromColumn;
    const SampleSpan runs{wanted.first + 1, wanted.count - 1};
    try {
        if (!extremes.Fill(block, channels, runs, perPixel, ExtremesCache::Eviction::Allowed)) return direct;
    } catch (const std::exception&) {
        return direct;
    }
    const std::int32_t known = extremes.KnownTo(block, channels, runs, perPixel);
    if (known == runs.End()) return stretch.toColumn;
    const std::int64_t column = (std::int64_t{known} - 1 - stretch.samples.first) / perPixel - kMargin;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(column, stretch.fromColumn, stretch.toColumn));
}

void TraceReader::Read(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                       const TraceStretch& stretch) {
    m_used = channels.size();
    if (m_points.size() < m_used) m_points.resize(m_used);
    for (std::size_t at = 0; at < m_used; ++at) m_points[at].clear();
    m_failure.clear();
    m_hasHole = false;
    if (channels.empty()) return;
    ReadStretch(block, extremes, channels, stretch);
    if (m_failure.empty()) return;
    const SampleSpan wanted = NeededBy(block, extremes, stretch);
    m_hasHole = wanted.count > 0 && CanRead(block, channels, wanted.End() - 1, 1);
}

void TraceReader::ReadStretch(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                              const TraceStretch& stretch) {
    if (stretch.free) return ReadFree(block, extremes, channels, stretch);
    const SampleSpan wanted = SamplesFor(stretch);
    if (wanted.count < 1) return;
    const std::int32_t skipped = wanted.first - stretch.samples.first;
    const std::int32_t left = stretch.samplesPerPixel > 2 ? 2 * (skipped / stretch.samplesPerPixel) : skipped;
    ReadPoints(block, extremes, channels, wanted.first, wanted.count, stretch.samplesPerPixel);
    if (left == 0) return;
    for (std::size_t at = 0; at < m_used; ++at) {
        for (TracePoint& point : m_points[at]) point.x += left;
    }
}

void TraceReader::ReadPoints(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                             std::int32_t first, std::int32_t count, std::int32_t samplesPerPixel) {
    if (samplesPerPixel > 2 && count > 1) {
        const auto reduced = [&](std::int32_t samples, ExtremesCache* cells) {
            try {
                return ReadExtremes(block, cells, channels, first, samples, samplesPerPixel);
            } catch (const std::exception& error) {
                m_failure = error.what();
                return false;
            }
        };
        if (reduced(count, ExtremesCache::Serves(first + 1, samplesPerPixel) ? &extremes : nullptr)) return;
        if (!m_failure.empty()) {
            // The cache reads more than requested. In a truncated file the last channel is the first to miss a sample.
            std::int32_t readable = CountBeforeCut(block, channels.last(1), first, count);
            if (readable > 1 && reduced(readable, nullptr)) {
                if (readable == count) m_failure.clear();
                return;
            }
            readable = CountBeforeHole(block, channels, first, readable);
            if (readable > 1 && reduced(readable, nullptr)) return;
        }
    }
    // Limits the memory for reading sample by sample.
    constexpr std::int32_t most = 1 << 22;
    if (count > most) return;
    m_failure.clear();
    for (std::size_t at = 0; at < m_used; ++at) {
        const auto draw = [&](std::int32_t samples) {
            try {
                DrawChannelTrace(block, channels[at], first, samples, samplesPerPixel, m_samples, m_points[at]);
                return true;
            } catch (const std::exception& error) {
                m_failure = error.what();
                return false;
            }
        };
        if (draw(count)) continue;
        const std::span<const std::int16_t> channel = channels.subspan(at, 1);
        const std::int32_t readable = CountBeforeCut(block, channel, first, count);
        if (!draw(readable)) draw(CountBeforeHole(block, channel, first, readable));
    }
}

TraceStretch StretchOf(const TimeAxis& axis, std::int32_t fromColumn, std::int32_t toColumn) {
    TraceStretch stretch{axis.Visible(), axis.SamplesPerPixel(), fromColumn, toColumn};
    if (axis.IsFree()) stretch.free = {axis.Grid(), axis.FirstColumn()};
    return stretch;
}

TraceStretch StretchOf(const TimeAxis& axis, std::int32_t samples, std::int32_t fromColumn, std::int32_t toColumn) {
    if (axis.SampleCount() < 1 || samples < 1) return {{}, 1, fromColumn, toColumn};
    const ColumnGrid grid = axis.Grid().Scaled(samples, axis.SampleCount());
    return {grid.Samples(axis.FirstColumn(), axis.Width(), samples), 1, fromColumn, toColumn,
            TraceStretch::Free{grid, axis.FirstColumn()}};
}

void TraceReader::ReadFree(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                           const TraceStretch& stretch) {
    const ColumnGrid& grid = stretch.free->grid;
    if (!grid.ShowsEverySample()) return ReadColumns(block, extremes, channels, stretch);
    const SampleSpan samples = EverySampleFor(block, stretch);
    if (samples.count < 1) return;
    ReadPoints(block, extremes, channels, samples.first, samples.count, 1);
    for (std::size_t at = 0; at < m_used; ++at) {
        for (TracePoint& point : m_points[at])
            point.x = static_cast<std::int32_t>(grid.FirstColumn(samples.first + point.x) - stretch.free->firstColumn);
    }
}

void TraceReader::ReadColumns(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                              const TraceStretch& stretch) {
    FreeColumns reader(block, extremes, stretch.free->grid);
    const ColumnRange columns = reader.Limited(ColumnsFor(stretch));
    const SampleSpan samples = reader.SamplesOf(columns);
    if (samples.count < 1) return;
    const auto add = [&](std::size_t at, const std::vector<RunExtremes>& list) {
        std::int32_t x = columns.from - stretch.free->firstColumn;
        m_points[at].reserve(2 * list.size());
        for (const RunExtremes& column : list) {
            m_points[at].push_back({x, column.first});
            m_points[at].push_back({x++, column.second});
        }
    };
    try {
        const auto lists = reader.Read(channels, columns);
        for (std::size_t at = 0; at < m_used; ++at) add(at, lists[at]);
        return;
    } catch (const std::exception& error) {
        m_failure = error.what();
    }
    bool complete = true;
    for (std::size_t at = 0; at < m_used; ++at) {
        const std::span<const std::int16_t> channel = channels.subspan(at, 1);
        const std::int32_t cut = CountBeforeCut(block, channel, samples.first, samples.count);
        const auto read = [&](std::int32_t count) {
            try {
                add(at, reader.ReadBefore(channel.front(), columns, samples.first + count));
                return true;
            } catch (const std::exception&) {
                return false;
            }
        };
        // The cells reach beyond the columns, so that all may be readable after all.
        const bool whole = read(cut);
        complete = complete && whole && cut == samples.count;
        if (!whole) read(CountBeforeHole(block, channel, samples.first, cut));
    }
    if (complete) m_failure.clear();
}

}  // namespace quillon
