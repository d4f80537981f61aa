#pragma once

#include <cstdint>

#include "nsp/FilterDesign.h"
#include "spectrum/SpectrumSettings.h"

namespace quillon {

class Document;
class Playback;
struct Settings;
class WaveformView;

/// State that determines which commands are enabled and which show a check mark.
struct CommandState {
    std::int32_t fileCount = 0;      ///< in the file list
    std::int32_t filePosition = -1;  ///< of the selected one, from 0, whether or not it could be opened; -1: none is
    std::int32_t recent = 0;         ///< recent recordings
    std::int16_t channelCount = 0;   ///< of the block
    std::int32_t sampleCount = 0;
    bool hasMarks = false;
    bool isSolo = false;
    bool hasSelection = false;
    bool isPinned = false;
    bool hasHistory = false;  ///< there are previous views to return to
    std::int32_t zoomX = 0;   ///< indexes in the tables of scales; -1: not in the table
    std::int32_t scaleY = 0;  ///< -1: none of the table
    bool hasPages = false;    ///< the time axis is free
    std::int32_t page = -1;   ///< index in the menu of pages; -1: another length
    bool canZoomIn = false;   ///< along the time axis; not at its finest zoom, which zoomX 0 is
    bool canZoomOut = true;
    bool spectrogramShown = false;
    bool overviewShown = false;
    bool darkGraph = false;
    std::int32_t lineWidth = 1;
    SpectrumSettings spectrum;  ///< how
    bool lanes = false;         ///< chosen
    bool allSignals = false;    ///< lanes of all signals are chosen
    bool usesLanes = false;     ///< and the block has several channels
    bool hasLane = false;       ///< and the current channel's is one of them
    bool stoppable = false;     ///< what "Status" tells is being read, or a lane is dragged: Esc ends that
    bool negativeUp = false;
    bool clipToLanes = false;
    std::int16_t soundDevices = 0;
    std::int16_t soundDevice = 0;  ///< the chosen one, from 0
    bool playing = false;
    std::int16_t helpLanguage = 0;
    // How signals are shown, see ShownCommands.
    bool filtersShown = false;    ///< the row of filters
    bool hasGroup = false;        ///< there is a current channel, whose unit's group has
    nsp::FilterSettings filter;   ///< this filter
    double sampleRate = 0.0;      ///< Hz, of the block
    bool unfiltered = false;      ///< the current channel
    bool shownOtherwise = false;  ///< anything is chosen besides what is stored
    std::int32_t reference = 0;   ///< 0 as recorded, 1 average, 2 the current channel; -1: another one, a montage
    std::int32_t montages = 0;    ///< to choose from
    std::int32_t montage = -1;    ///< the chosen one; -1: none
    bool ownMontage = false;      ///< it is the user's own
};

/// What the rooms say of it; `fileCount` and `filePosition` as above.
[[nodiscard]] CommandState StateOf(const Document& document, const WaveformView& view, const Playback& playback,
                                   const Settings& settings, std::int32_t fileCount, std::int32_t filePosition);

/// The command that the key of a command runs: the key that plays stops the sound while it plays.
[[nodiscard]] int CommandOfKey(int command, const CommandState& state);

/// Whether a command is enabled in that state.
[[nodiscard]] bool IsEnabled(int id, const CommandState& state);

/// Whether a command shows a check mark.
[[nodiscard]] bool IsChecked(int id, const CommandState& state);

}  // namespace quillon
