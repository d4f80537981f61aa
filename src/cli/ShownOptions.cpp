#include "cli/ShownOptions.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/Bilingual.h"
#include "cli/CommandSupport.h"
#include "cli/OutputTarget.h"
#include "data/Montages.h"
#include "data/ShownBlock.h"
#include "data/ShownText.h"
#include "data/UnitGroups.h"

namespace quillon::cli {

namespace {

double Frequency(const ParsedArguments& parsed, std::u16string_view name) {
    const double number = parsed.Has(name) ? RealNumber(parsed.Value(name), name) : 0.0;
    if (number < 0.0) throw UsageError(OutOfRange(parsed, name));
    return number;
}

int Order(const ParsedArguments& parsed) {
    constexpr std::int64_t usual = 2;
    const std::int64_t order = parsed.Has(u"--order") ? WholeNumber(parsed.Value(u"--order"), u"--order") : usual;
    if (order != 1 && order != 2 && order != 4) throw UsageError(OutOfRange(parsed, u"--order"));
    return static_cast<int>(order);
}

/// Throws Refusal where a channel of a pair is not there: left out, it would move the numbers of those behind it.
void CheckPairs(const std::u16string& text, std::span<const std::u16string> titles, Language language) {
    std::u16string wrong;
    for (const ChannelPair& pair : PairsOf(text, wrong)) {
        for (const std::u16string& name : {pair.first, pair.second}) {
            if (ChannelNamed(name, titles) == titles.size()) RefuseTitle(name, language);
        }
    }
}

}  // namespace

ShownRequest::ShownRequest(const ParsedArguments& parsed, Language language)
    : m_filter{Frequency(parsed, u"--high-pass"), Frequency(parsed, u"--low-pass"), Order(parsed),
               Frequency(parsed, u"--notch"), parsed.Has(u"--both-ways")},
      m_reference(parsed.Value(u"--reference")),
      m_montage(parsed.Value(u"--montage")),
      m_language(language) {
    std::u16string wrong;
    const bool none = PairsOf(m_montage, wrong).empty();
    if (parsed.Has(u"--montage") && (none || !wrong.empty()))
        throw UsageError(u"'" + (wrong.empty() ? m_montage : wrong) + u"' is no pair of channels for --montage");
}

ShownSettings ShownRequest::SettingsFor(const RecordingBlock& stored) const {
    ShownSettings settings;
    if (!m_filter.IsOff()) {
        const std::u16string reason = RefusalText(m_filter, stored.SampleRate(), m_language);
        if (!reason.empty()) throw UsageError(reason);
        for (std::int16_t channel = 1; channel <= stored.ChannelCount(); ++channel)
            settings.filters[GroupOf(stored.ChannelUnit(channel)).name] = m_filter;
    }
    const std::vector<std::u16string> titles = TitlesOf(stored);
    if (m_reference == u"average") {
        settings.reference.kind = Reference::Kind::Average;
    } else if (!m_reference.empty()) {
        const std::size_t index = ChannelNamed(m_reference, titles);
        if (index == titles.size()) RefuseTitle(m_reference, m_language);
        settings.reference = {Reference::Kind::Channel, titles[index]};
    }
    if (!m_montage.empty()) {
        CheckPairs(m_montage, titles, m_language);
        settings.montage = Montage{m_montage, m_montage};
    }
    return settings;
}

std::shared_ptr<RecordingBlock> ShownRequest::Show(std::shared_ptr<RecordingBlock> stored) const {
    const ShownSettings settings = SettingsFor(*stored);
    if (settings == ShownSettings()) return stored;
    stored->Prepare();
    if (!settings.montage) {
        const std::vector<bool> all(static_cast<std::size_t>(stored->ChannelCount()), true);
        return MakeShownBlock(std::move(stored), settings, all);
    }
    std::shared_ptr<RecordingBlock> pairs = MakeMontageBlock(std::move(stored), settings);
    if (!pairs) {
        throw Refusal(Say(u"there is no pair \"%1\"", u"нет пары \"%1\"", {m_montage}).In(m_language));
    }
    return pairs;
}

}  // namespace quillon::cli
