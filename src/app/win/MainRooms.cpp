#include "app/win/MainRooms.h"

#include <cstdlib>
#include <system_error>
#include <utility>

#include "app/Captions.h"
#include "app/ControlIds.h"
#include "app/StringIds.h"

namespace quillon {

MainRooms::MainRooms(RoomParts parts)
    : m_parts(std::move(parts)),
      m_document(m_parts.document),
      m_reload({m_document, m_parts.view, m_parts.playback, m_parts.library, m_parts.services}),
      m_values(m_document, m_parts.view, m_parts.format, m_parts.settings, m_parts.services, m_parts.language),
      m_valuesPanel(m_parts.density),
      m_texts(m_parts, status, graph, spectrogram),
      view(m_parts.view),
      playback(m_parts.playback),
      slices(m_document, view, m_parts.services, status, longCommand, graph, spectrogram, overview),
      commands(m_document, view, playback),
      lanes(m_document, view, m_parts.settings.window),
      shown(m_document, m_parts.settings.window, m_parts.services, m_parts.format, m_parts.language),
      look(view, m_parts.settings.window),
      graph(m_document, view, playback, m_parts.settings.display, m_parts.format, m_hover, m_parts.density,
            m_parts.foldOrigin),
      spectrogram(m_document, view, m_parts.settings, m_parts.format, m_parts.services, m_hover, m_parts.density),
      overview(m_document, view, m_parts.settings.window, m_parts.format, m_parts.density),
      recording(m_parts),
      browser({m_document, m_parts.library, m_parts.services, status, longCommand, m_parts.settings, m_parts.density}),
      opener({m_parts, browser, status, longCommand, m_hover}),
      exports({m_document, view, m_parts.settings.text, m_parts.format, m_parts.library, m_parts.exporter,
               m_parts.saveDialog, m_parts.openText, m_parts.language, m_parts.services}),
      dialogs({m_parts, graph, spectrogram, m_hover, status, longCommand}),
      pictures({m_parts, graph, spectrogram, longCommand}),
      spectrum(m_parts, slices.work) {
    WireGraph();
    WireLists();
    WireSound();
    WireCommands();
    WireBackground();
    lanes.Restore();
    shown.Restore(), look.Restore();
}

void MainRooms::CreateFirst(HWND window) {
    if (!graph.CreateGraph(window))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "graph");
    longCommand.SetWindow(window);
    m_parts.services.SetWindow(window, &status);
    spectrogram.BuildPalette();
}

void MainRooms::AttachLists(const TimerFactory& makeTimer) {
    recording.Attach(Window());
    browser.Attach(Window(), makeTimer);
    status.AnnounceBy(makeTimer), m_valuesPanel.AnnounceBy(makeTimer, m_parts.services.Text(IDS_NAME_VALUES));
}

