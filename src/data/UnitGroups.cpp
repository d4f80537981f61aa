#include "data/UnitGroups.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/Text.h"
#include "format/NumberText.h"

namespace quillon {

namespace {

constexpr std::array<std::u16string_view, 18> kBases{u"V",  u"A", u"W", u"J", u"N", u"g", u"m",   u"s",   u"Hz",
                                                     u"Pa", u"T", u"S", u"F", u"H", u"L", u"bar", u"bit", u"Ohm"};
constexpr char16_t kMicroSign = u'\u00B5';
constexpr char16_t kMu = u'\u03BC';

struct Prefix {
    char16_t letter;  ///< 0: none
    double factor;
};
constexpr std::array kPrefixes{Prefix{u'G', 1e9},  Prefix{u'M', 1e6},  Prefix{u'k', 1e3},  Prefix{0, 1.0},
                               Prefix{u'm', 1e-3}, Prefix{u'u', 1e-6}, Prefix{u'n', 1e-9}, Prefix{u'p', 1e-12}};

/// The base unit as it is called here; empty for any other text.
std::u16string_view BaseOf(std::u16string_view text) {
    if (text == u"\u03A9" || text == u"\u2126") return u"Ohm";
    const auto found = std::find(kBases.begin(), kBases.end(), text);
    return found == kBases.end() ? std::u16string_view() : *found;
}

}  // namespace

UnitGroup GroupOf(std::u16string_view unit) {
    const std::u16string_view text = Trim(unit);
    if (const std::u16string_view base = BaseOf(text); !base.empty()) return {std::u16string(base)};
    if (text.size() < 2) return {std::u16string(text)};
    const std::u16string_view base = BaseOf(text.substr(1));
    const bool micro = text.front() == kMicroSign || text.front() == kMu;
    for (const Prefix& prefix : kPrefixes) {
        if (base.empty() || prefix.letter == 0 || (micro ? u'u' : text.front()) != prefix.letter) continue;
        return {std::u16string(base), prefix.factor, micro ? text.front() : u'u'};
    }
    return {std::u16string(text)};
}

GroupUnit UnitFor(const UnitGroup& group, double value) {
    if (BaseOf(group.name).empty()) return {group.name, 1.0};
    // A value that rounding has left a little below a thousand is one.
    const double magnitude = std::fabs(value) * (1.0 + 1e-9);
    const auto found = std::find_if(kPrefixes.begin(), kPrefixes.end(),
                                    [&](const Prefix& prefix) { return magnitude >= prefix.factor; });
    const Prefix& prefix = found != kPrefixes.end() ? *found : value == 0.0 ? kPrefixes[3] : kPrefixes.back();
    std::u16string text;
    if (prefix.letter != 0) text += prefix.letter == u'u' ? group.micro : prefix.letter;
    return {text + group.name, prefix.factor};
}

std::u16string GroupValueText(const UnitGroup& group, double value, char16_t separator) {
    const GroupUnit unit = UnitFor(group, value);
    const std::u16string number = SingleNumberText(value / unit.factor, separator);
    return group.name.empty() ? number : number + u' ' + unit.text;
}

}  // namespace quillon
