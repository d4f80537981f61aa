#pragma once

#include <exception>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "app/Commands.h"
#include "app/GraphKeys.h"
#include "app/MainLayout.h"
#include "app/QL_Global.h"
#include "app/win/LongCommand.h"
#include "app/win/Panel.h"
#include "app/win/StatusBar.h"
#include "app/win/Toolbar.h"
#include "app/win/WinServices.h"
#include "base/win/Win32.h"
#include "base/win/WinHandle.h"
#include "data/Document.h"
#include "data/win/ChannelLists.h"
#include "data/win/FileBrowser.h"
#include "data/win/cFileNotification.h"
#include "spectrum/QL_FFT.h"
#include "spectrum/win/SpectrogramView.h"
#include "view/GraphGestures.h"
#include "view/Readout.h"
#include "view/WaveformView.h"
#include "view/win/GraphCursor.h"
#include "view/win/GraphPainter.h"
#include "view/win/PictureBox.h"
#include "view/win/ScalePainter.h"
#include "view/win/ucZoomX.h"

namespace quillon {

/// The main window: lists on the left, the graph with its scales on the right, the status bar below.
///
/// It owns its controls and the painters. The shared state and the services belong to the start-up procedure and
/// outlive it. Its member functions are spread over frmQLMain.cpp (life cycle) and frmQLMain_*.cpp: Layout, Browser
/// (files, blocks, channels), Commands (menu and keys), Export, Sound, View (moves of the view), Mouse (hover,
/// selection, wheel), Graph (graph and scales) and Spectrogram.
class frmQLMain final : private PictureOwner, private ZoomXEvents {
  public:
    /// `shutdown` is called when the window is unloaded, after the recording was closed.
    frmQLMain(QL_Global& global, WinServices& services, TimerFactory makeTimer, std::function<void()> shutdown = {});

    /// Makes the window, hidden, for the folder of the settings (the process's current folder where there is none or it
    /// cannot be read). Throws std::system_error when the window cannot be made.
    void Create();
    /// Sets the help file of the settings' language.
    void ChooseHelp();
    /// Shows it where the settings say, else as the system wants it. When it is first activated it opens the first file
    /// of the folder and shows its waveform, then all its controls. Throws when they cannot be made.
    void Show(int showCommand);
    [[nodiscard]] HWND Window() const { return m_window; }
    /// What the commands can do now.
    [[nodiscard]] CommandState State() const;
    /// What the values panel shows.
    [[nodiscard]] const std::u16string& ValuesText() const { return m_values.Text(); }
    /// Opens a file or folder by its full path, as if it had been chosen in the lists.
    void OpenPath(const std::wstring& path);
    /// Handles a key of the graph or the focus's way through the controls; true when the message is done with.
    [[nodiscard]] bool PreTranslate(const MSG& message);

  private:
    /// The keyboard goes to the graph.
    static constexpr UINT kFocusGraph = WM_APP;

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    [[nodiscard]] bool TranslateKey(const MSG& message);
    /// A command ended early (no memory, a failed library call): told in "Status".
    void Failed(const std::exception& error) noexcept;

    // Life cycle and layout.
    void OnCreate();
    /// Makes all that the first waveform does not need, and shows in it what has been loaded.
    void Complete();
    void OnActivate(UINT state);
    void OpenFirstFile();
    void OnDropFiles(HDROP drop);
    void KeepSettings();
    void OnSize(UINT state);
    void OnGetMinMaxInfo(MINMAXINFO* info) const;
    void OnClose();
    void OnEndSession(bool ends);
    /// Keeps what is to be kept and closes the recording.
    void EndSession();
    void OnDestroy();
    bool OnSetCursor(HWND child) const;
    void OnMouse(UINT message, int x, int y);
    void MakeControls();
    HWND MakeControl(const wchar_t* className, DWORD style, DWORD extendedStyle, int id);
    void MakeTabs(HWND tabs, int firstCaption) const;
    void AddToolTip(HWND control, int textId) const;
    void ArrangeControls();
    /// Heights and widths that the controls have, and those of the bars that they are going to have.
    void MeasureControls(LayoutInput& input) const;
    void ExpectBars(LayoutInput& input) const;
    void FillTypes();

