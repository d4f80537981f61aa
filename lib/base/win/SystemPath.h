#pragma once

#include <string>
#include <string_view>

#include "base/win/Win32.h"

namespace quillon {

/// A path for calls of Windows. They take up to 260 characters (248 of a folder): paths of 248 and more get the form
/// "\\?\...", which has no such limit.
[[nodiscard]] inline std::wstring SystemPath(std::u16string_view path) {
    constexpr std::size_t shortest = 248;
    std::wstring wide(path.begin(), path.end());
    if (wide.size() < shortest || wide.starts_with(L"\\\\?\\")) return wide;
    // The system does not normalise that form: the path has to be absolute, with "\" only and without "..".
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD size = GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size == 0 || size >= full.size()) return wide;
    full.resize(size);
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

}  // namespace quillon
