#include "data/Document.h"

#include <algorithm>
#include <utility>

#include "base/FilePath.h"
#include "base/Resume.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "data/CoreTexts.h"

namespace quillon {

namespace {

/// More marks than these are loaded again only after a further tenth of the recording.
constexpr std::size_t kFewMarks = 20000;

}  // namespace

bool Document::IsOpen(const std::u16string& path, const FileStamp& stamp) const {
    if (path == m_file.fileName) return true;
    if (LowerCase(path) != LowerCase(m_file.fileName)) return false;
    // In a case-sensitive folder it may be another file.
    return !stamp.known || !m_stamp.known || stamp.IsSameFile(m_stamp);
}

bool Document::OpenFile(const std::u16string& path, const FileStamp& stamp) {
    CloseCurrentFile();
    m_lastPath = path;
    m_stamp = stamp;
    std::shared_ptr<Recording> recording;
    if (!m_library.OpenRecording(path, recording)) {
        m_file.refusedName = FileNameOf(path);
        m_file.refusal = m_library.LastErrorText();
        return false;
    }
    Adopt(std::move(recording), 0);
    return true;
}

void Document::Adopt(std::shared_ptr<Recording> recording, std::int16_t block) {
    m_file.recording = std::move(recording);
    m_file.fileName = m_file.recording->FileName();
    m_file.fileInfo = m_file.recording->FileInfo();
    m_file.blockCount = m_file.recording->BlockCount();
    const auto last = static_cast<std::int16_t>(std::max<std::int16_t>(m_file.blockCount, 1) - 1);
    LoadBlock(std::clamp<std::int16_t>(block, 0, last));
}

void Document::CloseCurrentFile() {
    EndSolo();
    m_currentChannel = 1;
    std::shared_ptr<Recording> recording = std::move(m_file.recording);
    m_file = ViewFile{};
    m_block = ViewBlock{};
    m_lastPath.clear();
    m_stamp = {};
    m_seen = {};
    if (recording) m_library.CloseRecording(recording);
}

std::vector<std::u16string> Document::BlockTitles(int after) const {
    std::vector<std::u16string> titles;
    for (auto number = static_cast<std::int16_t>(after + 1); number <= m_file.blockCount; ++number) {
        const std::shared_ptr<RecordingBlock> block = m_file.recording->GetBlock(number);
        std::u16string text = block->Title();
        if (text.empty()) text = m_texts.LongTime(block->StartTime());
        titles.push_back(text + u'\t' + Decimal(number));
    }
    return titles;
}

bool Document::HasChanged(const FileStamp& now, bool asked) {
    if (m_lastPath.empty()) return false;
    if (!now.known || now == m_stamp) {
        m_seen = {};
        return false;
    }
    return asked || now == std::exchange(m_seen, now);
}

bool Document::Reload(const FileStamp& now) {
    m_seen = {};
    const std::u16string path = m_file.fileName;
    std::shared_ptr<Recording> recording;
    const bool opened = m_library.OpenRecording(path, recording);
    if (opened) {
        const std::int16_t block = m_file.currentBlockIndex;
        const std::int16_t channel = m_currentChannel;
        const ChannelFlags shown = ShownFlags();
        const std::optional<ChannelFlags> before = m_shownBeforeSolo;
        const std::u16string lastPath = m_lastPath;
        CloseCurrentFile();
        Adopt(std::move(recording), block);
        SetShown(shown);
        m_shownBeforeSolo = before;
        if (channel <= m_block.channelCount) m_currentChannel = channel;
        m_lastPath = lastPath;
    }
    m_stamp = now;
    return opened;
}

void Document::LoadBlock(std::int16_t index) {
    EndSolo();
    m_currentChannel = 1;
    m_block = ViewBlock{};
    m_file.currentBlockIndex = -1;
    if (index >= 0 && m_file.recording) {
        Resume([&] { m_block.block = m_file.recording->GetBlock(static_cast<std::int16_t>(index + 1)); });
        if (m_block.block) m_file.currentBlockIndex = index;
    }
    FillBlock();
}

void Document::FillBlock() {
    RecordingBlock* const block = m_block.block.get();
    if (block == nullptr) return;
    Resume([&] { block->PrepareQuickly(); });
    Resume([&] { m_block.sampleCount = block->SampleCount(); });
    Resume([&] { m_block.sampleRate = block->SampleRate(); });
    Resume([&] { m_block.startTime = block->StartTime(); });
    Resume([&] { m_block.channelCount = block->ChannelCount(); });
    const auto channels = static_cast<std::size_t>(std::max<std::int16_t>(m_block.channelCount, 0));
    m_block.channelNumbers.resize(channels);
    for (std::size_t channel = 1; channel <= channels; ++channel) LoadChannel(static_cast<std::int16_t>(channel));
    LoadScales();
    Resume([&] { LoadMarks(); });
}

void Document::LoadScales() {
    const RecordingBlock& block = *m_block.block;
    const auto channels = static_cast<std::size_t>(std::max<std::int16_t>(m_block.channelCount, 0));
    m_block.invScale.assign(channels, 0.0F);
    m_block.offsets.assign(channels, 0.0F);
    for (std::size_t at = 0; at < channels; ++at) {
        const auto channel = static_cast<std::int16_t>(at + 1);
        Resume([&] {
            // A scale of 0 has no reciprocal: the entry stays 0, and such a channel is drawn as a straight line.
            if (const float scale = block.ChannelScale(channel); scale != 0.0F) m_block.invScale[at] = 1.0F / scale;
        });
        Resume([&] { m_block.offsets[at] = block.ChannelOffset(channel); });
    }
}

PrepareStep Document::PrepareMore() {
    if (m_block.block == nullptr) return PrepareStep::Done;
    const bool provisional = m_block.block->IsProvisional();
    bool more = false;
    Resume([&] { more = m_block.block->PrepareMore(); });
    if (more) return PrepareStep::More;
    if (!provisional) return PrepareStep::Done;
    const std::vector<float> invScale = m_block.invScale;
    const std::vector<float> offsets = m_block.offsets;
    LoadScales();
    return invScale == m_block.invScale && offsets == m_block.offsets ? PrepareStep::Done : PrepareStep::DoneRescaled;
}

ReadStep Document::ReadMore(std::int32_t nearSample) {
    ReadStep step;
    if (m_file.recording == nullptr) return step;
    Recording& recording = *m_file.recording;
    const auto number = static_cast<std::int16_t>(m_file.currentBlockIndex + 1);
    const auto firstTitle = [&] {
        std::u16string title;
        if (m_file.blockCount > 0) Resume([&] { title = recording.GetBlock(1)->Title(); });
        return title;
    };
    const std::u16string title = firstTitle();
    const std::int32_t version = recording.Version();
    Resume([&] { step.more = recording.ReadMore(std::max<std::int16_t>(number, 1), nearSample); });
    if (recording.Version() != version) {
        step.infoChanged = m_file.fileInfo != recording.FileInfo();
        m_file.fileInfo = recording.FileInfo();
        step.blocksChanged = m_file.blockCount != recording.BlockCount();
        m_file.blockCount = recording.BlockCount();
        // Stretches are told apart by their times: where one title gets longer, all do.
        step.titlesChanged = title != firstTitle();
    }
    if (number < 1 || number > m_file.blockCount) return step;
    // At the end also what the last steps before did not take over.
    if (step.more && recording.Version() == m_marksVersion) return step;
    std::shared_ptr<RecordingBlock> block;
    Resume([&] { block = recording.GetBlock(number); });
    if (block == nullptr) return step;
    const bool grown = block != m_block.block;
    if (grown && (!step.more || std::int64_t{4} * block->SampleCount() >= std::int64_t{5} * m_block.sampleCount)) {
        m_block = ViewBlock{};
        m_block.block = std::move(block);
        FillBlock();
        step.grown = step.marksChanged = true;
    } else if (!step.more || m_block.marks.size() <= kFewMarks || recording.ReadShare() >= m_marksShare + 0.1) {
        const std::size_t before = m_block.marks.size();
        Resume([&] { LoadMarks(); });
        step.marksChanged = m_block.marks.size() != before;
    }
    return step;
}

void Document::LoadChannel(std::int16_t channel) {
    RecordingBlock& block = *m_block.block;
    const auto at = static_cast<std::size_t>(channel) - 1;
    Resume([&] { m_block.channelNumbers[at] = block.ChannelNumber(channel); });
    ChannelSlot* const slot = Slot(channel);
    if (slot == nullptr) return;
    slot->title.clear();
    slot->unit.clear();
    Resume([&] { slot->title = block.ChannelTitle(channel); });
    if (slot->title.empty()) slot->title = m_texts.Text(IDS_CHANNEL) + u' ' + Decimal(m_block.channelNumbers[at] + 1);
    Resume([&] { slot->unit = block.ChannelUnit(channel); });
}

void Document::LoadMarks() {
    if (m_file.recording) {
        m_marksVersion = m_file.recording->Version();
        m_marksShare = m_file.recording->ReadShare();
    }
    const std::int32_t marks = m_block.block->MarkCount();
    m_block.marks.resize(static_cast<std::size_t>(std::max(marks, 0)));
    for (std::size_t mark = 0; mark < m_block.marks.size(); ++mark) {
        BlockMark& entry = m_block.marks[mark];
        const auto number = static_cast<std::int32_t>(mark + 1);
        Resume([&] { entry.position = m_block.block->MarkPosition(number); });
        Resume([&] { entry.text = m_block.block->MarkText(number); });
    }
    std::stable_sort(m_block.marks.begin(), m_block.marks.end(),
                     [](const BlockMark& one, const BlockMark& other) { return one.position < other.position; });
}

ChannelSlot* Document::Slot(std::int16_t channel) {
    const auto at = static_cast<std::size_t>(channel) - 1;
    return at < m_block.channelNumbers.size() ? SlotOf(m_slots, m_block.channelNumbers[at]) : nullptr;
}

bool Document::IsShown(std::int16_t channel) const {
    const auto at = static_cast<std::size_t>(channel) - 1;
    if (at >= m_block.channelNumbers.size()) return false;
    const ChannelSlot* const slot = SlotOf(m_slots, m_block.channelNumbers[at]);
    return slot != nullptr && slot->shown;
}

ChannelFlags Document::ShownFlags() const {
    ChannelFlags shown;
    for (std::size_t slot = 0; slot < m_slots.size(); ++slot) shown.set(slot, m_slots[slot].shown);
    return shown;
}

void Document::SetShown(const ChannelFlags& shown) {
    for (std::size_t slot = 0; slot < m_slots.size(); ++slot) m_slots[slot].shown = shown.test(slot);
}

void Document::Show(std::int16_t channel, bool shown) {
    m_shownBeforeSolo.reset();
    if (ChannelSlot* const slot = Slot(channel)) slot->shown = shown;
}

void Document::ShowAll(bool shown) {
    for (std::int16_t channel = 1; channel <= m_block.channelCount; ++channel) Show(channel, shown);
}

void Document::InvertShown() {
    const ChannelFlags before = ShownFlags();
    for (std::int16_t channel = 1; channel <= m_block.channelCount; ++channel) {
        // Several channels may share a slot.
        const ChannelSlot* const slot = Slot(channel);
        if (slot != nullptr) Show(channel, !before.test(static_cast<std::size_t>(slot - m_slots.data())));
    }
}

void Document::Solo(std::optional<std::int16_t> channel) {
    EndSolo();
    if (!channel) return;
    const ChannelFlags before = ShownFlags();
    ShowAll(false);
    Show(*channel, true);
    m_shownBeforeSolo = before;
}

void Document::EndSolo() {
    if (m_shownBeforeSolo) SetShown(*m_shownBeforeSolo);
    m_shownBeforeSolo.reset();
}

}  // namespace quillon
