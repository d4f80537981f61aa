#include "norvik/win/SaveDialog.h"

#include "base/win/Win32.h"
// After windows.h, on which they depend.
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/Text.h"

namespace quillon {

namespace {

constexpr std::size_t kNameRoom = 32768;

/// The extensions of a filter's pairs with their points; empty where a pattern is not that of one extension.
std::vector<std::u16string> ExtensionsOf(const std::u16string& filter) {
    std::vector<std::u16string> parts(1);
    for (const char16_t letter : filter) {
        if (letter == u'|') {
            parts.emplace_back();
        } else {
            parts.back() += letter;
        }
    }
    std::vector<std::u16string> extensions;
    for (std::size_t part = 1; part < parts.size(); part += 2) {
        const std::u16string& pattern = parts[part];
        const bool one = pattern.starts_with(u"*.") && pattern.find_first_of(u"*?;", 1) == std::u16string::npos;
        extensions.push_back(one ? LowerCase(pattern.substr(1)) : std::u16string());
    }
    return extensions;
}

/// The folder that the dialog starts in; none where it is too long: the system's dialogs ignore such a folder or, in
/// some versions, crash.
std::u16string StartFolder(const std::u16string& folder) {
    return folder.size() < MAX_PATH - 1 ? folder : std::u16string();
}

/// The proposed name cut so that with the folder and an extension it is a path that the dialog takes.
std::u16string ProposedName(const std::u16string& name, const std::u16string& folder) {
    constexpr std::size_t extension = 8;  // with the separator and the end
    constexpr std::size_t least = 16;
    constexpr std::size_t most = 200;
    const std::u16string start = StartFolder(folder);
    const std::size_t taken = start.size() + extension;
    std::size_t room = taken + least > MAX_PATH ? least : std::min(MAX_PATH - taken, most);
    // Do not cut between the two halves of a surrogate pair.
    if (room < name.size() && (name[room] & 0xFC00U) == 0xDC00U) --room;
    return name.substr(0, room);
}

/// The active window of the thread, or its first visible one while another program is active.
HWND Owner() {
    HWND owner = GetActiveWindow();
    const auto firstVisible = [](HWND window, LPARAM found) -> BOOL {
        if (!IsWindowVisible(window)) return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    };
    if (owner == nullptr) EnumThreadWindows(GetCurrentThreadId(), firstVisible, reinterpret_cast<LPARAM>(&owner));
    return owner;
}

class SystemSaveDialog final : public SaveFileDialog {
  public:
    bool Show() override {
        const std::vector<std::u16string> extensions = ExtensionsOf(filter);
        std::wstring pairs = Wide(filter) + L'|';
        for (wchar_t& letter : pairs) {
            if (letter == L'|') letter = 0;
        }
        std::vector<wchar_t> name(kNameRoom);
        const std::u16string proposed = ProposedName(fileName, folder);
        std::copy(proposed.begin(), proposed.end(), name.begin());
        const std::wstring caption = Wide(title);
        const std::wstring start = Wide(StartFolder(folder));
        OPENFILENAMEW request{};
        request.lStructSize = sizeof request;
        request.hwndOwner = Owner();
        request.lpstrFilter = pairs.c_str();
        request.nFilterIndex = static_cast<DWORD>(filterIndex);
        request.lpstrFile = name.data();
        request.nMaxFile = static_cast<DWORD>(name.size());
        request.lpstrTitle = caption.c_str();
        request.lpstrInitialDir = start.empty() ? nullptr : start.c_str();
        request.Flags = OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                        OFN_NOREADONLYRETURN;
        // Any extension here makes the dialog add that of the chosen pair to a name without one.
        request.lpstrDefExt = L"txt";
        while (!GetSaveFileNameW(&request)) {
            // Where the proposed name is not a possible one, ask again without it.
            if (CommDlgExtendedError() != FNERR_INVALIDFILENAME || name[0] == 0) return false;
            name[0] = 0;
        }
        fileName.assign(name.data(), name.data() + std::char_traits<wchar_t>::length(name.data()));
        filterIndex = static_cast<std::int32_t>(request.nFilterIndex);
        // A name typed with the extension of another pair means that one.
        const std::u16string lower = LowerCase(fileName);
        const auto ends = [&](std::size_t pair) {
            return !extensions[pair].empty() && lower.ends_with(extensions[pair]);
        };
        const std::size_t chosen = static_cast<std::size_t>(filterIndex) - 1;
        if (chosen < extensions.size() && ends(chosen)) return true;
        for (std::size_t pair = 0; pair < extensions.size(); ++pair) {
            if (!ends(pair)) continue;
            filterIndex = static_cast<std::int32_t>(pair) + 1;
            break;
        }
        return true;
    }
};

}  // namespace

std::unique_ptr<SaveFileDialog> MakeSaveDialog() {
    return std::make_unique<SystemSaveDialog>();
}

}  // namespace quillon
