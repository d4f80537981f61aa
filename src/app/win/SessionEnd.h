#pragma once

#include <functional>

#include "app/Settings.h"
#include "app/win/MainRooms.h"

namespace quillon {

/// What is kept when the main window is closed or the user's session ends. Each step runs even if another one fails,
/// and the program ends in any case.
struct SessionEnd {
    MainRooms& rooms;
    const ScreenDensity& density;
    WindowPlacement& placement;
    const std::function<void()>& shutdown;  ///< stores the settings; may be empty

    /// Nothing uses the recording any more: it is closed.
    void Close(HWND window) const;
    /// The process may end without another message. A command that runs still uses the recording, which stays open.
    void Abandon(HWND window) const;
};

}  // namespace quillon
