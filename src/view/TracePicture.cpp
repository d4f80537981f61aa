#include "view/TracePicture.h"

#include <utility>

#include "data/ChannelSelection.h"
#include "view/TraceMapping.h"

namespace quillon {

void TracePicture::Reset(std::size_t traces, std::int32_t width, std::int32_t height) {
    m_width = width;
    m_height = height;
    m_sides.Reset(traces, width, height);
    m_failure.clear();
}

void TracePicture::Scroll(std::int32_t shift) {
    m_sides.Scroll(shift);
    m_failure.clear();
}

void TracePicture::Read(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    const VisibleRange visible = scene.axis.Visible();
    const TraceStretch stretch{visible.first - 1, visible.Count(), scene.axis.SamplesPerPixel(), from, to};
    std::vector<std::int16_t> shown = ShownChannels(scene.block, scene.slots);
    if (std::exchange(m_readAhead, std::nullopt) == stretch && shown == m_shown) return;
    m_shown = std::move(shown);
    m_reader.Read(*scene.block.block, m_shown, stretch);
}

std::optional<ValueRange> TracePicture::SeenRange(const GraphScene& scene) {
    const VisibleRange visible = scene.axis.Visible();
    if (!scene.block.block || visible.Count() < 1) return std::nullopt;
    const std::int32_t width = scene.axis.Width();
    Read(scene, 0, width);
    m_readAhead = {visible.first - 1, visible.Count(), scene.axis.SamplesPerPixel(), 0, width};
    return CentralRange(scene.block, m_shown, m_reader.points(), scene.rawCodes);
}

void TracePicture::Draw(const GraphScene& scene, std::int32_t from, std::int32_t to) {
    m_canvas.Reset(from, to, m_height);
    m_colors.clear();
    const VisibleRange visible = scene.axis.Visible();
    if (visible.Count() < 1) return m_sides.Forget(from, to);
    Read(scene, from, to);
    if (m_failure.empty()) m_failure = m_reader.Failure();
    TraceGeometry geometry;
    geometry.zeroRow = scene.amplitude.ZeroRow();
    geometry.height = m_height;
    geometry.unitsPerDivision = scene.amplitude.UnitsPerDivision();
    geometry.samplesPerPixel = scene.axis.SamplesPerPixel();
    geometry.rawCodes = scene.rawCodes;
    geometry.foldOrigin = scene.foldOrigin;
    m_colors.resize(m_shown.size());
    // The last channel comes first, so that the first one lies on top.
    for (std::size_t at = m_shown.size(); at-- > 0;) {
        const auto channel = static_cast<std::size_t>(m_shown[at] - 1);
        const TraceMapping mapping = MapTrace(geometry, scene.block.invScale[channel], scene.block.offsets[channel]);
        if (mapping.flat) {
            FlatTrace(mapping, visible.Count(), geometry.samplesPerPixel, m_trace);
        } else {
            ToPixels(mapping, m_reader.points()[at], m_trace);
        }
        m_canvas.Draw(m_trace, static_cast<std::uint8_t>(at + 1));
        m_sides.Mark(at, from, to, m_trace);
        m_colors[at] = TraceColor(scene.block.channelNumbers[channel]);
    }
}

void TracePicture::ForgetBlock() {
    m_reader.Reset();
    m_readAhead.reset();
}

}  // namespace quillon
