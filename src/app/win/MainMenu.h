#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "app/CommandState.h"
#include "app/Commands.h"
#include "app/Playback.h"
#include "app/RecentRecordings.h"
#include "app/ShownCommands.h"
#include "data/PathList.h"
#include "data/UserServices.h"
#include "format/QL_Format.h"
#include "view/WaveformView.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The menu of the main window and those that pop up in it. They send the commands of their entries to their owner.
class MainMenu {
  public:
    /// All arguments must outlive this object.
    MainMenu(const UserServices& services, const WaveformView& view, const FormatOptions& format,
             const RecentRecordings& recent, const ScreenDensity& density)
        : m_services(services), m_view(view), m_format(format), m_recent(recent), m_density(density) {}

    [[nodiscard]] HMENU Make();
    /// The system destroys the menu with its window.
    void Release() { static_cast<void>(m_menu.Release()); }
    /// A menu is about to open: updates its entries. The sound menu enumerates the devices.
    void Open(HMENU menu, Playback& playback, const ShownCommands& shown,
              const std::function<CommandState()>& state) const;
    /// A menu of its own; returns the chosen command, 0 without one.
    int ShowContextMenu(std::span<const MenuEntry> entries, HWND owner, POINT screen);
    /// The list of X zooms, on a free axis that of pages, above the control.
    void ShowZooms(HWND owner, HWND control) const;
    /// The path list below the control.
    void ShowFolders(HWND owner, HWND control, const PathList& pathList) const;

  private:
    void FillRecent(HMENU menu) const;
    /// Whether a command can be chosen in a menu: it is enabled, and its recording is there.
    [[nodiscard]] bool CanChoose(int id, const CommandState& state) const;
    void AddPreview(HMENU menu, int palette);
    void FillReferences(HMENU menu, const ShownCommands& shown) const;
    void FillSoundDevices(HMENU menu, std::span<const std::u16string> devices) const;
    void Fill(HMENU menu, std::span<const MenuEntry> entries);
    [[nodiscard]] std::wstring CaptionOf(const MenuEntry& entry, int index) const;

    const UserServices& m_services;
    const WaveformView& m_view;
    const FormatOptions& m_format;
    const RecentRecordings& m_recent;
    const ScreenDensity& m_density;
    Menu m_menu;
    HMENU m_zoomMenu = nullptr;         ///< the list of X zooms, part of m_menu
    HMENU m_pageMenu = nullptr;         ///< the list of pages, part of m_menu
    std::vector<GdiBitmap> m_previews;  ///< of palettes, in the context menu that is open
};

}  // namespace quillon
