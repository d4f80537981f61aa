#include "app/win/InputBox.h"

#include <cstdint>
#include <exception>
#include <vector>

namespace quillon {

namespace {

constexpr int kEdit = 101;
constexpr std::uint16_t kButtonClass = 0x80;
constexpr std::uint16_t kEditClass = 0x81;
constexpr std::uint16_t kStaticClass = 0x82;

/// A dialog template put together in memory, in the layout that DialogBoxIndirectParam takes.
class DialogTemplate {
  public:
    DialogTemplate(const std::wstring& title, short width, short height, std::uint16_t items) {
        Number32(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SETFONT | DS_CENTER);
        Number32(0);
        m_words.push_back(items);
        Box(0, 0, width, height);
        m_words.push_back(0);  // no menu
        m_words.push_back(0);  // the standard class
        Text(title);
        m_words.push_back(8);
        Text(L"Tahoma");
    }
    void Item(std::uint16_t windowClass, DWORD style, int id, const std::wstring& text, short x, short y, short width,
              short height) {
        if (m_words.size() % 2 != 0) m_words.push_back(0);
        Number32(WS_CHILD | WS_VISIBLE | style);
        Number32(windowClass == kEditClass ? WS_EX_CLIENTEDGE : 0);
        Box(x, y, width, height);
        m_words.push_back(static_cast<std::uint16_t>(id));
        m_words.push_back(0xFFFF);
        m_words.push_back(windowClass);
        Text(text);
        m_words.push_back(0);  // no creation data
    }
    [[nodiscard]] const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(m_words.data()); }

  private:
    void Number32(DWORD number) {
        m_words.push_back(LOWORD(number));
        m_words.push_back(HIWORD(number));
    }
    void Box(short x, short y, short width, short height) {
        for (const short side : {x, y, width, height}) m_words.push_back(static_cast<std::uint16_t>(side));
    }
    void Text(const std::wstring& text) {
        for (const wchar_t letter : text) m_words.push_back(static_cast<std::uint16_t>(letter));
        m_words.push_back(0);
    }

    std::vector<std::uint16_t> m_words;
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        const auto* value = reinterpret_cast<const std::wstring*>(lParam);
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        SetDlgItemTextW(dialog, kEdit, value->c_str());
        const HWND edit = GetDlgItem(dialog, kEdit);
        SetFocus(edit);
        const std::size_t dot = value->rfind(L'.');
        SendMessageW(edit, EM_SETSEL, 0, dot == std::wstring::npos || dot == 0 ? -1 : static_cast<LPARAM>(dot));
        return FALSE;
    }
    if (message != WM_COMMAND || (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL)) return FALSE;
    int answer = LOWORD(wParam);
    try {
        if (answer == IDOK)
            *reinterpret_cast<std::wstring*>(GetWindowLongPtrW(dialog, DWLP_USER)) =
                WindowText(GetDlgItem(dialog, kEdit));
    } catch (const std::exception&) {
        answer = IDCANCEL;  // no memory for the text
    }
    EndDialog(dialog, answer);
    return TRUE;
}

}  // namespace

std::optional<std::wstring> AskForText(HWND owner, const InputBoxTexts& texts, const std::wstring& value) {
    DialogTemplate dialog(texts.title, 230, 62, 4);
    dialog.Item(kStaticClass, SS_LEFT, 100, texts.prompt, 7, 7, 216, 9);
    dialog.Item(kEditClass, WS_TABSTOP | ES_AUTOHSCROLL, kEdit, {}, 7, 19, 216, 13);
    dialog.Item(kButtonClass, WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, texts.ok, 119, 41, 50, 14);
    dialog.Item(kButtonClass, WS_TABSTOP | BS_PUSHBUTTON, IDCANCEL, texts.cancel, 173, 41, 50, 14);
    std::wstring text = value;
    const INT_PTR answer = DialogBoxIndirectParamW(GetModuleHandleW(nullptr), dialog.Get(), owner, Procedure,
                                                   reinterpret_cast<LPARAM>(&text));
    if (answer != IDOK) return std::nullopt;
    return text;
}

}  // namespace quillon
