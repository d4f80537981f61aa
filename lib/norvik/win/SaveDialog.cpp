#include "norvik/win/SaveDialog.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <cderr.h>
#include "base/Text.h"
#include "norvik/win/FileDialog.h"
#include "norvik/win/Timer.h"

namespace quillon {

namespace {

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

/// The proposed name cut so that with the folder and an extension it is a path that the dialog takes.
std::u16string ProposedName(const std::u16string& name, const std::u16string& folder) {
    constexpr std::size_t extension = 8;  // with the separator and the end
    constexpr std::size_t least = 16;
    constexpr std::size_t most = 200;
    const std::u16string start = FileDialogFolder(folder);
    const std::size_t taken = start.size() + extension;
    std::size_t room = taken + least > MAX_PATH ? least : std::min(MAX_PATH - taken, most);
    // Do not cut between the two halves of a surrogate pair.
    if (room < name.size() && (name[room] & 0xFC00U) == 0xDC00U) --room;
    return name.substr(0, room);
}

/// Looks which type is chosen in the list of the dialog that is open. A hook would tell it, but gives the dialog the
/// look of old versions of the system.
class TypeWatch {
  public:
    /// `filter` with nulls, `first` as in OPENFILENAME; `onType` may be empty.
    TypeWatch(HWND owner, const std::wstring& filter, std::int32_t first, std::function<void(std::int32_t)> onType)
        : m_owner(owner), m_first(filter.substr(0, filter.find(L'\0'))), m_chosen(first), m_onType(std::move(onType)) {
        if (!m_onType) return;
        m_onType(m_chosen);
        m_timer = MakeTimer([this] { Look(); });
        m_timer->PutInterval(kInterval);
        m_timer->PutEnabled(true);
    }
    TypeWatch(const TypeWatch&) = delete;
    TypeWatch& operator=(const TypeWatch&) = delete;

  private:
    static constexpr std::int32_t kInterval = 200;  // ms

    void Look() {
        m_list = nullptr;
        const auto look = [](HWND window, LPARAM at) -> BOOL {
            auto& watch = *reinterpret_cast<TypeWatch*>(at);
            if (GetWindow(window, GW_OWNER) == watch.m_owner && IsWindowVisible(window))
                EnumChildWindows(window, FindList, at);
            return watch.m_list == nullptr ? TRUE : FALSE;
        };
        EnumThreadWindows(GetCurrentThreadId(), look, reinterpret_cast<LPARAM>(this));
        const LRESULT line = m_list == nullptr ? CB_ERR : SendMessageW(m_list, CB_GETCURSEL, 0, 0);
        const auto chosen = static_cast<std::int32_t>(line) + 1;
        if (line != CB_ERR && std::exchange(m_chosen, chosen) != chosen) m_onType(chosen);
    }
    /// The list is the combo box whose first line is the first description.
    static BOOL CALLBACK FindList(HWND window, LPARAM at) {
        auto& watch = *reinterpret_cast<TypeWatch*>(at);
        const LRESULT length = SendMessageW(window, CB_GETLBTEXTLEN, 0, 0);
        if (length != static_cast<LRESULT>(watch.m_first.size())) return TRUE;
        std::wstring text(watch.m_first.size() + 1, L'\0');
        SendMessageW(window, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
        text.pop_back();
        if (text == watch.m_first) watch.m_list = window;
        return watch.m_list == nullptr ? TRUE : FALSE;
    }

    HWND m_owner;
    std::wstring m_first;  ///< description
    std::int32_t m_chosen;
    std::function<void(std::int32_t)> m_onType;
    HWND m_list = nullptr;
    std::unique_ptr<TimerObject> m_timer;
};

class SystemSaveDialog final : public SaveFileDialog {
  public:
    bool Show() override {
        const std::vector<std::u16string> extensions = ExtensionsOf(filter);
        FileDialogTexts texts(filter, title, folder);
        const std::u16string proposed = ProposedName(fileName, folder);
        std::copy(proposed.begin(), proposed.end(), texts.name.begin());
        OPENFILENAMEW request = FileDialogRequest(texts, OFN_OVERWRITEPROMPT | OFN_NOREADONLYRETURN);
        request.nFilterIndex = static_cast<DWORD>(filterIndex);
        // Any extension here makes the dialog add that of the chosen pair to a name without one.
        request.lpstrDefExt = L"txt";
        const TypeWatch watch(request.hwndOwner, texts.filter, filterIndex, onType);
        while (!GetSaveFileNameW(&request)) {
            // Where the proposed name is not a possible one, ask again without it.
            if (CommDlgExtendedError() != FNERR_INVALIDFILENAME || texts.name[0] == 0) return false;
            texts.name[0] = 0;
        }
        fileName = texts.Name();
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
