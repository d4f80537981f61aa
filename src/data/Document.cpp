#include "data/Document.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "base/FilePath.h"
#include "base/Resume.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"

namespace quillon {

namespace {

/// More marks than these are loaded again only after a further tenth of the recording.
constexpr std::size_t kFewMarks = 20000;

}  // namespace

bool Document::IsOpen(const std::u16string& path, const FileStamp& stamp) const {
    if (path == m_file.fileName) return true;
    if (LowerCase(path) != LowerCase(m_file.fileName)) return false;
    // In a case-sensitive folder it may be another file.
    return !stamp.known || !m_stamp.own.known || stamp.IsSameFile(m_stamp.own);
}

bool Document::OpenFile(const std::u16string& path, const FileStamp& stamp, std::int16_t block) {
    CloseCurrentFile();
    m_lastPath = path;
    m_stamp = {stamp, {}};
    std::shared_ptr<Recording> recording;
    if (!m_library.OpenRecording(path, recording)) {
        m_file.refusedName = FileNameOf(path);
        m_file.refusal = m_library.LastErrorText();
        return false;
    }
    Adopt(std::move(recording), block);
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
    m_stretch = {};
    m_shownBlocks.Forget();
    m_place.reset();
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

std::vector<OtherFile> Document::OtherFiles() const {
    return m_file.recording ? m_file.recording->OtherFiles() : std::vector<OtherFile>();
}

FileChange Document::ChangeOf(const RecordingStamp& now, bool asked) {
    if (m_lastPath.empty()) return FileChange::None;
    if (m_stamp.others.empty()) {
        // They are named by the recording, so they were first seen when it opened them.
        m_stamp.others = now.others;
        const std::vector<OtherFile> opened = OtherFiles();
        for (std::size_t i = 0; i < std::min(opened.size(), now.others.size()); ++i)
            m_stamp.others[i].size = opened[i].size;
    }
    if (!now.IsKnown() || now == m_stamp) {
        m_seen = {};
        return FileChange::None;
    }
    if (asked) return FileChange::Other;
    const bool isKnown = m_file.recording && m_file.recording->ReadShare() >= 1.0 && Provisional() == nullptr;
    if (isKnown && now.HasGrownSince(m_stamp)) return FileChange::Grown;
    return now == std::exchange(m_seen, now) ? FileChange::Other : FileChange::None;
}

bool Document::Reload(const RecordingStamp& now) {
    m_seen = {};
    const std::u16string path = m_file.fileName;
    std::shared_ptr<Recording> recording;
    const bool opened = m_library.OpenRecording(path, recording);
    if (opened) {
        const std::int16_t block = m_file.currentBlockIndex;
        const std::int16_t channel = m_currentChannel;
        KeepShown();
        const std::optional<std::size_t> place = m_place;
        const ShownSignals shown = GetShown();
        const std::optional<ShownSignals> before = m_shownBeforeSolo;
        const std::u16string lastPath = m_lastPath;
        CloseCurrentFile();
        Adopt(std::move(recording), block);
        m_stretch.SetAllShown(shown.others);
        SetShown(place && m_place && m_place != place ? m_stretch.ShownAt(*m_place) : shown.slots);
        m_shownBeforeSolo = before;
        if (channel <= m_block.channelCount) m_currentChannel = channel;
        m_lastPath = lastPath;
    }
    m_stamp = opened ? RecordingStamp{now.own, {}} : now;
    return opened;
}

void Document::LoadBlock(std::int16_t index) {
    EndSolo();
    KeepShown();
    m_currentChannel = 1;
    const ViewBlock before = std::exchange(m_block, ViewBlock{});
    m_file.currentBlockIndex = -1;
    if (index >= 0 && m_file.recording) {
        Resume([&] { m_block.block = m_file.recording->GetBlock(static_cast<std::int16_t>(index + 1)); });
        if (m_block.block) m_file.currentBlockIndex = index;
        m_block.stored = m_block.block;
    }
    FillBlock();
    FindStretch();
    Reshow();
    m_coversTheSame = before.block != nullptr && Stretch::CoverTheSame(before, m_block);
}

bool Document::ShowAs(const ShownSettings& settings) {
    m_shownAs = settings;
    return Reshow();
}

bool Document::Reshow() {
    bool changed = false;
    // A solo looks at one channel of those whose average it is against.
    const ShownSignals shown = m_shownBeforeSolo ? *m_shownBeforeSolo : GetShown();
    const auto show = [&](ViewBlock& block, const ChannelFlags& slots) {
        if (block.stored == nullptr) return;
        std::vector<bool> flags;
        for (const std::int16_t slot : block.channelNumbers)
            flags.push_back(slot >= 0 && slot < kSlotCount && slots.test(static_cast<std::size_t>(slot)));
        std::shared_ptr<RecordingBlock> now = block.stored;
        Resume([&] { now = m_shownBlocks.Of(block.stored, m_shownAs, flags); });
        if (now == block.block) return;
        block.block = now;
        LoadScales(block);
        changed = true;
    };
    show(m_block, shown.slots);
    for (OtherBlock& other : m_stretch.Others()) {
        const bool known = other.place < shown.others.size();
        if (!other.IsMontage()) show(other.block, known ? shown.others[other.place] : ChannelFlags().set());
    }
    std::shared_ptr<RecordingBlock> pairs;
    if (m_pairs && m_block.stored) Resume([&] { pairs = m_shownBlocks.PairsOf(m_block.stored, m_shownAs); });
    return m_stretch.SetMontage(m_block, std::move(pairs), m_texts) || changed;
}

void Document::KeepShown() {
    if (m_place) m_stretch.SetShownAt(*m_place, ShownFlags());
}

void Document::FindStretch() {
    if (!m_allSignals || m_block.block == nullptr) return m_stretch.Clear();
    m_stretch.Find(*m_file.recording, m_file.currentBlockIndex, m_block, m_texts);
    const std::size_t place = m_stretch.Place();
    if (m_place && m_place != place) SetShown(m_stretch.ShownAt(place));
    m_place = place;
}

void Document::SetAllSignals(bool all) {
    if (all == m_allSignals) return;
    EndSolo();
    KeepShown();
    m_allSignals = all;
    // The slots of the loaded block count as they are.
    m_place.reset();
    FindStretch();
    Reshow();
}

int Document::StretchSignals() const {
    if (m_block.block == nullptr) return 0;
    return Stretch::CountSignals(*m_file.recording, m_file.currentBlockIndex, m_block);
}

std::int16_t Document::SignalCount() const {
    return static_cast<std::int16_t>(m_block.channelNumbers.size() + static_cast<std::size_t>(m_stretch.Count()));
}

Signal Document::GetSignal(std::int16_t number) const {
    if (const OtherBlock* const other = m_stretch.Of(number)) {
        const auto channel = static_cast<std::int16_t>(number - other->before);
        const ChannelTexts& texts = other->texts[static_cast<std::size_t>(channel - 1)];
        return {other->block, channel, texts.title, texts.unit, m_stretch.IsShown(number)};
    }
    static const ChannelSlot none{.title = {}, .unit = {}, .shown = false};
    const ChannelSlot* slot = SlotOf(m_slots, m_block.channelNumbers.at(static_cast<std::size_t>(number) - 1));
    if (slot == nullptr) slot = &none;
    return {m_block, number, slot->title, slot->unit, slot->shown};
}

std::vector<std::int16_t> Document::SignalOrder() const {
    if (m_stretch.Count() > 0) return m_stretch.Order();
    std::vector<std::int16_t> order(m_block.channelNumbers.size());
    std::iota(order.begin(), order.end(), std::int16_t{1});
    return order;
}

void Document::FillBlock() {
    if (m_block.block == nullptr) return;
    LoadDescription(m_block);
    for (std::size_t at = 1; at <= m_block.channelNumbers.size(); ++at) LoadChannel(static_cast<std::int16_t>(at));
    Resume([&] { LoadMarks(); });
}

const RecordingBlock* Document::Provisional() {
    if (m_block.block == nullptr || m_block.block->IsProvisional()) return m_block.block.get();
    const OtherBlock* const other = m_stretch.Provisional();
    return other != nullptr ? other->block.block.get() : nullptr;
}

PrepareStep Document::PrepareMore() {
    if (m_block.block == nullptr) return PrepareStep::Done;
    OtherBlock* const other = m_block.block->IsProvisional() ? nullptr : m_stretch.Provisional();
    ViewBlock& block = other != nullptr ? other->block : m_block;
    const bool provisional = block.block->IsProvisional();
    bool more = false;
    Resume([&] { more = block.block->PrepareMore(); });
    if (more) return PrepareStep::More;
    if (!provisional || !LoadScales(block)) return PrepareStep::Done;
    // What was made of codes of the old scales is of no use.
    m_shownBlocks.Forget();
    Reshow();
    return PrepareStep::DoneRescaled;
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
    // Blocks of a stretch grow together.
    if (!grown && m_allSignals)
        step.signalsChanged = m_stretch.Find(recording, m_file.currentBlockIndex, m_block, m_texts);
    if (step.signalsChanged) Reshow();
    if (grown && (!step.more || std::int64_t{4} * block->SampleCount() >= std::int64_t{5} * m_block.sampleCount)) {
        m_block = ViewBlock{};
        m_block.block = m_block.stored = std::move(block);
        FillBlock();
        FindStretch();
        Reshow();
        step.grown = step.marksChanged = step.signalsChanged = true;
    } else if (!step.more || m_block.marks.size() <= kFewMarks || recording.ReadShare() >= m_marksShare + 0.1) {
        const std::size_t before = m_block.marks.size();
        Resume([&] { LoadMarks(); });
        step.marksChanged = m_block.marks.size() != before;
    }
    return step;
}

void Document::LoadChannel(std::int16_t channel) {
    ChannelSlot* const slot = Slot(channel);
    if (slot == nullptr) return;
    ChannelTexts texts = LoadTexts(m_block, channel, m_texts);
    slot->title = std::move(texts.title);
    slot->unit = std::move(texts.unit);
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
        Resume([&] { entry.seconds = m_block.block->MarkDuration(number); });
    }
    std::stable_sort(m_block.marks.begin(), m_block.marks.end(),
                     [](const BlockMark& one, const BlockMark& other) { return one.position < other.position; });
}

ChannelSlot* Document::Slot(std::int16_t channel) {
    const auto at = static_cast<std::size_t>(channel) - 1;
    return at < m_block.channelNumbers.size() ? SlotOf(m_slots, m_block.channelNumbers[at]) : nullptr;
}

bool Document::IsShown(std::int16_t signal) const {
    return signal >= 1 && signal <= SignalCount() && GetSignal(signal).shown;
}

ChannelFlags Document::ShownFlags() const {
    ChannelFlags shown;
    for (std::size_t slot = 0; slot < m_slots.size(); ++slot) shown.set(slot, m_slots[slot].shown);
    return shown;
}

void Document::SetShown(const ChannelFlags& shown) {
    for (std::size_t slot = 0; slot < m_slots.size(); ++slot) m_slots[slot].shown = shown.test(slot);
}

void Document::Show(std::int16_t signal, bool shown) {
    m_shownBeforeSolo.reset();
    if (ChannelSlot* const slot = Slot(signal)) slot->shown = shown;
    m_stretch.Show(signal, shown);
}

void Document::ShowAll(bool shown) {
    for (std::int16_t signal = 1; signal <= SignalCount(); ++signal) Show(signal, shown);
}

void Document::InvertShown() {
    // Several channels may share a slot.
    std::vector<bool> before;
    for (std::int16_t signal = 1; signal <= SignalCount(); ++signal) before.push_back(IsShown(signal));
    for (std::int16_t signal = 1; signal <= SignalCount(); ++signal)
        Show(signal, !before[static_cast<std::size_t>(signal - 1)]);
}

void Document::Solo(std::optional<std::int16_t> signal) {
    EndSolo();
    if (!signal) return;
    const ShownSignals before = GetShown();
    ShowAll(false);
    Show(*signal, true);
    m_shownBeforeSolo = before;
}

void Document::EndSolo() {
    if (m_shownBeforeSolo) {
        SetShown(m_shownBeforeSolo->slots);
        m_stretch.SetAllShown(m_shownBeforeSolo->others);
    }
    m_shownBeforeSolo.reset();
}

}  // namespace quillon
