#pragma once

#include <string>

#include "app/HelpFile.h"
#include "app/win/StatusBar.h"
#include "base/win/Win32.h"
#include "data/UserServices.h"

namespace quillon {

/// Opens a compiled help file in the system's help viewer, at a page of it or, without one, at its first; false when
/// there is none or it does not answer.
[[nodiscard]] bool ShowHelpFile(HWND owner, const std::wstring& path, const std::wstring& page = {});

/// The help commands: which file it is, and showing it.
class HelpCommands {
  public:
    /// All arguments must outlive this object. `file` is the path of the chosen file, empty when none is installed.
    HelpCommands(std::u16string& file, std::int16_t& language, const UserServices& services, StatusBar& status)
        : m_file(file), m_language(language), m_services(services), m_status(status) {}

    /// Chooses the file by the language, see ChooseHelpFile.
    void Choose();
    void ChooseLanguage(std::int16_t language);
    /// Opens the help file, see ShowHelpFile; if that fails, reports its path.
    void Show(HWND owner, const std::wstring& page = {});

  private:
    std::u16string& m_file;
    std::int16_t& m_language;
    const UserServices& m_services;
    StatusBar& m_status;
};

/// Look-ups in the real folders.
class WinDirectoryLookup final : public DirectoryLookup {
  public:
    [[nodiscard]] bool Exists(const std::u16string& path) override { return !FirstMatch(path).empty(); }
    [[nodiscard]] std::u16string FirstMatch(const std::u16string& pattern) override;
};

}  // namespace quillon
