#include "dialogs/win/SplitFolder.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/FilePath.h"
#include "base/win/SystemPath.h"
#include "base/win/WinHandle.h"
#include "data/FileOperationPlan.h"
#include "data/win/FileIdentity.h"
#include "data/win/FileOperation.h"

namespace quillon {

namespace {

/// Whether both paths lead to one file or folder; none where one cannot be opened or its file
/// system has no file numbers.
std::optional<bool> AreSame(const FileStamp& a, const FileStamp& b) {
    if (!a.known || !b.known || a.file == 0 || b.file == 0) return std::nullopt;
    return a.IsSameFile(b);
}

std::u16string ParentOf(const std::u16string& path) {
    // With its separator: "C:" alone is the current folder of the drive.
    const std::u16string folder = FolderOf(path);
    return folder.empty() ? u"." : folder;
}

bool IsSameFolder(const std::u16string& a, const std::u16string& b) {
    if (const std::optional<bool> same = AreSame(StampOf(SystemPath(a)), StampOf(SystemPath(b)))) return *same;
    return CompareStringOrdinal(Wide(a).c_str(), -1, Wide(b).c_str(), -1, TRUE) == CSTR_EQUAL;
}

bool IsMissing(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// Fills in the files. Only those of the recording's size can be the recording, and links.
void ListFiles(const std::u16string& folder, const std::u16string& recording, SplitFolderState& state) {
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW(SystemPath(PathOf(folder, u"*")).c_str(), &found));
    if (!search) {
        if (!IsMissing(GetLastError())) state.kind = SplitFolderState::Kind::Unreadable;
        return;
    }
    const FileStamp stamp = StampOf(SystemPath(recording));
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
        state.files.push_back(Narrow16(found.cFileName));
        const std::uint64_t size = std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow;
        const bool candidate = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 || size == stamp.size;
        if (candidate && AreSame(stamp, StampOf(SystemPath(PathOf(folder, state.files.back())))).value_or(false))
            state.holdsRecording = true;
    } while (FindNextFileW(search.Get(), &found) != FALSE);
    // An incomplete listing must not be taken for the whole folder.
    if (GetLastError() != ERROR_NO_MORE_FILES) state.kind = SplitFolderState::Kind::Unreadable;
    std::sort(state.files.begin(), state.files.end());
}

}  // namespace

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
        const std::wstring path = SystemPath(PathOf(folder, name));
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) continue;  // gone already
        if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return name;
        const FileHandle file(CreateFileW(path.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (!file) return name;
    }
    return {};
}

std::u16string DeleteSplitFiles(const std::u16string& folder, const std::vector<std::u16string>& files, HWND owner) {
    std::vector<std::wstring> forShell;
    for (const std::u16string& name : files) {
        if (GetFileAttributesW(SystemPath(PathOf(folder, name)).c_str()) == INVALID_FILE_ATTRIBUTES) continue;
        if (PlanDelete(folder, name)) {
            forShell.push_back(Wide(name));
        } else {
            // The name is too long for the shell or not representable in its call. A failure is detected below.
            DeleteFileW(SystemPath(PathOf(folder, name)).c_str());
        }
    }
    // Its result is determined by checking which files are left.
    static_cast<void>(DeleteAllToRecycleBin(Wide(folder), forShell, owner));
    for (const std::u16string& name : files) {
        if (GetFileAttributesW(SystemPath(PathOf(folder, name)).c_str()) != INVALID_FILE_ATTRIBUTES) return name;
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
