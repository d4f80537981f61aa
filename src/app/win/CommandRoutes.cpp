#include "app/win/CommandRoutes.h"

#include "app/Commands.h"
#include "app/SpectrogramChoices.h"

namespace quillon {

void RunCommand(int id, MainRooms& rooms, const FrameCommands& frame) {
    using R = MainRooms&;
    using F = const FrameCommands&;
    struct Route {
        int first;
        int count;
        void (*run)(R rooms, F frame, int index);
    };
    static const Route routes[] = {
        {mnuOpen, 1, [](R r, F, int) { r.opener.Ask(); }},
        {mnuRecent, kRecentEntries, [](R r, F, int i) { r.opener.OpenRecent(i); }},
        {mnuClearRecent, 1, [](R r, F, int) { r.opener.ClearRecent(); }},
        {mnuSaveAs, 1, [](R r, F, int) { r.exports.SaveAs(); }},
        {mnuFastExport, 1, [](R r, F, int) { r.exports.FastExport(); }},
        {mnuCopy, 2, [](R r, F, int i) { i == 0 ? r.exports.CopyData() : r.dialogs.CopyImage(); }},
        {mnuSavePicture, 1, [](R r, F, int) { r.pictures.Save(); }},
        {mnuPrint, 1, [](R r, F, int) { r.pictures.Print(); }},
        {mnuSplit, 1, [](R r, F, int) { r.dialogs.Split(); }},
        {mnuOptions, 1, [](R r, F, int) { r.dialogs.Options(); }},
        {mnuSoundPlay, 3, [](R r, F, int i) { r.commands.Play(i); }},
        {mnuSoundCard, kSoundCards, [](R r, F, int i) { r.playback.ChooseDevice(static_cast<std::int16_t>(i)); }},
        {mnuFileOperation, 2, [](R r, F, int i) { i == 0 ? r.browser.DeleteSelected() : r.browser.RenameSelected(); }},
        {mnuExit, 1, [](R, F f, int) { f.exit(); }},
        {mnuTabPath, 2, [](R, F f, int i) { f.selectPage(TabPages::Path, i); }},
        {mnuTabFile, 3,
         [](R r, F f, int i) {
             if (i == 0) r.browser.Refresh();
             f.selectPage(TabPages::File, i);
         }},
        {mnuSpectrogram, 1, [](R r, F, int) { r.ShowSpectrogram(); }},
        {mnuOverview, 1, [](R r, F, int) { r.ShowOverview(); }},
        {mnuDarkGraph, 1, [](R r, F, int) { r.look.ToggleDark(); }},
        {mnuLineWidth, kMostLineWidth, [](R r, F, int i) { r.look.SetLineWidth(i + 1); }},
        {mnuFilterRow, 1, [](R r, F, int) { r.shown.ToggleRow(); }},
        {mnuUnfiltered, 1, [](R r, F, int) { r.shown.ToggleUnfiltered(); }},
        {mnuShowRaw, 1, [](R r, F, int) { r.shown.HoldRaw(true); }},
        {mnuReference, 3, [](R r, F, int i) { r.shown.SetReference(static_cast<Reference::Kind>(i)); }},
        {mnuNewMontage, 1, [](R r, F, int) { r.dialogs.NewMontage(r.shown); }},
        {mnuDeleteMontage, 1, [](R r, F, int) { r.shown.DeleteMontage(); }},
        {mnuMontage, static_cast<int>(ShownCommands::kMostMontages), [](R r, F, int i) { r.shown.ChooseMontage(i); }},
        {mnuLanes, 1, [](R r, F, int) { r.lanes.ToggleLanes(); }},
        {mnuAllSignals, 1, [](R r, F, int) { r.lanes.ToggleAllSignals(); }},
        {mnuNegativeUp, 1, [](R r, F, int) { r.lanes.ToggleNegativeUp(); }},
        {mnuClipToLanes, 1, [](R r, F, int) { r.lanes.ToggleClip(); }},
        {mnuLevels, 1, [](R r, F, int) { r.dialogs.SpectrogramLevels(); }},
        {mnuTypedFrequency, 1, [](R r, F, int) { r.dialogs.SpectrogramFrequency(); }},
        {mnuNextPalette, 1, [](R r, F, int) { r.spectrogram.NextPalette(); }},
        {mnuScaleX, TimeAxis::kMenuZoomCount, [](R r, F, int i) { r.ViewChanged(r.view.SelectZoomX(i)); }},
        {mnuZoomX, 2, [](R r, F, int i) { r.ViewChanged(r.view.ZoomX(i == 1, r.graph.HoveredSample())); }},
        {mnuPage, kPageCount + 1, [](R r, F, int i) { r.commands.SelectPage(i, r.graph.HoveredSample()); }},
        {mnuGoTo, 4, [](R r, F, int i) { r.ViewChanged(r.view.GoToPage(i)); }},
        {mnuScaleY, AmplitudeScale::kScaleCount, [](R r, F, int i) { r.ViewChanged(r.view.SelectScaleY(i)); }},
        {mnuZoomY, 2, [](R r, F, int i) { r.ViewChanged(r.view.ZoomY(i == 0 ? -1 : 1)); }},
        {mnuBaseLine, 2,
         [](R r, F, int i) {
             i == 0 ? r.ViewChanged(r.view.SetBipolar())
                    : r.slices.FindData([&r] { r.ViewChanged(r.view.FindData()); });
         }},
        {mnuChShow, 3, [](R r, F, int i) { r.recording.SetAllShown(i); }},
        {mnuHelp, 1, [](R, F f, int) { f.help(); }},
        {mnuHelpLang, 3, [](R, F f, int i) { f.helpLanguage(i); }},
        {mnuAbout, 1, [](R r, F, int) { r.dialogs.About(); }},
        {mnuView, 3, [](R r, F, int i) { r.commands.ChangeView(i); }},
        {mnuMark, 2, [](R r, F, int i) { r.commands.GoToMark(i == 1); }},
        {mnuSelect, 3, [](R r, F, int i) { r.commands.Select(i); }},
        {mnuGoToPlace, 1, [](R r, F, int) { r.dialogs.GoToPlace(); }},
        {mnuPin, 1, [](R r, F, int) { r.commands.Pin(r.graph.PointedSample()); }},
        {mnuRead, static_cast<int>(kReadingSteps.size()),
         [](R r, F, int i) {
             const std::optional<std::int32_t> pointed = r.graph.PointedSample();
             r.graph.LeavePointer();
             r.commands.StepReadout(kReadingSteps[static_cast<std::size_t>(i)], pointed);
         }},
        {mnuLane, static_cast<int>(LaneStep::Count),
         [](R r, F, int i) { r.commands.StepLane(static_cast<LaneStep>(i)); }},
        {mnuCopyReadout, 1, [](R r, F, int) { r.exports.CopyReadout(r.ValuesText()); }},
        {mnuStatistics, 1, [](R r, F, int) { r.dialogs.Statistics(); }},
        {mnuSpectrum, 1, [](R r, F, int) { r.spectrum.Show(r.longCommand.Window()); }},
        {mnuSoloChannel, 1, [](R r, F, int) { r.recording.ShowAlone(r.commands.MenuChannel()); }},
        {mnuKeysAndMouse, 1, [](R, F f, int) { f.showKeys(); }},
        {mnuOpenFolder, 1, [](R r, F, int) { r.browser.OpenFolder(); }},
        {mnuRecording, 2, [](R r, F, int i) { r.browser.OpenNeighbour(i); }},
        {mnuFocus, 6, [](R, F f, int i) { f.focusList(i); }},
        {mnuMarkList, 3, [](R r, F, int i) { r.recording.marks.Run(i); }},
        {mnuMove, static_cast<int>(Moves().size()),
         [](R r, F, int i) { r.commands.MoveView(Moves()[static_cast<std::size_t>(i)]); }},
        {mnuPathList, kPathListEntries, [](R r, F, int i) { r.browser.ChoosePath(i); }},
    };
    if (const auto choice = FilterChoiceOf(id)) rooms.shown.Choose(*choice);
    if (const auto choice = SpectrogramChoiceOf(id, rooms.State().sampleRate)) rooms.dialogs.SetSpectrogram(*choice);
    for (const Route& route : routes) {
        if (id >= route.first && id < route.first + route.count) route.run(rooms, frame, id - route.first);
    }
}

}  // namespace quillon
