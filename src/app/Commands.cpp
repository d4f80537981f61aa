#include "app/Commands.h"

#include <algorithm>
#include <array>

#include "app/FilterChoices.h"
#include "app/SpectrogramChoices.h"
#include "app/StringIds.h"
#include "view/GraphColors.h"
#include "view/ScaleLabels.h"
#include "view/WaveformView.h"

namespace quillon {

namespace {

constexpr MenuEntry Popup(int depth, int captionId) {
    return {MenuEntry::Kind::Popup, depth, 0, 1, captionId};
}

constexpr MenuEntry Entry(int depth, int id, int captionId, int count = 1) {
    return {MenuEntry::Kind::Command, depth, id, count, captionId};
}

constexpr MenuEntry Separator(int depth) {
    return {MenuEntry::Kind::Separator, depth, 0, 1, 0};
}

constexpr std::array kTree{
    Popup(0, IDS_MENU_FILE),
    Entry(1, mnuOpen, IDS_OPEN),
    Popup(1, IDS_MENU_RECENT),
    Entry(2, mnuRecent, IDS_RECENT_NONE),
    Separator(2),
    Entry(2, mnuClearRecent, IDS_CLEARRECENT),
    Separator(1),
    Entry(1, mnuSaveAs, IDS_SAVEAS),
    Entry(1, mnuFastExport, IDS_FASTEXPORT),
    Entry(1, mnuSplit, IDS_SPLIT),
    Separator(1),
    Entry(1, mnuSavePicture, IDS_SAVEPICTURE),
    Entry(1, mnuPrint, IDS_PRINT),
    Separator(1),
    Entry(1, mnuFileOperation, IDS_FILEOPERATION_0, 2),
    Separator(1),
    Entry(1, mnuOptions, IDS_OPTIONS),
    Separator(1),
    Entry(1, mnuExit, IDS_EXIT),
    Popup(0, IDS_MENU_EDIT),
    Entry(1, mnuCopy, IDS_COPY_0, 2),
    Popup(0, IDS_MENU_VIEW),
    Entry(1, mnuTabPath, IDS_TABPATH_0, 2),
    Separator(1),
    Entry(1, mnuTabFile, IDS_TABFILE_0, 2),
    Entry(1, mnuTabFile + 2, IDS_TABFILE_MARKS),
    Separator(1),
    Entry(1, mnuFilterRow, IDS_FILTERS),
    Entry(1, mnuSpectrogram, IDS_SPECTROGRAM),
    Entry(1, mnuOverview, IDS_OVERVIEW),
    Entry(1, mnuLanes, IDS_LANES),
    Entry(1, mnuAllSignals, IDS_ALLSIGNALS),
    Entry(1, mnuNegativeUp, IDS_NEGATIVEUP),
    Separator(1),
    Entry(1, mnuDarkGraph, IDS_DARKGRAPH),
    Popup(1, IDS_MENU_LINEWIDTH),
    Entry(2, mnuLineWidth, IDS_LINEWIDTH_0, kMostLineWidth),
    Separator(1),
    Popup(1, IDS_MENU_XZOOM),
    Entry(2, mnuScaleX, 0, TimeAxis::kMenuZoomCount),
    Entry(2, mnuZoomX, IDS_ZOOMX_0, 2),
    Popup(1, IDS_MENU_PAGE),
    Entry(2, mnuPage, 0, kPageCount),
    Entry(2, mnuPage + kPageCount, IDS_PAGE_WHOLE),
    Separator(1),
    Entry(1, mnuGoTo, IDS_GOTO_0, 4),
    Entry(1, mnuGoToPlace, IDS_GOTOPLACE),
    Separator(1),
    Entry(1, mnuView, IDS_VIEW_0, 3),
    Popup(0, IDS_MENU_GRAPH),
    Popup(1, IDS_MENU_YSCALE),
    Entry(2, mnuScaleY, 0, AmplitudeScale::kScaleCount),
    Entry(1, mnuZoomY, IDS_ZOOMY_0, 2),
    Separator(1),
    Entry(1, mnuBaseLine, IDS_BASELINE_0, 2),
    Separator(1),
    Popup(1, IDS_FILTERS),
    Popup(2, IDS_FILTER_0),
    Entry(3, mnuHighPass, IDS_FILTER_OFF),
    Entry(3, mnuHighPass + 1, 0, 6),
    Popup(2, IDS_FILTER_0 + 1),
    Entry(3, mnuLowPass, IDS_FILTER_OFF),
    Entry(3, mnuLowPass + 1, 0, 7),
    Popup(2, IDS_FILTER_0 + 2),
    Entry(3, mnuNotch, IDS_FILTER_OFF),
    Entry(3, mnuNotch + 1, 0, 2),
    Popup(2, IDS_FILTER_0 + 3),
    Entry(3, mnuFilterOrder, IDS_FILTER_ORDER_0, 3),
    Popup(2, IDS_FILTER_0 + 4),
    Entry(3, mnuFilterDirection, IDS_FILTER_DIRECTION_0, 2),
    Separator(2),
    Entry(2, mnuUnfiltered, IDS_UNFILTERED),
    Popup(1, IDS_MENU_MARKS),
    Entry(2, mnuMark, IDS_MARK_0, 2),
    Separator(2),
    Entry(2, mnuMarkList, IDS_MARKLIST_0, 3),
    Separator(1),
    Popup(1, IDS_MENU_READ),
    Entry(2, mnuRead, IDS_READ_0, static_cast<int>(kReadingSteps.size())),
    Entry(1, mnuPin, IDS_PIN),
    Entry(1, mnuSpectrum, IDS_SPECTRUM),
    Popup(0, IDS_MENU_CHANNELS),
    Entry(1, mnuChShow, IDS_CHSHOW_0, 3),
    Separator(1),
    Popup(1, IDS_MENU_LANE),
    Entry(2, mnuLane, IDS_LANE_0, static_cast<int>(LaneStep::Count)),
    Popup(1, IDS_REFERENCE),
    Entry(2, mnuReference, IDS_REFERENCE_0, 3),
    Separator(2),
    Entry(2, mnuMontage, IDS_MONTAGE_NONE),
    Separator(2),
    Entry(2, mnuNewMontage, IDS_NEWMONTAGE),
    Entry(2, mnuDeleteMontage, IDS_DELETEMONTAGE),
    Popup(0, IDS_MENU_SOUND),
    Entry(1, mnuSoundPlay, IDS_SOUNDPLAY_0, 3),
    Separator(1),
    Popup(1, IDS_MENU_SOUNDOUTPUT),
    Entry(2, mnuSoundCard, IDS_SOUNDCARD_0),
    Popup(0, IDS_MENU_HELP),
    Entry(1, mnuHelp, IDS_HELP),
    Entry(1, mnuKeysAndMouse, IDS_KEYSANDMOUSE),
    Popup(1, IDS_MENU_HELPLANG),
    Entry(2, mnuHelpLang, IDS_HELPLANG_0, 3),
    Separator(1),
    Entry(1, mnuAbout, IDS_ABOUT),
};

constexpr std::array kContextMenu{
    Entry(0, mnuCopy, IDS_COPY_0, 2),
    Separator(0),
    Entry(0, mnuSoundPlay, IDS_SOUNDPLAY_0),
    Entry(0, mnuSoundPlay + 2, IDS_SOUNDPLAY_0 + 2),
    Separator(0),
    Entry(0, mnuView, IDS_VIEW_0, 3),
    Entry(0, mnuGoToPlace, IDS_GOTOPLACE),
    Entry(0, mnuMark, IDS_MARK_0, 2),
    Entry(0, mnuRecording, IDS_RECORDING_0, 2),
    Separator(0),
    Entry(0, mnuSelect, IDS_SELECT_0, 3),
    Separator(0),
    Entry(0, mnuPin, IDS_PIN),
    Entry(0, mnuCopyReadout, IDS_COPYREADOUT),
    Entry(0, mnuStatistics, IDS_STATISTICS),
    Entry(0, mnuSoloChannel, IDS_SOLO),
    Entry(0, mnuClipToLanes, IDS_CLIPTOLANES),
    Separator(0),
    Entry(0, mnuKeysAndMouse, IDS_KEYSANDMOUSE),
};

constexpr std::array kSpectrogramMenu{
    Popup(0, IDS_OPT_PALETTE),
    Entry(1, mnuPalette, IDS_OPT_PALETTE_0, 3),
    Popup(0, IDS_LEVEL_RANGE),
    Entry(1, mnuLevelRange, 0, kLevelRanges),
    Popup(0, IDS_TOP_LEVEL),
    Entry(1, mnuTopLevel, IDS_FULL_SCALE),
    Entry(1, mnuTopLevel + 1, 0, kTopLevelCount - 1),
    Entry(0, mnuLevels, IDS_LEVELS),
    Separator(0),
    Popup(0, IDS_FREQUENCIES),
    Entry(1, mnuHighestFrequency, IDS_ALL_FREQUENCIES),
    Entry(1, mnuHighestFrequency + 1, 0, kHighestFrequencies - 1),
    Entry(1, mnuTypedFrequency, IDS_TYPED_FREQUENCY),
    Separator(0),
    Popup(0, IDS_TRANSFORM_SIZE),
    Entry(1, mnuTransformSize, 0, kSizes),
    Popup(0, IDS_TRANSFORM_WINDOW),
    Entry(1, mnuTransformWindow, IDS_OPT_WINDOW_0, 4),
    Entry(0, mnuBlankEnds, IDS_BLANK_ENDS),
    Separator(0),
    Entry(0, mnuOptions, IDS_OPTIONS),
};

constexpr std::array kMarksMenu{
    Entry(0, mnuMarkList, IDS_MARKLIST_0, 3),
};

constexpr std::array kMoves{Move{-20, 0}, Move{20, 0}, Move{-100, 0}, Move{100, 0}, Move{-1, 0}, Move{1, 0},
                            Move{0, -20}, Move{0, 20}, Move{0, -40},  Move{0, 40},  Move{0, -1}, Move{0, 1}};

constexpr std::array kMainButtons{
    ToolbarButton{u"ZoomY0", mnuZoomY, IDS_TIP_ZOOMY_0, Icon::ZoomYOut},
    ToolbarButton{u"ZoomY1", mnuZoomY + 1, IDS_TIP_ZOOMY_0 + 1, Icon::ZoomYIn},
    ToolbarButton{u"BaseLine0", mnuBaseLine, IDS_TIP_BASELINE_0, Icon::Bipolar},
    ToolbarButton{u"BaseLine1", mnuBaseLine + 1, IDS_TIP_BASELINE_0 + 1, Icon::FindData},
    ToolbarButton{u"Lanes", mnuLanes, IDS_TIP_LANES, Icon::ShowLanes, true},
    ToolbarButton{u"Spectrogram", mnuSpectrogram, IDS_TIP_SPECTROGRAM, Icon::Spectrogram},
    ToolbarButton{u"Options", mnuOptions, IDS_TIP_OPTIONS, Icon::Options},
    ToolbarButton{u"SaveAs", mnuSaveAs, IDS_TIP_SAVEAS, Icon::SaveAs, true},
    ToolbarButton{u"FastExport", mnuFastExport, IDS_TIP_FASTEXPORT, Icon::FastExport},
    ToolbarButton{u"Split", mnuSplit, IDS_TIP_SPLIT, Icon::Split},
    ToolbarButton{u"Copy0", mnuCopy, IDS_TIP_COPY_0, Icon::CopyData, true},
    ToolbarButton{u"Copy1", mnuCopy + 1, IDS_TIP_COPY_0 + 1, Icon::CopyImage},
    ToolbarButton{u"SoundPlay0", mnuSoundPlay, IDS_TIP_SOUNDPLAY_0, Icon::PlayChannel, true},
    ToolbarButton{u"SoundPlay1", mnuSoundPlay + 1, IDS_TIP_SOUNDPLAY_0 + 1, Icon::PlayAll},
    ToolbarButton{u"SoundPlay2", mnuSoundPlay + 2, IDS_TIP_SOUNDPLAY_0 + 2, Icon::StopPlay},
    ToolbarButton{u"Help", mnuHelp, IDS_TIP_HELP, Icon::Help, true},
};

constexpr std::array kGoToButtons{
    ToolbarButton{u"GoTo0", mnuGoTo, IDS_TIP_GOTO_0, Icon::GoToStart},
    ToolbarButton{u"GoTo1", mnuGoTo + 1, IDS_TIP_GOTO_0 + 1, Icon::PreviousPage},
    ToolbarButton{u"GoTo2", mnuGoTo + 2, IDS_TIP_GOTO_0 + 2, Icon::NextPage},
    ToolbarButton{u"GoTo3", mnuGoTo + 3, IDS_TIP_GOTO_0 + 3, Icon::GoToEnd},
};

}  // namespace

std::span<const MenuEntry> MenuTree() {
    return kTree;
}

std::span<const MenuEntry> ContextMenu() {
    return kContextMenu;
}

std::span<const MenuEntry> SpectrogramMenu() {
    return kSpectrogramMenu;
}

std::span<const MenuEntry> MarksMenu() {
    return kMarksMenu;
}

std::span<const Move> Moves() {
    return kMoves;
}

std::span<const ToolbarButton> MainButtons() {
    return kMainButtons;
}

std::span<const ToolbarButton> GoToButtons() {
    return kGoToButtons;
}

int ToolTipId(int command) {
    for (const auto buttons : {MainButtons(), GoToButtons()}) {
        for (const ToolbarButton& button : buttons) {
            if (button.command == command) return button.tipId;
        }
    }
    return 0;
}

int CaptionId(int command) {
    if (command == mnuOpenFolder) return IDS_OPENFOLDER;
    if (command == mnuShowRaw) return IDS_SHOWRAW;
    if (command == mnuNextPalette) return IDS_NEXTPALETTE;
    if (command == mnuFocus + 4) return IDS_FOCUS_MARKS;
    if (command == mnuFocus + 5) return IDS_FOCUS_GRAPH;
    if (Within(command, mnuFocus, 4)) return IDS_FOCUS_0 + command - mnuFocus;
    if (Within(command, mnuMove, static_cast<int>(kMoves.size()))) return IDS_MOVE_0 + command - mnuMove;
    for (const std::span<const MenuEntry> menu : {MenuTree(), ContextMenu()}) {
        for (const MenuEntry& entry : menu) {
            if (entry.captionId != 0 && entry.id != 0 && Within(command, entry.id, entry.count))
                return entry.captionId + command - entry.id;
        }
    }
    return 0;
}

std::u16string ComputedCaption(int id, bool rawCodes, char16_t separator) {
    if (Within(id, mnuScaleX, TimeAxis::kMenuZoomCount)) return ZoomCaption(id - mnuScaleX);
    if (const auto choice = FilterChoiceOf(id)) return NumberText(choice->value, separator) + u" Hz";
    // Written anew when their menu opens, in the words of the language.
    if (const auto choice = SpectrogramChoiceOf(id, 0.0)) return NumberText(choice->value, separator);
    if (Within(id, mnuPage, kPageCount))
        return PageCaption(kPageLengths[static_cast<std::size_t>(id - mnuPage)], separator);
    return ScaleCaption(id - mnuScaleY, rawCodes, separator);
}

}  // namespace quillon
