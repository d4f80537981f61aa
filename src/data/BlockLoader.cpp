#include "data/BlockLoader.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/StringIds.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"

namespace quillon {

namespace {

/// Runs one step of a load; a failure leaves what the step would have set and the load goes on with the next one.
template <typename Step>
void Resume(Step&& step) {
    try {
        std::forward<Step>(step)();
    } catch (const std::exception&) {
    }
}

std::u16string WithBackslash(std::u16string folder) {
    if (folder.empty() || folder.back() != u'\\') folder.push_back(u'\\');
    return folder;
}

}  // namespace

std::u16string BlockLoader::Attempt::Path() const {
    return name.empty() ? std::u16string() : WithBackslash(folder) + name;
}

bool BlockLoader::IsOpen(const std::u16string& path) const {
    if (path == m_file.fileName) return true;
    if (LowerCase(path) != LowerCase(m_file.fileName)) return false;
    // Where a folder tells letter cases apart it may be another file.
    const FileStamp stamp = m_host.StampOf(path);
    return !stamp.known || !m_attempt.stamp.known || stamp.IsSameFile(m_attempt.stamp);
}

void BlockLoader::OpenFile(const std::u16string& folder, const std::u16string& name, const std::u16string& pattern) {
    Attempt attempt{folder, name, pattern, {}};
    const std::u16string chosen = attempt.Path();
    if (!chosen.empty() && IsOpen(chosen)) return;
    CloseCurrentFile();
    if (!chosen.empty()) {
        // Asked first: what is written while it is opened is a change.
        attempt.stamp = m_host.StampOf(chosen);
        m_attempt = attempt;
        std::shared_ptr<Recording> recording;
        if (m_library.OpenRecording(chosen, recording)) {
            m_services.SetStatus({});
            if (pattern != u"*.*") m_host.OfferFolder(folder);
            Take(std::move(recording), 0);
        } else {
            m_file.refusedName = name;
            m_file.refusal = m_library.LastErrorText();
            m_services.SetStatus(name + u": " + m_file.refusal);
        }
    }
    if (m_file.fileName.empty()) {
        ClearBlockList();
        LoadBlock(-1);
    }
}

void BlockLoader::Take(std::shared_ptr<Recording> recording, std::int16_t block) {
    m_file.recording = std::move(recording);
    m_file.fileName = m_file.recording->FileName();
    m_file.fileInfo = m_file.recording->FileInfo();
    m_file.blockCount = m_file.recording->BlockCount();
    FillBlockList();
    const auto last = static_cast<std::int16_t>(std::max<std::int16_t>(m_file.blockCount, 1) - 1);
    const std::int16_t index = std::clamp<std::int16_t>(block, 0, last);
    if (m_host.SelectedBlockItem() == index) {
        LoadBlock(index);
    } else {
        m_host.SelectBlockItem(index);
    }
}

bool BlockLoader::HasChanged(bool asked) {
    if (m_attempt.name.empty()) return false;
    const FileStamp stamp = m_host.StampOf(m_attempt.Path());
    if (!stamp.known || stamp == m_attempt.stamp) {
        m_seen = {};
        return false;
    }
    return asked || stamp == std::exchange(m_seen, stamp);
}

bool BlockLoader::Reload() {
    if (m_file.fileName.empty()) {
        const Attempt again = m_attempt;
        OpenFile(again.folder, again.name, again.pattern);
        return true;
    }
    m_seen = {};
    Attempt attempt = m_attempt;
    attempt.stamp = m_host.StampOf(m_file.fileName);
    const std::int16_t block = m_file.currentBlockIndex;
    std::shared_ptr<Recording> recording;
    const bool opened = m_library.OpenRecording(m_file.fileName, recording);
    if (opened) CloseCurrentFile();
    m_attempt = std::move(attempt);
    if (opened) Take(std::move(recording), block);
    return opened;
}

void BlockLoader::CloseCurrentFile() {
    std::shared_ptr<Recording> recording = std::move(m_file.recording);
    m_file = ViewFile{};
    m_block = ViewBlock{};
    m_attempt = {};
    m_seen = {};
    m_host.ResetViewState();
    if (recording) m_library.CloseRecording(recording);
}

void BlockLoader::ClearBlockList() {
    for (std::int32_t position = m_host.BlockItemCount() - 1; position >= 0; --position) {
        m_host.RemoveBlockItem(position);
    }
}

void BlockLoader::FillBlockList() {
    if (m_file.blockCount <= 0) {
        ClearBlockList();
        return;
    }
    for (std::int32_t position = m_host.BlockItemCount() - 1; position >= m_file.blockCount; --position) {
        m_host.RemoveBlockItem(position);
    }
    for (std::int16_t position = 0; position < m_file.blockCount; ++position) {
        const auto number = static_cast<std::int16_t>(position + 1);
        const std::shared_ptr<RecordingBlock> block = m_file.recording->GetBlock(number);
        std::u16string text = block->Title();
        if (text.empty()) text = m_services.LongTime(block->StartTime());
        m_host.SetBlockItem(position, text + u'\t' + Decimal(number));
    }
}

void BlockLoader::LoadBlock(std::int16_t index) {
    m_host.ResetViewState();
    m_host.StopSound();
    m_block = ViewBlock{};
    m_file.currentBlockIndex = -1;
    if (index >= 0 && m_file.recording) {
        Resume([&] { m_block.block = m_file.recording->GetBlock(static_cast<std::int16_t>(index + 1)); });
        if (m_block.block) m_file.currentBlockIndex = index;
    }
    if (RecordingBlock* block = m_block.block.get()) {
        Resume([&] { m_block.sampleCount = block->SampleCount(); });
        Resume([&] { m_block.sampleRate = block->SampleRate(); });
        Resume([&] { m_block.startTime = block->StartTime(); });
        Resume([&] { m_block.channelCount = block->ChannelCount(); });
        const auto channels = static_cast<std::size_t>(std::max<std::int16_t>(m_block.channelCount, 0));
        m_block.channelNumbers.resize(channels);
        m_block.invScale.resize(channels);
        m_block.offsets.resize(channels);
        for (std::size_t channel = 1; channel <= channels; ++channel) LoadChannel(static_cast<std::int16_t>(channel));
        Resume([&] { LoadMarks(); });
    }
    m_host.ShowBlock();
}

void BlockLoader::LoadChannel(std::int16_t channel) {
    RecordingBlock& block = *m_block.block;
    const auto at = static_cast<std::size_t>(channel) - 1;
    Resume([&] { m_block.channelNumbers[at] = block.ChannelNumber(channel); });
    Resume([&] {
        // A scale of 0 has no reciprocal: the entry stays 0, and such a channel is drawn as a straight line.
        if (const float scale = block.ChannelScale(channel); scale != 0.0F) m_block.invScale[at] = 1.0F / scale;
    });
    Resume([&] { m_block.offsets[at] = block.ChannelOffset(channel); });
    const std::int16_t number = m_block.channelNumbers[at];
    ChannelSlot* const found = SlotOf(m_slots, number);
    if (found == nullptr) return;
    ChannelSlot& slot = *found;
    slot.title.clear();
    slot.unit.clear();
    Resume([&] { slot.title = block.ChannelTitle(channel); });
    if (slot.title.empty()) slot.title = m_services.Text(IDS_CHANNEL) + u' ' + Decimal(number + 1);
    Resume([&] { slot.unit = block.ChannelUnit(channel); });
}

void BlockLoader::LoadMarks() {
    Resume([&] { m_block.markCount = m_block.block->MarkCount(); });
    if (m_block.markCount < 1) {
        m_block.markCount = 0;
        return;
    }
    const auto marks = static_cast<std::size_t>(m_block.markCount);
    m_block.markCount = 0;  // in case there is no room for that many
    m_block.marks.resize(marks);
    m_block.markCount = static_cast<std::int32_t>(marks);
    for (std::size_t mark = 0; mark < marks; ++mark) {
        BlockMark& entry = m_block.marks[mark];
        const auto number = static_cast<std::int32_t>(mark + 1);
        Resume([&] { entry.position = m_block.block->MarkPosition(number); });
        Resume([&] { entry.text = m_block.block->MarkText(number); });
    }
}

}  // namespace quillon
