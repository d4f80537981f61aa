// What the parts of the main window tell each other.
#include "app/Commands.h"
#include "app/win/MainRooms.h"
#include "app/win/PictureLinks.h"
#include "data/win/FileIdentity.h"
#include "dialogs/DialogTexts.h"

namespace quillon {

void MainRooms::WireGraph() {
    graph.onChange = [this](const ViewChange& change) { ViewChanged(change); };
    graph.onSelectionStart = [this] { m_values.SelectionStarted(); };
    graph.onSelectionEnd = [this] { m_values.SelectionChanged(false), UpdateState(), spectrum.Follow(); };
    graph.onContextMenu = recording.onMenu = [this](POINT screen, std::int16_t channel) {
        commands.SetMenuChannel(channel);
        onContextMenu(screen);
    };
    graph.onChannel = [this](std::int16_t channel) { recording.Choose(channel); };
    graph.onAlone = [this](std::int16_t channel) { recording.ShowAlone(channel); };
    graph.onZoom = [this](int index) { onCommand(mnuZoomX + index); };
    graph.onZoomMenu = [this](HWND control) { onZoomMenu(control); };
    graph.onBusy = [this] { return longCommand.IsBusy(); };
    graph.onFailed = [this](const std::exception& error) { m_texts.Failed(error); };
    LinkPictures({graph, spectrogram, overview, m_hover, m_values, view});
    spectrum.onFailed = browser.onFailed = playback.onFailed = slices.onFailed = graph.onFailed;
}

void MainRooms::WireLists() {
    recording.onBlock = [this](int index) { LoadBlock(index); };
    recording.onShown = [this] { m_document.Reshow() ? SamplesChanged(false) : Refresh(); };
    recording.onChannel = [this] { ChooseChannel(); };
    recording.marks.onGoTo = [this](std::int32_t sample) { commands.GoTo(sample); };
    recording.marks.onMessage = [this](const std::u16string& text) { status.Tell(StatusBar::Topic::Outcome, text); };
    m_values.onText = [this](const std::u16string& text) {
        m_valuesPanel.Text(text);
        m_valuesPanel.Refresh();
    };
    browser.onFile = [this](const std::wstring& name) {
        opener.OpenFile(name);
        LookAtRecording(true, false);
    };
    opener.onLeave = [this] { LeaveBlock(); };
    opener.onChanged = [this](const auto& kept) { RecordingChanged(kept); };
    browser.onClose = [this] { CloseCurrentFile(); };
    browser.onList = [this](bool changed) {
        if (changed) m_reload.Soon();
        UpdateState();
    };
    browser.onLook = [this] { LookAtRecording(true, false); };
    browser.onPathList = [this] { onPathList(); };
    m_reload.stampOf = [](const std::u16string& path) { return StampOf(Wide(path)); };
    m_reload.isSlow = [this] { return IsRemote(browser.Folder()); };
    m_reload.onOpen = [this](const std::u16string& name) { opener.OpenFile(Wide(name)); };
    m_reload.onReloaded = [this](bool grown) {
        LeaveBlock();
        if (!grown) return RecordingChanged(m_reload.Kept());
        recording.BlocksChanged(false);
        ShowBlock(m_reload.Kept());
    };
    m_reload.onTell = [this](bool loaded, const std::u16string& text) { m_texts.TellReload(loaded, text); };
}

void MainRooms::WireSound() {
    playback.onState = [this] { UpdateState(); };
    playback.onPosition = [this] {
        m_texts.ShowPosition(playback.Position());
        graph.ShowPlayLine(playback.Position());
    };
    playback.onError = [this](const std::u16string& text) { status.Tell(StatusBar::Topic::Sound, text); };
    playback.onScroll = [this](std::int32_t columns) { ViewChanged(view.ScrollBy(columns)); };
}

void MainRooms::WireCommands() {
    commands.onChange = [this](const ViewChange& change) { ViewChanged(change); };
    lanes.onChange = [this](const ViewChange& change) { status.Retract(StatusBar::Topic::Hint), ViewChanged(change); };
    lanes.onSignals = [this] {
        if (m_complete) recording.FillChannels(true);
        slices.work.SignalsChanged();
        m_values.DetailsChanged();
    };
    shown.onChange = [this](bool signals) { SamplesChanged(false), signals ? lanes.SignalsFound() : void(); };
    shown.onChoice = [this] { UpdateState(); };
    shown.onRefused = [this](const std::u16string& reason) {
        reason.empty() ? status.Retract(StatusBar::Topic::Choice) : status.Tell(StatusBar::Topic::Choice, reason);
    };
    shown.onPairs = [this] {
        if (!view.LanesOfChannels().Settings().on) lanes.ToggleLanes();
        ViewChanged(view.ScrollLanes(-view.LanesOfChannels().Settings().first));
    };
    shown.onRow = [this] { ArrangeAnew(); };
    look.onChange = [this] {
        Refresh(), recording.LookChanged(), spectrum.LookChanged();
        graph.Invalidate(), spectrogram.InvalidateAll(), overview.Refresh();
        RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_NOCHILDREN);
    };
    commands.onHistory = [this] { UpdateState(); };
    commands.onStop = [this] { return graph.DragsLane() ? ReleaseCapture() != FALSE : slices.DropCurrent(); };
    commands.onSelect = [this] { graph.EndSelecting(); };
    commands.onReadout = [this](std::int32_t sample) { graph.ShowSample(sample); };
    dialogs.onHelp = spectrum.onHelp = [this](const wchar_t* page) { onHelp(page); };
    dialogs.onGoTo = [this](const GoToMeaning& place) {
        commands.GoTo(place);
        // The pointer may rest over the graph, and the system reports it as moved when the dialog closes.
        m_hover.HoldUntilMoved();
    };
    dialogs.onRedraw = [this] { Refresh(), recording.marks.MarksChanged(); };
    dialogs.onWork = [this](const std::function<void()>& work) { longCommand.RunWhole(work); };
    dialogs.onStatistics = [this](StatisticsPass* pass) {
        if (pass == nullptr) return slices.work.EndMeasure();
        slices.work.Measure([pass] { return pass->Step(); }, [pass] { return pass->Share(); });
    };
    dialogs.onPrepare = exports.onPrepare = [this] { return slices.CompleteScales(); };
    dialogs.onPictures = pictures.onPictures = [this] { return CompletePictures(); };
    dialogs.onFiles = [this] { browser.FilesChanged(); };
    longCommand.onEnd = [this] { browser.CatchUp(); };
    longCommand.onClose = [this] { return m_parts.services.Ask(m_parts.services.Text(IDS_STOP_AND_CLOSE)); };
    exports.onDialog = pictures.onDialog = [this] { m_hover.End(); };
    exports.onWork = pictures.onWork = [this](const std::function<void()>& work) { RunLong(work); };
    exports.onPending = pictures.onPending = [this] { return longCommand.StayAlive(); };
    exports.isGone = [this] { return longCommand.IsGone(); };
}

void MainRooms::WireBackground() {
    slices.onKnown = [this] { m_values.MoreKnown(); };
    slices.onFitted = [this] { Refresh(); };
    slices.onPictures = [this](bool wholeView) { m_texts.TellUnreadable(wholeView); };
    slices.onRescaled = [this] { SamplesChanged(true); };
    slices.work.onFound = [this](const ReadStep& step) { Found(step); };
    slices.Wire();
}

}  // namespace quillon
