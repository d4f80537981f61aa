#include "app/win/SystemDlls.h"

#include <string>

#include "base/win/Win32.h"

namespace quillon {

void LoadSystemDllsOnly() {
    using SetDirectories = BOOL(WINAPI*)(DWORD flags);
    constexpr DWORD system32 = 0x800;  // LOAD_LIBRARY_SEARCH_SYSTEM32
    const auto set = reinterpret_cast<SetDirectories>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetDefaultDllDirectories")));
    if (set != nullptr && set(system32)) return;
    // A Windows 7 without that function: what is loaded by its whole path is found there by its name later. The other
    // DLLs that are loaded on demand are known to the system by name, or to the program's manifest.
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    for (const wchar_t* name : {L"\\uxtheme.dll", L"\\winmm.dll"})
        LoadLibraryExW((std::wstring(folder) + name).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    SetDllDirectoryW(L"");
}

}  // namespace quillon
