#include "app/ShownCommands.h"

#include <algorithm>
#include <utility>

#include "app/StringIds.h"
#include "base/Text.h"
#include "data/Montages.h"
#include "data/ShownText.h"
#include "data/UnitGroups.h"

namespace quillon {

namespace {

/// "Name: pairs"; without a colon there is no name.
Montage MontageOf(std::u16string_view text) {
    const std::size_t colon = text.find(u':');
    if (colon == text.npos) return {{}, std::u16string(Trim(text))};
    return {std::u16string(Trim(text.substr(0, colon))), std::u16string(Trim(text.substr(colon + 1)))};
}

// What is remembered: a line for each entry, a tab between its name and its text.

void AppendLine(std::u16string& lines, const std::u16string& name, const std::u16string& text) {
    lines += (lines.empty() ? u"" : u"\n") + name + u'\t' + text;
}

std::vector<std::pair<std::u16string, std::u16string>> PairsOfLines(std::u16string_view lines) {
    std::vector<std::pair<std::u16string, std::u16string>> pairs;
    while (!lines.empty()) {
        const std::u16string_view line = lines.substr(0, lines.find(u'\n'));
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
        const std::size_t tab = line.find(u'\t');
        if (tab != line.npos) pairs.emplace_back(line.substr(0, tab), line.substr(tab + 1));
    }
    return pairs;
}

}  // namespace

std::optional<std::u16string> ShownCommands::Group() const {
    const ViewBlock& block = m_document.Block();
    const std::int16_t channel = m_document.CurrentChannel();
    if (!block.block || channel < 1 || channel > block.channelCount) return std::nullopt;
    return GroupOf(m_document.GetSignal(channel).unit).name;
}

nsp::FilterSettings ShownCommands::Filter() const {
    const std::optional<std::u16string> group = Group();
    return group ? Chosen().FilterOf(*group) : nsp::FilterSettings();
}

std::u16string ShownCommands::ChannelTitle() const {
    return Group() ? m_document.GetSignal(m_document.CurrentChannel()).title : std::u16string();
}

bool ShownCommands::IsUnfiltered() const {
    return Group() && Chosen().unfiltered.contains(ChannelTitle());
}

void ShownCommands::Restore() {
    ShownSettings settings;
    for (const auto& [group, text] : PairsOfLines(m_remembered.shown)) {
        const nsp::FilterSettings filter = FilterKept(text);
        if (filter != nsp::FilterSettings()) settings.filters[group] = filter;
    }
    for (const auto& [name, pairs] : PairsOfLines(m_remembered.montages)) m_own.push_back({name, pairs});
    m_document.ShowAs(settings);
}

void ShownCommands::Remember() {
    m_remembered.shown.clear();
    for (const auto& [group, filter] : Chosen().filters) AppendLine(m_remembered.shown, group, KeptText(filter));
    m_remembered.montages.clear();
    for (const Montage& own : m_own) AppendLine(m_remembered.montages, own.name, own.pairs);
}

void ShownCommands::Show(const ShownSettings& settings) {
    const bool signals = settings.montage != m_document.Shown().montage;
    if (m_document.ShowAs(settings)) onChange(signals);
}

void ShownCommands::Apply(const ShownSettings& settings) {
    // A choice ends the look at the raw signals, so that its effect is seen.
    m_kept.reset();
    onRefused({});
    Show(settings);
    Remember();
    onChoice();
}

void ShownCommands::ShowPairs(const ShownSettings& settings) {
    Apply(settings);
    onPairs();
    // Also where all channels were hidden before, so that the pairs can be seen without the channels they are made of.
    bool more = false;
    for (const OtherBlock& other : m_document.OtherBlocks()) {
        if (!other.IsMontage()) continue;
        for (std::int16_t pair = 1; pair <= other.block.channelCount; ++pair) {
            const auto signal = static_cast<std::int16_t>(other.before + pair);
            if (m_document.IsShown(signal)) continue;
            m_document.Show(signal, true);
            more = true;
        }
    }
    if (more) onChange(true);
}

void ShownCommands::Describe(CommandState& state) const {
    state.filtersShown = m_remembered.filters;
    state.hasGroup = Group().has_value();
    state.filter = Filter();
    state.sampleRate = m_document.Block().sampleRate;
    state.unfiltered = IsUnfiltered();
    state.shownOtherwise = Chosen() != ShownSettings();
    state.montages = static_cast<std::int32_t>(Montages().size());
    state.montage = MontageIndex();
    state.ownMontage = ShowsOwnMontage();
    const Reference& reference = Chosen().reference;
    const bool isOther = reference.kind == Reference::Kind::Channel && reference.channel != ChannelTitle();
    state.reference = isOther || Chosen().montage ? -1 : static_cast<std::int32_t>(reference.kind);
}

std::u16string ShownCommands::Caption(const FilterChoice& choice) const {
    const int second = choice.value == 4.0 ? 2 : static_cast<int>(choice.value) - 1;
    if (choice.field == FilterField::Order) return m_services.Text(IDS_FILTER_ORDER_0 + second);
    if (choice.field == FilterField::Direction)
        return m_services.Text(IDS_FILTER_DIRECTION_0 + (choice.value == 0.0 ? 0 : 1));
    if (choice.value == 0.0) return m_services.Text(IDS_FILTER_OFF);
    return NumberText(choice.value, m_format.decimalSeparator) + u' ' + m_services.Text(IDS_HERTZ);
}

std::u16string ShownCommands::RefusalOfChoice(const FilterChoice& choice) const {
    const double rate = m_document.Block().sampleRate;
    return RefusalText(Tried(Filter(), choice, rate), rate, m_language, m_format.decimalSeparator);
}

void ShownCommands::ToggleRow() {
    m_remembered.filters = !m_remembered.filters;
    onRow();
}

void ShownCommands::Choose(const FilterChoice& choice) {
    const std::optional<std::u16string> group = Group();
    if (!group) return;
    if (const std::u16string refusal = RefusalOfChoice(choice); !refusal.empty()) {
        onRefused(refusal);
        return onChoice();
    }
    ShownSettings settings = Chosen();
    settings.filters[*group] = With(Filter(), choice);
    if (settings.filters[*group] == nsp::FilterSettings()) settings.filters.erase(*group);
    Apply(settings);
}

void ShownCommands::Type(FilterField field, std::u16string_view text) {
    if (const auto frequency = ParseFrequency(text, m_services.Text(IDS_FILTER_OFF)))
        return Choose({field, *frequency});
    onRefused(m_services.Text(IDS_FILTER_UNUSABLE));
    onChoice();
}

void ShownCommands::ToggleUnfiltered() {
    if (!Group()) return;
    ShownSettings settings = Chosen();
    if (settings.unfiltered.erase(ChannelTitle()) == 0) settings.unfiltered.insert(ChannelTitle());
    Apply(settings);
}

void ShownCommands::SetReference(Reference::Kind kind) {
    ShownSettings settings = Chosen();
    settings.reference = {kind, kind == Reference::Kind::Channel ? ChannelTitle() : std::u16string()};
    settings.montage.reset();
    Apply(settings);
}

std::vector<std::u16string> ShownCommands::Titles() const {
    std::vector<std::u16string> titles;
    for (std::int16_t channel = 1; channel <= m_document.Block().channelCount; ++channel)
        titles.push_back(m_document.GetSignal(channel).title);
    return titles;
}

std::vector<Montage> ShownCommands::Montages() const {
    const std::vector<std::u16string> titles = Titles();
    std::vector<Montage> montages;
    for (const Montage& montage : StandardMontages(m_language)) {
        if (IsUsable(montage, titles)) montages.push_back(montage);
    }
    montages.insert(montages.end(), m_own.begin(), m_own.end());
    montages.resize(std::min(montages.size(), kMostMontages));
    return montages;
}

int ShownCommands::MontageIndex() const {
    const std::vector<Montage> montages = Montages();
    const auto found = std::find(montages.begin(), montages.end(), Chosen().montage);
    return found == montages.end() ? -1 : static_cast<int>(found - montages.begin());
}

void ShownCommands::ChooseMontage(int index) {
    const std::vector<Montage> montages = Montages();
    if (index < 0 || index >= static_cast<int>(montages.size())) return;
    ShownSettings settings = Chosen();
    const Montage& chosen = montages[static_cast<std::size_t>(index)];
    settings.montage = settings.montage == chosen ? std::nullopt : std::optional(chosen);
    settings.reference = {};
    settings.montage ? ShowPairs(settings) : Apply(settings);
}

std::u16string ShownCommands::RefusalOfMontage(std::u16string_view text) const {
    const Montage montage = MontageOf(text);
    if (montage.name.empty()) return m_services.Text(IDS_MONTAGE_NAMELESS);
    const auto usual = StandardMontages(m_language);
    if (std::any_of(usual.begin(), usual.end(), [&](const Montage& one) { return one.name == montage.name; }))
        return m_services.Text(IDS_MONTAGE_TAKEN);
    std::u16string wrong;
    const std::vector<ChannelPair> pairs = PairsOf(montage.pairs, wrong);
    if (!wrong.empty() || pairs.empty()) return FillPlaces(m_services.Text(IDS_MONTAGE_WRONG), {wrong});
    const std::vector<std::u16string> titles = Titles();
    for (const ChannelPair& pair : pairs) {
        for (const std::u16string& name : {pair.first, pair.second}) {
            if (ChannelNamed(name, titles) == titles.size())
                return FillPlaces(m_services.Text(IDS_MONTAGE_NO_CHANNEL), {name});
        }
    }
    return {};
}

void ShownCommands::AddMontage(std::u16string_view text) {
    const Montage montage = MontageOf(text);
    std::erase_if(m_own, [&](const Montage& own) { return own.name == montage.name; });
    m_own.push_back(montage);
    ShownSettings settings = Chosen();
    settings.montage = montage;
    settings.reference = {};
    ShowPairs(settings);
}

bool ShownCommands::ShowsOwnMontage() const {
    return std::find(m_own.begin(), m_own.end(), Chosen().montage) != m_own.end();
}

void ShownCommands::DeleteMontage() {
    if (!ShowsOwnMontage()) return;
    ShownSettings settings = Chosen();
    std::erase(m_own, *settings.montage);
    settings.montage.reset();
    Apply(settings);
}

void ShownCommands::HoldRaw(bool hold) {
    if (hold == m_kept.has_value()) return;
    if (!hold) return Show(*std::exchange(m_kept, std::nullopt));
    m_kept = m_document.Shown();
    Show(ShownSettings());
}

}  // namespace quillon
