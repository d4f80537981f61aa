#include "dialogs/win/SplitFolder.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/FilePath.h"
#include "base/win/SystemPath.h"
#include "base/win/WinHandle.h"
#include "data/FileOperationPlan.h"
#include "data/win/FileOperation.h"

namespace quillon {

namespace {

struct FileTraits {
    using Handle = HANDLE;
    static Handle Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(Handle handle) { CloseHandle(handle); }
};
using File = WinHandle<FileTraits>;

std::u16string PathIn(const std::u16string& folder, const std::u16string& name) {
    return folder + u'\\' + name;
}

/// What tells a file or folder from all others, whatever path leads to it.
struct Identity {
    DWORD volume = 0;
    std::uint64_t index = 0;
    friend bool operator==(const Identity&, const Identity&) = default;
};

/// None where the file cannot be opened or its file system numbers no files.
std::optional<Identity> IdentityOf(const std::wstring& path) {
    const File file(CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION info{};
    if (!file || GetFileInformationByHandle(file.Get(), &info) == FALSE) return std::nullopt;
    const std::uint64_t index = std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow;
    if (index == 0) return std::nullopt;
    return Identity{info.dwVolumeSerialNumber, index};
}

std::u16string ParentOf(const std::u16string& path) {
    // With its separator: "C:" alone is the current folder of the drive.
    const std::u16string folder = FolderOf(path);
    return folder.empty() ? u"." : folder;
}

bool IsSameFolder(const std::u16string& a, const std::u16string& b) {
    const std::optional<Identity> first = IdentityOf(SystemPath(a));
    const std::optional<Identity> second = IdentityOf(SystemPath(b));
    if (first && second) return *first == *second;
    return CompareStringOrdinal(Wide(a).c_str(), -1, Wide(b).c_str(), -1, TRUE) == CSTR_EQUAL;
}

bool IsMissing(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// Fills in the files. Only those of the recording's size can be the recording, and links.
void ListFiles(const std::u16string& folder, const std::u16string& recording, SplitFolderState& state) {
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW(SystemPath(PathIn(folder, u"*")).c_str(), &found));
    if (!search) {
        if (!IsMissing(GetLastError())) state.kind = SplitFolderState::Kind::Unreadable;
        return;
    }
    WIN32_FILE_ATTRIBUTE_DATA opened{};
    GetFileAttributesExW(SystemPath(recording).c_str(), GetFileExInfoStandard, &opened);
    const std::optional<Identity> identity = IdentityOf(SystemPath(recording));
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
        state.files.push_back(Narrow16(found.cFileName));
        const bool candidate =
            (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ||
            (found.nFileSizeLow == opened.nFileSizeLow && found.nFileSizeHigh == opened.nFileSizeHigh);
        if (candidate && identity && IdentityOf(SystemPath(PathIn(folder, state.files.back()))) == identity)
            state.holdsRecording = true;
    } while (FindNextFileW(search.Get(), &found) != FALSE);
    // A list that breaks off must not be taken for all there is.
    if (GetLastError() != ERROR_NO_MORE_FILES) state.kind = SplitFolderState::Kind::Unreadable;
    std::sort(state.files.begin(), state.files.end());
}

}  // namespace

std::u16string SplitFilePath(const std::u16string& folder, const std::u16string& name) {
    return PathIn(folder, name);
}

SplitFolderState ReadSplitFolder(const std::u16string& folder, const std::u16string& recording) {
    using Kind = SplitFolderState::Kind;
    SplitFolderState state;
    const DWORD attributes = GetFileAttributesW(SystemPath(folder).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        state.kind = IsMissing(GetLastError()) ? Kind::Missing : Kind::Unreadable;
    } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        state.kind = Kind::NotFolder;
    } else {
        state.kind = Kind::Folder;
        state.holdsRecording = IsSameFolder(folder, ParentOf(recording));
        ListFiles(folder, recording, state);
    }
    return state;
}

std::u16string FindUndeletable(const std::u16string& folder, const std::vector<std::u16string>& files) {
    for (const std::u16string& name : files) {
        const std::wstring path = SystemPath(PathIn(folder, name));
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) continue;  // gone already
        if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return name;
        const File file(CreateFileW(path.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (!file) return name;
    }
    return {};
}

std::u16string DeleteSplitFiles(const std::u16string& folder, const std::vector<std::u16string>& files, HWND owner) {
    std::vector<std::wstring> forShell;
    for (const std::u16string& name : files) {
        if (GetFileAttributesW(SystemPath(PathIn(folder, name)).c_str()) == INVALID_FILE_ATTRIBUTES) continue;
        if (PlanDelete(folder, name)) {
            forShell.push_back(Wide(name));
        } else {
            // Too long, or not to be spelled for the shell. What fails is found below.
            DeleteFileW(SystemPath(PathIn(folder, name)).c_str());
        }
    }
    // Its result is seen by what is left.
    static_cast<void>(DeleteAllToRecycleBin(Wide(folder), forShell, owner));
    for (const std::u16string& name : files) {
        if (GetFileAttributesW(SystemPath(PathIn(folder, name)).c_str()) != INVALID_FILE_ATTRIBUTES) return name;
    }
    return {};
}

bool CreateSplitFolder(const std::u16string& folder) {
    const std::wstring path = SystemPath(folder);
    if (CreateDirectoryW(path.c_str(), nullptr) != FALSE) return true;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace quillon
