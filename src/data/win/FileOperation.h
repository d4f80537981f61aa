#pragma once

#include <string>
#include <vector>

#include "base/win/Win32.h"

namespace quillon {

/// File operations of the shell, which can be undone there. They run the shell's own dialogs over `owner` and return
/// when these are closed. `folder` is absolute.
///
/// Checked here, before the shell is asked: all that data/FileOperationPlan.h checks, that the file is there and is no
/// folder, and that no file or folder has the new name already. Left to the shell: rights, files in use, read-only
/// files and media, and whatever changes on the disk meanwhile; it never overwrites an existing file. Names
/// outside the ANSI code page go through the shell's wide calls.

enum class FileOperationResult {
    Done,
    Declined,  ///< by the user; all files are as they were
    Failed,    ///< before or by the shell; all files are as they were
};

/// Moves a file to the recycle bin once the user has confirmed it in the shell's dialog.
[[nodiscard]] FileOperationResult DeleteToRecycleBin(const std::wstring& folder, const std::wstring& name, HWND owner);

/// Moves files of a folder to the recycle bin in one step and without asking. After Declined and Failed some files may
/// have been moved.
[[nodiscard]] FileOperationResult DeleteAllToRecycleBin(const std::wstring& folder,
                                                        const std::vector<std::wstring>& names, HWND owner);

/// Gives a file another name in the same folder; whether another letter case is one, the shell decides.
[[nodiscard]] FileOperationResult RenameFile(const std::wstring& folder, const std::wstring& oldName,
                                             const std::wstring& newName, HWND owner);

}  // namespace quillon
