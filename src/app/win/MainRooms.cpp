#include "app/win/MainRooms.h"

#include <cstdlib>
#include <system_error>
#include <utility>

#include "app/Captions.h"
#include "app/Commands.h"
#include "app/ControlIds.h"
#include "app/StringIds.h"
#include "base/FilePath.h"
#include "base/SystemText.h"
#include "base/Text.h"
#include "data/win/FileIdentity.h"
#include "dialogs/DialogTexts.h"

namespace quillon {

namespace {

/// While a menu or a dialog is open, the loop of messages that works between them is not running.
constexpr UINT_PTR kSliceTimer = 2;
constexpr UINT kSlicePeriod = 10;  // ms

}  // namespace

MainRooms::MainRooms(RoomParts parts)
    : m_parts(std::move(parts)),
      m_document(m_parts.document),
      m_reload({m_document, m_parts.view, m_parts.playback, m_parts.library, m_parts.services}),
      m_background(m_document, m_parts.view),
      m_values(m_document, m_parts.view, m_parts.format, m_parts.settings),
      view(m_parts.view),
      playback(m_parts.playback),
      commands(m_document, view, playback),
      graph(m_document, view, playback, m_parts.settings.display, m_parts.format, m_hover, m_parts.foldOrigin),
      spectrogram(m_document, view, m_parts.settings, m_parts.format, m_parts.services, m_hover),
      recording(m_document),
      browser({m_document, m_parts.library, m_parts.services, status, longCommand, m_parts.settings}),
      exports({m_document, view, m_parts.settings.text, m_parts.format, m_parts.library, m_parts.exporter,
               m_parts.saveDialog, m_parts.openText, m_parts.language, m_parts.services}),
      dialogs({m_parts, graph, spectrogram, m_hover, status, longCommand}) {
    WireGraph();
    WireLists();
    WireSound();
    WireCommands();
    WireBackground();
}

void MainRooms::WireGraph() {
    m_hover.onEnd = [this] { graph.ShowCursor(std::nullopt); };
    graph.onChange = [this](const ViewChange& change) { ViewChanged(change); };
    graph.onSelectionStart = [this] { m_values.SelectionStarted(); };
    graph.onSelectionEnd = [this] {
        m_values.SelectionChanged(false);
        UpdateState();
    };
    graph.onHover = [this](std::int32_t sample, const std::u16string& mark) { m_values.TellHover(sample, mark); };
    graph.onBand = [this](CommonBand which, const auto& band) { spectrogram.ShowBand(which, band); };
    graph.onContextMenu = [this](POINT screen, std::int16_t channel) {
        commands.SetMenuChannel(channel);
        onContextMenu(screen);
    };
    graph.onZoom = [this](int index) { onCommand(mnuZoomX + index); };
    graph.onZoomMenu = [this](HWND control) { onZoomMenu(control); };
    graph.onBusy = [this] { return longCommand.IsBusy(); };
    graph.onFailed = [this](const std::exception& error) { Failed(error); };
    spectrogram.onHover = [this](std::int32_t sample, const std::u16string& text) {
        graph.ShowCursor(BandOf(view.Axis(), {sample - 1, 1}));
        m_values.TellSpectrum(text);
    };
    spectrogram.onBusy = graph.onBusy;
    spectrogram.onPointer = [this] { return graph.Pointer(); };
    spectrogram.onPress = [this] { SetFocus(graph.Graph()); };
    spectrogram.onFailed = graph.onFailed;
}

void MainRooms::WireLists() {
    recording.onBlock = [this](int index) { LoadBlock(index); };
    recording.onShown = [this] { Refresh(); };
    recording.onChannel = [this] { ChooseChannel(); };
    m_values.onText = [this](const std::u16string& text) {
        m_valuesPanel.Text(text);
        m_valuesPanel.Refresh();
    };
    browser.onFile = [this](const std::wstring& name) {
        OpenFile(name);
        LookAtRecording(true, false);
    };
    browser.onClose = [this] { CloseCurrentFile(); };
    browser.onList = [this](bool changed) {
        if (changed) m_reload.Soon();
        UpdateState();
    };
    browser.onLook = [this] { LookAtRecording(true, false); };
    browser.onPathList = [this] { onPathList(); };
    browser.onFailed = [this](const std::exception& error) { Failed(error); };
    m_reload.stampOf = [](const std::u16string& path) { return StampOf(Wide(path)); };
    m_reload.isSlow = [this] { return IsRemote(browser.Folder()); };
    m_reload.onOpen = [this](const std::u16string& name) { OpenFile(Wide(name)); };
    m_reload.onReloaded = [this] {
        LeaveBlock();
        RecordingChanged();
    };
    m_reload.onTell = [this](bool loaded, const std::u16string& text) {
        // A successful reload does not replace a message of another topic; a failed one does.
        loaded ? status.Offer(StatusBar::Topic::Reload, text) : status.Tell(StatusBar::Topic::Reload, text);
    };
}

void MainRooms::WireSound() {
    playback.onState = [this] { UpdateState(); };
    playback.onPosition = [this] { ShowPosition(); };
    playback.onError = [this](const std::u16string& text) { status.Tell(StatusBar::Topic::Sound, text); };
    playback.onScroll = [this](std::int32_t columns) { ViewChanged(view.ScrollBy(columns)); };
    playback.onFailed = [this](const std::exception& error) { Failed(error); };
}

void MainRooms::WireCommands() {
    commands.onChange = [this](const ViewChange& change) { ViewChanged(change); };
    commands.onHistory = [this] { UpdateState(); };
    commands.onStop = [this] { return m_background.DropCurrent() && (ShowProgress(), true); };
    commands.onSelect = [this] { graph.EndSelecting(); };
    commands.onReadout = [this](std::int32_t sample) { graph.ShowSample(sample); };
    dialogs.onHelp = [this] { onHelp(); };
    dialogs.onGoTo = [this](std::int32_t sample) { commands.GoTo(sample); };
    dialogs.onRedraw = [this] { Refresh(); };
    dialogs.onWork = [this](const std::function<void()>& work) { RunBusy(work); };
    dialogs.onStatistics = [this](StatisticsPass* pass) {
        if (pass == nullptr) return m_background.EndMeasure();
        m_background.Measure([pass] { return pass->Step(); }, [pass] { return pass->Share(); });
    };
    dialogs.onPrepare = [this] { return CompleteScales(); };
    dialogs.onPictures = [this] { return CompletePictures(); };
    dialogs.onFiles = [this] { browser.FilesChanged(); };
    longCommand.onClose = [this] { return m_parts.services.Ask(m_parts.services.Text(IDS_STOP_AND_CLOSE)); };
    exports.onDialog = [this] { m_hover.End(); };
    exports.onWork = [this](const std::function<void()>& work) { RunLong(work); };
    exports.onPrepare = [this] { return CompleteScales(); };
    exports.onPending = [this] { return longCommand.StayAlive(); };
    exports.isGone = [this] { return longCommand.IsGone(); };
}

void MainRooms::WireBackground() {
    m_background.onStart = [this] { SetTimer(Window(), kSliceTimer, kSlicePeriod, nullptr); };
    m_background.onDraw = [this] { return graph.DrawMore(); };
    m_background.onDrawnShare = [this] { return graph.DrawnShare(); };
    m_background.onDrawn = [this] {
        if (graph.FitDrawn()) return Refresh();
        TellUnreadable(true);
    };
    m_background.onSpectrum = [this] {
        const bool more = spectrogram.DrawMore();
        if (!more) TellUnreadable(false);
        return more;
    };
    m_background.onSpectrumShare = [this] { return spectrogram.DrawnShare(); };
    m_background.onRescaled = [this] { Rescaled(); };
    m_background.onFound = [this](const ReadStep& step) { Found(step); };
    spectrogram.onRange = [this](std::int16_t channel) {
        return m_background.FindRanges(BackgroundWork::RangeUser::Spectrum, {channel}, [this] {
            spectrogram.UseRange();
            DrawSpectrogram(true);
            TellUnreadable(false);
        });
    };
}

void MainRooms::CreateFirst(HWND window) {
    if (!graph.CreateGraph(window))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "graph");
    longCommand.SetWindow(window);
    m_parts.services.SetWindow(window, &status);
    spectrogram.BuildPalette();
}

