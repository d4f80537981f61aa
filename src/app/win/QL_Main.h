#pragma once

#include "app/StartUp.h"

namespace quillon {

/// Start-up functions that use the real core library and the system.
[[nodiscard]] StartUpParts SystemParts();

/// Absolute path of the file or folder that the command line names behind the program; empty without one. To be called
/// while the current folder is still that of the start.
[[nodiscard]] std::u16string PathOfArguments(const std::wstring& arguments);

/// Leaves the folder in which the program was started: Windows does not let the current folder of a process be renamed
/// or removed.
void LeaveStartFolder();

/// The start-up procedure: creates the objects of the process, shows the main window and runs the message loop until it
/// is destroyed. `showCommand` is how the system wants the window shown. Returns the exit code of the process.
int QL_Main(const StartUpParts& parts, int showCommand);

}  // namespace quillon
