#pragma once

#include <string>

#include "base/win/Win32.h"
#include "data/FileStamp.h"

namespace quillon {

/// Stamp of a file or folder as it is now. It is opened for that, without asking for its content, so no other program
/// is in the way.
[[nodiscard]] FileStamp StampOf(const std::wstring& path);

/// Whether two paths that differ at most in letter case lead to one file or folder: where a folder tells letter cases
/// apart they need not. Equal letter by letter they do.
[[nodiscard]] bool IsSamePath(const std::wstring& a, const std::wstring& b);

/// Whether a look at the file may take its time: it lies on another computer.
[[nodiscard]] bool IsRemote(const std::wstring& path);

}  // namespace quillon
