#include "app/CommandState.h"

#include <algorithm>
#include <cmath>

#include "app/Commands.h"
#include "app/FilterChoices.h"
#include "app/Playback.h"
#include "app/Settings.h"
#include "app/SpectrogramChoices.h"
#include "view/AmplitudeScale.h"
#include "view/TimeAxis.h"

namespace quillon {

namespace {

/// The entry of the menu of pages that is shown; -1: none of them.
std::int32_t PageIndex(const TimeAxis& axis) {
    if (!axis.IsFree() || axis.StripLength() < 1) return -1;
    constexpr double tolerance = 1e-6;
    for (int index = 0; index < kPageCount; ++index) {
        const double length = kPageLengths[static_cast<std::size_t>(index)];
        if (std::fabs(axis.PageSeconds() - length) < length * tolerance) return index;
    }
    return axis.StripLength() <= axis.Width() ? kPageCount : -1;
}

}  // namespace

CommandState StateOf(const Document& document, const WaveformView& view, const Playback& playback,
                     const Settings& settings, std::int32_t fileCount, std::int32_t filePosition) {
    CommandState state;
    state.fileCount = fileCount;
    state.filePosition = filePosition;
    state.recent = static_cast<std::int32_t>(settings.recent.Paths().size());
    state.channelCount = document.Block().channelCount;
    state.sampleCount = document.Block().sampleCount;
    state.hasMarks = !document.Block().marks.empty();
    state.isSolo = document.IsSolo();
    state.hasSelection = view.Selected().active;
    state.isPinned = view.Pinned() != 0;
    state.hasHistory = view.HasHistory();
    state.zoomX = view.Axis().ZoomIndex();
    state.hasPages = view.Axis().IsFree();
    state.page = PageIndex(view.Axis());
    state.canZoomIn = view.Axis().CanZoom(true);
    state.canZoomOut = view.Axis().CanZoom(false);
    const LaneSettings& lanes = view.LanesOfChannels().Settings();
    state.lanes = lanes.on;
    state.allSignals = document.AllSignals();
    state.negativeUp = lanes.negativeUp;
    state.clipToLanes = lanes.clip;
    state.usesLanes = view.UsesLanes();
    const std::vector<std::int16_t> order = view.LanesOfChannels().Order();
    state.hasLane = view.UsesLanes() && std::find(order.begin(), order.end(), document.CurrentChannel()) != order.end();
    state.scaleY = view.UsesLanes() ? view.SelectedScaleY() : view.ScaleY();
    state.spectrogramShown = settings.window.spectrogramShown;
    state.spectrum = settings.spectrum;
    state.overviewShown = WantsOverview(settings.window);
    state.darkGraph = settings.window.darkGraph;
    state.lineWidth = view.Look().lineWidth;
    state.soundDevices = playback.DeviceCount();
    state.soundDevice = playback.Device();
    state.playing = playback.IsPlaying();
    state.helpLanguage = settings.helpLanguage;
    return state;
}

int CommandOfKey(int command, const CommandState& state) {
    return command == mnuSoundPlay && state.playing ? mnuSoundPlay + 2 : command;
}

bool IsEnabled(int id, const CommandState& state) {
    if (id == mnuExit || id == mnuHelp || id == mnuAbout || Within(id, mnuHelpLang, 3)) return true;
    if (id == mnuKeysAndMouse || id == mnuOpenFolder || id == mnuSpectrogram || id == mnuLanes || id == mnuAllSignals ||
        id == mnuOptions)
        return true;
    if (id == mnuFilterRow || id == mnuOpen || id == mnuOverview || id == mnuDarkGraph) return true;
    if (Within(id, mnuLineWidth, kMostLineWidth)) return true;
    if (id == mnuClearRecent) return state.recent > 0;
    if (Within(id, mnuRecent, kRecentEntries)) return id - mnuRecent < state.recent;
    if (id == mnuShowRaw) return state.shownOtherwise;
    if (id == mnuDeleteMontage) return state.ownMontage;
    if (const auto choice = FilterChoiceOf(id)) {
        const nsp::FilterSettings tried = Tried(state.filter, *choice, state.sampleRate);
        return state.hasGroup && RefusalOf(tried, state.sampleRate) == nsp::FilterRefusal::None;
    }
    if (id == mnuUnfiltered || Within(id, mnuReference, 3)) return state.hasGroup;
    if (const auto choice = SpectrogramChoiceOf(id, state.sampleRate)) {
        const bool known = choice->field != SpectrogramField::Highest || state.sampleRate > 0.0;
        return state.spectrogramShown && known && IsOffered(state.spectrum, *choice);
    }
    if (id == mnuLevels) return state.spectrogramShown && state.spectrum.type != 1;
    if (id == mnuTypedFrequency) return state.spectrogramShown && state.sampleRate > 0.0;
    if (id >= mnuMontage) return id - mnuMontage < state.montages;
    if (id == mnuNegativeUp || id == mnuClipToLanes) return state.lanes;
    if (id == mnuNextPalette) return state.spectrogramShown;
    if (id == mnuRecording) return state.filePosition < 0 ? state.fileCount > 0 : state.filePosition > 0;
    if (id == mnuRecording + 1) return state.filePosition + 1 < state.fileCount;
    if (Within(id, mnuFocus, 6)) return true;
    if (Within(id, mnuTabPath, 2) || Within(id, mnuTabFile, 3) || Within(id, mnuPathList, kPathListEntries))
        return true;
    // A file that could not be opened can still be deleted and renamed.
    if (Within(id, mnuFileOperation, 2)) return state.filePosition >= 0;
    if (Within(id, mnuSoundCard, kSoundCards)) return id - mnuSoundCard < state.soundDevices;
    if (id == mnuSoundPlay + 2) return state.playing;
    if (state.channelCount == 0) return false;
    if (id == mnuSaveAs || id == mnuFastExport || id == mnuSplit || Within(id, mnuCopy, 2) || id == mnuSavePicture ||
        id == mnuPrint)
        return state.sampleCount > 0;
    if (Within(id, mnuSoundPlay, 2)) return state.soundDevices > 0 && state.sampleCount > 0;
    if (id == mnuSelect + 2) return state.hasSelection || state.isPinned || state.playing || state.stoppable;
    if (id == mnuView || id == mnuStatistics) return state.hasSelection;
    if (id == mnuView + 2) return state.hasHistory;
    if (Within(id, mnuMark, 2) || Within(id, mnuMarkList, 3)) return state.hasMarks;
    if (Within(id, mnuMove, static_cast<int>(Moves().size())) || id == mnuView + 1 || Within(id, mnuSelect, 2) ||
        id == mnuGoToPlace || id == mnuSpectrum || id == mnuPin || id == mnuCopyReadout)
        return state.sampleCount > 0;
    if (Within(id, mnuRead, static_cast<int>(kReadingSteps.size()))) return state.sampleCount > 0;
    if (Within(id, mnuLane, static_cast<int>(LaneStep::Count))) return state.hasLane;
    if (Within(id, mnuPage, kPageCount + 1)) return state.hasPages;
    if (id == mnuZoomX) return state.canZoomOut;
    if (id == mnuZoomX + 1) return state.canZoomIn;
    if (id == mnuZoomY) return state.usesLanes || state.scaleY > 0;
    if (id == mnuZoomY + 1) return state.usesLanes || state.scaleY < AmplitudeScale::kScaleCount - 1;
    return Within(id, mnuScaleX, TimeAxis::kMenuZoomCount) || Within(id, mnuScaleY, AmplitudeScale::kScaleCount) ||
           id == mnuNewMontage || Within(id, mnuGoTo, 4) || Within(id, mnuBaseLine, 2) || Within(id, mnuChShow, 3) ||
           id == mnuSoloChannel;
}

bool IsChecked(int id, const CommandState& state) {
    if (Within(id, mnuScaleX, TimeAxis::kMenuZoomCount)) return id - mnuScaleX == state.zoomX;
    if (Within(id, mnuScaleY, AmplitudeScale::kScaleCount)) return id - mnuScaleY == state.scaleY;
    if (Within(id, mnuPage, kPageCount + 1)) return id - mnuPage == state.page;
    if (const auto choice = FilterChoiceOf(id)) return state.hasGroup && With(state.filter, *choice) == state.filter;
    if (Within(id, mnuReference, 3)) return state.hasGroup && id - mnuReference == state.reference;
    if (const auto choice = SpectrogramChoiceOf(id, state.sampleRate))
        return IsEnabled(id, state) && IsChosen(state.spectrum, *choice);
    if (id == mnuLevels || id == mnuTypedFrequency) return false;
    if (id >= mnuMontage) return id - mnuMontage == state.montage;
    if (id == mnuFilterRow) return state.filtersShown;
    if (id == mnuUnfiltered) return state.unfiltered;
    if (id == mnuSpectrogram) return state.spectrogramShown;
    if (id == mnuOverview) return state.overviewShown;
    if (id == mnuDarkGraph) return state.darkGraph;
    if (Within(id, mnuLineWidth, kMostLineWidth)) return id - mnuLineWidth + 1 == state.lineWidth;
    if (id == mnuLanes) return state.lanes;
    if (id == mnuAllSignals) return state.lanes && state.allSignals;
    if (id == mnuNegativeUp) return state.lanes && state.negativeUp;
    if (id == mnuClipToLanes) return state.lanes && state.clipToLanes;
    if (id == mnuSoloChannel) return state.isSolo;
    if (Within(id, mnuSoundCard, kSoundCards)) return id - mnuSoundCard == state.soundDevice && IsEnabled(id, state);
    if (Within(id, mnuHelpLang, 3)) return id - mnuHelpLang == state.helpLanguage;
    return false;
}

}  // namespace quillon
