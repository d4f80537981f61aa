#include "data/win/FileBrowser.h"

#include <algorithm>
#include <iterator>

#include "base/FilePath.h"
#include "base/win/WinHandle.h"
#include "data/FileFilter.h"
#include "data/win/FileIdentity.h"
#include "data/win/FillScope.h"

namespace quillon {

namespace {

std::wstring PathIn(const std::wstring& folder, const std::wstring& name) {
    return Wide(PathOf(Narrow16(folder), Narrow16(name)));
}

/// Length of "C:\\" or of "\\\\server\\share".
std::size_t RootLength(const std::wstring& folder) {
    if (folder.rfind(L"\\\\", 0) != 0) return std::min<std::size_t>(folder.size(), 3);
    const std::size_t share = folder.find(L'\\', 2);
    const std::size_t end = share == std::wstring::npos ? share : folder.find(L'\\', share + 1);
    return std::min(end, folder.size());
}

/// Absolute form without a trailing backslash, except for the root of a drive.
std::wstring Normal(const std::wstring& folder) {
    std::wstring full(32768, L'\0');
    const DWORD length = GetFullPathNameW(folder.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    full.resize(length < full.size() ? length : 0);
    while (full.size() > 3 && full.back() == L'\\') full.pop_back();
    return full;
}

bool IsSameName(const std::wstring& a, const std::wstring& b) {
    return CompareStringOrdinal(a.c_str(), -1, b.c_str(), -1, TRUE) == CSTR_EQUAL;
}

bool LessName(const std::wstring& a, const std::wstring& b) {
    return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE | SORT_STRINGSORT, a.c_str(), -1, b.c_str(), -1) ==
           CSTR_LESS_THAN;
}

}  // namespace

void FileBrowser::Attach(HWND drives, HWND folders, HWND files) {
    m_drives = drives;
    m_folders = folders;
    m_files = files;
    if (!m_folder.empty()) {
        const std::vector<std::wstring> names = m_listed;
        const int selected = m_selected;
        FillFolders();
        FillFiles(names, {}, false);
        SelectFile(selected);
    }
    ListDrives();
}

void FileBrowser::ListDrives() const {
    SendMessageW(m_drives, CB_RESETCONTENT, 0, 0);
    wchar_t roots[512] = {};
    GetLogicalDriveStringsW(511, roots);
    for (const wchar_t* root = roots; *root != L'\0'; root += lstrlenW(root) + 1) {
        const std::wstring drive = {static_cast<wchar_t>(towupper(root[0])), L':'};
        SendPointer(m_drives, CB_ADDSTRING, 0, drive.c_str());
    }
    if (!m_folder.empty()) ShowChoice();
}

bool FileBrowser::Read(const std::wstring& folder, Names& names) {
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW(PathIn(folder, L"*").c_str(), &found));
    // The root of a drive without a medium cannot be listed at all.
    if (!search) {
        const bool nothingFound = GetLastError() == ERROR_FILE_NOT_FOUND;
        return nothingFound && GetFileAttributesW(PathIn(folder, L"").c_str()) != INVALID_FILE_ATTRIBUTES;
    }
    do {
        const std::wstring name = found.cFileName;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0 || name == L"." || name == L"..") continue;
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        (isFolder ? names.folders : names.files).push_back(name);
    } while (FindNextFileW(search.Get(), &found));
    names.complete = GetLastError() == ERROR_NO_MORE_FILES;
    std::sort(names.folders.begin(), names.folders.end(), LessName);
    std::sort(names.files.begin(), names.files.end(), LessName);
    return true;
}

bool FileBrowser::ShowFolder(const std::wstring& folder) {
    const std::wstring normal = Normal(folder);
    Names names;
    if (normal.empty() || !Read(normal, names)) return false;
    m_folder = normal;
    m_complete = names.complete;
    m_readable = true;
    m_subfolders = names.folders;
    FillFolders();
    FillFiles(names.files, {}, false);
    ShowChoice();
    return true;
}

void FileBrowser::ShowChoice() const {
    if (m_folders == nullptr) return;
    const std::wstring drive = {static_cast<wchar_t>(towupper(m_folder[0])), L':'};
    const LRESULT position = SendPointer(m_drives, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), drive.c_str());
    SendMessageW(m_drives, CB_SETCURSEL, static_cast<WPARAM>(position), 0);
    SendMessageW(m_folders, LB_SETCURSEL, m_folderPaths.size() - m_subfolders.size() - 1, 0);
}

void FileBrowser::FillFolders() {
    if (m_folders == nullptr) return;
    const FillScope fill(m_folders);
    SendMessageW(m_folders, LB_RESETCONTENT, 0, 0);
    m_folderPaths.clear();
    int depth = 0;
    const auto add = [&](const std::wstring& name, const std::wstring& path) {
        const std::wstring line = std::wstring(static_cast<std::size_t>(3 * depth), L' ') + name;
        SendPointer(m_folders, LB_ADDSTRING, 0, line.c_str());
        m_folderPaths.push_back(path);
    };
    // The path from the drive to the folder, indented level by level, then the subfolders.
    for (std::size_t start = 0; start < m_folder.size();) {
        // The first line is the drive with its backslash, or the server and share of a network folder.
        std::size_t end = start == 0 ? RootLength(m_folder) : m_folder.find(L'\\', start);
        if (end == std::wstring::npos) end = m_folder.size();
        add(m_folder.substr(start, end - start), m_folder.substr(0, end));
        ++depth;
        start = end + (start == 0 && m_folder[end - 1] == L'\\' ? 0 : 1);
    }
    for (const std::wstring& name : m_subfolders) add(name, PathIn(m_folder, name));
    const auto top = static_cast<std::ptrdiff_t>(m_folderPaths.size() - m_subfolders.size()) - 2;
    SendMessageW(m_folders, LB_SETTOPINDEX, static_cast<WPARAM>(std::max<std::ptrdiff_t>(top, 0)), 0);
}

