#include "view/LaneFits.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <map>
#include <numeric>

#include "view/ScaleSteps.h"

namespace quillon {

namespace {

/// Spans of a group that differ by no more than this share a scale.
constexpr double kAlike = 8.0;
/// Channels have own steps beyond these parts of the median span.
constexpr double kLarge = 4.0;
constexpr double kSmall = 1.0 / 8.0;

/// The element that would be at a place if the values were sorted.
template <typename Value>
Value Ranked(std::vector<Value>& values, std::size_t place) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(place);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

/// In codes; `outside` of the values may lie outside the span. There is at least one.
LaneSpan SpanOfCodes(std::vector<std::int32_t>& codes, std::size_t outside) {
    const std::int32_t middle = Ranked(codes, codes.size() / 2);
    for (std::int32_t& code : codes) code = std::abs(code - middle);
    return {static_cast<double>(middle), static_cast<double>(Ranked(codes, codes.size() - 1 - outside))};
}

LaneSpan InValues(const LaneChannel& channel, const LaneSpan& codes) {
    const double half = std::fabs(codes.half * channel.perCode);
    const double middle = channel.ValueOf(codes.middle);
    return {std::isfinite(middle) ? middle : 0.0, std::isfinite(half) ? half : 0.0};
}

/// The codes of a stretch, channel after channel; empty where it cannot be read.
std::vector<std::int16_t> ReadStretch(RecordingBlock& block, std::int32_t first, std::int32_t count) try {
    const auto samples = static_cast<std::size_t>(count);
    const auto channels = static_cast<std::size_t>(block.ChannelCount());
    std::vector<std::int16_t> codes(samples * channels);
    if (!block.FramesAreCheap()) {
        block.ReadRows(first, count, codes.data());
        return codes;
    }
    std::vector<std::int16_t> frames(codes.size());
    block.ReadFrames(first, count, frames.data());
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t at = 0; at < samples; ++at) codes[channel * samples + at] = frames[at * channels + channel];
    }
    return codes;
} catch (const std::exception&) {
    return {};
}

/// Base units of a group that a channel's lane has to hold.
double Needed(const LaneFit& fit, std::size_t at) {
    return fit.spans[at] ? 2.0 * fit.spans[at]->half * fit.channels[at].group.factor * fit.margin : 0.0;
}

/// The channels of every group, by its name.
std::map<std::u16string, std::vector<std::size_t>> GroupsOf(const std::vector<LaneChannel>& channels) {
    std::map<std::u16string, std::vector<std::size_t>> groups;
    for (std::size_t at = 0; at < channels.size(); ++at) groups[channels[at].group.name].push_back(at);
    return groups;
}

/// What decides on the scale of a group: its channels that are shown and not flat, else all that are not flat.
std::vector<std::size_t> Deciding(const LaneFit& fit, const std::vector<std::size_t>& group) {
    std::vector<std::size_t> shown;
    std::vector<std::size_t> all;
    for (const std::size_t at : group) {
        if (!(Needed(fit, at) > 0.0)) continue;
        all.push_back(at);
        if (fit.channels[at].shown) shown.push_back(at);
    }
    return shown.empty() ? all : shown;
}

/// How much of a span lies inside a lane around `middle`.
double Inside(const LaneSpan& span, double middle, double valuesPerLane) {
    return std::min(span.middle + span.half, middle + valuesPerLane / 2.0) -
           std::max(span.middle - span.half, middle - valuesPerLane / 2.0);
}

bool IsReadable(const LaneFit& fit, std::size_t at, const LaneScales& scales) {
    const LaneChannel& channel = fit.channels[at];
    const LaneSpan& span = *fit.spans[at];
    const double lane = scales.ValuesPerLane(channel);
    const double inside = Inside(span, scales.OwnOf(channel).Middle(channel), lane);
    return 2.0 * span.half >= lane / 8.0 && inside >= 0.8 * 2.0 * span.half;
}