void MainRooms::CreateRest(HFONT font, int dpi) {
    const HWND window = Window();
    recording.Attach(GetDlgItem(window, lstBlock), GetDlgItem(window, lvCh), dpi);
    browser.Attach(window, dpi);
    if (!graph.CreateRest(window) || !m_valuesPanel.Create(window, pnValues) || !spectrogram.Create(window))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "picture");
    status.Attach(GetDlgItem(window, sbInfo), font, dpi);
    m_complete = true;
    // The status bar exists from here on.
    ShowPanels();
}

void MainRooms::ShowAll() {
    recording.FillChannels(false);
    m_values.TellDetails();
    Refresh();
    ShowBlockSpectrum();
}

void MainRooms::Close() {
    m_background.BlockLeft();
    browser.Close();
    playback.Close();
    longCommand.SetWindow(nullptr);
}

CommandState MainRooms::State() const {
    return StateOf(m_document, view, playback, m_parts.settings, browser.FileCount(), browser.SelectedPosition());
}

void MainRooms::UpdateState() {
    graph.SetNotice(NoticeOf(m_document, browser.FileCount(), m_parts.services));
    if (m_complete) onState();
}

void MainRooms::Failed(const std::exception& error) noexcept {
    try {
        status.Tell(StatusBar::Topic::Outcome,
                    m_parts.services.Text(IDS_COMMAND_FAILED) + u": " + WordsOf(error, m_parts.language));
    } catch (const std::exception&) {
        // Out of memory even for the message.
    }
}

