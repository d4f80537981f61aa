#include "data/Montages.h"

#include <algorithm>
#include <array>

#include "base/Text.h"

namespace quillon {

namespace {

constexpr char16_t kQuote = u'"';

bool IsSeparator(char16_t letter) {
    return letter == u',' || letter == u';' || letter == u'\n' || letter == u'\r';
}

/// The hyphen, and what word processors make of it.
bool IsHyphen(char16_t letter) {
    return letter == u'-' || (letter >= u'\u2010' && letter <= u'\u2014') || letter == u'\u2212';
}

/// Cut where `isEnd` has a letter outside quotation marks.
std::vector<std::u16string_view> CutAt(std::u16string_view text, bool (*isEnd)(char16_t)) {
    std::vector<std::u16string_view> parts;
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == kQuote) quoted = !quoted;
        if (quoted || !isEnd(text[at])) continue;
        parts.push_back(Trim(text.substr(start, at - start)));
        start = at + 1;
    }
    parts.push_back(Trim(text.substr(start)));
    return parts;
}

/// Without its quotation marks; empty where they are not at both ends.
std::u16string Unquoted(std::u16string_view name) {
    if (name.find(kQuote) == std::u16string_view::npos) return std::u16string(name);
    if (name.size() < 2 || name.front() != kQuote || name.back() != kQuote) return {};
    name = name.substr(1, name.size() - 2);
    std::u16string plain;
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] == kQuote && (++at == name.size() || name[at] != kQuote)) return {};
        plain += name[at];
    }
    return std::u16string(Trim(plain));
}

std::optional<ChannelPair> PairOf(std::u16string_view part) {
    const std::vector<std::u16string_view> names = CutAt(part, IsHyphen);
    if (names.size() != 2) return std::nullopt;
    ChannelPair pair{Unquoted(names[0]), Unquoted(names[1])};
    if (pair.first.empty() || pair.second.empty() || LowerCase(pair.first) == LowerCase(pair.second))
        return std::nullopt;
    return pair;
}

/// What stands behind the hyphen of an electrode's title, in lower case.
bool IsCommonReference(std::u16string_view name) {
    constexpr std::array<std::u16string_view, 16> kReferences{u"le", u"re", u"av", u"avg",        u"ar",   u"car",
                                                              u"g",  u"a1", u"a2", u"a12",        u"a1a2", u"a1+a2",
                                                              u"m1", u"m2", u"0",  u"linked ears"};
    return name.starts_with(u"ref") || std::find(kReferences.begin(), kReferences.end(), name) != kReferences.end();
}

/// The electrode that a title in lower case names; empty for a difference of two.
std::u16string_view LabelOf(std::u16string_view title) {
    title = Trim(title);
    if (title.starts_with(u"eeg ")) title = Trim(title.substr(4));
    if (const std::size_t hyphen = title.find(u'-'); hyphen != std::u16string_view::npos) {
        if (!IsCommonReference(Trim(title.substr(hyphen + 1)))) return {};
        title = Trim(title.substr(0, hyphen));
    }
    while (!title.empty() && title.back() == u'.') title.remove_suffix(1);
    return title;
}

/// The electrode's other name, in lower case; the label itself where it has none.
std::u16string_view OtherLabel(std::u16string_view label) {
    using Names = std::array<std::u16string_view, 2>;
    constexpr std::array<Names, 4> kNames{Names{u"t3", u"t7"}, {u"t4", u"t8"}, {u"t5", u"p7"}, {u"t6", u"p8"}};
    for (const auto& [one, other] : kNames) {
        if (label == one) return other;
        if (label == other) return one;
    }
    return label;
}

constexpr std::u16string_view kLongitudinal =
    u"Fp1-F7, F7-T3, T3-T5, T5-O1, Fp1-F3, F3-C3, C3-P3, P3-O1, Fz-Cz, Cz-Pz, "
    u"Fp2-F4, F4-C4, C4-P4, P4-O2, Fp2-F8, F8-T4, T4-T6, T6-O2";
constexpr std::u16string_view kTransverse =
    u"F7-Fp1, Fp1-Fp2, Fp2-F8, F7-F3, F3-Fz, Fz-F4, F4-F8, T3-C3, C3-Cz, Cz-C4, C4-T4, "
    u"T5-P3, P3-Pz, Pz-P4, P4-T6, T5-O1, O1-O2, O2-T6";
constexpr std::u16string_view kCircumferential =
    u"O1-T5, T5-T3, T3-F7, F7-Fp1, Fp1-Fp2, Fp2-F8, F8-T4, T4-T6, T6-O2, O2-O1";

std::vector<Montage> MakeStandard(std::u16string_view longitudinal, std::u16string_view transverse,
                                  std::u16string_view circumferential) {
    const auto make = [](std::u16string_view name, std::u16string_view pairs) {
        return Montage{std::u16string(name), std::u16string(pairs)};
    };
    return {make(longitudinal, kLongitudinal), make(transverse, kTransverse), make(circumferential, kCircumferential)};
}

}  // namespace

std::vector<ChannelPair> PairsOf(std::u16string_view text, std::u16string& wrong) {
    wrong.clear();
    std::vector<ChannelPair> pairs;
    for (const std::u16string_view part : CutAt(text, IsSeparator)) {
        if (part.empty()) continue;
        if (const std::optional<ChannelPair> pair = PairOf(part)) {
            if (std::find(pairs.begin(), pairs.end(), *pair) == pairs.end()) pairs.push_back(*pair);
        } else if (wrong.empty()) {
            wrong = part;
        }
    }
    return pairs;
}

std::size_t ChannelNamed(std::u16string_view name, std::span<const std::u16string> titles) {
    const std::u16string wanted = LowerCase(Trim(name));
    const std::u16string_view label = LabelOf(wanted);
    std::size_t found = titles.size();
    int best = 4;
    for (std::size_t at = 0; at < titles.size(); ++at) {
        const std::u16string title = LowerCase(Trim(titles[at]));
        const std::u16string_view own = LabelOf(title);
        const int rank = Trim(titles[at]) == Trim(name)                ? 0
                         : title == wanted                             ? 1
                         : label.empty() || own.empty()                ? 4
                         : own == label                                ? 2
                         : own == OtherLabel(label) && wanted == label ? 3
                                                                       : 4;
        if (rank >= best) continue;
        best = rank;
        found = at;
    }
    return found;
}

std::optional<ChannelIndices> ChannelsOf(const ChannelPair& pair, std::span<const std::u16string> titles) {
    const ChannelIndices indices{ChannelNamed(pair.first, titles), ChannelNamed(pair.second, titles)};
    if (indices.first >= titles.size() || indices.second >= titles.size() || indices.first == indices.second)
        return std::nullopt;
    return indices;
}

std::span<const Montage> StandardMontages(Language language) {
    static const std::vector<Montage> english = MakeStandard(u"Longitudinal", u"Transverse", u"Circumferential");
    static const std::vector<Montage> russian = MakeStandard(u"Продольный", u"Поперечный", u"Круговой");
    return language == Language::Russian ? russian : english;
}

bool IsUsable(const Montage& montage, std::span<const std::u16string> titles) {
    std::u16string wrong;
    const std::vector<ChannelPair> pairs = PairsOf(montage.pairs, wrong);
    return std::any_of(pairs.begin(), pairs.end(),
                       [&](const ChannelPair& pair) { return ChannelsOf(pair, titles).has_value(); });
}

}  // namespace quillon
