#include "app/win/HelpViewer.h"

#include "app/StringIds.h"
#include "base/win/WinHandle.h"

namespace quillon {

bool ShowHelpFile(HWND owner, const std::wstring& path, const std::wstring& page) {
    // Loaded on first use and kept: the viewer's window lives in it. Not every system has it.
    // Only from the system folder: a DLL of that name in the program's folder could be planted.
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    const HMODULE viewer = LoadLibraryW((std::wstring(folder) + L"\\hhctrl.ocx").c_str());
    if (viewer == nullptr) return false;
    using Show = HWND(WINAPI*)(HWND, LPCWSTR, UINT, DWORD_PTR);
    const auto show = reinterpret_cast<Show>(reinterpret_cast<void*>(GetProcAddress(viewer, "HtmlHelpW")));
    constexpr UINT displayTopic = 0;
    const std::wstring topic = page.empty() ? path : path + L"::/" + page;
    return show != nullptr && show(owner, topic.c_str(), displayTopic, 0) != nullptr;
}

void HelpCommands::Choose() {
    wchar_t program[32768] = {};
    GetModuleFileNameW(nullptr, program, 32768);
    const std::wstring path = program;
    WinDirectoryLookup lookup;
    m_file = ChooseHelpFile(lookup, Narrow16(path.substr(0, path.rfind(L'\\'))), m_language,
                            m_services.Text(IDS_LANGUAGE_CODE));
}

void HelpCommands::ChooseLanguage(std::int16_t language) {
    m_language = language;
    Choose();
}

void HelpCommands::Show(HWND owner, const std::wstring& page) {
    if (m_file.empty()) {
        m_status.Tell(StatusBar::Topic::Outcome, m_services.Text(IDS_NO_HELP));
    } else if (!ShowHelpFile(owner, Wide(m_file), page)) {
        m_status.Tell(StatusBar::Topic::Outcome, m_services.Text(IDS_HELP_IS_AT) + u' ' + m_file);
    }
}

std::u16string WinDirectoryLookup::FirstMatch(const std::u16string& pattern) {
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW(Wide(pattern).c_str(), &found));
    for (bool more = static_cast<bool>(search); more; more = FindNextFileW(search.Get(), &found) != FALSE) {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return Narrow16(found.cFileName);
    }
    return {};
}

}  // namespace quillon