// Recording and block.

void MainRooms::OpenFile(const std::wstring& name) {
    const std::u16string path = name.empty() ? std::u16string() : PathOf(Narrow16(browser.Folder()), Narrow16(name));
    const FileStamp stamp = StampOf(Wide(path));
    if (!path.empty() && m_document.IsOpen(path, stamp)) return;
    LeaveBlock();
    if (path.empty()) {
        m_document.CloseCurrentFile();
    } else if (m_document.OpenFile(path, stamp)) {
        status.Tell(StatusBar::Topic::Outcome, {});
        browser.Opened();
    } else {
        status.Tell(StatusBar::Topic::Refusal, Narrow16(name) + u": " + m_document.File().refusal);
    }
    RecordingChanged();
}

void MainRooms::CloseCurrentFile() {
    LeaveBlock();
    m_document.CloseCurrentFile();
}

void MainRooms::LoadBlock(int index) {
    LeaveBlock();
    m_document.LoadBlock(static_cast<std::int16_t>(index));
    ShowBlock(std::nullopt);
}

void MainRooms::RecordingChanged() {
    recording.FillBlocks();
    ShowBlock(m_reload.Kept());
}

void MainRooms::LookAtRecording(bool asked, bool isDragging) try {
    if (longCommand.IsBusy() || longCommand.IsGone() || !IsWindowEnabled(Window())) return;
    m_reload.Look(asked, isDragging || graph.HasGesture());
} catch (const std::exception& error) {
    Failed(error);
}

void MainRooms::LeaveBlock() {
    playback.Stop();
    m_background.BlockLeft();
    graph.LeaveBlock();
    spectrogram.LeaveBlock();
    view.LeaveBlock();
    // Not before: after a reload the view's extremes are those of another block than the document's.
    ShowProgress();
    commands.SetMenuChannel(0);
    m_unreadable = {};
    // What was told of the file that goes.
    for (const auto topic : {StatusBar::Topic::Unreadable, StatusBar::Topic::Refusal, StatusBar::Topic::Reload})
        status.Retract(topic);
}

void MainRooms::ShowBlock(const std::optional<WaveformView::State>& kept) {
    view.BlockLoaded();
    if (kept) view.Restore(*kept);
    if (m_complete) {
        recording.FillChannels(kept.has_value());
        m_values.TellDetails();
    }
    if (!kept || graph.IsFitPending()) graph.FitScales();
    SetWindowTextW(Window(), Wide(WindowCaption(m_document.File().fileName, recording.BlockLine())).c_str());
    Refresh();
    if (kept && view.Selected().active) m_values.TellRange();
    if (m_complete) ShowBlockSpectrum();
    m_background.BlockLoaded();
}

