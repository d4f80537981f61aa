#pragma once

#include <string>
#include <vector>

#include "base/win/Win32.h"
#include "export/SplitPlan.h"

/// The output folder on the disk. Paths may be longer than the system's usual 260 characters.
namespace quillon {

/// `recording` is the path of the open recording. It is identified by its file number, not by its path.
[[nodiscard]] SplitFolderState ReadSplitFolder(const std::u16string& folder, const std::u16string& recording);

/// The first of the files that could not be deleted because it is write-protected or in use; empty when all could.
[[nodiscard]] std::u16string FindUndeletable(const std::u16string& folder, const std::vector<std::u16string>& files);

/// Moves the files to the recycle bin, without asking; deletes those whose names the shell does not accept. Returns the
/// first file that still exists, or none.
[[nodiscard]] std::u16string DeleteSplitFiles(const std::u16string& folder, const std::vector<std::u16string>& files,
                                              HWND owner);

/// False when the folder neither exists nor can be made.
[[nodiscard]] bool CreateSplitFolder(const std::u16string& folder);

}  // namespace quillon
