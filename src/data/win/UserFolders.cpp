#include "data/win/UserFolders.h"

#include "base/win/Win32.h"
// After windows.h, on which it depends.
#include <shlobj.h>

namespace quillon {

std::wstring DocumentsFolder() {
    wchar_t path[MAX_PATH] = {};
    // Without a look whether it is there: that is found out when it is listed.
    const HRESULT result =
        SHGetFolderPathW(nullptr, CSIDL_PERSONAL | CSIDL_FLAG_DONT_VERIFY, nullptr, SHGFP_TYPE_CURRENT, path);
    return SUCCEEDED(result) ? path : L"";
}

std::wstring ProfileFolder() {
    wchar_t path[32768] = {};
    const DWORD length = GetEnvironmentVariableW(L"USERPROFILE", path, 32768);
    return length < 32768 ? path : L"";
}

std::wstring SystemDrive() {
    wchar_t path[MAX_PATH] = {};
    return GetWindowsDirectoryW(path, MAX_PATH) < MAX_PATH ? std::wstring(path).substr(0, 3) : std::wstring();
}

}  // namespace quillon