void MainRooms::ShowBlockSpectrum() {
    if (!m_parts.settings.window.spectrogramShown) return;
    // The waveform first.
    UpdateWindow(graph.Graph());
    spectrogram.Spectrogram_Init(true);
    m_background.SpectrumDrawn(!spectrogram.IsIncomplete());
    TellUnreadable(false);
}

void MainRooms::DrawSpectrogram(bool force) {
    spectrogram.Spectrogram_Draw(force);
    m_background.SpectrumDrawn(!spectrogram.IsIncomplete());
}

void MainRooms::ChooseChannel() {
    playback.Stop();
    spectrogram.ChooseChannel();
    DrawSpectrogram(true);
    TellUnreadable(false);
    m_values.KeepTrue();
}

// The view.

void MainRooms::ViewChanged(const ViewChange& change) {
    if (change.redraw || change.scrolled != 0) Refresh(change.scrolled);
    playback.ViewChanged(change);
    if (!change.selection) return;
    graph.ShowSelection();
    m_values.SelectionChanged(true);
    if (m_values.IsIncomplete()) m_background.Summarise();
    UpdateState();
}

void MainRooms::Refresh(std::int32_t shift) {
    if (longCommand.IsGone() || IsIconic(Window())) return;
    graph.Refresh(shift);
    if (graph.FitDrawn()) graph.Refresh(0);
    m_background.GraphDrawn(!graph.IsIncomplete());
    if (m_complete) DrawSpectrogram(false);
    // Once the view has changed, clear the message about a position that was not understood.
    status.Retract(StatusBar::Topic::Place);
    TellUnreadable(shift == 0 || std::abs(shift) >= view.Axis().Width());
    UpdateState();
    if (!m_complete) return;
    m_values.SelectionChanged(false);
    m_values.KeepTrue();
    ShowPanels();
    graph.HoverAgain();
    spectrogram.HoverAgain();
}

void MainRooms::TellUnreadable(bool wholeView) {
    std::string inView = graph.Failure();
    if (inView.empty()) inView = spectrogram.Failure();
    const auto text = m_unreadable.Tell(
        {FileNameOf(m_document.File().fileName), inView, view.Ranges().Failure(), wholeView}, m_parts.services);
    if (!text) return;
    if (text->empty()) return status.Retract(StatusBar::Topic::Unreadable);
    status.Tell(StatusBar::Topic::Unreadable, *text);
}

void MainRooms::ShowPanels() {
    status.ShowPanels(BlockPanels(
        {m_document.Block(), m_document.Slots(), view.Axis(), m_parts.format, view.ScaleY(), view.RawCodes()},
        m_parts.services));
}

void MainRooms::ShowSpectrogram() {
    m_parts.settings.window.spectrogramShown = !m_parts.settings.window.spectrogramShown;
    spectrogram.Spectrogram_Init(false);
    onArrange();
    Refresh();
}

void MainRooms::FindData() {
    const auto find = [this] { ViewChanged(view.FindData()); };
    // Other channels may be shown when the ranges are found.
    const auto found = [this, find] { view.Ranges().IsRecorded(ChannelsOf(view.GetLanes())) ? find() : FindData(); };
    const std::vector<std::int16_t> shown = ChannelsOf(view.GetLanes());
    if (view.RawCodes() || m_background.FindRanges(BackgroundWork::RangeUser::FindData, shown, found)) find();
}

// Work behind what is shown.

bool MainRooms::RunSlice() {
    if (longCommand.IsBusy() || longCommand.IsGone() || m_background.IsIdle()) return false;
    try {
        m_background.RunSlice();
    } catch (const std::exception& error) {
        Failed(error);
    }
    if (longCommand.IsGone()) return false;
    ShowProgress();
    return !m_background.IsIdle();
}

