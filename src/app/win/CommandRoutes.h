#pragma once

#include <functional>

#include "app/win/MainControls.h"
#include "app/win/MainRooms.h"

namespace quillon {

/// The commands that concern the frame of the window.
struct FrameCommands {
    std::function<void()> exit;
    std::function<void()> help;
    std::function<void(int language)> helpLanguage;
    std::function<void()> showKeys;
    std::function<void(TabPages tabs, int page)> selectPage;
    std::function<void(int list)> focusList;  ///< 0 folders, 1 channels, 2 files, 3 blocks, 4 marks, 5 graph
};

/// Runs a command of the menu: the one table of what each of them does.
void RunCommand(int id, MainRooms& rooms, const FrameCommands& frame);

}  // namespace quillon
