#include "app/win/InputBox.h"

#include <exception>

#include "dialogs/DialogTemplate.h"

namespace quillon {

namespace {

constexpr int kEdit = 101;

struct Input {
    std::wstring text;
    LPARAM selected;  ///< characters selected at first; -1: all
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        const auto* input = reinterpret_cast<const Input*>(lParam);
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        SetDlgItemTextW(dialog, kEdit, input->text.c_str());
        const HWND edit = GetDlgItem(dialog, kEdit);
        SetFocus(edit);
        SendMessageW(edit, EM_SETSEL, 0, input->selected);
        return FALSE;
    }
    if (message != WM_COMMAND || (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL)) return FALSE;
    int answer = LOWORD(wParam);
    try {
        if (answer == IDOK)
            reinterpret_cast<Input*>(GetWindowLongPtrW(dialog, DWLP_USER))->text =
                WindowText(GetDlgItem(dialog, kEdit));
    } catch (const std::exception&) {
        answer = IDCANCEL;  // no memory for the text
    }
    EndDialog(dialog, answer);
    return TRUE;
}

}  // namespace

std::optional<std::wstring> AskForText(HWND owner, const InputBoxTexts& texts, const std::wstring& value,
                                       std::size_t selected) {
    DialogTemplate dialog(Narrow16(texts.title), 230, 62);
    dialog.Item(DialogTemplate::kStatic, SS_LEFT, 100, Narrow16(texts.prompt), 7, 7, 216, 9);
    dialog.Item(DialogTemplate::kEdit, WS_TABSTOP | ES_AUTOHSCROLL, kEdit, {}, 7, 19, 216, 13);
    dialog.Item(DialogTemplate::kButton, WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, Narrow16(texts.ok), 119, 41, 50, 14);
    dialog.Item(DialogTemplate::kButton, WS_TABSTOP | BS_PUSHBUTTON, IDCANCEL, Narrow16(texts.cancel), 173, 41, 50, 14);
    Input input{value, selected == 0 || selected == std::wstring::npos ? -1 : static_cast<LPARAM>(selected)};
    const INT_PTR answer =
        DialogBoxIndirectParamW(GetModuleHandleW(nullptr), static_cast<const DLGTEMPLATE*>(dialog.Get()), owner,
                                Procedure, reinterpret_cast<LPARAM>(&input));
    if (answer != IDOK) return std::nullopt;
    return input.text;
}

}  // namespace quillon
