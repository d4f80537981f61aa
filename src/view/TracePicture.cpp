#include "view/TracePicture.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "view/Selection.h"
#include "view/TraceMapping.h"

namespace quillon {

namespace {

/// Columns of the graph whose points are seen in columns from .. to-1.
ColumnBand Reaching(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    const std::int32_t reach = TraceCanvas::Reach(scene.look.lineWidth);
    return {std::max(from - reach, 0), std::max(std::min(to + reach, scene.axis.Width()), to) - 1};
}

}  // namespace

void TracePicture::Reset(std::size_t traces, std::int32_t width, std::int32_t height) {
    m_width = width;
    m_height = height;
    m_sides.Reset(traces, width);
    m_failure.clear();
}

void TracePicture::Scroll(std::int32_t shift) {
    m_sides.Scroll(shift);
    m_failure.clear();
}

void TracePicture::Read(const GraphScene& scene, const std::vector<SignalsOfBlock>& groups, std::int32_t from,
                        std::int32_t to) {
    const TraceStretch stretch = StretchOf(scene.axis, from, to);
    std::vector<std::int16_t> shown = ChannelsOf(scene.lanes);
    if (std::exchange(m_readAhead, std::nullopt) == stretch && shown == m_shown) return;
    m_shown = std::move(shown);
    m_readers.resize(std::max(groups.size(), m_readers.size()));
    for (std::size_t at = 0; at < groups.size(); ++at) {
        const SignalsOfBlock& group = groups[at];
        m_readers[at].Read(*group.of.block.block, group.of.extremes, group.channels,
                           group.Stretch(scene.axis, from, to));
    }
}

std::int32_t TracePicture::Approach(const GraphScene& scene, std::int32_t from, std::int32_t to) const {
    // What stands before the first column is drawn, or can be read as that can.
    const std::int32_t last = Reaching(scene, from, to).right;
    const TraceStretch stretch = StretchOf(scene.axis, from, last + 1);
    const std::vector<std::int16_t> shown = ChannelsOf(scene.lanes);
    if (stretch.samples.count < 1 || (m_readAhead == stretch && shown == m_shown)) return to;
    const SceneBlocks blocks = scene.Blocks();
    const auto groups = GroupsOf(blocks, shown);
    const auto known = [&] {
        std::int32_t end = last + 1;
        for (const SignalsOfBlock& group : groups) {
            end = TraceReader::Approach(*group.of.block.block, group.of.extremes, group.channels,
                                        group.Stretch(scene.axis, from, end));
            if (end <= from) break;
        }
        return end;
    };
    std::int32_t end = known();
    // The last columns that are known are needed by those before them.
    const std::int32_t reach = TraceCanvas::Reach(scene.look.lineWidth);
    if (end > last) return to;
    if (end == from || end > from + reach) return std::max(end - reach, from);
    // Where that gets no further, columns are read when they are drawn, some at a time; those behind them too then.
    const std::int32_t before = std::exchange(end, known());
    if (end > last) return to;
    return end == before ? std::min(end, to) : std::max(end - reach, from);
}

bool TracePicture::CanReadNow(const GraphScene& scene) const {
    constexpr int pieces = 4;
    // A slow device is not waited for.
    constexpr auto patience = std::chrono::milliseconds(20);
    const auto start = std::chrono::steady_clock::now();
    for (int piece = 0; piece < pieces && std::chrono::steady_clock::now() - start < patience; ++piece) {
        if (Approach(scene, 0, scene.axis.Width()) == scene.axis.Width()) return true;
    }
    return false;
}

std::optional<ValueRange> TracePicture::SeenRange(const GraphScene& scene) {
    if (!scene.block.block || scene.axis.Visible().count < 1) return std::nullopt;
    const std::int32_t width = scene.axis.Width();
    const SceneBlocks blocks = scene.Blocks();
    const std::vector<SignalsOfBlock> groups = GroupsOf(blocks, ChannelsOf(scene.lanes));
    Read(scene, groups, 0, width);
    m_readAhead = StretchOf(scene.axis, 0, width);
    if (groups.empty() || groups.front().of.before != 0) return std::nullopt;
    return CentralRange(scene.block, groups.front().channels, m_readers.front().points(), scene.rawCodes);
}

void TracePicture::Draw(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    m_canvas.Reset(from, to, m_height, scene.look.lineWidth);
    m_colors.clear();
    if (scene.axis.Visible().count < 1) return m_sides.Forget(from, to);
    const SceneBlocks blocks = scene.Blocks();
    const std::vector<std::int16_t> shown = ChannelsOf(scene.lanes);
    m_colors.resize(shown.size());
    DrawColumns(scene, GroupsOf(blocks, shown), from, to);
}

void TracePicture::DrawColumns(const GraphScene& scene, const std::vector<SignalsOfBlock>& groups, std::int32_t from,
                               std::int32_t to) {
    const auto [firstRead, lastRead] = Reaching(scene, from, to);
    Read(scene, groups, firstRead, lastRead + 1);
    const auto hasHole = [](const TraceReader& reader) { return reader.HasHole(); };
    if (to - from > 1 && std::any_of(m_readers.begin(), m_readers.begin() + std::ssize(groups), hasHole)) {
        // A trace that is read at once ends at its first sample that cannot be.
        const std::int32_t middle = from + (to - from) / 2;
        DrawColumns(scene, groups, from, middle);
        return DrawColumns(scene, groups, middle, to);
    }
    m_canvas.LimitColumns(from, to);
    const std::vector<LaneTrace> traces = TracesOf(scene.lanes);
    // The last channel comes first, so that the first one is on top.
    for (std::size_t group = groups.size(); group-- > 0;) {
        const auto& [of, first, channels] = groups[group];
        const TraceReader& reader = m_readers[group];
        const TraceStretch stretch = groups[group].Stretch(scene.axis, firstRead, lastRead + 1);
        constexpr std::int64_t columnsOfDots = 4;
        const ColumnGrid& grid = stretch.free ? stretch.free->grid : scene.axis.Grid();
        for (std::size_t at = channels.size(); at-- > 0;) {
            const std::size_t trace = first + at;
            DrawTrace(scene, scene.lanes[traces[trace].lane],
                      {of.block, static_cast<std::size_t>(channels[at] - 1), reader.points()[at],
                       grid.HasColumnsPerSample(columnsOfDots * scene.enlargement)},
                      trace, from, to);
        }
    }
    for (std::size_t group = 0; group < groups.size() && m_failure.empty(); ++group)
        m_failure = m_readers[group].Failure();
}

void TracePicture::DrawTrace(const GraphScene& scene, const Lane& lane, const Source& source, std::size_t trace,
                             std::int32_t from, std::int32_t to) {
    const bool free = scene.axis.IsFree();
    // The points of a free axis are those of its columns.
    const TraceGeometry geometry{.zeroRow = lane.zeroRow,
                                 .top = lane.top,
                                 .height = lane.height,
                                 .unitsPerDivision = lane.unitsPerDivision,
                                 .negativeUp = lane.negativeUp,
                                 .samplesPerPixel = free ? 1 : scene.axis.SamplesPerPixel(),
                                 .rawCodes = scene.rawCodes,
                                 .foldOrigin = scene.foldOrigin};
    const ViewBlock& block = source.block;
    const TraceMapping mapping = MapTrace(geometry, block.invScale[source.channel], block.offsets[source.channel]);
    if (mapping.flat) {
        const std::int32_t columns = std::min(scene.axis.StripLength() - scene.axis.FirstColumn(), m_width);
        FlatTrace(mapping, free ? columns : scene.axis.Visible().count, geometry.samplesPerPixel, m_trace);
    } else {
        ToPixels(mapping, source.points, m_trace);
    }
    const std::int32_t top = lane.clip ? lane.top : 0;
    const std::int32_t end = lane.clip ? lane.End() : m_height;
    m_canvas.Limit(top, end);
    m_colors[trace] = scene.Colors().Trace(block.channelNumbers[source.channel]);
    if (onTrace) onTrace({m_trace, m_colors[trace], top, end, !mapping.flat && source.dots});
    const auto id = static_cast<std::uint8_t>(trace + 1);
    if (!mapping.flat && source.dots) m_canvas.DrawDots(m_trace, id);
    const auto [firstRead, lastRead] = Reaching(scene, from, to);
    if (free && !mapping.flat) JoinColumns(m_trace, firstRead, lastRead + 1);
    m_canvas.Draw(m_trace, id);
    m_sides.Mark(trace, from, to, m_trace, lane.top, lane.End());
}

void TracePicture::ForgetBlock() {
    for (TraceReader& reader : m_readers) reader.Reset();
    m_readAhead.reset();
}

}  // namespace quillon
