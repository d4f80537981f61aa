#pragma once

#include <string>
#include <vector>

#include "base/win/Win32.h"
// After windows.h, on which it depends.
#include <commdlg.h>

namespace quillon {

/// Longest path that the system's dialogs for files take or give, in characters.
inline constexpr std::size_t kFileDialogRoom = 32768;

/// What a request to one of these dialogs refers to.
struct FileDialogTexts {
    std::wstring filter;  ///< its parts separated by null characters
    std::wstring title;
    std::wstring folder;
    std::vector<wchar_t> name = std::vector<wchar_t>(kFileDialogRoom);  ///< proposed, then chosen

    /// `pairs`: description|pattern pairs, all separated by "|"; `start`: the folder shown first.
    FileDialogTexts(const std::u16string& pairs, const std::u16string& caption, const std::u16string& start);
    [[nodiscard]] std::u16string Name() const;
};

/// The folder that the dialogs start in; none where it is too long: they ignore such a folder or, in some versions of
/// the system, crash.
[[nodiscard]] std::u16string FileDialogFolder(const std::u16string& folder);

/// A request above the active window of the thread, or its first visible one while another program is active. The texts
/// must outlive it.
[[nodiscard]] OPENFILENAMEW FileDialogRequest(FileDialogTexts& texts, DWORD flags);

}  // namespace quillon