void MainRooms::OnTimer(UINT_PTR timer) {
    if (timer != kSliceTimer) return graph.OnTimer(timer);
    if (RunSlice() || !m_background.IsIdle()) return;
    // The last pass may have been dropped outside a slice.
    KillTimer(Window(), kSliceTimer);
    ShowProgress();
}

void MainRooms::Rescaled() {
    playback.Stop();
    view.Rescaled();
    graph.Rescaled();
    spectrogram.LeaveBlock();
    m_background.Rescaled();
    m_values.BlockChanged();
    Refresh();
    if (m_complete) ShowBlockSpectrum();
}

void MainRooms::Found(const ReadStep& step) {
    if (m_complete && (step.blocksChanged || step.titlesChanged)) recording.FillBlocks();
    if (step.grown) {
        const WaveformView::State kept = view.Keep();
        LeaveBlock();
        return ShowBlock(kept);
    }
    if (step.infoChanged) m_values.DetailsChanged();
    if (step.marksChanged) Refresh();
}

bool MainRooms::CompleteScales() {
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    PrepareStep step = PrepareStep::More;
    bool alive = true;
    while (alive && block->IsProvisional() && step == PrepareStep::More) {
        alive = longCommand.StayAlive();
        if (alive) step = m_document.PrepareMore();
        const auto percent = static_cast<std::int32_t>(block->PreparedShare() * 100.0);
        status.Tell(StatusBar::Topic::Progress,
                    m_parts.services.Text(IDS_WORK_SCALES) + u": " + Decimal(percent) + u" %");
    }
    status.Retract(StatusBar::Topic::Progress);
    if (!alive) return false;
    if (step == PrepareStep::DoneRescaled) Rescaled();
    return true;
}

void MainRooms::ShowProgress() {
    const std::optional<WorkSlices::Report> progress = m_background.Current();
    const bool changed = std::exchange(m_progress, progress) != progress;
    if (changed || m_background.IsIdle()) m_values.MoreKnown();
    if (!changed) return;
    if (progress) {
        status.Offer(StatusBar::Topic::Progress,
                     m_parts.services.Text(progress->text) + u": " + Decimal(progress->percent) + u" %");
    } else {
        status.Retract(StatusBar::Topic::Progress);
    }
}

bool MainRooms::CompletePictures() {
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    // What the user has stopped before is wanted now.
    m_background.GraphDrawn(!graph.IsIncomplete());
    m_background.SpectrumDrawn(!spectrogram.IsIncomplete());
    if (!m_background.ArePicturesComplete()) {
        RunLong([this] {
            while (!m_background.ArePicturesComplete() && longCommand.StayAlive()) {
                m_background.RunSlice();
                ShowProgress();
            }
        });
    }
    return !longCommand.IsGone() && m_document.Block().block == block && m_background.ArePicturesComplete();
}

// Sound and long commands.

void MainRooms::OpenContextMenu() {
    RECT place{};
    GetWindowRect(graph.Graph(), &place);
    commands.SetMenuChannel(0);
    onContextMenu({place.left, place.top});
}

void MainRooms::ShowPosition() {
    const std::int32_t sample = playback.Position();
    if (sample == 0) {
        status.Retract(StatusBar::Topic::Sound);
    } else {
        // Do not replace the outcome of an export or an error.
        status.Offer(StatusBar::Topic::Sound, m_parts.services.Text(IDS_PLAYING) + u' ' +
                                                  PositionText(m_document.Block(), sample, u" ", m_parts.format));
    }
    graph.ShowPlayLine(sample);
}

void MainRooms::RunBusy(const std::function<void()>& work) {
    const std::exception_ptr failure = longCommand.Run(work);
    if (longCommand.IsGone()) return;
    longCommand.CloseIfAsked();
    browser.CatchUp();
    if (failure) std::rethrow_exception(failure);
}

void MainRooms::RunLong(const std::function<void()>& work) {
    m_hover.End();
    graph.EndGesture();
    // Playback position messages would replace the messages of the work.
    playback.Stop();
    const HCURSOR pointer = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    RunBusy(work);
    SetCursor(pointer);
}

}  // namespace quillon
