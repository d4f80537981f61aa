#include "norvik/win/FileDialog.h"

#include <algorithm>

namespace quillon {

namespace {

/// See FileDialogRequest.
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

}  // namespace

FileDialogTexts::FileDialogTexts(const std::u16string& pairs, const std::u16string& caption,
                                 const std::u16string& start)
    : filter(Wide(pairs) + L'|'), title(Wide(caption)), folder(Wide(FileDialogFolder(start))) {
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
}

std::u16string FileDialogTexts::Name() const {
    return {name.begin(), std::find(name.begin(), name.end(), L'\0')};
}

std::u16string FileDialogFolder(const std::u16string& folder) {
    return folder.size() < MAX_PATH - 1 ? folder : std::u16string();
}

OPENFILENAMEW FileDialogRequest(FileDialogTexts& texts, DWORD flags) {
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = Owner();
    request.lpstrFilter = texts.filter.c_str();
    request.lpstrFile = texts.name.data();
    request.nMaxFile = static_cast<DWORD>(texts.name.size());
    request.lpstrTitle = texts.title.c_str();
    request.lpstrInitialDir = texts.folder.empty() ? nullptr : texts.folder.c_str();
    request.Flags = flags | OFN_EXPLORER | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    return request;
}

}  // namespace quillon
