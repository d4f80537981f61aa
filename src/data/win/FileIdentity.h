#pragma once

#include <string>

#include "base/win/Win32.h"
#include "data/FileStamp.h"

namespace quillon {

/// Current stamp of a file or folder. It is opened without access to its content, so sharing modes of other programs do
/// not matter.
[[nodiscard]] FileStamp StampOf(const std::wstring& path);

/// Whether two paths that differ at most in letter case name one file or folder: in a case-sensitive folder they may
/// not. Identical paths always do.
[[nodiscard]] bool IsSamePath(const std::wstring& a, const std::wstring& b);

/// Whether accessing the file may be slow because it is on a network drive.
[[nodiscard]] bool IsRemote(const std::wstring& path);

}  // namespace quillon