void FileBrowser::FillFiles(const std::vector<std::wstring>& names, const std::wstring& selected, bool keepPlace) {
    m_listed.clear();
    m_selected = -1;
    std::copy_if(names.begin(), names.end(), std::back_inserter(m_listed),
                 [&](const std::wstring& name) { return MatchesMask(Narrow16(name), m_pattern); });
    if (m_files == nullptr) return;
    const FillScope fill(m_files);
    const LRESULT top = keepPlace ? SendMessageW(m_files, LB_GETTOPINDEX, 0, 0) : 0;
    SendMessageW(m_files, LB_RESETCONTENT, 0, 0);
    for (const std::wstring& name : m_listed) {
        const LRESULT position = SendPointer(m_files, LB_ADDSTRING, 0, name.c_str());
        if (name == selected) SendMessageW(m_files, LB_SETCURSEL, static_cast<WPARAM>(position), 0);
    }
    FitFiles();
    SendMessageW(m_files, LB_SETTOPINDEX, static_cast<WPARAM>(top), 0);
}

void FileBrowser::FitFiles() const {
    const WindowDC dc(m_files);
    const SelectScope font(dc.Get(), reinterpret_cast<HFONT>(SendMessageW(m_files, WM_GETFONT, 0, 0)));
    LONG widest = 0;
    for (const std::wstring& name : m_listed) {
        SIZE size{};
        GetTextExtentPoint32W(dc.Get(), name.c_str(), static_cast<int>(name.size()), &size);
        widest = std::max(widest, size.cx);
    }
    // Set the horizontal extent so that long names can be scrolled.
    SendMessageW(m_files, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest) + 6, 0);
}

void FileBrowser::SetPattern(const std::u16string& pattern) {
    m_pattern = pattern;
    Refresh();
}

bool FileBrowser::Shows(const std::wstring& folder) const {
    return !m_folder.empty() && IsSamePath(Normal(folder), m_folder);
}

void FileBrowser::Refresh() {
    if (m_folder.empty()) return;
    Names names;
    m_readable = Read(m_folder, names);
    if (!m_readable) names = {};
    m_complete = m_readable && names.complete;
    const std::wstring selected = SelectedFile();
    // When other programs write files, the folder list and its scroll position are left unchanged.
    if (names.folders != m_subfolders) {
        m_subfolders = names.folders;
        FillFolders();
        ShowChoice();
    }
    FillFiles(names.files, selected, true);
}

std::wstring FileBrowser::SelectedFile() const {
    const auto position = static_cast<std::size_t>(SelectedPosition());
    return position < m_listed.size() ? m_listed[position] : std::wstring();
}

int FileBrowser::SelectedPosition() const {
    return m_files == nullptr ? m_selected : static_cast<int>(SendMessageW(m_files, LB_GETCURSEL, 0, 0));
}

bool FileBrowser::SelectFileNamed(const std::wstring& name) {
    // Compare exactly: the list box treats names as equal that differ as file names.
    auto found = std::find(m_listed.begin(), m_listed.end(), name);
    if (found == m_listed.end())
        found = std::find_if(m_listed.begin(), m_listed.end(),
                             [&](const std::wstring& listed) { return IsSameName(listed, name); });
    if (found == m_listed.end()) return false;
    SelectFile(static_cast<int>(found - m_listed.begin()));
    return true;
}

void FileBrowser::SelectFile(int position) {
    m_selected = position;
    if (m_files != nullptr) SendMessageW(m_files, LB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

std::wstring FileBrowser::ChosenDrive() const {
    const LRESULT position = SendMessageW(m_drives, CB_GETCURSEL, 0, 0);
    wchar_t drive[16] = {};
    if (position != CB_ERR) SendPointer(m_drives, CB_GETLBTEXT, static_cast<WPARAM>(position), drive);
    return std::wstring(drive) + L'\\';
}

std::vector<std::u16string> FileBrowser::FolderNames() const {
    std::vector<std::u16string> names;
    for (const std::wstring& path : m_folderPaths) {
        const std::u16string name = FileNameOf(Narrow16(path));
        names.push_back(name.empty() ? Narrow16(path) : name);
    }
    return names;
}

std::vector<std::u16string> FileBrowser::FileNames() const {
    std::vector<std::u16string> names;
    for (const std::wstring& name : m_listed) names.push_back(Narrow16(name));
    return names;
}

int FileBrowser::ChosenFolderPosition() const {
    return static_cast<int>(SendMessageW(m_folders, LB_GETCURSEL, 0, 0));
}

void FileBrowser::ChooseFolder(int position) const {
    SendMessageW(m_folders, LB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

std::wstring FileBrowser::ChosenFolder() const {
    const LRESULT position = SendMessageW(m_folders, LB_GETCURSEL, 0, 0);
    return position == LB_ERR ? m_folder : m_folderPaths[static_cast<std::size_t>(position)];
}

}  // namespace quillon
