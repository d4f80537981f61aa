#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/Settings.h"
#include "app/TypedSearch.h"
#include "app/win/LongCommand.h"
#include "app/win/StatusBar.h"
#include "base/win/WinHandle.h"
#include "data/Document.h"
#include "data/win/FileBrowser.h"
#include "data/win/cFileNotification.h"
#include "view/win/PictureBox.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The lists of drives, folders, types and files, with the path list, the folder watch, and the operations on the
/// selected file.
class BrowserPane final : private PictureOwner {
  public:
    /// Objects it works with; all must outlive it.
    struct Parts {
        const Document& document;
        RecordingLibrary& library;
        const UserServices& services;
        StatusBar& status;
        LongCommand& longCommand;
        Settings& settings;  ///< folder and path list
        const ScreenDensity& density;
    };
    explicit BrowserPane(const Parts& parts) : m_parts(parts) {}

    // To be set by the owner.
    std::function<void(const std::wstring& name)> onFile;  ///< request to open a file; empty: none
    std::function<void()> onClose;                         ///< request to close the open file
    std::function<void(bool changed)> onList;              ///< file list or selection changed; `changed`: by others
    std::function<void()> onLook;                          ///< request to reload the open file if it has changed
    std::function<void()> onPathList;                      ///< request to show the path list
    std::function<void(const std::exception& error)> onFailed;

    /// Lists the first of these folders that can be read: `startPath` itself or, when it names a file, that file's
    /// folder; the folder of the settings; the user's documents, their profile, the system's drive. `startPath` is
    /// absolute, or empty for none. Works before the controls exist.
    void Open(const std::wstring& startPath);
    /// Fills the controls, and watches the folder from now on.
    void Attach(HWND parent, const TimerFactory& makeTimer);
    /// Draws the picture of the button anew, for the colours and the density that there are now.
    void DrawPictures();
    /// The lists have the font of another density.
    void DensityChanged();
    /// Ends the watch.
    void Close() { m_watch.reset(); }
    /// Remembers the folder.
    void KeepSettings() const;
    /// Whether the shown folder is remembered. False where it stands in for one that is missing.
    [[nodiscard]] bool KeepsFolder() const { return !m_folderMissing; }
    /// Whether OpenFirst opens the recording that was open last.
    [[nodiscard]] bool StartsWithLast() const { return m_startsWithLast; }

    [[nodiscard]] HWND PathList() const { return m_pathList.Window(); }
    [[nodiscard]] std::wstring Folder() const { return m_browser.Folder(); }
    [[nodiscard]] int FileCount() const { return m_browser.FileCount(); }
    /// From 0; -1: none.
    [[nodiscard]] int SelectedPosition() const { return m_browser.SelectedPosition(); }

    /// A notification of one of the lists.
    void OnListCommand(int id, int notification);
    /// A letter typed in the list of folders or of files: selects the name that is meant. `time` in milliseconds.
    void TypeLetter(int list, char16_t letter, std::uint32_t time);
    /// Opens the file of the start path, the last recording, or the first file of the folder. Nothing where the start
    /// path is not to be had: another recording would be taken for the one that was asked for.
    void OpenFirst();
    /// Opens a file or folder by its full path.
    void OpenPath(const std::wstring& path);
    void OpenFolder() { ShowFolder(m_browser.ChosenFolder()); }
    void ChoosePath(int index);
    /// Opens the recording before (0) or after (1) the selected one.
    void OpenNeighbour(int index);
    /// Lists the folder again and restarts the watch; the open recording stays open.
    void Refresh();
    /// Files were created, deleted or renamed by others.
    void FilesChanged();
    /// After a command during which files may have changed.
    void CatchUp();
    void DeleteSelected();
    void RenameSelected();
    /// A recording of the shown folder was opened.
    void Opened();
    /// Reports at start-up that the start path or the folder of the settings is missing.
    void TellStart();

  private:
    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    void PictureFailed(const std::exception& error) override { onFailed(error); }
    /// Begins with the recording that was open last, where that is in the shown folder.
    void StartWithLast();
    /// False when the folder cannot be read; the old one then stays current.
    bool ShowFolder(const std::wstring& folder);
    /// Lists the folder of the start path; false when there is none.
    bool ListStart(const std::wstring& path);
    /// Selects and opens a file of the current folder.
    void OpenNamed(const std::wstring& name);
    /// Opens a file of the current folder that the file type filter hides.
    void OpenUnlisted(const std::wstring& name);
    void ClickFile();
    /// Opens the file that the user has selected.
    void ChooseFile();
    /// Reports that the folder could not be listed completely.
    void TellMissing();
    void SelectType();
    void SelectDrive();
    void FillTypes(HWND types) const;
    /// Until Attach nothing is watched.
    void StartWatch() {
        if (m_watch) m_watch->StartWatch(m_browser.Folder());
    }
    void Tell(const std::u16string& text);

    Parts m_parts;
    FileBrowser m_browser;
    TypedSearch m_typed;
    int m_typedIn = 0;  ///< number of the list
    std::unique_ptr<cFileNotification> m_watch;
    PictureBox m_pathList;
    ImageList m_pathListIcon;
    HWND m_types = nullptr;
    std::wstring m_startFile;         ///< name of the file of the folder to begin with; empty: the first one
    bool m_startsWithLast = false;    ///< that is the recording that was open last
    std::wstring m_startMissing;      ///< the start path, when it is not to be had
    bool m_folderMissing = false;     ///< the folder of the settings could not be read, and no other was chosen since
    bool m_changedMeanwhile = false;  ///< files changed while a command ran
};

}  // namespace quillon
