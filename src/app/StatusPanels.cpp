#include "app/StatusPanels.h"

#include <cmath>

#include "base/Rounding.h"
#include "base/StringIds.h"
#include "base/Text.h"
#include "view/ScaleLabels.h"

namespace quillon {

namespace {

std::u16string Rounded(double value, double power) {
    return ShortestDecimal(std::nearbyint(value * power) / power);
}

std::u16string Bytes(double bytes) {
    constexpr std::array<const char16_t*, 4> units{u" B", u" KB", u" MB", u" GB"};
    std::size_t unit = 0;
    while (bytes >= 1024.0 && unit + 1 < units.size()) {
        bytes /= 1024.0;
        ++unit;
    }
    return Rounded(bytes, unit == 0 ? 1.0 : 10.0) + units[unit];
}

/// "0:04:00", with decimals of a second only for short blocks.
std::u16string Duration(double seconds) {
    if (seconds < 60.0) return Rounded(seconds, 1000.0) + u" s";
    const auto whole = static_cast<std::int64_t>(std::nearbyint(seconds));
    const auto two = [](std::int64_t number) { return (number < 10 ? u"0" : u"") + Decimal(number); };
    return Decimal(whole / 3600) + u':' + two(whole / 60 % 60) + u':' + two(whole % 60);
}

}  // namespace

std::u16string VisiblePart(const TimeAxis& axis) {
    if (axis.StripLength() == 0) return {};
    const float share = static_cast<float>(axis.Width()) / static_cast<float>(axis.StripLength());
    if (share >= 1.0F) return u"100%";
    const double percent = static_cast<double>(share) * 100.0;
    if (share >= 0.1F) return Decimal(RoundHalfEven(percent)) + u'%';
    std::u16string text = Rounded(percent, 1000.0);
    if (text.find(u'.') == std::u16string::npos) text += u".0";
    return text + u'%';
}

PanelTexts BlockPanels(const QL_Global& global, const UserServices& services) {
    PanelTexts texts;
    const auto panel = [&](StatusPanel key) -> std::u16string& { return texts[static_cast<std::size_t>(key)]; };
    const ViewBlock& block = global.block;
    if (!block.block) return texts;
    panel(StatusPanel::Scale) = ScaleCaption(global.amplitude.Index()) + services.Text(IDS_PER_DIVISION);
    panel(StatusPanel::XPart) = VisiblePart(global.axis);
    panel(StatusPanel::Size) = u"S: " + Decimal(block.sampleCount);
    if (block.sampleRate > 0.0) panel(StatusPanel::Time) = u"T: " + Duration(block.sampleCount / block.sampleRate);
    panel(StatusPanel::Rate) = u"Fs: " + Rounded(block.sampleRate, 1000.0) + u" Hz";
    panel(StatusPanel::Date) = services.DateAndTime(block.startTime);
    panel(StatusPanel::Volume) = u"V: " + Bytes(2.0 * block.sampleCount * block.channelCount);
    return texts;
}

}  // namespace quillon