    // Browser, blocks and channels.
    void OnListCommand(int id, int notification);
    LRESULT OnNotify(const NMHDR* header);
    /// False when the folder cannot be read; then the old one stays.
    bool ShowFolder(const std::wstring& folder);
    /// Opens a file of the shown folder that the list leaves out.
    void OpenUnlisted(const std::wstring& name);
    void OpenFolder(int) { ShowFolder(m_browser.ChosenFolder()); }
    void ShowPathList();
    void ChoosePath(int index);
    void FileCommand(int index);
    void DeleteSelected();
    void RenameSelected();
    /// Files were created, deleted or renamed in the folder by others.
    void FilesChanged();
    /// What the file list holds, for the commands and the empty graph.
    void FollowFileList();
    /// Says so where the folder could not be listed to its end.
    void TellIncomplete();
    /// Loads the recording anew, at the place that is seen, when its file has changed. `asked`: by the user, who wants
    /// it now; else it waits for a quiet moment, and until the file is written.
    void LookAtRecording(bool asked);
    void StartWatch();
    /// Reads the folder and watches it anew; the open recording stays open.
    void RefreshFiles();
    /// Opens a file of the folder unless it is open; without a name, closes the one that is.
    void OpenFile(const std::wstring& name);
    void CloseCurrentFile();
    /// Another recording is open, or none.
    void RecordingChanged();
    /// Forgets what was drawn, computed, played and selected of the block, which goes.
    void LeaveBlock();
    /// Shows the loaded block, or the empty view when none is loaded.
    void ShowBlock();
    /// A recording of this folder was opened while a specific file type was listed.
    void OfferFolder(const std::u16string& folder);
    /// Opens the file that the user has selected.
    void ChooseFile();
    void ClickFile();
    void ClickBlock();
    /// The recording before or behind the selected one in the list.
    void OpenNeighbour(int index);
    void SelectType();
    void SelectDrive();
    /// The current channel becomes that of the spectrogram.
    void ChooseChannel();
    void ShowPages();
    void SetAllShown(int index);
    void ShowCaption();
    /// The channels and the description of the recording.
    void ShowBlockDetails();
    void ShowBlockSpectrum();

    // Commands.
    void MakeMenu();
    void FillMenu(HMENU menu, std::span<const MenuEntry> entries);
    [[nodiscard]] std::wstring CaptionOf(const MenuEntry& entry, int index) const;
    void ShowContextMenu(POINT screen);
    void OnCommand(int id);
    void OnInitMenu(HMENU menu);
    void Exit(int);
    void SelectTabPath(int page);
    void SelectTabFile(int page);
    void Help(int);
    void HelpLanguage(int index);
    void UpdateCommands() const;
    void OnToolTip(NMTTDISPINFOW* tip);
    [[nodiscard]] KeyPlace FocusPlace() const;
    /// Turns to the page of a list and gives it the keyboard.
    void FocusList(int list);
    void MoveFocus(HWND control);
    /// After a click that has done its work the keys move the view again.
    void ReturnKeyboard(int control) const;
    /// Draws the frame round the list or graph that has the focus anew.
    void ShowFocus() const;
    void OnPaint() const;
    void ZoomDown(int index) override { OnCommand(mnuZoomX + index); }
    void ZoomButtonDown() override;
    void ZoomFailed(const std::exception& error) override { Failed(error); }

    // Moves of the view, and what the context menu offers.
    /// Shows what a command has changed of the view.
    void ViewChanged(const ViewChange& change);
    void GoTo(int index) { ViewChanged(m_view.GoToPage(index)); }
    void MoveView(int index);
    void SelectZoomX(int index) { ViewChanged(m_view.SelectZoomX(index)); }
    void ZoomX(int index) { ViewChanged(m_view.ZoomX(index == 1)); }
    void ZoomY(int index) { ViewChanged(m_view.ZoomY(index == 0 ? -1 : 1)); }
    void SelectScaleY(int index) { ViewChanged(m_view.SelectScaleY(index)); }
    void BaseLine(int index) { ViewChanged(index == 0 ? m_view.SetBipolar() : m_view.FindData()); }
    void ChangeView(int index);
    void ShowSample(std::int32_t sample);
    void GoToMark(int index);
    void GoToPlace(int);
    void ShowStatistics(int);
    void ShowKeys(int);
    void ShowAlone(int);

