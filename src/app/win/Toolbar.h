#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "app/CommandState.h"
#include "app/Commands.h"
#include "app/win/FilterBar.h"
#include "base/win/Win32.h"
#include "base/win/WinHandle.h"
#include "data/UserServices.h"

namespace quillon {

/// A toolbar whose buttons send the commands of the menu. Owns its pictures.
class Toolbar {
  public:
    /// Throws std::system_error when the control cannot be made.
    void Create(HWND parent, int id, std::span<const ToolbarButton> buttons, const ScreenDensity& density);
    [[nodiscard]] HWND Window() const { return m_window; }
    /// Size needed for all buttons.
    [[nodiscard]] SIZE Size() const;
    /// Sets the enabled and checked state of the buttons from their commands.
    void Update(const CommandState& state) const;
    /// Draws the pictures anew, for the colours that the system has now.
    void DrawPictures();
    /// Makes the buttons and pictures anew; Update has to be called.
    void DensityChanged();

  private:
    void AddButtons();

    HWND m_window = nullptr;
    const ScreenDensity* m_density = nullptr;
    std::span<const ToolbarButton> m_buttons;
    ImageList m_images;
    ImageList m_disabledImages;
};

/// The two toolbars of the main window, the row of filters below them, and the texts of their tooltips.
class Toolbars {
  public:
    // Both throw std::system_error when it cannot be made. The first makes all common controls available.
    void CreateMain(HWND parent, const ScreenDensity& density);
    void CreateGoTo(HWND parent, const ScreenDensity& density);
    /// See FilterBar.
    FilterBar filters;
    [[nodiscard]] SIZE MainSize() const { return m_main.Size(); }
    [[nodiscard]] SIZE GoToSize() const { return m_goTo.Size(); }
    void Update(const CommandState& state);
    void DrawPictures();
    /// The density of the window, and with it the font of its controls, has changed.
    void DensityChanged();
    /// A tooltip asks for the text of its button.
    void OnTip(NMTTDISPINFOW& tip, const UserServices& services);

  private:
    Toolbar m_main;
    Toolbar m_goTo;
    std::wstring m_tipText;  ///< of the tooltip shown, which keeps a pointer to it
};

/// A list of pictures as DrawIcon makes them, each size x size pixels.
[[nodiscard]] ImageList MakeIconList(const std::vector<std::vector<std::uint32_t>>& pictures, int size);

}  // namespace quillon
