#include "view/TracePicture.h"

#include <algorithm>
#include <utility>

#include "view/TraceMapping.h"

namespace quillon {

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

void TracePicture::Read(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    const TraceStretch stretch = StretchOf(scene.axis, from, to);
    std::vector<std::int16_t> shown = ChannelsOf(scene.lanes);
    if (std::exchange(m_readAhead, std::nullopt) == stretch && shown == m_shown) return;
    m_shown = std::move(shown);
    m_reader.Read(*scene.block.block, scene.extremes, m_shown, stretch);
}

std::int32_t TracePicture::Approach(const GraphScene& scene, std::int32_t from, std::int32_t to) const {
    const TraceStretch stretch = StretchOf(scene.axis, from, to);
    const std::vector<std::int16_t> shown = ChannelsOf(scene.lanes);
    if (stretch.samples.count < 1 || (m_readAhead == stretch && shown == m_shown)) return to;
    return TraceReader::Approach(*scene.block.block, scene.extremes, shown, stretch);
}

bool TracePicture::CanReadNow(const GraphScene& scene) const {
    constexpr int pieces = 4;
    for (int piece = 0; piece < pieces; ++piece) {
        if (Approach(scene, 0, scene.axis.Width()) == scene.axis.Width()) return true;
    }
    return false;
}

std::optional<ValueRange> TracePicture::SeenRange(const GraphScene& scene) {
    if (!scene.block.block || scene.axis.Visible().count < 1) return std::nullopt;
    const std::int32_t width = scene.axis.Width();
    Read(scene, 0, width);
    m_readAhead = StretchOf(scene.axis, 0, width);
    return CentralRange(scene.block, m_shown, m_reader.points(), scene.rawCodes);
}

void TracePicture::Draw(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    m_canvas.Reset(from, to, m_height);
    m_colors.clear();
    if (scene.axis.Visible().count < 1) return m_sides.Forget(from, to);
    Read(scene, from, to);
    if (m_failure.empty()) m_failure = m_reader.Failure();
    m_colors.resize(m_shown.size());
    const std::vector<LaneTrace> traces = TracesOf(scene.lanes);
    // The last channel comes first, so that the first one is on top.
    for (std::size_t at = traces.size(); at-- > 0;) DrawTrace(scene, scene.lanes[traces[at].lane], at, from, to);
}

void TracePicture::DrawTrace(const GraphScene& scene, const Lane& lane, std::size_t trace, std::int32_t from,
                             std::int32_t to) {
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
    const auto channel = static_cast<std::size_t>(m_shown[trace] - 1);
    const TraceMapping mapping = MapTrace(geometry, scene.block.invScale[channel], scene.block.offsets[channel]);
    if (mapping.flat) {
        const std::int32_t columns = std::min(scene.axis.StripLength() - scene.axis.FirstColumn(), m_width);
        FlatTrace(mapping, free ? columns : scene.axis.Visible().count, geometry.samplesPerPixel, m_trace);
    } else {
        ToPixels(mapping, m_reader.points()[trace], m_trace);
    }
    m_canvas.Limit(lane.clip ? lane.top : 0, lane.clip ? lane.End() : m_height);
    const auto id = static_cast<std::uint8_t>(trace + 1);
    constexpr std::int64_t columnsOfDots = 4;
    if (!mapping.flat && scene.axis.Grid().HasColumnsPerSample(columnsOfDots)) m_canvas.DrawDots(m_trace, id);
    if (free && !mapping.flat) JoinColumns(m_trace);
    m_canvas.Draw(m_trace, id);
    m_sides.Mark(trace, from, to, m_trace, lane.top, lane.End());
    m_colors[trace] = TraceColor(scene.block.channelNumbers[channel]);
}

void TracePicture::ForgetBlock() {
    m_reader.Reset();
    m_readAhead.reset();
}

}  // namespace quillon
