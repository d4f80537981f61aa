#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "app/CommandState.h"
#include "app/FilterChoices.h"
#include "app/MainLayout.h"
#include "base/win/Win32.h"
#include "data/UserServices.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

class ShownCommands;

/// The row of filters below the toolbars: the group of the current channel's unit, and what its signals go through.
/// Frequencies can be typed; Enter and leaving the box apply them, Esc restores what was there.
class FilterBar {
  public:
    /// Makes the controls, hidden. What they are given must outlive them. Throws std::system_error when one cannot be
    /// made.
    void Create(HWND parent, const ScreenDensity& density, ShownCommands& shown, const UserServices& services);
    /// Measures the controls anew.
    void DensityChanged() { Measure(); }
    /// Widths that the controls want.
    [[nodiscard]] const std::array<std::int32_t, kFilterControls>& Widths() const { return m_widths; }
    /// Shows the row or hides it, and what is chosen in it.
    void Update(const CommandState& state);
    /// A notification of one of its boxes, or a key that ends it (see KeyInput).
    void OnCommand(int id, int notification);

  private:
    void Measure();
    [[nodiscard]] HWND Box(FilterField field) const;
    void ShowChoice(FilterField field) const;
    void Choose(FilterField field) const;
    void TakeTyped(FilterField field) const;
    void ShowGroup();

    HWND m_parent = nullptr;
    const ScreenDensity* m_density = nullptr;
    ShownCommands* m_shown = nullptr;
    std::wstring m_noGroup;
    std::array<std::int32_t, kFilterControls> m_widths{};
    std::array<std::wstring, kFilterFields> m_texts;  ///< that the boxes show unless something is being typed
    std::wstring m_group;
    unsigned m_updates = 0;  ///< how often Update was called
};

}  // namespace quillon
