#pragma once

#include <string>

#include "app/HelpFile.h"
#include "base/win/Win32.h"

namespace quillon {

/// Opens a compiled help file in the system's help viewer; false when there is none or it does not answer.
[[nodiscard]] bool ShowHelpFile(HWND owner, const std::wstring& path);

/// Look-ups in the real folders.
class WinDirectoryLookup final : public DirectoryLookup {
  public:
    [[nodiscard]] bool Exists(const std::u16string& path) override { return !FirstMatch(path).empty(); }
    [[nodiscard]] std::u16string FirstMatch(const std::u16string& pattern) override;
};

}  // namespace quillon
