#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>

#include "app/QL_Global.h"
#include "app/StartSteps.h"
#include "app/win/CommandRoutes.h"
#include "app/win/ControlLayout.h"
#include "app/win/HelpViewer.h"
#include "app/win/KeyInput.h"
#include "app/win/KeyboardFocus.h"
#include "app/win/MainMenu.h"
#include "app/win/MainRooms.h"
#include "app/win/SessionEnd.h"
#include "app/win/Toolbar.h"
#include "norvik/TimerObject.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The main window: lists on the left, the graph with its scales on the right, the status bar below.
///
/// It owns the frame: menu, toolbars, the place of every control, focus, and the life cycle. What the controls do is
/// implemented by the components in MainRooms; one table of routes maps every command to a call of them. The shared
/// state and the services belong to the start-up procedure and outlive this object.
class frmQLMain {
  public:
    /// `shutdown` is called when the window is unloaded, after the recording was closed.
    frmQLMain(QL_Global& global, WinServices& services, TimerFactory makeTimer, std::function<void()> shutdown = {});

    /// Makes the window, hidden, for the folder that BrowserPane::Open chooses; `path`: absolute path of a file or
    /// folder to begin with, or empty. Throws std::system_error when the window cannot be made.
    void Create(const std::wstring& path = {});
    /// Sets the help file of the settings' language.
    void ChooseHelp() { m_help.Choose(); }
    /// Shows it where the settings say, else as the system wants it. When it is first activated it opens the file that
    /// Create was given, or the first file of the folder, and shows its waveform. The calls of RunSlice that follow
    /// create the other controls, a few each; input and commands that come before the last do not wait for them.
    void Show(int showCommand);
    /// Whether all controls exist.
    [[nodiscard]] bool IsComplete() const { return m_steps.AreDone(); }
    /// To be called when the message loop has ended: throws when that was because the controls could not be made.
    void ThrowFailure();
    [[nodiscard]] HWND Window() const { return m_window; }
    /// What the commands can do now.
    [[nodiscard]] CommandState State() const { return m_rooms.State(); }
    /// What the values panel shows.
    [[nodiscard]] const std::u16string& ValuesText() const { return m_rooms.ValuesText(); }
    /// Opens a file or folder by its full path, as if it had been chosen in the lists.
    void OpenPath(const std::wstring& path) { m_rooms.browser.OpenPath(path); }
    /// To be called while no message waits; false when there is nothing to be done.
    bool RunSlice() { return m_steps.RunNext() || m_rooms.slices.RunSlice(); }
    /// Handles a key of the graph or Tab navigation; true when the message must not be dispatched further.
    [[nodiscard]] bool PreTranslate(const MSG& message);

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT HandleInput(UINT message, WPARAM wParam, LPARAM lParam);
    void Wire();
    void OnCreate();
    /// Plans the steps that create all controls that the first waveform does not need, and fill them from the loaded
    /// recording.
    void PlanRemainingControls();
    /// Without its controls the window does not stay; whatever fails after they exist is told in the status bar.
    void StepFailed(const std::exception& error);
    /// Runs the steps that are left, for what needs all controls. False within one, or when the window is gone.
    bool CreateRemainingControls() { return m_steps.RunAll() && m_window != nullptr; }
    void OnActivate(UINT state);
    void OpenFirst();
    void OnDropFiles(HDROP drop);
    void OnSize(UINT state);
    /// The system has moved the window onto a monitor of another density.
    void OnDensity(int dpi, const RECT& place);
    void OnClose();
    [[nodiscard]] SessionEnd AtEnd() { return {m_rooms, m_density, m_global.settings.window, m_shutdown}; }
    void OnDestroy();

    void OnCommand(int id);
    void OnControlCommand(int id, int notification);
    LRESULT OnNotify(const NMHDR* header);
    void OnMouse(UINT message, int x, int y);
    bool OnSetCursor(HWND child) const;
    void ShowMenu(std::span<const MenuEntry> entries, POINT screen);
    void Arrange();
    void ArrangePart(int part);
    /// The sizes of controls have changed: lays them out again.
    void SizesChanged();

    QL_Global& m_global;
    WinServices& m_services;
    TimerFactory m_makeTimer;
    std::function<void()> m_shutdown;
    std::wstring m_startPath;  ///< see Create
    ScreenDensity m_density;
    MainRooms m_rooms;
    MainMenu m_menu;
    KeyInput m_keys;
    KeyboardFocus m_focus;
    ControlLayout m_layout;
    HelpCommands m_help;
    FrameCommands m_commands;
    Toolbars m_tools;
    std::unique_ptr<TimerObject> m_lookTimer;  ///< polls the recording's file for changes

    HWND m_window = nullptr;
    StartSteps m_steps;
    std::exception_ptr m_createFailure;  ///< exception that made WM_CREATE or a step fail
    bool m_activated = false;
    bool m_closing = false;
};

}  // namespace quillon