    // Mouse: hover readout, selection, wheel.
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    bool ScaleYMouse(UINT message, const GraphPointer& pointer);
    /// Starts a gesture, which has the mouse until it ends.
    void Press(HWND box, GraphButton button, GraphZone zone, const GraphPointer& pointer);
    void Drag(const GraphPointer& pointer);
    void EndGesture();
    [[nodiscard]] HCURSOR PointerShape();
    [[nodiscard]] ReadoutSource Source() const;
    /// Whether the pointer is over a picture that the hover readout is for, which then has the mouse; else the hover
    /// ends.
    bool HoverStays(HWND box);
    void Hover(int x, int y);
    /// A band changed in that part of the graph; it runs across the spectrogram too.
    void InvalidateBand(const RECT& part) const;
    void MoveCursorBand(const std::optional<ColumnBand>& band);
    /// Shows the cursor band at a sample, and its values with the mark that lies at a point of the graph.
    void ShowHover(std::int32_t sample, int x, int row);
    void HideCursorBand();
    void EndHover();
    void LoseHover(HWND box);
    void InvalidateGraph(const RECT& part) const;
    void ShowSelection();
    void ShowRange();
    void FinishSelection(const GraphPointer& pointer);
    void Select(int index);
    void OnTimer(UINT_PTR timer);
    [[nodiscard]] bool RouteWheel(const MSG& message);

    // The values panel.
    enum class ValuesKind { Details, Hover, Spectrum, Range };
    /// What a readout was made from.
    struct ValuesBasis {
        std::vector<std::int16_t> channels;  ///< shown ones
        FormatOptions format;
        bool rawCodes = false;
        SpectrumSettings spectrum;
        std::int16_t spectrumChannel = 0;
        bool spectrogramShown = false;
        friend bool operator==(const ValuesBasis&, const ValuesBasis&) = default;
    };
    [[nodiscard]] ValuesBasis PresentBasis() const;
    void TellValues(ValuesKind kind, const std::u16string& text);
    /// The description of the recording, which the panel shows when there is nothing else to tell.
    void TellDetails() { TellValues(ValuesKind::Details, m_document.File().fileInfo); }
    /// The values at a sample, below the text of the mark under the pointer.
    void TellHover(std::int32_t sample, const std::u16string& mark);
    /// Tells anew, or no more, what is not so any longer.
    void KeepValuesTrue();

    // Export and copy.
    /// A stretch of the block; samples count from 1.
    struct SampleRange {
        std::int32_t first = 1;
        std::int32_t count = 0;
    };
    /// Runs what no other command, file or closing may disturb.
    void RunBusy(const std::function<void()>& work);
    /// Runs what takes long; meanwhile the window takes no input.
    void RunLong(const std::function<void()>& work);
    /// The selection, or the whole block.
    [[nodiscard]] SampleRange ExportRange() const;
    void SaveAs(int);
    void WriteRecording(RecordingBlock& block, const std::u16string& name, const SampleRange& range, std::int32_t type);
    /// Asks the user once about those of the files that exist.
    [[nodiscard]] bool MayReplace(std::vector<std::u16string> files) const;
    /// The same about files that the fast export would replace and nobody has named for it.
    [[nodiscard]] bool MayReplaceFastFiles(const RecordingBlock& block, const std::u16string& target);
    [[nodiscard]] bool IsRecording(const std::u16string& path) const;
    /// Asks the user where so much text would hardly find room.
    [[nodiscard]] bool MayCopy(std::int32_t samples) const;
    void WriteText(const std::u16string& target, const SampleRange& range);
    void FastExport(int);
    void Copy(int index);
    void CopyImage(std::u16string_view target);

    void Split(int);
    void Options(int);

    // Sound.
    void MakeSound();
    void StopSound() { m_playback.Stop(); }
    void SoundPlay(int index);
    void SoundCard(int device);
    void FillSoundCards(HMENU menu);
    void ShowPlayLine();
    void ShowPosition();

    // Spectrogram.
    void ShowSpectrogram(int);
    void InitSpectrum();
    /// Takes the chosen channel as the spectrogram's, and draws it anew where asked to.
    void Spectrogram_Init(bool redraw);
    /// Brings the picture up to date; `force` computes every column.
    void Spectrogram_Draw(bool force);
    void ChooseSpectrumChannel();
    void NextPalette(int = 0);
    void PaintSpectrogram(int id, HDC dc, const RECT& client);
    /// Time of a sample, frequency of a row of the spectrogram and the level there. What is not in the picture or could
    /// not be read has no level.
    [[nodiscard]] std::u16string SpectrumReadout(std::int32_t sample, int row) const;
    bool SpectrogramMouse(int id, UINT message, WPARAM wParam, int x, int y);

