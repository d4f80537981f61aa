#pragma once

#include <string>
#include <vector>

#include "base/win/Win32.h"

namespace quillon {

/// The drive, folder and file lists: a folder that they all show, and the names in it.
/// The controls belong to the window that made them; this fills and reads them. A folder can be shown and a file
/// selected before the controls exist.
class FileBrowser {
  public:
    void Attach(HWND drives, HWND folders, HWND files);

    /// Shows a folder in all three lists, as far as it can be read; false, with unchanged lists, when it cannot be read
    /// at all.
    bool ShowFolder(const std::wstring& folder);
    /// With a trailing backslash only for the root of a drive; empty before the first ShowFolder.
    [[nodiscard]] const std::wstring& Folder() const { return m_folder; }

    /// False when the last reading of the folder ended early: what had been read by then is listed.
    [[nodiscard]] bool IsComplete() const { return m_complete; }
    /// False when nothing could be read, e.g. for a removed folder; the listing is then incomplete, too.
    [[nodiscard]] bool IsReadable() const { return m_readable; }

    /// Whether the path names the current folder, in any letter case and form.
    [[nodiscard]] bool Shows(const std::wstring& folder) const;

    /// Wildcard patterns of the files listed.
    void SetPattern(const std::u16string& pattern);
    [[nodiscard]] const std::u16string& Pattern() const { return m_pattern; }

    /// Reads the folder again; the selected file stays selected when it is still there.
    void Refresh();
    /// The list of files has another font.
    void FitFiles() const;

    [[nodiscard]] int FileCount() const { return static_cast<int>(m_listed.size()); }
    /// Name of the selected file, empty when none is.
    [[nodiscard]] std::wstring SelectedFile() const;
    /// -1 when no file is selected.
    [[nodiscard]] int SelectedPosition() const;
    /// -1: selects none.
    void SelectFile(int position);
    /// Selects the file of that name in any letter case; false when it is not listed.
    bool SelectFileNamed(const std::wstring& name);

    /// Target folders of the current choices in the drive list and in the folder list.
    [[nodiscard]] std::wstring ChosenDrive() const;
    [[nodiscard]] std::wstring ChosenFolder() const;
    /// The names of the lines of the folder list, without the folders that they are in.
    [[nodiscard]] std::vector<std::u16string> FolderNames() const;
    [[nodiscard]] std::vector<std::u16string> FileNames() const;
    /// Position of the choice in the folder list; -1: none.
    [[nodiscard]] int ChosenFolderPosition() const;
    void ChooseFolder(int position) const;
    /// Resets the drive and folder lists to the current folder.
    void ShowChoice() const;
    /// Lists the present drives.
    void ListDrives() const;

  private:
    struct Names {
        std::vector<std::wstring> folders;
        std::vector<std::wstring> files;
        bool complete = true;
    };
    [[nodiscard]] static bool Read(const std::wstring& folder, Names& names);
    void FillFolders();
    void FillFiles(const std::vector<std::wstring>& names, const std::wstring& selected, bool keepPlace);

    HWND m_drives = nullptr;
    HWND m_folders = nullptr;
    HWND m_files = nullptr;
    std::wstring m_folder;
    std::u16string m_pattern = u"*.*";
    std::vector<std::wstring> m_folderPaths;  ///< full path of every line of the folder list
    std::vector<std::wstring> m_subfolders;   ///< names of those in the shown folder
    std::vector<std::wstring> m_listed;       ///< names in the file list
    bool m_complete = true;
    bool m_readable = true;
    int m_selected = -1;  ///< position of the selected file, used until the controls exist
};

}  // namespace quillon
