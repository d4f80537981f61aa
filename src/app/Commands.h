#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "app/RecentRecordings.h"
#include "data/PathList.h"

namespace quillon {

/// Command identifiers. An indexed entry of the menu takes its first identifier plus its index.
enum CommandId : int {
    mnuSaveAs = 1000,
    mnuFastExport,
    mnuSplit,
    mnuOpen,
    mnuFileOperation = 1010,  ///< 0 delete, 1 rename
    mnuOptions = 1020,
    mnuExit,
    mnuCopy = 1030,  ///< 0 data, 1 image
    mnuSavePicture = 1032,
    mnuPrint,
    mnuTabPath = 1040,
    mnuTabFile = 1050,  ///< 0 files, 1 blocks, 2 marks
    mnuSpectrogram = 1060,
    mnuLanes,
    mnuNegativeUp,
    mnuClipToLanes,
    mnuAllSignals,
    mnuOverview,
    mnuDarkGraph,
    mnuLineWidth,      ///< by width, from 1
    mnuRecent = 1070,  ///< by recording, the latest first
    mnuClearRecent = 1090,
    mnuScaleX = 1100,
    mnuZoomX = 1120,
    mnuGoTo = 1130,
    mnuPage = 1140,  ///< by length, see kPageLengths; behind them the whole block
    mnuScaleY = 1200,
    mnuZoomY = 1230,
    mnuBaseLine = 1240,
    mnuChShow = 1250,
    mnuSoundPlay = 1260,  ///< 0 channel, 1 all, 2 stop
    mnuSoundCard = 1300,  ///< by device
    mnuHelp = 1400,
    mnuHelpLang = 1410,
    mnuAbout = 1420,
    mnuLane = 1430,  ///< of a channel, by LaneStep
    mnuPathList = 1500,
    // Commands of the graph's context menu and of keys.
    mnuView = 1600,    ///< 0 zoom to the selection, 1 fit the block, 2 previous view
    mnuMark = 1610,    ///< 0 previous mark, 1 next mark
    mnuSelect = 1620,  ///< 0 the block, 1 the visible range, 2 nothing (and stop playing)
    mnuGoToPlace = 1630,
    mnuStatistics,
    mnuSoloChannel,
    mnuKeysAndMouse,
    mnuOpenFolder,
    mnuNextPalette,
    mnuSpectrum,
    mnuPin,
    mnuCopyReadout,
    mnuMove = 1640,       ///< by keys, see Moves
    mnuRecording = 1660,  ///< of the file list: 0 previous, 1 next
    mnuFocus = 1670,      ///< move the focus to: 0 folders, 1 channels, 2 files, 3 blocks, 4 marks, 5 graph
    mnuMarkList = 1680,   ///< 0 copy, 1 save, 2 count
    mnuRead = 1690,       ///< values at another sample, see kReadingSteps
    // How signals are shown. Filters: by value, see FilterChoices.
    mnuFilterRow = 1700,
    mnuUnfiltered,
    mnuShowRaw,  ///< as long as its key is held
    mnuHighPass = 1710,
    mnuLowPass = 1720,
    mnuNotch = 1730,
    mnuFilterOrder = 1740,
    mnuFilterDirection = 1750,  ///< 0 forward, 1 both ways
    mnuReference = 1760,        ///< 0 as recorded, 1 average, 2 the current channel
    mnuNewMontage = 1770,
    mnuDeleteMontage,
    mnuMontage = 1780,  ///< by montage, see ShownCommands
    // The spectrogram's menu; by value, see SpectrogramChoices.
    mnuPalette = 1900,
    mnuLevelRange = 1910,
    mnuTopLevel = 1920,
    mnuLevels = 1930,  ///< typed
    mnuHighestFrequency = 1940,
    mnuTypedFrequency = 1950,
    mnuTransformSize = 1960,
    mnuTransformWindow = 1970,
    mnuBlankEnds = 1980,
};

// Entries of the spectrogram's menu.
inline constexpr int kLevelRanges = 5;
inline constexpr int kTopLevelCount = 5;
inline constexpr int kHighestFrequencies = 6;  ///< the first one stands for all
inline constexpr int kSizes = 7;

/// Whether a command is one of the `count` from `first` on.
constexpr bool Within(int id, int first, int count) {
    return id >= first && id < first + count;
}

/// A move of the view by pixels: columns scroll it, rows move the base line (downwards positive).
struct Move {
    std::int32_t columns;
    std::int32_t rows;
};
/// The moves of mnuMove, by index.
[[nodiscard]] std::span<const Move> Moves();

/// Columns by which the commands of mnuRead step from sample to sample, by index.
inline constexpr std::array kReadingSteps{-1, 1, -20, 20};

/// Maximum number of sound devices in the menu.
inline constexpr int kSoundCards = 64;

/// Maximum number of folders in the path list.
inline constexpr int kPathListEntries = PathList::kMost;

/// Maximum number of recordings in the menu of recent ones.
inline constexpr int kRecentEntries = RecentRecordings::kMost;

/// One line of the menu tree, in order. An entry of depth d belongs to the nearest popup of depth d-1 above it.
struct MenuEntry {
    enum class Kind { Popup, Command, Separator };
    Kind kind;
    int depth;
    int id = 0;     ///< first command; 0 for a popup
    int count = 1;  ///< entries of an array
    int captionId =
        0;  ///< string of the first entry, further ones follow; 0: captions are computed, see ComputedCaption
};

[[nodiscard]] std::span<const MenuEntry> MenuTree();
/// The graph's context menu, in the same form.
[[nodiscard]] std::span<const MenuEntry> ContextMenu();
/// Those of the spectrogram and of the list of marks.
[[nodiscard]] std::span<const MenuEntry> SpectrogramMenu();
[[nodiscard]] std::span<const MenuEntry> MarksMenu();

/// String that names a command; 0 for one whose caption is computed.
[[nodiscard]] int CaptionId(int command);

/// Caption of an entry whose captions are computed (the lists of zooms, pages and scales).
[[nodiscard]] std::u16string ComputedCaption(int id, bool rawCodes, char16_t separator);

/// Pictures of the buttons.
enum class Icon {
    ZoomYOut,
    ZoomYIn,
    Bipolar,
    FindData,
    ShowLanes,
    Spectrogram,
    Options,
    SaveAs,
    FastExport,
    Split,
    CopyData,
    CopyImage,
    PlayChannel,
    PlayAll,
    StopPlay,
    Help,
    GoToStart,
    PreviousPage,
    NextPage,
    GoToEnd,
    Folders,
    Count
};

/// A button of a toolbar: its key and the menu command that it runs. A gap stands before the first of a group.
struct ToolbarButton {
    std::u16string_view key;
    int command;
    int tipId;
    Icon icon;
    bool startsGroup = false;
};

/// The buttons of tbMain and of tbGoTo, in order.
[[nodiscard]] std::span<const ToolbarButton> MainButtons();
[[nodiscard]] std::span<const ToolbarButton> GoToButtons();
/// Text of the button of a command; 0 where there is none.
[[nodiscard]] int ToolTipId(int command);

}  // namespace quillon
