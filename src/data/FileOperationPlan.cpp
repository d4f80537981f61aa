#include "data/FileOperationPlan.h"

#include <algorithm>
#include <array>

#include "base/FilePath.h"
#include "base/Text.h"

namespace quillon {

namespace {

constexpr std::size_t pathLimit = 260;  ///< characters of a path with the NUL at its end
constexpr std::u16string_view forbidden = u"\\/:*?\"<>|";

bool IsControl(char16_t character) {
    return character < u' ';
}

/// Names of devices, with any extension and in any letter case.
bool IsDevice(std::u16string_view name) {
    static constexpr std::array<std::u16string_view, 6> devices = {u"con", u"prn",    u"aux",
                                                                   u"nul", u"conin$", u"conout$"};
    std::u16string stem = LowerCase(name.substr(0, name.find(u'.')));
    while (!stem.empty() && stem.back() == u' ') stem.pop_back();
    if (std::find(devices.begin(), devices.end(), stem) != devices.end()) return true;
    // The superscripts 1 to 3 count as digits here.
    constexpr std::u16string_view digits = u"123456789\u00B9\u00B2\u00B3";
    return stem.size() == 4 && (stem.rfind(u"com", 0) == 0 || stem.rfind(u"lpt", 0) == 0) &&
           digits.find(stem.back()) != std::u16string_view::npos;
}

/// "C:\..." or "\\server\share...", without anything that the shell takes for a wildcard or the end of the text.
bool IsAbsoluteFolder(std::u16string_view folder) {
    if (folder.size() < 3) return false;
    const char16_t drive = static_cast<char16_t>(folder[0] | 0x20);
    const bool onDrive = drive >= u'a' && drive <= u'z' && folder[1] == u':' && folder[2] == u'\\';
    const bool onServer = folder[0] == u'\\' && folder[1] == u'\\' && folder[2] != u'\\';
    return (onDrive || onServer) && std::none_of(folder.begin(), folder.end(), [](char16_t character) {
               return IsControl(character) || character == u'*' || character == u'?';
           });
}

std::optional<std::u16string> CheckedPath(std::u16string_view folder, std::u16string_view name) {
    if (!IsAbsoluteFolder(folder) || !IsFileName(name)) return std::nullopt;
    std::u16string path = PathOf(folder, name);
    if (path.size() >= pathLimit) return std::nullopt;
    return path;
}

}  // namespace

bool IsFileName(std::u16string_view name) {
    // A point at the end also rules out "." and "..".
    if (name.empty() || name.back() == u'.' || name.back() == u' ' || IsDevice(name)) return false;
    return std::none_of(name.begin(), name.end(), [](char16_t character) {
        return IsControl(character) || forbidden.find(character) != std::u16string_view::npos;
    });
}

std::optional<FileOperationPlan> PlanDelete(std::u16string_view folder, std::u16string_view name) {
    std::optional<std::u16string> from = CheckedPath(folder, name);
    if (!from) return std::nullopt;
    return FileOperationPlan{*from, {}};
}

std::optional<FileOperationPlan> PlanRename(std::u16string_view folder, std::u16string_view oldName,
                                            std::u16string_view newName) {
    std::optional<std::u16string> from = CheckedPath(folder, oldName);
    std::optional<std::u16string> to = CheckedPath(folder, newName);
    if (!from || !to || *from == *to) return std::nullopt;
    return FileOperationPlan{*from, *to};
}

}  // namespace quillon
