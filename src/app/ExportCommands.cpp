#include "app/ExportCommands.h"

#include <algorithm>
#include <utility>

#include "app/StringIds.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "export/EdfPlusTexts.h"
#include "export/QL_Export.h"
#include "norvik/OutputFile.h"

namespace quillon {

namespace {

/// Maximum number of file names listed in the question about overwriting.
constexpr std::size_t kNamesShown = 8;

/// The name without its extension, and without further ones that the save dialog would read as the chosen file type.
std::u16string BareName(const std::u16string& path) {
    std::u16string name = BareNameOf(path);
    for (bool more = true; more && name.size() > 4;) {
        const std::u16string end = LowerCase(name.substr(name.size() - 4));
        more = end == u".bin" || end == u".wav" || end == u".edf" || end == u".txt";
        if (more) name.resize(name.size() - 4);
    }
    return name;
}

std::u16string Joined(const std::vector<std::u16string>& texts) {
    std::u16string joined;
    for (const std::u16string& text : texts) joined += (joined.empty() ? u"" : u"; ") + text;
    return joined;
}

}  // namespace

SampleSpan ExportCommands::Range() const {
    const Selection& selection = m_parts.view.Selected();
    if (selection.active) return selection.Samples();
    return {0, m_parts.document.Block().sampleCount};
}

void ExportCommands::SaveAs() {
    SaveFileDialog& dialog = m_parts.saveDialog;
    const std::shared_ptr<RecordingBlock> block = m_parts.document.Block().stored;
    const SampleSpan range = Range();
    dialog.title = m_parts.services.Text(IDS_SAVE_AS_TITLE);
    dialog.filter = BuildSaveFilter();
    dialog.filterIndex = m_saveType;
    dialog.fileName = BareName(m_parts.document.File().fileName);
    const std::u16string& last = m_parts.settings.folder;
    dialog.folder = last.empty() || !FileExists(last) ? FolderOf(m_parts.document.File().fileName) : last;
    onDialog();
    bool isTold = false;
    dialog.onType = [&](std::int32_t type) {
        const bool tells = type == kEdfPlusFilterIndex && m_parts.document.Block().stored == block;
        if (tells || isTold) m_parts.services.SetStatus(tells ? EdfPlusLine(range, ShownChannels()) : std::u16string());
        isTold = tells;
    };
    const bool isChosen = dialog.Show();
    dialog.onType = {};
    if (isGone()) return;
    if (isTold) m_parts.services.SetStatus({});
    if (!isChosen) return;
    // The dialog runs a message loop, in which the recording may have been closed (its file was removed).
    if (m_parts.document.Block().stored != block) return;
    m_saveType = dialog.filterIndex;
    const std::u16string name = dialog.fileName;
    if (LowerCase(name).ends_with(u".txt")) {
        // The dialog asked only about the named target; with one file per channel other names are written.
        std::vector<std::u16string> files = TextExportFiles(name, *block, m_parts.settings, m_parts.document.Slots());
        std::erase(files, name);
        if (!MayReplace(std::move(files)) || isGone()) return;
        if (m_parts.document.Block().stored != block) return;
        m_parts.settings.folder = FolderOf(name);
        WriteText(name, range);
    } else {
        const std::int32_t type = dialog.filterIndex;
        if (type == kEdfPlusFilterIndex) return WriteEdfPlus(name, range);
        WriteRecording(name, {}, [&](KVExport& exporter) {
            return exporter.Export(block.get(), name, range.first + 1, range.count, type);
        });
    }
}

void ExportCommands::WriteEdfPlus(const std::u16string& name, const SampleSpan& range) {
    const ViewBlock& loaded = m_parts.document.Block();
    EdfPlusRequest request{.first = range.first + 1, .count = range.count, .channels = ShownChannels()};
    for (const std::int16_t channel : AllChannels(*loaded.stored)) request.averaged.push_back(IsShown(channel));
    if (request.channels.empty()) return Tell(IDS_NO_SHOWN_CHANNEL, {});
    const ShownSettings settings = ShownOfBlock();
    WriteRecording(name, EdfPlusLine(range, request.channels), [&](KVExport& exporter) {
        // Taken only now: final scales may have made the shown block anew.
        const std::shared_ptr<RecordingBlock> block = BlockToWrite();
        if (block != loaded.stored) request.shown = &settings;
        return exporter.ExportEdfPlus(block.get(), name, request);
    });
}

bool ExportCommands::IsShown(std::int16_t channel) const {
    const std::int16_t number = m_parts.document.Block().stored->ChannelNumber(channel);
    return m_parts.document.Slots()[static_cast<std::size_t>(number)].shown;
}

std::vector<std::int16_t> ExportCommands::ShownChannels() const {
    std::vector<std::int16_t> channels = AllChannels(*m_parts.document.Block().stored);
    std::erase_if(channels, [this](std::int16_t channel) { return !IsShown(channel); });
    return channels;
}

std::u16string ExportCommands::EdfPlusLine(const SampleSpan& range, const std::vector<std::int16_t>& channels) const {
    const RecordingBlock& block = *m_parts.document.Block().stored;
    const std::u16string text =
        EdfPlusSummary(range, block.SampleRate(), channels.size(), static_cast<std::size_t>(block.ChannelCount()),
                       m_parts.language, m_parts.format.decimalSeparator);
    if (m_parts.document.Block().block == m_parts.document.Block().stored) return text;
    return text + EdfPlusSamples(m_parts.settings.asShown != 0, m_parts.language);
}

ShownSettings ExportCommands::ShownOfBlock() const {
    // A montage is signals of its own beside the block's.
    ShownSettings shown = m_parts.document.Shown();
    shown.montage.reset();
    return shown;
}

std::shared_ptr<RecordingBlock> ExportCommands::BlockToWrite() const {
    const ViewBlock& loaded = m_parts.document.Block();
    return m_parts.settings.asShown != 0 ? loaded.block : loaded.stored;
}

void ExportCommands::WriteRecording(const std::u16string& name, const std::u16string& summary,
                                    const std::function<bool(KVExport&)>& write) {
    KVExport& exporter = m_parts.exporter;
    bool done = false;
    bool stopped = false;
    onWork([&] {
        stopped = !onPrepare();
        if (stopped) return;
        std::int32_t shown = -1;
        exporter.SetProgress([&](std::int32_t samples, std::int32_t total) {
            const auto percent = static_cast<std::int32_t>(std::int64_t{100} * samples / std::max(total, 1));
            if (percent != std::exchange(shown, percent))
                m_parts.services.SetStatus(m_parts.services.Text(IDS_EXPORTING) + u": " + Decimal(percent) + u'%');
            return onPending();
        });
        m_parts.services.SetStatus(summary);
        exporter.SetRecording(m_parts.document.File().fileName);
        done = write(exporter);
        stopped = exporter.Stopped();
    });
    exporter.SetProgress({});
    if (isGone()) return;
    std::u16string text = summary;
    const std::u16string loss = DescribeLoss(exporter.Outcome(), m_parts.language);
    if (!loss.empty()) text += (text.empty() ? u"" : u", ") + loss;
    if (done) {
        Tell(IDS_WRITTEN, name + (text.empty() ? u"" : u": ") + text);
    } else if (stopped) {
        Tell(IDS_STOPPED_FILE, name);
    } else {
        // A message box has shown the error already.
        m_parts.services.SetStatus({});
    }
}

void ExportCommands::Tell(int text, const std::u16string& what) const {
    m_parts.services.SetStatus(m_parts.services.Text(text) + (what.empty() ? what : u": " + what));
}

bool ExportCommands::MayReplace(std::vector<std::u16string> files) const {
    std::erase_if(files, [](const std::u16string& file) { return !FileExists(file); });
    if (files.empty()) return true;
    std::u16string question = m_parts.services.Text(IDS_REPLACE_FILES) + u"\n";
    for (std::size_t i = 0; i < std::min(files.size(), kNamesShown); ++i) question += u"\n" + FileNameOf(files[i]);
    if (files.size() > kNamesShown) question += u"\n... (" + Decimal(static_cast<std::int64_t>(files.size())) + u")";
    return m_parts.services.Ask(question);
}

void ExportCommands::WriteText(const std::u16string& target, const SampleSpan& range) {
    TextExportContext context{m_parts.document.Slots(), m_parts.format, m_parts.view.RawCodes(), m_parts.services,
                              m_parts.openText};
    context.runPending = onPending;
    const ShownSettings shown = ShownOfBlock();
    context.language = m_parts.language;
    std::u16string unread;
    onWork([&] {
        context.stopped = !onPrepare();
        if (context.stopped) return;
        try {
            const ViewBlock& loaded = m_parts.document.Block();
            // Taken only now: final scales may have made the shown block anew.
            const std::shared_ptr<RecordingBlock> block = BlockToWrite();
            if (block != loaded.stored) context.shown = &shown;
            ExportText(target, *block, range.first + 1, range.count, m_parts.settings, context);
        } catch (const std::exception& error) {
            unread = m_parts.document.File().fileName + u": " + Utf16(error.what());
        }
    });
    if (isGone()) return;
    const bool file = target != kClipboardTarget;
    if (!unread.empty()) {
        Tell(IDS_SOUND_UNREADABLE, unread);
    } else if (context.stopped) {
        TellStopped(target, *m_parts.document.Block().stored, context);
    } else if (!context.failures.empty()) {
        Tell(file ? IDS_CANNOT_WRITE : IDS_CLIPBOARD_FAILED, Joined(context.failures));
    } else if (context.written.empty()) {
        Tell(IDS_NO_SHOWN_CHANNEL, {});
    } else if (!file) {
        Tell(IDS_COPIED, {});
    } else {
        const bool several = context.written.size() > 1;
        Tell(IDS_WRITTEN, context.written.front() + (several ? u" ... " + FileNameOf(context.written.back()) : u""));
    }
}

void ExportCommands::TellStopped(const std::u16string& target, const RecordingBlock& block,
                                 const TextExportContext& context) const {
    if (target == kClipboardTarget) return Tell(IDS_STOPPED_COPY, {});
    const std::vector<std::u16string> files =
        TextExportFiles(target, block, m_parts.settings, m_parts.document.Slots());
    if (files.size() == 1) return Tell(IDS_STOPPED_FILE, files.front());
    const bool any = !context.written.empty();
    std::u16string text = StoppedText(m_parts.services, std::ssize(context.written), std::ssize(files),
                                      any ? context.written.front() : std::u16string(),
                                      any ? FileNameOf(context.written.back()) : std::u16string());
    if (!context.failures.empty())
        text += u"; " + m_parts.services.Text(IDS_CANNOT_WRITE) + u": " + Joined(context.failures);
    m_parts.services.SetStatus(text);
}

void ExportCommands::FastExport() {
    const std::shared_ptr<RecordingBlock> block = m_parts.document.Block().stored;
    if (m_parts.settings.fastFile.empty()) {
        std::u16string name;
        onDialog();
        if (!FastExportDialog(m_parts.saveDialog, m_parts.services, name)) return;
        if (isGone()) return;
        m_parts.settings.fastFile = name;
    }
    if (m_parts.document.Block().stored != block) return;
    std::u16string target = m_parts.settings.fastFile;
    // A name without a folder is relative to the recording's folder.
    if (target.find_first_of(u":\\/") == std::u16string::npos)
        target.insert(0, FolderOf(m_parts.document.File().fileName));
    if (!MayReplaceFastFiles(*block, target) || isGone()) return;
    if (m_parts.document.Block().stored == block) WriteText(target, Range());
}

bool ExportCommands::MayReplaceFastFiles(const RecordingBlock& block, const std::u16string& target) {
    std::vector<std::u16string> files = TextExportFiles(target, block, m_parts.settings, m_parts.document.Slots());
    std::erase_if(files, [&](const std::u16string& file) {
        if (std::find(m_fastFiles.begin(), m_fastFiles.end(), file) != m_fastFiles.end()) return true;
        // The target that the user named needs no question, unless it is a recording other than the open one.
        return file == target && (file == m_parts.document.File().fileName || !IsRecording(file));
    });
    if (!MayReplace(files)) return false;
    // Files that were confirmed once, or that this export writes, are not asked about again.
    m_fastFiles.insert(m_fastFiles.end(), files.begin(), files.end());
    return true;
}

bool ExportCommands::IsRecording(const std::u16string& path) const {
    std::shared_ptr<Recording> recording;
    return m_parts.library.OpenRecording(path, recording);
}

bool ExportCommands::MayCopy(std::int32_t samples) const {
    constexpr std::int64_t bytesPerValue = 16;  // about, as the clipboard holds them
    constexpr std::int64_t usual = 512;         // MB
    const std::int64_t megabytes = samples * bytesPerValue * m_parts.document.Block().channelCount / 1000000;
    if (megabytes <= usual) return true;
    const std::u16string question = m_parts.services.Text(IDS_COPY_LARGE) + u"\n\n" + Decimal(megabytes) + u" MB";
    return m_parts.services.Ask(question);
}

void ExportCommands::CopyData() {
    const std::shared_ptr<RecordingBlock> block = m_parts.document.Block().stored;
    const SampleSpan range = Range();
    if (!MayCopy(range.count) || isGone() || m_parts.document.Block().stored != block) return;
    WriteText(std::u16string(kClipboardTarget), range);
}

void ExportCommands::CopyReadout(const std::u16string& text) {
    std::u16string error;
    const std::unique_ptr<TextSink> sink = m_parts.openText(std::u16string(kClipboardTarget), error);
    if (sink) sink->Write(Utf8(text));
    if (sink && sink->Close()) return m_parts.services.SetStatus(m_parts.services.Text(IDS_READOUT_COPIED));
    m_parts.services.SetStatus(sink ? sink->ErrorText() : error);
}

}  // namespace quillon
