#pragma once

#include <string>
#include <string_view>

#include "base/win/Win32.h"

namespace quillon {

/// A path as the calls of Windows take it: in the form that has no limit of 260 characters where it comes near that.
/// Folders have to stay below 248 otherwise.
[[nodiscard]] inline std::wstring SystemPath(std::u16string_view path) {
    constexpr std::size_t shortest = 248;
    std::wstring wide(path.begin(), path.end());
    if (wide.size() < shortest || wide.starts_with(L"\\\\?\\")) return wide;
    // That form is taken as it stands, so it has to be an absolute path of "\" without "..".
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD size = GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size == 0 || size >= full.size()) return wide;
    full.resize(size);
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

}  // namespace quillon