/// The own step at which a channel fits the scale of its group.
int FittingStep(const LaneFit& fit, std::size_t at, const LaneScales& scales) {
    return StepWithin(StepValue(scales.StepOf(fit.channels[at].group)) / Needed(fit, at));
}

void ChooseScale(const LaneFit& fit, const std::vector<std::size_t>& group, LaneScales& scales) {
    for (const std::size_t at : group) scales.channels[fit.channels[at].key].step = 0;
    const std::vector<std::size_t> deciding = Deciding(fit, group);
    if (deciding.empty()) return;
    std::vector<double> needed;
    for (const std::size_t at : deciding) needed.push_back(Needed(fit, at));
    const auto [least, most] = std::minmax_element(needed.begin(), needed.end());
    const bool alike = *most <= kAlike * *least;
    const double typical = alike ? *most : Ranked(needed, needed.size() / 2);
    scales.groups[fit.channels[group.front()].group.name] = StepHolding(typical);
    for (const std::size_t at : group) {
        const double own = Needed(fit, at);
        const bool isDeciding = std::find(deciding.begin(), deciding.end(), at) != deciding.end();
        if (!(own > 0.0) || (alike && isDeciding)) continue;
        if (own > kLarge * typical || own < kSmall * typical)
            scales.channels[fit.channels[at].key].step = FittingStep(fit, at, scales);
    }
}

}  // namespace

std::optional<LaneSpan> SpanOfPoints(const LaneChannel& channel, std::span<const TracePoint> points) {
    if (points.empty()) return std::nullopt;
    std::vector<std::int32_t> codes;
    for (const TracePoint& point : points) codes.push_back(point.y);
    // A column has two points, so 0.5 % of the points are in 1 % of the columns. The first point and the last column
    // stand for fewer samples.
    return InValues(channel, SpanOfCodes(codes, points.size() < 3 ? 0 : (points.size() - 3) / 200));
}

std::vector<std::optional<LaneSpan>> TypicalSpans(const ViewBlock& block, std::span<const LaneChannel> channels,
                                                  std::int32_t most) {
    constexpr std::int32_t longest = 1024;
    std::vector<std::vector<double>> middles(channels.size());
    std::vector<std::vector<double>> halves(channels.size());
    // Where the samples of a slow signal lie far apart in the file, as many as are read quickly.
    constexpr std::int32_t least = 32;
    const RecordingBlock* const source = block.stored ? block.stored.get() : block.block.get();
    const std::int32_t piece = source != nullptr ? std::max(source->SamplesPerPiece(), least) : longest;
    const std::int32_t count = std::min({longest, piece, block.sampleCount});
    std::int32_t number = count < 1 || !block.block ? 0 : std::min(most, block.sampleCount / count);
    // The first one at the start, the last one at the end. Behind filters each would cost a way of its own: then as
    // many as lie in a piece are taken together, in the middle, or at the start where the way to the middle is long.
    constexpr std::int32_t manyPlaces = 1000;
    const bool apart = number < 2 || block.block->PlacesPerPiece() >= manyPlaces;
    if (!apart) number = std::clamp(piece / count, 1, number);
    const std::int64_t room = block.sampleCount - count;
    const std::int64_t together = std::int64_t{count} * (number - 1);
    const auto middle = static_cast<std::int32_t>((room - together) / 2);
    const std::int64_t start = apart || number < most || !block.block->Approach(middle) ? 0 : middle;
    for (std::int32_t at = 0; at < number; ++at) {
        const std::int64_t away = number == 1 ? 0 : (apart ? room : together) * at / (number - 1);
        const auto first = static_cast<std::int32_t>(start + away);
        const std::vector<std::int16_t> codes = ReadStretch(*block.block, first, count);
        const auto samples = static_cast<std::size_t>(count);
        for (std::size_t channel = 0; channel < channels.size() && (channel + 1) * samples <= codes.size(); ++channel) {
            const auto begin = codes.begin() + static_cast<std::ptrdiff_t>(channel * samples);
            std::vector<std::int32_t> own(begin, begin + count);
            const LaneSpan span = SpanOfCodes(own, samples / 100);
            middles[channel].push_back(span.middle);
            halves[channel].push_back(span.half);
        }
    }
    std::vector<std::optional<LaneSpan>> spans(channels.size());
    for (std::size_t at = 0; at < channels.size(); ++at) {
        if (middles[at].empty()) continue;
        // Where a channel rests, as sound between words does, nothing tells how large it becomes.
        std::vector<double>& moving = halves[at];
        std::erase(moving, 0.0);
        if (moving.empty()) moving.push_back(0.0);
        spans[at] = InValues(channels[at],
                             {Ranked(middles[at], middles[at].size() / 2), Ranked(moving, moving.size() * 3 / 4)});
    }
    return spans;
}

