#pragma once

#include <string>

namespace quillon {

/// Writes the text of CrashText.h to %LOCALAPPDATA%\Norvik\Quillon\crash.txt, over an older one, when the program ends
/// by a fault, an exception that nobody catches, or abort(). The end itself is then left to the system. To be called
/// once, before anything else. Returns the path of that file, which need not exist; empty when the system names no
/// folder: then nothing is written.
std::u16string InstallCrashTrace();

/// Looks for the file that an earlier run has left and renames it to "crash-told.txt", so that it is found only once.
/// Returns the new path; empty when there was none.
[[nodiscard]] std::u16string TakeCrashFile(const std::u16string& path);

}  // namespace quillon
