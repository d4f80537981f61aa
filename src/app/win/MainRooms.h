#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/CommandState.h"
#include "app/ExportCommands.h"
#include "app/LaneCommands.h"
#include "app/LookCommands.h"
#include "app/RecordingReload.h"
#include "app/ShownCommands.h"
#include "app/ValuesReadout.h"
#include "app/ViewCommands.h"
#include "app/win/BrowserPane.h"
#include "app/win/DialogCommands.h"
#include "app/win/GraphPane.h"
#include "app/win/HoverCapture.h"
#include "app/win/LongCommand.h"
#include "app/win/OverviewPane.h"
#include "app/win/Panel.h"
#include "app/win/PictureCommands.h"
#include "app/win/RecordingOpener.h"
#include "app/win/RecordingPane.h"
#include "app/win/RoomParts.h"
#include "app/win/SliceRunner.h"
#include "app/win/SpectrogramPane.h"
#include "app/win/SpectrumWindow.h"
#include "app/win/StatusBar.h"
#include "app/win/StatusTexts.h"

namespace quillon {

/// The components ("rooms") of the main window and their wiring: every component reports here through callbacks, and
/// this class updates the others. The main window's command routes use the members directly.
class MainRooms {
  public:
    explicit MainRooms(RoomParts parts);

    // To be set by the owner.
    std::function<void()> onState;                    ///< the availability of commands may have changed
    std::function<void()> onArrange;                  ///< the controls have to be laid out again
    std::function<void(const wchar_t* page)> onHelp;  ///< request for a page of the help
    std::function<void(POINT screen)> onContextMenu;  ///< request for the context menu of the graph
    std::function<void(int command)> onCommand;       ///< a control requests a menu command
    std::function<void()> onPathList;
    std::function<void(HWND control)> onZoomMenu;

    /// Creates what the first waveform needs. Throws std::system_error when it cannot be made.
    void CreateFirst(HWND window);
    /// Fills the lists of folders, files and channels once they exist, and watches the folder.
    void AttachLists(const TimerFactory& makeTimer);
    /// Creates the pictures beside the graph. Throws as CreateFirst.
    void CreatePictures();
    /// Creates the rest, which needs the controls.
    void CreateRest();
    [[nodiscard]] bool IsComplete() const { return m_complete; }
    /// Fills the controls with what was loaded before they existed.
    void ShowAll();
    /// The density of the window has changed; once complete, its controls have the font for it. Before the controls are
    /// laid out again.
    void DensityChanged();
    /// To be called before the window is destroyed.
    void Close();

    [[nodiscard]] CommandState State() const;
    void UpdateState();
    /// See StatusTexts.
    void Failed(const std::exception& error) noexcept { m_texts.Failed(error); }

    // Recording and block.
    void CloseCurrentFile();
    /// What is open puts its choices into the settings.
    void KeepSettings() { opener.Keep(), spectrum.KeepPlace(); }
    /// See RecordingReload. `isDragging`: a splitter, not the view, is being dragged.
    void LookAtRecording(bool asked, bool isDragging);
    void LookSoon() { m_reload.Soon(); }

    // The view.
    /// Updates the display after a command has changed the view.
    void ViewChanged(const ViewChange& change);
    /// Redraws everything. A shift means that the view was only scrolled, by that many columns, since the last drawing.
    void Refresh(std::int32_t shift = 0);
    void ShowSpectrogram();
    void ShowOverview();

    void OnTimer(UINT_PTR timer);
    /// The menu of what has the keyboard, by a key.
    void OpenMenu() const {
        if (!spectrogram.OpenMenu() && !recording.OpenMenu()) graph.OpenContextMenu();
    }
    /// Ends the readout under the pointer.
    void EndHover() { m_hover.End(); }
    [[nodiscard]] const std::u16string& ValuesText() const { return m_valuesPanel.Text(); }

  private:
    static constexpr UINT_PTR kRefreshTimer = 3;  ///< 1 and 2 are those of the graph and of slices

    void WireGraph();
    void WireLists();
    void WireSound();
    void WireCommands();
    void WireBackground();
    void LoadBlock(int index);
    /// `kept`: the view to be restored, of the same recording.
    void RecordingChanged(const std::optional<WaveformView::State>& kept);
    void LeaveBlock();
    void ShowBlock(const std::optional<WaveformView::State>& kept);
    void ChooseChannel();
    /// Titles of lanes take room according to their length, and the overview may come and go with lanes.
    void ArrangeTitles();
    /// Lays out and draws everything, the latter by a message of its own: both would make others wait for too long.
    void ArrangeAnew();
    /// The samples of the loaded block have changed: the stored ones too, or only how they are shown.
    void SamplesChanged(bool stored);
    /// More of the recording is known.
    void Found(const ReadStep& step);
    /// Waits until the pictures hold everything; false when the user has ended that or the window is gone.
    bool CompletePictures();
    /// Runs work that no dialog shows: gestures, readout and playback end before.
    void RunLong(const std::function<void()>& work);
    [[nodiscard]] HWND Window() const { return longCommand.Window(); }

    RoomParts m_parts;
    Document& m_document;
    bool m_complete = false;
    // For which the controls are laid out.
    std::int32_t m_titlesWidth = 0;
    bool m_wantsOverview = false;
    RecordingReload m_reload;
    HoverCapture m_hover;
    ValuesReadout m_values;
    Panel m_valuesPanel;
    StatusTexts m_texts;

  public:
    WaveformView& view;
    Playback& playback;
    StatusBar status;
    LongCommand longCommand;
    SliceRunner slices;
    ViewCommands commands;
    LaneCommands lanes;
    ShownCommands shown;
    LookCommands look;
    GraphPane graph;
    SpectrogramPane spectrogram;
    OverviewPane overview;
    RecordingPane recording;
    BrowserPane browser;
    RecordingOpener opener;
    ExportCommands exports;
    DialogCommands dialogs;
    PictureCommands pictures;
    SpectrumWindow spectrum;
};

}  // namespace quillon