void FitGroups(const LaneFit& fit, LaneScales& scales) {
    std::map<std::u16string, double> needed;
    for (std::size_t at = 0; at < fit.channels.size(); ++at) {
        const LaneChannel& channel = fit.channels[at];
        if (!fit.spans[at]) continue;
        LaneScales::Own& own = scales.channels[channel.key];
        own.Middle(channel) = fit.spans[at]->middle;
        double& most = needed[channel.group.name];
        most = std::max(most, Needed(fit, at) * StepValue(own.step));
    }
    for (const auto& [group, most] : needed) {
        if (most > 0.0) scales.groups[group] = StepHolding(most);
    }
}

void FitChannel(const LaneFit& fit, std::size_t channel, LaneScales& scales) {
    if (!fit.spans[channel]) return;
    LaneScales::Own& own = scales.channels[fit.channels[channel].key];
    own.Middle(fit.channels[channel]) = fit.spans[channel]->middle;
    if (Needed(fit, channel) > 0.0) own.step = FittingStep(fit, channel, scales);
}

namespace {

/// Whether the known scale of a group suits its channels; sets the middles of those that are not known, or of which
/// nothing would be seen.
bool KeepScale(const LaneFit& fit, const std::vector<std::size_t>& group, const LaneScales& known, LaneScales& scales) {
    for (const std::size_t at : group) {
        const LaneChannel& channel = fit.channels[at];
        LaneScales::Own& own = scales.channels[channel.key];
        if (!fit.spans[at]) continue;
        const bool isKnown = known.channels.contains(channel.key);
        if (!isKnown || Inside(*fit.spans[at], own.Middle(channel), scales.ValuesPerLane(channel)) < 0.0)
            own.Middle(channel) = fit.spans[at]->middle;
    }
    if (!known.groups.contains(fit.channels[group.front()].group.name)) return false;
    const std::vector<std::size_t> deciding = Deciding(fit, group);
    const auto readable =
        std::count_if(deciding.begin(), deciding.end(), [&](std::size_t at) { return IsReadable(fit, at, scales); });
    return 2 * static_cast<std::size_t>(readable) >= deciding.size();
}

}  // namespace

void FitTypical(const LaneFit& fit, LaneScales& scales) {
    const LaneScales known = scales;
    for (const auto& [name, group] : GroupsOf(fit.channels)) {
        if (KeepScale(fit, group, known, scales)) {
            const double lane = StepValue(scales.StepOf(fit.channels[group.front()].group));
            for (const std::size_t at : group) {
                const double needed = Needed(fit, at);
                const bool far = needed > kLarge * lane || (needed > 0.0 && needed < kSmall * lane);
                const std::u16string& key = fit.channels[at].key;
                if (far && !known.channels.contains(key)) scales.channels[key].step = FittingStep(fit, at, scales);
            }
            continue;
        }
        ChooseScale(fit, group, scales);
        for (const std::size_t at : group) {
            const LaneChannel& channel = fit.channels[at];
            if (fit.spans[at]) scales.channels[channel.key].Middle(channel) = fit.spans[at]->middle;
        }
    }
}

}  // namespace quillon
