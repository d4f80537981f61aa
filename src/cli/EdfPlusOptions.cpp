#include "cli/EdfPlusOptions.h"

#include <algorithm>
#include <utility>

#include "cli/CommandSupport.h"
#include "cli/OutputTarget.h"
#include "data/Montages.h"

namespace quillon::cli {

EdfPlusOrder::EdfPlusOrder(const ParsedArguments& parsed, Language language)
    : m_shown(parsed, language), m_language(language), m_wanted(parsed.Value(u"--type") == kEdfPlusType) {
    if (parsed.Has(u"--channels")) m_list = parsed.Value(u"--channels");
    if (m_wanted) return;
    const auto refuse = [&](std::span<const OptionRule> rules) {
        for (const OptionRule& rule : rules) {
            if (parsed.Has(rule.name))
                throw UsageError(u"'" + std::u16string(rule.name) + u"' needs --type=" + std::u16string(kEdfPlusType));
        }
    };
    refuse(kEdfPlusOptions);
    refuse(kShownOptions);
}

std::int16_t EdfPlusOrder::Find(const std::u16string& word, const RecordingBlock& block) const {
    const bool number = !word.empty() && std::all_of(word.begin(), word.end(),
                                                     [](char16_t sign) { return sign >= u'0' && sign <= u'9'; });
    if (number) return CheckChannel(block, WholeNumber(word, u"--channels"), m_language);
    const std::vector<std::u16string> titles = TitlesOf(block);
    const std::size_t index = ChannelNamed(word, titles);
    if (index == titles.size()) RefuseTitle(word, m_language);
    return static_cast<std::int16_t>(index + 1);
}

std::shared_ptr<RecordingBlock> EdfPlusOrder::Show(std::shared_ptr<RecordingBlock> stored) {
    m_settings = m_shown.SettingsFor(*stored);
    std::shared_ptr<RecordingBlock> block = m_shown.Show(std::move(stored));
    m_channels = AllChannels(*block);
    if (m_list) {
        m_channels.clear();
        for (const std::u16string& word : SplitAtCommas(*m_list)) {
            const std::int16_t channel = Find(word, *block);
            if (std::find(m_channels.begin(), m_channels.end(), channel) != m_channels.end())
                throw UsageError(u"'" + word + u"' is given twice for --channels");
            m_channels.push_back(channel);
        }
    }
    block->Prepare();
    return block;
}

EdfPlusRequest EdfPlusOrder::Request() const {
    EdfPlusRequest request;
    request.channels = m_channels;
    request.shown = &m_settings;
    return request;
}

}  // namespace quillon::cli
