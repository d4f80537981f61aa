#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/CommandState.h"
#include "app/Commands.h"
#include "app/ExportCommands.h"
#include "app/UnreadableSamples.h"
#include "app/ValuesReadout.h"
#include "app/win/BrowserPane.h"
#include "app/win/DialogCommands.h"
#include "app/win/GraphPane.h"
#include "app/win/HoverCapture.h"
#include "app/win/LongCommand.h"
#include "app/win/Panel.h"
#include "app/win/RecordingPane.h"
#include "app/win/RoomParts.h"
#include "app/win/SpectrogramPane.h"
#include "app/win/StatusBar.h"

namespace quillon {

/// The rooms of the main window, and who tells whom: every room reports here, and what follows is done by the others.
/// The members are for the main window's routes; each says in its own header what it owns.
class MainRooms {
  public:
    explicit MainRooms(RoomParts parts);

    // To be set by the owner.
    std::function<void()> onState;                    ///< commands may be available, or no more
    std::function<void()> onArrange;                  ///< the controls are to be placed anew
    std::function<void()> onHelp;                     ///< a dialog asks for it
    std::function<void(POINT screen)> onContextMenu;  ///< that of the graph
    std::function<void(int command)> onCommand;       ///< a control stands for a menu entry
    std::function<void()> onPathList;
    std::function<void(HWND control)> onZoomMenu;
    std::function<void(const std::exception& error)> onFailed;

    /// What the first waveform needs. Throws std::system_error when it cannot be made.
    void CreateFirst(HWND window);
    /// What needs the controls, and shows in them what has been loaded.
    void CreateRest(HFONT font, int dpi);
    [[nodiscard]] bool IsComplete() const { return m_complete; }
    /// Shows what was loaded before there were controls for it.
    void ShowAll();
    /// The window is going to be destroyed.
    void Close();

    [[nodiscard]] CommandState State() const;
    void UpdateState();

    // Recording and block.
    void CloseCurrentFile();
    /// Loads the recording anew, at the place that is seen, when its file has changed. `asked`: by the user, who wants
    /// it now; else it waits for a quiet moment, and until the file is written. `isDragging`: something else than the
    /// view is being dragged.
    void LookAtRecording(bool asked, bool isDragging);
    /// A look is due, wherever the file lies.
    void LookSoon() { m_lookDue = true; }

    // The view.
    /// Shows what a command has changed of the view.
    void ViewChanged(const ViewChange& change);
    /// Draws everything anew. A shift says that the view was only scrolled, by that many columns, since it was drawn.
    void Refresh(std::int32_t shift = 0);
    void MoveView(const Move& move);
    /// 0 what is selected, 1 the block, 2 the view before.
    void ChangeView(int index);
    void GoToMark(bool next);
    /// Shows a sample and reads it out.
    void GoTo(std::int32_t sample);
    /// 0 block, 1 what is seen, 2 nothing; while the sound plays the last one stops it first.
    void Select(int index);
    void ShowSpectrogram();

    /// Runs what no other command, file or closing may disturb.
    void RunBusy(const std::function<void()>& work);

    // Sound.
    /// 0 the channel of the menu or the current one, 1 all, 2 stop.
    void SoundPlay(int index);
    [[nodiscard]] std::int16_t MenuChannel() const {
        return m_menuChannel != 0 ? m_menuChannel : m_document.CurrentChannel();
    }
    /// From elsewhere than the context menu a command concerns the current channel.
    void ForgetMenuChannel() { m_menuChannel = 0; }
    /// Opens the context menu at the corner of the graph.
    void OpenContextMenu();
    /// The drag, readout or sound under way ends.
    void EndHover() { hover.End(); }

  private:
    void WireGraph();
    void WireLists();
    void WireSound();
    void OpenFile(const std::wstring& name);
    void LoadBlock(int index);
    void RecordingChanged();
    void LeaveBlock();
    void ShowBlock();
    void ShowBlockSpectrum();
    void ShowCaption() const;
    void ChooseChannel();
    void ShowPosition();
    void ShowPanels();
    void TellUnreadable(bool wholeView);
    /// Runs what takes long; meanwhile the window takes no input.
    void RunLong(const std::function<void()>& work);
    [[nodiscard]] HWND Window() const { return longCommand.Window(); }

    RoomParts m_parts;
    Document& m_document;
    bool m_complete = false;
    bool m_lookDue = false;
    std::int16_t m_menuChannel = 0;             ///< of the trace nearest to where the context menu opened; 0: none
    std::optional<WaveformView::State> m_kept;  ///< while the recording is loaded anew
    UnreadableSamples m_unreadable;

  public:
    WaveformView& view;
    Playback& playback;
    StatusBar status;
    LongCommand longCommand;
    HoverCapture hover;
    ValuesReadout values;
    Panel valuesPanel;
    GraphPane graph;
    SpectrogramPane spectrogram;
    RecordingPane recording;
    BrowserPane browser;
    ExportCommands exports;
    DialogCommands dialogs;
};

}  // namespace quillon
