#include <algorithm>
#include <filesystem>
#include <utility>

#include "app/win/frmQLMain.h"
#include "base/FilePath.h"
#include "base/StringIds.h"
#include "base/Text.h"
#include "base/win/SystemPath.h"
#include "export/ImagePlan.h"
#include "export/win/ImageCopy.h"
#include "view/Readout.h"

namespace quillon {

namespace {

/// File names that the question about replacing shows.
constexpr std::size_t kNamesShown = 8;

/// The name without its extension, and without those that the save dialog would take for the type that is meant.
std::u16string BareName(const std::u16string& path) {
    std::u16string name = FileNameOf(path);
    name.resize(std::min(name.rfind(u'.'), name.size()));
    for (bool more = true; more && name.size() > 4;) {
        const std::u16string end = LowerCase(name.substr(name.size() - 4));
        more = end == u".bin" || end == u".wav" || end == u".edf" || end == u".txt";
        if (more) name.resize(name.size() - 4);
    }
    return name;
}

bool FileExists(const std::u16string& path) {
    return GetFileAttributesW(SystemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::u16string Joined(const std::vector<std::u16string>& texts) {
    std::u16string joined;
    for (const std::u16string& text : texts) joined += (joined.empty() ? u"" : u"; ") + text;
    return joined;
}

}  // namespace

void frmQLMain::RunBusy(const std::function<void()>& work) {
    const std::exception_ptr failure = m_long.Run(work);
    if (m_window == nullptr || m_closing) return;
    m_long.CloseIfAsked();
    if (std::exchange(m_changedMeanwhile, false)) FilesChanged();
    if (failure) std::rethrow_exception(failure);
}

void frmQLMain::RunLong(const std::function<void()>& work) {
    EndHover();
    EndGesture();
    // Its position would take the place of what is told about the work.
    StopSound();
    const HCURSOR pointer = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    RunBusy(work);
    SetCursor(pointer);
}

frmQLMain::SampleRange frmQLMain::ExportRange() const {
    const Selection& selection = m_view.Selected();
    if (selection.active) return {selection.First(), selection.Count()};
    return {1, m_document.Block().sampleCount};
}

void frmQLMain::SaveAs(int) {
    SaveFileDialog& dialog = *m_global.saveDialog;
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    const SampleRange range = ExportRange();
    dialog.title = m_services.Text(IDS_SAVE_AS_TITLE);
    dialog.filter = BuildSaveFilter();
    dialog.filterIndex = m_saveType;
    dialog.fileName = BareName(m_document.File().fileName);
    const std::u16string& last = m_global.settings.exportPath;
    dialog.folder = last.empty() || !FileExists(last) ? FolderOf(m_document.File().fileName) : last;
    EndHover();
    if (!dialog.Show() || m_window == nullptr || m_closing) return;
    // Its messages may have closed the recording, which another program can take away.
    if (m_document.Block().block != block) return;
    m_saveType = dialog.filterIndex;
    const std::u16string name = dialog.fileName;
    if (LowerCase(name).ends_with(u".txt")) {
        // The dialog has asked about the target itself, which a file per channel leaves alone.
        std::vector<std::u16string> files =
            TextExportFiles(name, *block, TextSettings(m_global.settings), m_document.Slots());
        std::erase(files, name);
        if (!MayReplace(std::move(files)) || m_window == nullptr || m_closing) return;
        if (m_document.Block().block != block) return;
        m_global.settings.exportPath = FolderOf(name);
        WriteText(name, range);
    } else {
        WriteRecording(*block, name, range, dialog.filterIndex);
    }
}

void frmQLMain::WriteRecording(RecordingBlock& block, const std::u16string& name, const SampleRange& range,
                               std::int32_t type) {
    KVExport& exporter = *m_global.exporter;
    bool done = false;
    RunLong([&] {
        std::int32_t shown = -1;
        exporter.SetProgress([&](std::int32_t samples, std::int32_t total) {
            const auto percent = static_cast<std::int32_t>(std::int64_t{100} * samples / std::max(total, 1));
            if (percent != std::exchange(shown, percent))
                m_status.Tell(StatusBar::Topic::Outcome,
                              m_services.Text(IDS_EXPORTING) + u": " + Decimal(percent) + u'%');
            m_long.StayAlive();
        });
        m_status.Tell(StatusBar::Topic::Outcome, {});
        exporter.SetRecording(m_document.File().fileName);
        done = exporter.Export(&block, name, range.first, range.count, type);
    });
    exporter.SetProgress({});
    if (m_window == nullptr) return;
    // What went wrong was told in a box.
    const std::u16string loss = DescribeLoss(exporter.Outcome(), m_global.language);
    m_status.Tell(
        StatusBar::Topic::Outcome,
        done ? m_services.Text(IDS_WRITTEN) + u": " + name + (loss.empty() ? u"" : u": ") + loss : std::u16string());
}

bool frmQLMain::MayReplace(std::vector<std::u16string> files) const {
    std::erase_if(files, [](const std::u16string& file) { return !FileExists(file); });
    if (files.empty()) return true;
    std::u16string question = m_services.Text(IDS_REPLACE_FILES) + u"\n";
    for (std::size_t i = 0; i < std::min(files.size(), kNamesShown); ++i) question += u"\n" + FileNameOf(files[i]);
    if (files.size() > kNamesShown) question += u"\n... (" + Decimal(static_cast<std::int64_t>(files.size())) + u")";
    return MessageBoxW(m_window, Wide(question).c_str(), L"Quillon", MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) ==
           IDYES;
}

void frmQLMain::WriteText(const std::u16string& target, const SampleRange& range) {
    TextExportContext context{m_document.Slots(), m_global.format, m_view.RawCodes(), m_services, m_global.openText};
    context.runPending = [this] { return m_long.StayAlive(); };
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    std::u16string unread;
    RunLong([&] {
        try {
            ExportText(target, *block, range.first, range.count, TextSettings(m_global.settings), context);
        } catch (const std::exception& error) {
            unread = m_document.File().fileName + u": " + Utf16(error.what());
        }
    });
    if (m_window == nullptr) return;
    const bool file = target != kClipboardTarget;
    const auto tell = [&](int text, const std::u16string& name) {
        m_status.Tell(StatusBar::Topic::Outcome, m_services.Text(text) + (name.empty() ? name : u": " + name));
    };
    if (!unread.empty()) {
        tell(IDS_SOUND_UNREADABLE, unread);
    } else if (!context.failures.empty()) {
        tell(file ? IDS_CANNOT_WRITE : IDS_CLIPBOARD_FAILED, Joined(context.failures));
    } else if (context.written.empty()) {
        tell(IDS_NO_SHOWN_CHANNEL, {});
    } else if (!file) {
        tell(IDS_COPIED, {});
    } else {
        const bool several = context.written.size() > 1;
        tell(IDS_WRITTEN, context.written.front() + (several ? u" ... " + FileNameOf(context.written.back()) : u""));
    }
}

void frmQLMain::FastExport(int) {
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    if (m_global.settings.exportFastFile.empty()) {
        std::u16string name;
        EndHover();
        if (!FastExportDialog(*m_global.saveDialog, m_services, name)) return;
        if (m_window == nullptr || m_closing) return;
        m_global.settings.exportFastFile = name;
    }
    if (m_document.Block().block != block) return;
    std::u16string target = m_global.settings.exportFastFile;
    // A name without a folder means the recording's own.
    if (target.find_first_of(u":\\/") == std::u16string::npos) target.insert(0, FolderOf(m_document.File().fileName));
    if (!MayReplaceFastFiles(*block, target) || m_window == nullptr || m_closing) return;
    if (m_document.Block().block == block) WriteText(target, ExportRange());
}

bool frmQLMain::MayReplaceFastFiles(const RecordingBlock& block, const std::u16string& target) {
    std::vector<std::u16string> files =
        TextExportFiles(target, block, TextSettings(m_global.settings), m_document.Slots());
    std::erase_if(files, [&](const std::u16string& file) {
        if (std::find(m_fastFiles.begin(), m_fastFiles.end(), file) != m_fastFiles.end()) return true;
        // The one that the user has named is not asked about, unless it is what nobody would replace by a text.
        return file == target && (file == m_document.File().fileName || !IsRecording(file));
    });
    if (!MayReplace(files)) return false;
    // What has been agreed to, or is written now, is not asked about again.
    m_fastFiles.insert(m_fastFiles.end(), files.begin(), files.end());
    return true;
}

bool frmQLMain::IsRecording(const std::u16string& path) const {
    std::shared_ptr<Recording> recording;
    return m_global.library->OpenRecording(path, recording);
}

bool frmQLMain::MayCopy(std::int32_t samples) const {
    constexpr std::int64_t bytesPerValue = 16;  // about, as the clipboard holds them
    constexpr std::int64_t usual = 512;         // MB
    const std::int64_t megabytes = samples * bytesPerValue * m_document.Block().channelCount / 1000000;
    if (megabytes <= usual) return true;
    const std::u16string question = m_services.Text(IDS_COPY_LARGE) + u"\n\n" + Decimal(megabytes) + u" MB";
    return MessageBoxW(m_window, Wide(question).c_str(), L"Quillon", MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) ==
           IDYES;
}

void frmQLMain::Copy(int index) {
    if (index == 0) {
        const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
        const SampleRange range = ExportRange();
        if (!MayCopy(range.count) || m_window == nullptr || m_closing || m_document.Block().block != block) return;
        WriteText(std::u16string(kClipboardTarget), range);
    } else {
        CopyImage(kClipboardTarget);
    }
}

void frmQLMain::CopyImage(std::u16string_view target) {
    EndHover();
    // The line of the sound is no part of the view.
    InvalidateBand(m_graph.SetBand(GraphBand::Play, std::nullopt));
    const bool spectrogram = m_global.settings.spectrogramShown;
    const ImageWindows windows{m_scaleYBox.Window(), m_graphBox.Window(), spectrogram ? m_scaleFBox.Window() : nullptr,
                               spectrogram ? m_fftBox.Window() : nullptr, m_scaleXBox.Window()};
    const TimeAxis& axis = m_view.Axis();
    const std::int32_t last = SampleUnder(axis, std::max<std::int32_t>(m_layout.graph.width - 1, 0));
    const auto place = [&](std::int32_t sample) {
        return PositionText(m_document.Block(), sample, u" ", m_global.format);
    };
    const std::u16string caption = Narrow16(WindowText(m_window)) + u"    " + place(SampleUnder(axis, 0)) +
                                   u" \u2013 " + place(last) + u"    " +
                                   m_services.DateAndTime(m_document.Block().startTime);
    // Its strip is as high at any density.
    const GdiFont font = MakeFont(USER_DEFAULT_SCREEN_DPI);
    const bool done = ImageCopy(windows, font.Get(), caption, target);
    ShowPlayLine();
    m_status.Tell(StatusBar::Topic::Outcome, m_services.Text(done ? IDS_COPIED : IDS_CLIPBOARD_FAILED));
}

}  // namespace quillon
