#include "app/win/BrowserPane.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "app/ControlIds.h"
#include "app/PathArgument.h"
#include "app/StringIds.h"
#include "app/ToolbarIcons.h"
#include "app/win/InputBox.h"
#include "app/win/Toolbar.h"
#include "base/FilePath.h"
#include "data/FileFilter.h"
#include "data/FileOperationPlan.h"
#include "data/win/FileIdentity.h"
#include "data/win/FileOperation.h"
#include "data/win/UserFolders.h"

namespace quillon {

namespace {

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// Folder of a path with a backslash at its end only for the root of a drive; empty for a name alone.
std::wstring ParentOf(const std::wstring& path) {
    std::u16string folder = FolderOf(Narrow16(path));
    if (folder.size() > 3) folder.pop_back();
    return Wide(folder);
}

}  // namespace

void BrowserPane::Open(const std::wstring& startPath) {
    m_browser.SetPattern(m_parts.library.FileTypeMask(0));
    if (!ListStart(startPath)) {
        m_startMissing = startPath;
        const std::wstring folder = Wide(m_parts.settings.filesPath);
        if (!folder.empty() && m_browser.ShowFolder(folder)) {
            if (startPath.empty()) StartWithLast();
        } else {
            m_folderMissing = !folder.empty();
            for (const auto& standIn : {DocumentsFolder, ProfileFolder, SystemDrive})
                if (m_browser.ShowFolder(standIn())) break;
        }
    }
}

void BrowserPane::StartWithLast() {
    // A recording elsewhere is not looked for: its drive may be slow, and the folder shown last is what is promised.
    const std::wstring last = Wide(m_parts.settings.last.path);
    if (last.empty() || !m_browser.Shows(ParentOf(last))) return;
    m_startsWithLast = GetFileAttributesW(last.c_str()) != INVALID_FILE_ATTRIBUTES && !IsFolder(last);
    if (m_startsWithLast) m_startFile = Wide(FileNameOf(m_parts.settings.last.path));
}

bool BrowserPane::ListStart(const std::wstring& path) {
    if (path.empty() || IsDevicePath(Narrow16(path)) || GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        return false;
    if (IsFolder(path)) return m_browser.ShowFolder(path);
    m_startFile = Wide(FileNameOf(Narrow16(path)));
    return m_browser.ShowFolder(ParentOf(path));
}

void BrowserPane::Attach(HWND parent, const TimerFactory& makeTimer) {
    m_types = GetDlgItem(parent, cboFileType);
    m_browser.Attach(GetDlgItem(parent, lstDrive), GetDlgItem(parent, lstDir), GetDlgItem(parent, lstFile));
    if (!m_pathList.Create(parent, pbPathList, *this, true))
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "picture");
    // The Tab key goes from the drives to it.
    SetWindowPos(m_pathList.Window(), GetDlgItem(parent, lstDrive), 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    DrawPictures();
    FillTypes(m_types);
    m_watch = std::make_unique<cFileNotification>(makeTimer, [this] { FilesChanged(); });
    StartWatch();
    // What has changed since the folder was listed was not watched.
    m_browser.Refresh();
}

void BrowserPane::DrawPictures() {
    const int size = m_parts.density.Scaled(16);
    m_pathListIcon = MakeIconList({DrawIcon(Icon::Folders, size, SystemColor(COLOR_BTNFACE))}, size);
}

void BrowserPane::DensityChanged() {
    DrawPictures();
    m_browser.FitFiles();
}

void BrowserPane::KeepSettings() const {
    // A folder that is temporarily missing (its drive is not connected) stays in the settings until the user selects
    // another one.
    if (!m_folderMissing) m_parts.settings.filesPath = Narrow16(m_browser.Folder());
}

void BrowserPane::FillTypes(HWND types) const {
    for (std::int32_t type = 0; type <= m_parts.library.FileTypeCount(); ++type)
        SendPointer(types, CB_ADDSTRING, 0, Wide(FileTypeLine(m_parts.library, type)).c_str());
    SendMessageW(types, CB_SETCURSEL, 0, 0);
}

void BrowserPane::PaintPicture(int, HDC dc, const RECT& clip) {
    RECT client{};
    GetClientRect(m_pathList.Window(), &client);
    FillRect(dc, &clip, GetSysColorBrush(COLOR_BTNFACE));
    DrawFrameControl(dc, &client, DFC_BUTTON, DFCS_BUTTONPUSH);
    const int size = m_parts.density.Scaled(16);
    ImageList_Draw(m_pathListIcon.Get(), 0, dc, (static_cast<int>(client.right) - size) / 2,
                   (static_cast<int>(client.bottom) - size) / 2, ILD_TRANSPARENT);
    InflateRect(&client, -m_parts.density.Scaled(3), -m_parts.density.Scaled(3));
    if (GetFocus() == m_pathList.Window()) DrawFocusRect(dc, &client);
}

bool BrowserPane::PictureMouse(int, UINT message, WPARAM, LPARAM) {
    if (m_parts.longCommand.IsBusy())
        return message == WM_SETCURSOR && (SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true);
    if (message == WM_LBUTTONDOWN) onPathList();
    return message == WM_LBUTTONDOWN;
}

void BrowserPane::OnListCommand(int id, int notification) {
    if (id == lstFile && notification == LBN_SELCHANGE) ChooseFile();
    if (id == lstDir && notification == LBN_DBLCLK) OpenFolder();
    if (id == lstDrive && notification == CBN_SELCHANGE) SelectDrive();
    if (id == lstDrive && notification == CBN_DROPDOWN) m_browser.ListDrives();
    if (id == cboFileType && notification == CBN_SELCHANGE) SelectType();
}

void BrowserPane::TypeLetter(int list, char16_t letter, std::uint32_t time) {
    if (m_parts.longCommand.IsBusy()) return;
    if (std::exchange(m_typedIn, list) != list) m_typed.Begin();
    const bool isFile = list == lstFile;
    const int selected = isFile ? m_browser.SelectedPosition() : m_browser.ChosenFolderPosition();
    const auto found = m_typed.Type(letter, time, isFile ? m_browser.FileNames() : m_browser.FolderNames(), selected);
    if (!found || *found == selected) return;
    if (!isFile) return m_browser.ChooseFolder(*found);
    m_browser.SelectFile(*found);
    ChooseFile();
}

void BrowserPane::OpenFirst() {
    if (!m_startMissing.empty()) return;
    if (!m_startFile.empty()) return OpenNamed(m_startFile);
    if (FileCount() == 0) return;
    m_browser.SelectFile(0);
    ClickFile();
}

bool BrowserPane::ShowFolder(const std::wstring& folder) {
    if (m_browser.Shows(folder)) {
        // The folder may have been removed and restored in between.
        Refresh();
        return true;
    }
    if (!m_browser.ShowFolder(folder)) {
        Tell(Narrow16(folder) + u": " + m_parts.services.Text(IDS_FOLDER_UNREADABLE));
        m_browser.ShowChoice();
        return false;
    }
    m_folderMissing = false;
    Tell({});
    ClickFile();
    StartWatch();
    TellMissing();
    return true;
}

void BrowserPane::OpenUnlisted(const std::wstring& name) {
    // The file is not in the list, so no line may be selected as if delete and rename applied to it.
    m_browser.SelectFile(-1);
    onList(false);
    onFile(name);
}

void BrowserPane::OpenPath(const std::wstring& path) {
    if (IsFolder(path)) {
        ShowFolder(path);
        return;
    }
    const std::wstring folder = ParentOf(path);
    if (folder.empty() || !ShowFolder(folder)) return;
    m_folderMissing = false;
    OpenNamed(Wide(FileNameOf(Narrow16(path))));
}

void BrowserPane::OpenNamed(const std::wstring& name) {
    if (m_browser.SelectFileNamed(name)) {
        ClickFile();
    } else {
        // The name does not match the file type filter, but the content may still be readable.
        OpenUnlisted(name);
    }
}

void BrowserPane::Opened() {
    if (m_browser.Pattern() == u"*.*") return;
    const std::u16string folder = Narrow16(m_browser.Folder());
    m_parts.settings.pathList.Add(folder, [](const std::u16string& path) { return IsFolder(Wide(path)); });
}

void BrowserPane::ChoosePath(int index) {
    const auto& folders = m_parts.settings.pathList.Folders();
    if (static_cast<std::size_t>(index) < folders.size()) ShowFolder(Wide(folders[static_cast<std::size_t>(index)]));
}

void BrowserPane::TellMissing() {
    if (m_browser.IsComplete()) return;
    m_parts.status.Tell(
        StatusBar::Topic::Folder,
        Narrow16(m_browser.Folder()) + u": " +
            m_parts.services.Text(m_browser.IsReadable() ? IDS_FOLDER_INCOMPLETE : IDS_FOLDER_UNREADABLE));
}

void BrowserPane::TellStart() {
    if (!m_startMissing.empty())
        return Tell(Narrow16(m_startMissing) + u": " + m_parts.services.Text(IDS_PATH_MISSING));
    if (!m_folderMissing) return TellMissing();
    m_parts.status.Tell(StatusBar::Topic::Folder,
                        m_parts.settings.filesPath + u": " + m_parts.services.Text(IDS_FOLDER_UNREADABLE));
}

void BrowserPane::Refresh() {
    // The watch ends when its folder is removed, so start it again. Do so before listing, so that changes made in
    // between are reported.
    StartWatch();
    // A missing folder may be available again.
    m_parts.status.Retract(StatusBar::Topic::Folder);
    FilesChanged();
    onLook();
    TellMissing();
}

void BrowserPane::FilesChanged() try {
    m_changedMeanwhile = m_parts.longCommand.IsBusy();
    if (m_parts.longCommand.IsBusy()) return;
    const bool wasSelected = m_browser.SelectedPosition() >= 0;
    m_browser.Refresh();
    // A refused file that no longer exists needs no explanation.
    if (wasSelected && m_browser.SelectedPosition() < 0 && m_parts.document.File().fileName.empty()) ClickFile();
    const std::wstring open = Wide(m_parts.document.File().fileName);
    const bool unseen = !open.empty() && GetFileAttributesW(open.c_str()) == INVALID_FILE_ATTRIBUTES;
    const DWORD reason = GetLastError();
    // Other errors may be temporary, e.g. of a network drive.
    if (unseen && (reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND)) {
        const std::u16string name = FileNameOf(m_parts.document.File().fileName);
        m_browser.SelectFile(-1);
        ClickFile();
        m_parts.status.Tell(StatusBar::Topic::Folder, name + u": " + m_parts.services.Text(IDS_FILE_GONE));
    }
    onList(true);
} catch (const std::exception& error) {
    onFailed(error);
}

void BrowserPane::DeleteSelected() {
    const std::wstring folder = m_browser.Folder();
    const std::wstring name = m_browser.SelectedFile();
    const int position = m_browser.SelectedPosition();
    if (name.empty()) return;
    onClose();
    m_watch->StopWatch();
    if (!m_parts.longCommand.RunPending()) return;
    const FileOperationResult result = DeleteToRecycleBin(folder, name, m_parts.longCommand.Window());
    // The shell's dialog runs messages: the window may be closed by now, or show another folder.
    if (m_parts.longCommand.IsGone()) return;
    // Regardless of the result: other programs may have changed the folder meanwhile.
    Refresh();
    if (m_browser.Folder() != folder) return;
    if (result == FileOperationResult::Done) m_browser.SelectFile(std::min(position, m_browser.FileCount() - 1));
    ClickFile();
    if (result == FileOperationResult::Failed) Tell(Narrow16(name) + u": " + m_parts.services.Text(IDS_DELETE_FAILED));
}

void BrowserPane::RenameSelected() {
    const std::wstring folder = m_browser.Folder();
    const std::wstring name = m_browser.SelectedFile();
    if (name.empty()) return;
    const auto text = [this](int id) { return Wide(m_parts.services.Text(id)); };
    const auto answers = AskForText(m_parts.longCommand.Window(), {.title = text(IDS_RENAME),
                                                                   .ok = text(IDS_OK),
                                                                   .cancel = text(IDS_CANCEL),
                                                                   .lines = {{text(IDS_NEW_NAME), name}},
                                                                   .selected = name.rfind(L'.')});
    if (m_parts.longCommand.IsGone() || !answers) return;
    const std::wstring& answer = answers->front();
    if (answer.empty() || answer == name) return;
    const std::u16string failure = Narrow16(name) + u": " + m_parts.services.Text(IDS_RENAME_FAILED);
    if (!PlanRename(Narrow16(folder), Narrow16(name), Narrow16(answer))) {
        // The shell could do nothing; the recording stays open.
        Tell(failure);
        return;
    }
    onClose();
    m_watch->StopWatch();
    if (!m_parts.longCommand.RunPending()) return;
    const FileOperationResult result = RenameFile(folder, name, answer, m_parts.longCommand.Window());
    if (m_parts.longCommand.IsGone()) return;
    Refresh();
    if (m_browser.Folder() != folder) return;
    const bool renamed = result == FileOperationResult::Done;
    if (renamed && !m_browser.SelectFileNamed(answer)) {
        OpenUnlisted(answer);
        return;
    }
    ClickFile();
    if (!renamed) Tell(failure);
}

void BrowserPane::SelectDrive() {
    const std::wstring drive = m_browser.ChosenDrive();
    // Selecting the current drive keeps the folder, unless the folder no longer exists.
    const std::wstring& shown = m_browser.Folder();
    const bool stays = !shown.empty() && towupper(shown[0]) == towupper(drive[0]) &&
                       GetFileAttributesW(shown.c_str()) != INVALID_FILE_ATTRIBUTES;
    stays ? Refresh() : static_cast<void>(ShowFolder(drive));
}

void BrowserPane::SelectType() {
    const auto type = SendMessageW(m_types, CB_GETCURSEL, 0, 0);
    m_browser.SetPattern(m_parts.library.FileTypeMask(static_cast<std::int32_t>(type)));
    onList(false);
    if (m_parts.document.File().fileName.empty()) return;
    m_browser.SelectFileNamed(Wide(FileNameOf(m_parts.document.File().fileName)));
    ClickFile();
}

void BrowserPane::ClickFile() {
    onList(false);
    onFile(m_browser.SelectedFile());
}

void BrowserPane::ChooseFile() {
    ClickFile();
    // A recording was opened here, so this folder replaces the missing one of the settings.
    if (m_parts.document.File().recording) m_folderMissing = false;
}

void BrowserPane::OpenNeighbour(int index) {
    const int position = m_browser.SelectedPosition();
    m_browser.SelectFile(index == 1 ? position + 1 : position < 0 ? m_browser.FileCount() - 1 : position - 1);
    ChooseFile();
}

void BrowserPane::CatchUp() {
    if (std::exchange(m_changedMeanwhile, false)) FilesChanged();
}

void BrowserPane::Tell(const std::u16string& text) {
    m_parts.status.Tell(StatusBar::Topic::Outcome, text);
}

}  // namespace quillon
