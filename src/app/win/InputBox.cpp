#include "app/win/InputBox.h"

#include <exception>
#include <utility>

#include "dialogs/DialogTemplate.h"

namespace quillon {

namespace {

constexpr int kRefusal = 99;
constexpr int kPrompt = 100;
constexpr int kEdit = 101;  ///< of the first line; that of each further one is kLineIds higher, as is its prompt
constexpr int kLineIds = 10;

struct Input {
    const InputBox& box;
    std::vector<std::wstring> texts;
};

int EditOf(std::size_t line) {
    return kEdit + static_cast<int>(line) * kLineIds;
}

void Begin(HWND dialog, const InputBox& box) {
    for (std::size_t line = 0; line < box.lines.size(); ++line)
        SetDlgItemTextW(dialog, EditOf(line), box.lines[line].text.c_str());
    const HWND edit = GetDlgItem(dialog, kEdit);
    SetFocus(edit);
    const bool all = box.selected == 0 || box.selected == std::wstring::npos;
    SendMessageW(edit, EM_SETSEL, 0, all ? -1 : static_cast<LPARAM>(box.selected));
}

/// Takes the texts over; false where they are refused.
bool Take(HWND dialog, Input& input) {
    std::vector<std::wstring> texts;
    for (std::size_t line = 0; line < input.box.lines.size(); ++line)
        texts.push_back(WindowText(GetDlgItem(dialog, EditOf(line))));
    const std::wstring refusal = input.box.refusal ? input.box.refusal(texts) : std::wstring();
    if (!refusal.empty()) {
        SetDlgItemTextW(dialog, kRefusal, refusal.c_str());
        MessageBeep(MB_ICONWARNING);
        return false;
    }
    input.texts = std::move(texts);
    return true;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Begin(dialog, reinterpret_cast<const Input*>(lParam)->box);
        return FALSE;
    }
    if (message != WM_COMMAND || (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL)) return FALSE;
    int answer = LOWORD(wParam);
    try {
        if (answer == IDOK && !Take(dialog, *reinterpret_cast<Input*>(GetWindowLongPtrW(dialog, DWLP_USER))))
            return TRUE;
    } catch (const std::exception&) {
        answer = IDCANCEL;  // no memory for the text
    }
    EndDialog(dialog, answer);
    return TRUE;
}

}  // namespace

std::optional<std::vector<std::wstring>> AskForText(HWND owner, const InputBox& box) {
    // Dialog units.
    constexpr short width = 230;
    constexpr short inner = 216;
    constexpr short line = 29;
    constexpr short told = 13;
    const auto end = static_cast<short>(7 + line * static_cast<short>(box.lines.size()) + (box.refusal ? told : 0));
    DialogTemplate dialog(Narrow16(box.title), width, static_cast<short>(end + 26));
    short top = 7;
    int id = kPrompt;
    for (const InputBox::Line& each : box.lines) {
        dialog.Item(DialogTemplate::kStatic, SS_LEFT, id, Narrow16(each.prompt), 7, top, inner, 9);
        dialog.Item(DialogTemplate::kEdit, WS_TABSTOP | ES_AUTOHSCROLL, id + 1, {}, 7, static_cast<short>(top + 12),
                    inner, 13);
        top = static_cast<short>(top + line);
        id += kLineIds;
    }
    if (box.refusal) dialog.Item(DialogTemplate::kStatic, SS_LEFT, kRefusal, {}, 7, top, inner, 9);
    const auto buttons = static_cast<short>(end + 5);
    dialog.Item(DialogTemplate::kButton, WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, Narrow16(box.ok), 119, buttons, 50, 14);
    dialog.Item(DialogTemplate::kButton, WS_TABSTOP | BS_PUSHBUTTON, IDCANCEL, Narrow16(box.cancel), 173, buttons, 50,
                14);
    Input input{box, {}};
    const INT_PTR answer =
        DialogBoxIndirectParamW(GetModuleHandleW(nullptr), static_cast<const DLGTEMPLATE*>(dialog.Get()), owner,
                                Procedure, reinterpret_cast<LPARAM>(&input));
    if (answer != IDOK) return std::nullopt;
    return std::move(input.texts);
}

}  // namespace quillon
