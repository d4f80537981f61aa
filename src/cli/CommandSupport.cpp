#include "cli/CommandSupport.h"

#include "base/Bilingual.h"
#include "base/Text.h"
#include "cli/OutputTarget.h"
#include "norvik/RecordingLibrary.h"

namespace quillon::cli {

OpenFile::OpenFile(const std::u16string& file, Language language) : m_library(MakeRecordingLibrary(language)) {
    if (!m_library->OpenRecording(file, m_recording)) throw Refusal(m_library->LastErrorText());
    m_recording->Complete();
}

OpenFile::~OpenFile() {
    m_library->CloseRecording(m_recording);
}

void RefuseInterrupted(Language language) {
    throw Refusal(Say(u"interrupted", u"прервано").In(language));
}

void RefuseExport(const KVExport& exporter, const std::u16string& target) {
    const std::u16string& reason = exporter.Reason().empty() ? exporter.LastError() : exporter.Reason();
    if (exporter.SourceFailed()) throw Refusal(reason);
    // System errors about a file are prefixed with its name.
    if (reason.starts_with(target + u": ")) throw Refusal::Whole(reason);
    throw Refusal(reason, target);
}

void WarnOfLoss(const KVExport& exporter, const std::u16string& target, const CommandContext& context) {
    const std::u16string loss = DescribeLoss(exporter.Outcome(), context.language);
    if (!loss.empty()) context.error << "quillon-cli: " << Utf8(target) << ": " << Utf8(loss) << '\n';
}

void RefuseRange(Language language, std::u16string_view english, std::u16string_view russian, std::int64_t given,
                 std::int64_t first, std::int64_t last) {
    throw Refusal(Say(english, russian, {Decimal(given), Decimal(first), Decimal(last)}).In(language));
}

std::shared_ptr<RecordingBlock> FindBlock(Recording& recording, std::int64_t block, Language language) {
    if (block < 1 || block > recording.BlockCount()) {
        RefuseRange(language, u"there is no block %1 (blocks %2 to %3)", u"нет блока %1 (блоки с %2 по %3)", block, 1,
                    recording.BlockCount());
    }
    return recording.GetBlock(static_cast<std::int16_t>(block));
}

BlockChannel FindChannel(Recording& recording, std::int64_t block, std::int64_t channel, Language language) {
    BlockChannel found;
    found.block = FindBlock(recording, block, language);
    found.channel = CheckChannel(*found.block, channel, language);
    return found;
}

std::int16_t CheckChannel(const RecordingBlock& block, std::int64_t channel, Language language) {
    if (channel < 1 || channel > block.ChannelCount()) {
        RefuseRange(language, u"there is no channel %1 (channels %2 to %3)", u"нет канала %1 (каналы с %2 по %3)",
                    channel, 1, block.ChannelCount());
    }
    return static_cast<std::int16_t>(channel);
}

std::vector<std::u16string> TitlesOf(const RecordingBlock& block) {
    std::vector<std::u16string> titles;
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel)
        titles.push_back(block.ChannelTitle(channel));
    return titles;
}

void RefuseTitle(const std::u16string& title, Language language) {
    throw Refusal(Say(u"there is no channel \"%1\"", u"нет канала \"%1\"", {title}).In(language));
}

std::vector<std::int16_t> ChosenChannels(const ParsedArguments& parsed, const RecordingBlock& block,
                                         Language language) {
    std::vector<std::int16_t> channels;
    if (!parsed.Has(u"--channels")) {
        for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) channels.push_back(channel);
        return channels;
    }
    // A word that is no number is told before a channel that is not there.
    std::vector<std::int64_t> positions;
    for (const std::u16string& word : SplitAtCommas(parsed.Value(u"--channels")))
        positions.push_back(WholeNumber(word, u"--channels"));
    for (const std::int64_t position : positions) channels.push_back(CheckChannel(block, position, language));
    return channels;
}

BlockRange FindRange(Recording& recording, const ParsedArguments& parsed, Language language) {
    const auto option = [&](std::u16string_view name, std::int64_t otherwise) {
        return parsed.Has(name) ? WholeNumber(parsed.Value(name), name) : otherwise;
    };
    const std::int64_t first = option(u"--first", 1);
    const std::shared_ptr<RecordingBlock> block = FindChannel(recording, option(u"--block", 1), 1, language).block;
    const std::int64_t samples = block->SampleCount();
    if (first < 1 || first > samples) {
        RefuseRange(language, u"there is no sample %1 (samples %2 to %3)", u"нет отсчёта %1 (отсчёты с %2 по %3)",
                    first, 1, samples);
    }
    const std::int64_t count = option(u"--count", samples - first + 1);
    if (count < 1 || count > samples - first + 1) {
        RefuseRange(language, u"a count of %1 does not fit (counts %2 to %3 from there)",
                    u"количество %1 не помещается (отсюда от %2 до %3)", count, 1, samples - first + 1);
    }
    return {block, {static_cast<std::int32_t>(first - 1), static_cast<std::int32_t>(count)}};
}

void AppendLittleEndian(std::vector<char>& bytes, std::uint32_t number, unsigned size) {
    for (unsigned byte = 0; byte < size; ++byte) bytes.push_back(static_cast<char>(number >> (8 * byte) & 0xFFU));
}

}  // namespace quillon::cli
