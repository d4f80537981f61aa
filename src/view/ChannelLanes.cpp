#include "view/ChannelLanes.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "view/ExtremesCache.h"
#include "view/LaneFits.h"
#include "view/ScaleSteps.h"

namespace quillon {

namespace {

std::size_t At(std::int16_t channel) {
    return static_cast<std::size_t>(channel - 1);
}

/// The step for that many base units per lane height; products that come out a little too large are the step below.
int StepFor(const LaneChannel& channel, double valuesPerLane) {
    return StepHolding(valuesPerLane * channel.group.factor * (1.0 - 1e-9));
}

}  // namespace

void ChannelLanes::SetRawCodes(bool rawCodes) {
    m_fitted = m_fitted && rawCodes == m_rawCodes;
    m_rawCodes = rawCodes;
}

void ChannelLanes::Restore(const LaneSettings& settings) {
    m_settings = settings;
    m_fitted = KnowsAll();
}

bool ChannelLanes::KnowsAll() const {
    const std::vector<LaneChannel> channels = Channels();
    return std::all_of(channels.begin(), channels.end(),
                       [&](const LaneChannel& channel) { return Scales().channels.contains(channel.key); });
}

void ChannelLanes::SignalsChosen(const Lanes& before) {
    m_fitted = false;
    const std::vector<std::int16_t> order = Order();
    for (const Lane& lane : before) {
        if (lane.channels.empty() || lane.channels.front() > m_document.Block().channelCount) continue;
        const auto found = std::find(order.begin(), order.end(), lane.channels.front());
        if (found == order.end()) continue;
        m_settings.first = static_cast<std::int32_t>(found - order.begin());
        return;
    }
}

void ChannelLanes::FitOnce() {
    if (m_fitted || m_height < 1 || !IsUsed()) return;
    m_fitted = true;
    const std::vector<LaneChannel> channels = Channels();
    // Of many blocks less is read of each: all of it happens before the first picture.
    constexpr std::int32_t allStretches = 256;
    const auto blocks = static_cast<std::int32_t>(m_document.OtherBlocks().size()) + 1;
    const std::int32_t most = std::clamp(allStretches / blocks, 4, kTypicalStretches);
    auto spans = TypicalSpans(m_document.Block(), channels, most);
    for (const OtherBlock& other : m_document.OtherBlocks()) {
        const auto first = static_cast<std::size_t>(other.before);
        const auto own = std::span(channels).subspan(first, other.block.channelNumbers.size());
        const auto found = TypicalSpans(other.block, own, most);
        std::copy(found.begin(), found.end(), spans.begin() + static_cast<std::ptrdiff_t>(first));
    }
    FitTypical({channels, spans, Layout().Margin()}, ChangedScales());
}

std::vector<LaneChannel> ChannelLanes::Channels() const {
    return LaneChannelsOf(m_document, m_rawCodes);
}

std::vector<std::int16_t> ChannelLanes::OrderOf(const std::vector<LaneChannel>& channels) const {
    std::vector<std::int16_t> order;
    for (const std::size_t at : LaneOrder(channels, m_settings.order)) {
        if (channels[at].shown) order.push_back(static_cast<std::int16_t>(at + 1));
    }
    return order;
}

std::vector<std::int16_t> ChannelLanes::VisibleOf(const std::vector<LaneChannel>& channels) const {
    std::vector<std::int16_t> order = OrderOf(channels);
    const LaneLayout layout = LayoutOf(channels);
    order.resize(static_cast<std::size_t>(layout.First() + layout.Visible()));
    order.erase(order.begin(), order.begin() + layout.First());
    return order;
}

LaneLayout ChannelLanes::LayoutOf(const std::vector<LaneChannel>& channels) const {
    const auto count =
        std::count_if(channels.begin(), channels.end(), [](const auto& channel) { return channel.shown; });
    return {static_cast<std::int32_t>(count), m_height, m_dpi, m_settings.first};
}

Lanes ChannelLanes::Make() const {
    const std::vector<LaneChannel> channels = Channels();
    const LaneLayout layout = LayoutOf(channels);
    const double laneHeight = layout.LaneHeight();
    Lanes lanes;
    for (const std::int16_t channel : VisibleOf(channels)) {
        const LaneChannel& own = channels[At(channel)];
        const auto at = static_cast<std::int32_t>(lanes.size());
        Lane lane{.top = layout.Top(at), .height = layout.Top(at + 1) - layout.Top(at)};
        const std::int64_t shift = Shift(own, laneHeight);
        lane.zeroRow = lane.top + lane.height / 2 + (m_settings.negativeUp ? -shift : shift);
        const double unit = m_rawCodes ? static_cast<double>(AmplitudeScale::kCodesPerUnit) : 1.0;
        lane.unitsPerDivision = Scales().ValuesPerLane(own) / laneHeight * AmplitudeScale::kDivision / unit;
        lane.negativeUp = m_settings.negativeUp;
        lane.clip = m_settings.clip;
        lane.single = true;
        lane.channels = {channel};
        lanes.push_back(std::move(lane));
    }
    if (lanes.empty()) lanes.push_back({.height = m_height, .zeroRow = m_height / 2, .single = true});
    return lanes;
}

std::int64_t ChannelLanes::Shift(const LaneChannel& channel, double laneHeight) const {
    const LaneScales& scales = Scales();
    const double rows = scales.OwnOf(channel).Middle(channel) * (laneHeight / scales.ValuesPerLane(channel));
    constexpr auto farthest = static_cast<double>(AmplitudeScale::kFarthest);
    return static_cast<std::int64_t>(std::nearbyint(std::clamp(rows, -farthest, farthest)));
}

void ChannelLanes::MoveDown(const LaneChannel& channel, double laneHeight, std::int64_t rows) {
    const std::int64_t down =
        std::clamp(m_settings.negativeUp ? -rows : rows, -AmplitudeScale::kFarthest, AmplitudeScale::kFarthest);
    const std::int64_t shift =
        std::clamp(Shift(channel, laneHeight) + down, -AmplitudeScale::kFarthest, AmplitudeScale::kFarthest);
    LaneScales& scales = ChangedScales();
    // In whole rows, so that moving back leads to the same rows again.
    scales.channels[channel.key].Middle(channel) =
        static_cast<double>(shift) / (laneHeight / scales.ValuesPerLane(channel));
}

void ChannelLanes::ZoomAll(int steps) {
    std::set<std::u16string> names;
    for (const LaneChannel& channel : Channels()) names.insert(channel.group.name);
    for (const std::u16string& name : names) {
        int& step = ChangedScales().groups[name];
        step = ClampStep(step - ClampStep(steps));
    }
}

void ChannelLanes::ZoomGroup(std::int16_t channel, int steps) {
    int& step = ChangedScales().groups[Channels()[At(channel)].group.name];
    step = ClampStep(step - ClampStep(steps));
}

void ChannelLanes::ZoomChannel(std::int16_t channel, int steps) {
    int& step = ChangedScales().channels[Channels()[At(channel)].key].step;
    step = ClampStep(step + ClampStep(steps));
}

void ChannelLanes::SelectScale(std::int16_t channel, double valuesPerLane) {
    const LaneChannel own = Channels()[At(channel)];
    ChangedScales().groups[own.group.name] = StepFor(own, valuesPerLane);
}

bool ChannelLanes::HasScale(std::int16_t channel, double valuesPerLane) const {
    const LaneChannel own = Channels()[At(channel)];
    return Scales().StepOf(own.group) == StepFor(own, valuesPerLane);
}

void ChannelLanes::Move(std::int16_t channel, std::int64_t rows) {
    const std::vector<LaneChannel> channels = Channels();
    MoveDown(channels[At(channel)], LayoutOf(channels).LaneHeight(), rows);
}

void ChannelLanes::MoveAll(std::int64_t rows) {
    const std::vector<LaneChannel> channels = Channels();
    const double laneHeight = LayoutOf(channels).LaneHeight();
    for (const LaneChannel& channel : channels) {
        if (channel.shown) MoveDown(channel, laneHeight, rows);
    }
}

void ChannelLanes::CentreZero() {
    for (const LaneChannel& channel : Channels()) ChangedScales().channels[channel.key].Middle(channel) = 0.0;
}

namespace {

/// The spans of what the graph shows of some channels, one per signal; the wanted ones in ascending order.
std::vector<std::optional<LaneSpan>> SeenSpans(const SceneBlocks& blocks, const std::vector<LaneChannel>& channels,
                                               const std::vector<std::int16_t>& wanted, const TimeAxis& axis) {
    std::vector<std::optional<LaneSpan>> spans(channels.size());
    for (const SignalsOfBlock& group : GroupsOf(blocks, wanted)) {
        TraceReader reader;
        reader.Read(*group.of.block.block, group.of.extremes, group.channels, group.Stretch(axis, 0, axis.Width()));
        for (std::size_t at = 0; at < group.channels.size(); ++at) {
            const std::size_t signal = At(wanted[group.first + at]);
            spans[signal] = SpanOfPoints(channels[signal], reader.points()[at]);
        }
    }
    return spans;
}

/// Whether all that the graph would show of some channels can be read quickly; reads a little of it.
bool CanReadQuickly(const SceneBlocks& blocks, const std::vector<std::int16_t>& wanted, const TimeAxis& axis) {
    constexpr int pieces = 4;
    for (const SignalsOfBlock& group : GroupsOf(blocks, wanted)) {
        const TraceStretch stretch = group.Stretch(axis, 0, axis.Width());
        bool quick = false;
        for (int piece = 0; piece < pieces && !quick; ++piece)
            quick = TraceReader::Approach(*group.of.block.block, group.of.extremes, group.channels, stretch) >=
                    stretch.toColumn;
        if (!quick) return false;
    }
    return true;
}

std::vector<std::int16_t> Sorted(std::vector<std::int16_t> channels) {
    std::sort(channels.begin(), channels.end());
    return channels;
}

}  // namespace

void ChannelLanes::FitShown(const TimeAxis& axis, const SceneBlocks& blocks) {
    if (!m_document.Block().block || axis.Visible().count < 1) return;
    std::vector<std::int16_t> wanted = Sorted(Order());
    if (!CanReadQuickly(blocks, wanted, axis)) wanted = Sorted(Visible());
    const std::vector<LaneChannel> channels = Channels();
    const auto spans = SeenSpans(blocks, channels, wanted, axis);
    FitGroups({channels, spans, Layout().Margin()}, ChangedScales());
}

void ChannelLanes::FitAlone(std::int16_t channel, const TimeAxis& axis, const SceneBlocks& blocks) {
    if (!m_document.Block().block || axis.Visible().count < 1) return;
    const std::vector<LaneChannel> channels = Channels();
    const auto spans = SeenSpans(blocks, channels, {channel}, axis);
    FitChannel({channels, spans, Layout().Margin()}, At(channel), ChangedScales());
}

bool ChannelLanes::Scroll(std::int32_t lanes) {
    const LaneLayout layout = Layout();
    const std::int64_t most = layout.Count() - layout.Visible();
    const auto first =
        static_cast<std::int32_t>(std::clamp<std::int64_t>(std::int64_t{layout.First()} + lanes, 0, most));
    if (first == layout.First()) return false;
    m_settings.first = first;
    return true;
}

bool ChannelLanes::Reorder(std::int16_t channel, std::int16_t to) {
    const std::vector<std::int16_t> before = Order();
    std::vector<std::int16_t> after = before;
    const auto from = std::find(after.begin(), after.end(), channel);
    const auto target = std::find(after.begin(), after.end(), to);
    if (from == target || from == after.end() || target == after.end()) return false;
    if (from < target) {
        std::rotate(from, from + 1, target + 1);
    } else {
        std::rotate(target, from, from + 1);
    }
    // Hidden channels stay at their places.
    const std::vector<LaneChannel> channels = Channels();
    std::vector<std::size_t> positions = LaneOrder(channels, m_settings.order);
    auto next = after.begin();
    for (std::size_t& at : positions) {
        if (channels[at].shown) at = At(*next++);
    }
    SetLaneOrder(channels, positions, m_settings.order);
    return true;
}

bool LanesWouldHelp(const Document& document) {
    std::size_t shown = 0;
    std::set<std::u16string> groups;
    for (const LaneChannel& channel : LaneChannelsOf(document, false)) {
        if (!channel.shown) continue;
        ++shown;
        groups.insert(channel.group.name);
    }
    constexpr std::size_t many = 4;
    return shown >= many || groups.size() > 1;
}

}  // namespace quillon
