#include "app/StatusPanels.h"

#include "app/StringIds.h"
#include "base/Rounding.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "format/QL_Format.h"
#include "view/ScaleLabels.h"

namespace quillon {

namespace {

std::u16string Bytes(double bytes, char16_t separator) {
    constexpr std::array<const char16_t*, 4> units{u" B", u" KB", u" MB", u" GB"};
    std::size_t unit = 0;
    while (bytes >= 1024.0 && unit + 1 < units.size()) {
        bytes /= 1024.0;
        ++unit;
    }
    return NumberText(RoundToPlaces(bytes, 1), separator) + units[unit];
}

/// The unit that all shown channels have; empty where they differ or codes are shown.
std::u16string CommonUnit(const PanelFacts& facts) {
    std::u16string unit;
    if (facts.rawCodes) return unit;
    for (const std::int16_t channel : ShownChannels(facts.block, facts.slots)) {
        const std::int16_t number = facts.block.channelNumbers[static_cast<std::size_t>(channel - 1)];
        const std::u16string& own = facts.slots[static_cast<std::size_t>(number)].unit;
        if (own.empty() || (!unit.empty() && own != unit)) return {};
        unit = own;
    }
    return unit;
}

}  // namespace

std::u16string VisiblePart(const TimeAxis& axis, char16_t separator) {
    if (axis.StripLength() == 0) return {};
    const float share = static_cast<float>(axis.Width()) / static_cast<float>(axis.StripLength());
    if (share >= 1.0F) return u"100%";
    if (share >= 0.1F) return Decimal(RoundHalfEven(static_cast<double>(share) * 100.0)) + u'%';
    return FormatPattern(static_cast<double>(share), u"0.0##%", separator);
}

std::u16string LaneScaleText(const ChannelLanes& lanes, std::int16_t signal, const std::u16string& unit,
                             const PanelFacts& facts) {
    const std::vector<LaneChannel> channels = lanes.Channels();
    const auto at = static_cast<std::size_t>(signal - 1);
    if (at >= channels.size()) return {};
    const std::u16string text =
        SingleNumberText(lanes.Scales().ValuesPerLane(channels[at]), facts.format.decimalSeparator);
    return facts.rawCodes || unit.empty() ? text : text + u' ' + unit;
}

PanelTexts BlockPanels(const PanelFacts& facts, const UserServices& services) {
    PanelTexts texts;
    const auto panel = [&](StatusPanel key) -> std::u16string& { return texts[static_cast<std::size_t>(key)]; };
    const ViewBlock& block = facts.block;
    const FormatOptions& format = facts.format;
    if (!block.block) return texts;
    const std::u16string unit = CommonUnit(facts);
    panel(StatusPanel::Scale) = facts.laneScale.empty()
                                    ? ScaleCaption(facts.scaleY, facts.rawCodes, format.decimalSeparator) +
                                          (unit.empty() ? unit : u' ' + unit) + services.Text(IDS_PER_DIVISION)
                                    : facts.laneScale + services.Text(IDS_PER_LANE);
    panel(StatusPanel::XPart) = VisiblePart(facts.axis, format.decimalSeparator);
    if (facts.axis.IsFree()) {
        panel(StatusPanel::XPart) =
            PageCaption(facts.axis.PageSeconds(), format.decimalSeparator) + u" (" + panel(StatusPanel::XPart) + u')';
    }
    panel(StatusPanel::Shown) = facts.shown;
    panel(StatusPanel::Size) = u"S: " + Decimal(block.sampleCount);
    if (block.sampleRate > 0.0) {
        FormatOptions length = format;
        length.timeOfDay = false;  // a time of day would wrap at 24 hours
        panel(StatusPanel::Time) = u"T: " + FormatTime(block.sampleCount / block.sampleRate, u" ", length);
    }
    panel(StatusPanel::Rate) = u"Fs: " + FormatFrequency(block.sampleRate, u" ", false, format);
    panel(StatusPanel::Volume) = u"V: " + Bytes(2.0 * block.sampleCount * block.channelCount, format.decimalSeparator);
    panel(StatusPanel::Date) = services.DateAndTime(block.startTime);
    return texts;
}

}  // namespace quillon
