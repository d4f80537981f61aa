#include "data/win/FileIdentity.h"

#include "base/win/WinHandle.h"

namespace quillon {

FileStamp StampOf(const std::wstring& path) {
    const FileHandle file(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information{};
    if (!file || !GetFileInformationByHandle(file.Get(), &information)) return {};
    const auto joined = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
    return {true, information.dwVolumeSerialNumber, joined(information.nFileIndexHigh, information.nFileIndexLow),
            joined(information.nFileSizeHigh, information.nFileSizeLow),
            joined(information.ftLastWriteTime.dwHighDateTime, information.ftLastWriteTime.dwLowDateTime)};
}

bool IsSamePath(const std::wstring& a, const std::wstring& b) {
    if (a == b) return true;
    if (CompareStringOrdinal(a.c_str(), -1, b.c_str(), -1, TRUE) != CSTR_EQUAL) return false;
    const FileStamp first = StampOf(a);
    const FileStamp second = StampOf(b);
    return !first.known || !second.known || first.IsSameFile(second);
}

bool IsRemote(const std::wstring& path) {
    return path.rfind(L"\\\\", 0) == 0 || GetDriveTypeW(path.substr(0, 3).c_str()) == DRIVE_REMOTE;
}

}  // namespace quillon