void MainRooms::CreatePictures() {
    if (!graph.CreateRest(Window()) || !m_valuesPanel.Create(Window(), pnValues) || !spectrogram.Create(Window()) ||
        !overview.Create(Window()))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "picture");
    // Tab reaches it behind the lists, below which it is.
    SetWindowPos(m_valuesPanel.Window(), GetDlgItem(Window(), lvMarks), 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void MainRooms::CreateRest() {
    status.Attach(GetDlgItem(Window(), sbInfo), m_parts.density);
    m_complete = true;  // the status bar included
    m_texts.ShowPanels();
}

void MainRooms::DensityChanged() {
    graph.DensityChanged();
    overview.DensityChanged();
    if (!m_complete) return;
    recording.DensityChanged();
    browser.DensityChanged();
}

void MainRooms::ShowAll() {
    recording.FillChannels(false);
    m_values.TellDetails();
    // Where the recording that was open last is shown again.
    m_values.SelectionChanged(true);
    Refresh();
    slices.InitSpectrogram();
    recording.OfferMarksOnly();
}

void MainRooms::Close() {
    slices.BlockLeft();
    browser.Close();
    playback.Close();
    longCommand.SetWindow(nullptr);
}

CommandState MainRooms::State() const {
    CommandState state =
        StateOf(m_document, view, playback, m_parts.settings, browser.FileCount(), browser.SelectedPosition());
    shown.Describe(state);
    state.stoppable = graph.DragsLane() || slices.work.Current().has_value();
    return state;
}

void MainRooms::UpdateState() {
    graph.SetNotice(NoticeOf(m_document, browser.FileCount(), m_parts.services));
    if (m_complete) onState(), spectrum.Look(), overview.Refresh();
}

// Recording and block.

void MainRooms::CloseCurrentFile() {
    LeaveBlock();
    m_document.CloseCurrentFile();
}

void MainRooms::LoadBlock(int index) {
    LeaveBlock();
    m_document.LoadBlock(static_cast<std::int16_t>(index));
    ShowBlock(std::nullopt);
}

void MainRooms::RecordingChanged(const std::optional<WaveformView::State>& kept) {
    recording.FillBlocks();
    ShowBlock(kept);
}

void MainRooms::LookAtRecording(bool asked, bool isDragging) try {
    if (longCommand.IsBusy() || longCommand.IsGone() || !IsWindowEnabled(Window())) return;
    m_reload.Look(asked, isDragging || graph.HasGesture() || overview.HasGesture());
} catch (const std::exception& error) {
    m_texts.Failed(error);
}

void MainRooms::LeaveBlock() {
    playback.Stop();
    slices.BlockLeft();
    graph.LeaveBlock();
    spectrogram.LeaveBlock(), spectrum.LeaveBlock();
    view.LeaveBlock();
    // Not before: after a reload the view's extremes are those of another block than the document's.
    slices.ShowProgress();
    commands.SetMenuChannel(0);
    m_texts.BlockLeft();
}

void MainRooms::ShowBlock(const std::optional<WaveformView::State>& kept) {
    view.BlockLoaded();
    ArrangeTitles();
    if (kept) view.Restore(*kept);
    if (m_complete) {
        recording.FillChannels(kept.has_value());
        m_values.TellDetails();
    }
    if (!kept || graph.IsFitPending()) graph.FitScales();
    SetWindowTextW(Window(), Wide(WindowCaption(m_document.File().fileName, recording.BlockLine())).c_str());
    Refresh();
    if (m_complete && kept && view.Selected().active) m_values.TellRange();
    if (m_complete) slices.InitSpectrogram();
    slices.work.BlockLoaded();
    if (!kept && m_complete) recording.OfferMarksOnly();
    // Not while something else is told: it would be lost.
    if (status.Message().empty() && lanes.TakeHint()) m_texts.TellOfLanes();
}

void MainRooms::ArrangeTitles() {
    const std::int32_t width = graph.TitlesWidth();
    const bool wants = WantsOverview(m_parts.settings.window);
    const bool isSame = std::exchange(m_titlesWidth, width) == width;
    if (std::exchange(m_wantsOverview, wants) != wants || !isSame) onArrange();
}

void MainRooms::ChooseChannel() {
    playback.Stop();
    spectrogram.ChooseChannel();
    slices.DrawSpectrogram(true);
    m_texts.TellUnreadable(false);
    m_values.KeepTrue();
    graph.ChannelChanged();
    m_texts.ShowPanels();
}

// The view.

void MainRooms::ViewChanged(const ViewChange& change) {
    if (change.redraw) {
        lanes.Remember();
        ArrangeTitles();
    }
    if (change.redraw || change.scrolled != 0) Refresh(change.scrolled);
    playback.ViewChanged(change);
    if (!change.selection) return;
    graph.ShowSelection();
    m_values.SelectionChanged(true);
    if (m_values.IsIncomplete()) slices.work.Summarise();
    UpdateState();
    // While it is dragged the spectra would begin anew with each move.
    if (!graph.HasGesture()) spectrum.Follow();
}

void MainRooms::Refresh(std::int32_t shift) {
    if (longCommand.IsGone() || IsIconic(Window())) return;
    graph.Refresh(shift);
    if (graph.FitDrawn()) graph.Refresh(0);
    slices.GraphDrawn();
    if (m_complete) slices.DrawSpectrogram(false);
    m_texts.TellUnreadable(shift == 0 || std::abs(shift) >= view.Axis().Width());
    UpdateState();
    if (!m_complete) return;
    m_values.SelectionChanged(false);
    m_values.KeepTrue();
    m_texts.ShowPanels();
    graph.HoverAgain();
    spectrogram.HoverAgain();
}

void MainRooms::ShowSpectrogram() {
    m_parts.settings.window.spectrogramShown = !m_parts.settings.window.spectrogramShown;
    spectrogram.Spectrogram_Init(false);
    ArrangeAnew();
}

void MainRooms::ShowOverview() {
    m_parts.settings.window.overview = WantsOverview(m_parts.settings.window) ? 2 : 1;
    ArrangeAnew();
    slices.work.Summarise();
}

void MainRooms::ArrangeAnew() {
    m_wantsOverview = WantsOverview(m_parts.settings.window);
    onArrange();
    PostMessageW(Window(), WM_TIMER, kRefreshTimer, 0);
}

void MainRooms::OnTimer(UINT_PTR timer) {
    if (timer == kRefreshTimer) return Refresh();
    if (!slices.OnTimer(timer)) graph.OnTimer(timer);
}

void MainRooms::SamplesChanged(bool stored) {
    if (stored) playback.Stop();
    stored ? view.Rescaled() : view.Reshown();
    graph.Rescaled();
    if (stored) spectrogram.LeaveBlock(), spectrum.LeaveBlock();
    slices.work.Rescaled();
    m_values.BlockChanged();
    Refresh();
    if (stored && m_complete) slices.InitSpectrogram();
}

void MainRooms::Found(const ReadStep& step) {
    // Also before the list exists: it is filled with what was found by then.
    if (step.blocksChanged || step.titlesChanged) recording.BlocksChanged(step.titlesChanged);
    if (opener.ShowAwaited()) return;
    if (step.grown) {
        const WaveformView::State kept = view.Keep();
        LeaveBlock();
        return ShowBlock(kept);
    }
    if (step.signalsChanged) lanes.SignalsFound();
    if (step.infoChanged) m_values.DetailsChanged();
    if (!step.marksChanged) return;
    graph.SeesOtherMarks() ? Refresh() : UpdateState();
    recording.marks.MarksChanged();
}

bool MainRooms::CompletePictures() {
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    bool complete = slices.ArePicturesComplete();
    if (!complete) RunLong([&] { complete = slices.CompletePictures(); });
    return complete && !longCommand.IsGone() && m_document.Block().block == block;
}

// Long commands.

void MainRooms::RunLong(const std::function<void()>& work) {
    m_hover.End();
    graph.EndGesture();
    // Playback position messages would replace the messages of the work.
    playback.Stop();
    longCommand.RunWaiting(work);
}

}  // namespace quillon