    // Graph.
    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    void PictureFailed(const std::exception& error) override { Failed(error); }
    void OnHScroll(UINT code);
    void OnVScroll(UINT code);
    void FitUnlessLegible();
    void UpdateScrollBars();
    [[nodiscard]] GraphScene Scene() const;
    /// Tells in "Status" when what is seen cannot be read, and when it can be again.
    void TellUnreadable(bool wholeView);
    /// Draws the graph and brings scales, scroll bars, panels and buttons up to date. A shift says that the view was
    /// only scrolled, by that many columns, since it was drawn.
    void Refresh(std::int32_t shift = 0);
    void ShowPanels();

    QL_Global& m_global;
    WinServices& m_services;
    Document& m_document;
    WaveformView& m_view;
    Playback& m_playback;
    StatusBar m_status;
    LongCommand m_long;
    TimerFactory m_makeTimer;
    std::function<void()> m_shutdown;
    std::unique_ptr<cFileNotification> m_watch;  ///< made when the window loads
    std::unique_ptr<TimerObject> m_lookTimer;    ///< looks at the file of the recording
    bool m_lookDue = false;                      ///< also where that may take its time
    std::optional<WaveformView::State> m_kept;   ///< while the recording is loaded anew

    HWND m_window = nullptr;
    Menu m_menu;
    HMENU m_zoomMenu = nullptr;  ///< the list of X zooms, part of m_menu
    GdiFont m_font;
    Toolbar m_tools;
    Toolbar m_goTo;
    std::wstring m_tipText;  ///< of the tooltip shown, which keeps a pointer to it
    Panel m_values;
    PictureBox m_pathListBox;
    ImageList m_pathListIcon;
    FileBrowser m_browser;
    BlockList m_blocks;
    ChannelList m_channels;
    PictureBox m_graphBox;
    PictureBox m_scaleXBox;
    PictureBox m_scaleYBox;
    ucZoomX m_zoomX;
    PictureBox m_fftBox;
    PictureBox m_paletteBox;
    PictureBox m_scaleFBox;
    GraphPainter m_graph;
    QL_FFT m_fft;
    SpectrogramView m_spectrogram;
    ScalePainter m_scales;

    MainLayout m_layout;
    SIZE m_arrangedSize{};  ///< of the client area that it fills
    int m_dpi = 96;
    enum class Drag { None, Column, Lists, Values, Spectrogram } m_drag = Drag::None;
    GraphGestures m_gestures;
    GraphCursor m_cursors;
    HWND m_hovering = nullptr;  ///< graph or spectrogram, while it holds the mouse for the hover readout
    POINT m_hoverPoint{};
    std::int16_t m_menuChannel = 0;      ///< whose trace is nearest to where the context menu opened; 0: none
    std::optional<POINT> m_releasedAt;   ///< where the pointer was when a selection was finished
    bool m_altUsed = false;              ///< the Alt key that is down was part of a gesture
    HWND m_lastFocus = nullptr;          ///< of the controls, while another program is active
    bool m_folderMissing = false;        ///< that of the settings could not be read, and the user chose no other yet
    std::exception_ptr m_createFailure;  ///< what kept the window from being made
    std::int64_t m_baseLineMiddle = 0;   ///< shift of the base line at which the amplitude scroll bar is in its middle
    std::u16string m_unreadable;         ///< what "Status" was told of samples that cannot be read
    ValuesKind m_valuesKind = ValuesKind::Details;
    ValuesBasis m_valuesBasis;
    std::int32_t m_hoverSample = 0;           ///< whose values the panel shows
    std::u16string m_hoverMark;               ///< text of the mark above them
    bool m_channelByKey = false;              ///< a key of the channel list may change the chosen one
    bool m_channelTold = false;               ///< the click that goes on has changed the chosen channel already
    std::int32_t m_saveType = 1;              ///< chosen last in the Save As dialog
    std::vector<std::u16string> m_fastFiles;  ///< that the fast export may replace unasked
    bool m_changedMeanwhile = false;          ///< files did, while it ran
    bool m_activated = false;
    bool m_complete = false;  ///< every control is there, not only the graph
    bool m_closing = false;
};

}  // namespace quillon
