#include "data/ShownText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <vector>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "data/ShownChannels.h"
#include "data/UnitGroups.h"
#include "format/NumberText.h"

namespace quillon {

namespace {

constexpr int kUsualOrder = 2;

std::u16string Joined(const std::vector<std::u16string>& texts, std::u16string_view between = u", ") {
    std::u16string joined;
    for (const std::u16string& text : texts) {
        if (text.empty()) continue;
        if (!joined.empty()) joined += between;
        joined += text;
    }
    return joined;
}

std::u16string Hertz(const std::u16string& number, Language language) {
    return number + Say(u" Hz", u" Гц").In(language);
}

std::u16string BandText(const nsp::FilterSettings& filter, Language language, char16_t separator) {
    const std::u16string low = NumberText(filter.highPass, separator);
    const std::u16string high = NumberText(filter.lowPass, separator);
    if (filter.highPass == 0.0 && filter.lowPass == 0.0) return {};
    if (filter.lowPass == 0.0) return u"> " + Hertz(low, language);
    if (filter.highPass == 0.0) return u"< " + Hertz(high, language);
    return Hertz(low + u'-' + high, language);
}

/// "average", "- Cz", then the montage.
std::vector<std::u16string> RestTexts(const ShownSettings& settings, Language language) {
    std::vector<std::u16string> texts;
    if (settings.reference.kind == Reference::Kind::Average) texts.push_back(Say(u"average", u"средний").In(language));
    if (settings.reference.kind == Reference::Kind::Channel) texts.push_back(u"- " + settings.reference.channel);
    if (settings.montage) texts.push_back(settings.montage->name);
    return texts;
}

std::u16string GroupOfChannel(const RecordingBlock& block, std::int16_t channel) {
    return GroupOf(block.ChannelUnit(channel)).name;
}

/// Whether the reference is subtracted from any of the channels: their groups have to have it.
bool IsReferenced(const Reference& reference, const RecordingBlock& block, const std::set<std::int16_t>& channels) {
    std::map<std::u16string, int> parts;
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        if (reference.kind == Reference::Kind::Average || block.ChannelTitle(channel) == reference.channel)
            ++parts[GroupOfChannel(block, channel)];
    }
    // The average of one channel is the channel.
    const int least = reference.kind == Reference::Kind::Average ? 2 : 1;
    return std::any_of(channels.begin(), channels.end(),
                       [&](std::int16_t channel) { return parts[GroupOfChannel(block, channel)] >= least; });
}

std::vector<std::u16string_view> Fields(std::u16string_view text) {
    std::vector<std::u16string_view> fields;
    std::size_t start = 0;
    for (std::size_t end = text.find(u';'); end != std::u16string_view::npos; end = text.find(u';', start)) {
        fields.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    fields.push_back(text.substr(start));
    return fields;
}

/// NaN where the text is no number.
double NumberOf(std::u16string_view text) {
    const std::string digits = Utf8(text);
    double number = 0.0;
    const char* const last = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), last, number);
    return error == std::errc() && end == last ? number : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

std::u16string FilterText(const nsp::FilterSettings& filter, Language language, char16_t separator) {
    if (filter.IsOff()) return {};
    std::vector<std::u16string> texts{BandText(filter, language, separator)};
    // The order is that of high pass and low pass; a notch has none.
    if (!texts.front().empty() && filter.order != kUsualOrder)
        texts.push_back(Say(u"order %1", u"порядок %1", {Decimal(filter.order)}).In(language));
    if (filter.bothWays) texts.push_back(Say(u"both ways", u"в обе стороны").In(language));
    if (filter.notch != 0.0) texts.push_back(Hertz(NumberText(filter.notch, separator), language));
    return Joined(texts);
}

std::u16string ShownText(const ShownSettings& settings, const std::u16string& group, Language language,
                         char16_t separator) {
    std::vector<std::u16string> texts = RestTexts(settings, language);
    texts.insert(texts.begin(), FilterText(settings.FilterOf(group), language, separator));
    return Joined(texts);
}

std::u16string ShownText(const ShownSettings& settings, const RecordingBlock& block,
                         const std::set<std::int16_t>& channels, Language language, char16_t separator) {
    std::vector<std::u16string> groups;
    std::vector<std::u16string> unfiltered;
    std::set<std::u16string> seen;
    std::set<std::u16string> filters;
    for (const std::int16_t channel : channels) {
        const std::u16string group = GroupOfChannel(block, channel);
        const nsp::FilterSettings usable = UsableAt(settings.FilterOf(group), block.SampleRate());
        const std::u16string filter = FilterText(usable, language, separator);
        const std::u16string title = block.ChannelTitle(channel);
        if (settings.unfiltered.contains(title)) {
            if (!filter.empty()) unfiltered.push_back(title);
            continue;
        }
        filters.insert(filter);
        if (seen.insert(group).second && !filter.empty())
            groups.push_back(group.empty() ? filter : group + u": " + filter);
    }
    ShownSettings rest = settings;
    if (!IsReferenced(rest.reference, block, channels)) rest.reference = {};
    std::vector<std::u16string> texts = RestTexts(rest, language);
    if (filters.size() == 1) {
        texts.insert(texts.begin(), *filters.begin());
    } else if (!groups.empty()) {
        texts = {Joined(groups, u"; "), Joined(texts)};
    }
    const std::u16string text = Joined(texts, !groups.empty() && filters.size() > 1 ? u"; " : u", ");
    // Without a filtered channel among them there is nothing that these are excepted from.
    if (groups.empty() || unfiltered.empty()) return text;
    return text + u"; " + Say(u"unfiltered: %1", u"без фильтров: %1", {Joined(unfiltered)}).In(language);
}

std::u16string RefusalText(const nsp::FilterSettings& filter, double rate, Language language, char16_t separator) {
    const auto number = [&](double value) { return NumberText(value, separator); };
    const auto tooHigh = [&](double corner) {
        return Say(u"%1 Hz is not below half the rate of %2 Hz", u"%1 Гц не ниже половины частоты дискретизации %2 Гц",
                   {number(corner), number(rate)})
            .In(language);
    };
    switch (nsp::RefusalOf(filter, rate)) {
        case nsp::FilterRefusal::None: return {};
        case nsp::FilterRefusal::HighPassTooHigh: return tooHigh(filter.highPass);
        case nsp::FilterRefusal::LowPassTooHigh: return tooHigh(filter.lowPass);
        case nsp::FilterRefusal::NotchTooHigh: return tooHigh(filter.notch);
        case nsp::FilterRefusal::CornersCross:
            return Say(u"the high pass of %1 Hz is not below the low pass of %2 Hz",
                       u"фильтр верхних частот %1 Гц не ниже фильтра нижних частот %2 Гц",
                       {number(filter.highPass), number(filter.lowPass)})
                .In(language);
        case nsp::FilterRefusal::Unusable: break;
    }
    if (!(rate > 0.0)) return Say(u"there is no sampling rate", u"нет частоты дискретизации").In(language);
    return Say(u"a filter has frequencies above 0 Hz and the order 1, 2 or 4",
               u"у фильтра частоты выше 0 Гц и порядок 1, 2 или 4")
        .In(language);
}

std::u16string KeptText(const nsp::FilterSettings& filter) {
    return Joined({NumberText(filter.highPass, u'.'), NumberText(filter.lowPass, u'.'), Decimal(filter.order),
                   NumberText(filter.notch, u'.'), Decimal(filter.bothWays ? 1 : 0)},
                  u";");
}

nsp::FilterSettings FilterKept(std::u16string_view text) {
    const std::vector<std::u16string_view> fields = Fields(text);
    if (fields.size() != 5) return {};
    const double order = NumberOf(fields[2]);
    const bool known = (fields[4] == u"0" || fields[4] == u"1") && (order == 1.0 || order == 2.0 || order == 4.0);
    if (!known) return {};
    const nsp::FilterSettings filter{NumberOf(fields[0]), NumberOf(fields[1]), static_cast<int>(order),
                                     NumberOf(fields[3]), fields[4] == u"1"};
    // At such a rate only what can be at none is refused.
    constexpr double highestRate = std::numeric_limits<double>::max();
    return nsp::RefusalOf(filter, highestRate) == nsp::FilterRefusal::None ? filter : nsp::FilterSettings();
}

}  // namespace quillon
