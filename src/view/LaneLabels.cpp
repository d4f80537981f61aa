#include "view/LaneLabels.h"

#include <algorithm>
#include <cmath>

#include "base/Density.h"
#include "format/NumberText.h"
#include "view/QL_ChUtils.h"
#include "view/ScaleLabels.h"
#include "view/ScaleSteps.h"

namespace quillon {

namespace {

constexpr char16_t kEllipsis = u'\u2026';
/// Part of a lane's height that its bar takes at most.
constexpr double kBarPart = 0.6;

/// Lengths of a strip in pixels.
struct Measures {
    explicit Measures(const LaneStrip& strip)
        : margin(Scaled(strip, 6)), gap(Scaled(strip, 4)), tick(Scaled(strip, 3)), line(strip.sizeOf(u"0").height) {}
    static std::int32_t Scaled(const LaneStrip& strip, int length) { return ScaledTo(strip.dpi, length); }
    std::int32_t margin;
    std::int32_t gap;   ///< between texts
    std::int32_t tick;  ///< half the width of the ends of a bar
    std::int32_t line;  ///< height of a text
};

std::u16string FactorText(const LaneScales& scales, const LaneChannel& channel, char16_t separator) {
    const int step = scales.OwnOf(channel).step;
    return step == 0 ? std::u16string() : u'x' + SingleNumberText(StepValue(step), separator);
}

/// The bar of a lane below a row, with the room that the lowest lane has. Heights of lanes differ by a row; bars of one
/// scale are the same.
std::optional<ScaleBar> MakeBar(const LaneStrip& strip, const Measures& measures, const Lane& lane,
                                const LaneChannel& channel, std::int32_t top, std::int32_t lowest) {
    const std::int32_t end = lane.End() - 2;
    const double unit = strip.rawCodes ? static_cast<double>(AmplitudeScale::kCodesPerUnit) : 1.0;
    const double rowsPerBase = AmplitudeScale::kDivision / (lane.unitsPerDivision * unit * channel.group.factor);
    const double most = std::min(kBarPart * lowest, static_cast<double>(end - top - (lane.height - lowest)));
    const double value = StepValue(StepWithin(most / rowsPerBase));
    const double rows = std::nearbyint(value * rowsPerBase);
    if (!(rows >= 1.0 && rows <= most) || end - top < measures.line) return std::nullopt;
    ScaleBar bar{.x = strip.width - measures.margin - measures.tick - 1, .end = end};
    bar.top = end - static_cast<std::int32_t>(rows);
    StripText& text = bar.text;
    text.text = strip.rawCodes ? CodesText(value, strip.decimalSeparator)
                               : GroupValueText(channel.group, value, strip.decimalSeparator);
    text.size = strip.sizeOf(text.text);
    text.x = bar.x - measures.tick - measures.gap - text.size.width;
    text.y = std::clamp((bar.top + bar.end - text.size.height) / 2, top, std::max(end - text.size.height, top));
    // A number that is cut would be another number.
    if (text.x < measures.margin || text.size.height > end - top) return std::nullopt;
    return bar;
}

}  // namespace

StripText CutText(const std::function<TextSize(const std::u16string&)>& sizeOf, const std::u16string& text,
                  std::int32_t room) {
    StripText cut{.text = text, .size = sizeOf(text)};
    for (std::size_t length = text.size(); cut.size.width > room; --length) {
        if (length == 0) return {};
        // A character of two units is not cut in two.
        const char16_t last = text[length - 1];
        if (last >= 0xD800 && last < 0xDC00) continue;
        if (length == text.size()) continue;
        cut.text = text.substr(0, length) + kEllipsis;
        cut.size = sizeOf(cut.text);
    }
    return cut;
}

bool HasRoomForBars(std::int32_t rows, const LaneStrip& strip) {
    const Measures measures(strip);
    return rows - 1 >= 3 * measures.line + measures.gap;
}

std::int32_t WantedWidth(const ChannelLanes& channels, const LaneStrip& strip) {
    const Measures measures(strip);
    std::int32_t widest = 0;
    for (const LaneChannel& channel : channels.Channels()) {
        const std::u16string factor = FactorText(channels.Scales(), channel, strip.decimalSeparator);
        const std::int32_t beside = factor.empty() ? 0 : measures.gap + strip.sizeOf(factor).width;
        widest = std::max(widest, strip.sizeOf(channel.title).width + beside);
    }
    return widest + 2 * measures.margin;
}

std::vector<LaneLabel> LaneLabels(const ChannelLanes& channels, const Lanes& lanes, const LaneStrip& strip) {
    const Measures measures(strip);
    const std::vector<LaneChannel> all = channels.Channels();
    std::vector<LaneLabel> labels;
    const auto lowest =
        std::min_element(lanes.begin(), lanes.end(), [](const Lane& a, const Lane& b) { return a.height < b.height; });
    // All lanes have a bar, or none.
    const bool hasBar = lowest != lanes.end() && HasRoomForBars(lowest->height, strip);
    for (const Lane& lane : lanes) {
        if (lane.channels.empty()) continue;
        LaneLabel label{.channel = lane.channels.front()};
        const auto at = static_cast<std::size_t>(label.channel - 1);
        label.color = strip.colors->Trace(all[at].number);
        // The line between lanes is part of the lower one.
        const std::int32_t top = lane.top + 1;
        const std::int32_t rows = lane.End() - top;
        const std::int32_t y = hasBar ? top + 1 : top + (rows - measures.line) / 2;
        std::int32_t room = strip.width - 2 * measures.margin;
        if (rows < measures.line) room = -1;
        if (!hasBar && strip.barsBeside) label.bar = MakeBar(strip, measures, lane, all[at], top, lowest->height);
        if (label.bar) room = label.bar->text.x - measures.gap - measures.margin;
        StripText factor{.text = FactorText(channels.Scales(), all[at], strip.decimalSeparator)};
        factor.size = strip.sizeOf(factor.text);
        const std::int32_t beside = measures.gap + factor.size.width;
        if (factor.text.empty() || room - beside < strip.sizeOf(std::u16string(1, kEllipsis)).width) {
            factor = {};
        } else {
            room -= beside;
        }
        label.title = CutText(strip.sizeOf, all[at].title, room);
        label.title.x = measures.margin;
        label.title.y = y;
        if (!label.title.text.empty() && !factor.text.empty()) {
            label.factor = factor;
            label.factor.x = label.title.x + label.title.size.width + measures.gap;
            label.factor.y = y;
        }
        if (hasBar) label.bar = MakeBar(strip, measures, lane, all[at], y + measures.line, lowest->height);
        labels.push_back(std::move(label));
    }
    return labels;
}

bool IsOnTitle(const std::vector<LaneLabel>& labels, std::int32_t x, std::int32_t y) {
    return std::any_of(labels.begin(), labels.end(), [&](const LaneLabel& label) {
        const StripText& last = label.factor.text.empty() ? label.title : label.factor;
        return x >= 0 && x < last.x + last.size.width && y >= label.title.y &&
               y < label.title.y + label.title.size.height;
    });
}

}  // namespace quillon
