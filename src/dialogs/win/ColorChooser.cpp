#include "dialogs/win/ColorChooser.h"

#include "base/Density.h"
#include "base/Text.h"
#include "dialogs/DialogTemplate.h"
#include "view/QL_ChUtils.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

/// The darker colours stand below their brighter ones.
constexpr int kPerRow = kTraceColors / 2;

int Neighbour(int color, WPARAM key) {
    switch (key) {
        case VK_LEFT: return (color + kTraceColors - 1) % kTraceColors;
        case VK_RIGHT: return (color + 1) % kTraceColors;
        case VK_UP:
        case VK_DOWN: return (color + kPerRow) % kTraceColors;
        default: return color;
    }
}

/// Arrows move the focus by rows and columns; Enter chooses, as Space does anyway.
LRESULT CALLBACK ColorKeys(HWND button, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    if (message == WM_NCDESTROY) RemoveWindowSubclass(button, ColorKeys, id);
    if (message == WM_GETDLGCODE) {
        const auto* key = reinterpret_cast<const MSG*>(lParam);
        const bool enter = key != nullptr && key->message == WM_KEYDOWN && key->wParam == VK_RETURN;
        return DLGC_BUTTON | DLGC_WANTARROWS | (enter ? DLGC_WANTMESSAGE : 0);
    }
    if (message == WM_KEYDOWN && wParam == VK_RETURN) return SendMessageW(button, BM_CLICK, 0, 0);
    if (message == WM_KEYDOWN) {
        const int color = GetDlgCtrlID(button) - kFirstColorButton;
        const int other = Neighbour(color, wParam);
        if (other != color) SetFocus(GetDlgItem(GetParent(button), kFirstColorButton + other));
    }
    return DefSubclassProc(button, message, wParam, lParam);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            for (int color = 0; color < kTraceColors; ++color)
                SetWindowSubclass(GetDlgItem(dialog, kFirstColorButton + color), ColorKeys, 1, 0);
            SetFocus(GetDlgItem(dialog, kFirstColorButton + static_cast<int>(lParam)));
            return FALSE;
        case WM_DRAWITEM: {
            const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
            DrawSwatch(item, static_cast<int>(item.CtlID) - kFirstColorButton);
            return TRUE;
        }
        case WM_COMMAND:
            if (LOWORD(wParam) == IDCANCEL || (LOWORD(wParam) >= kFirstColorButton && HIWORD(wParam) == BN_CLICKED))
                EndDialog(dialog, LOWORD(wParam));
            return TRUE;
        default: return FALSE;
    }
}

}  // namespace

std::optional<int> ChooseTraceColor(HWND owner, const std::wstring& title, int color) {
    constexpr int side = 18;
    constexpr int step = 20;
    constexpr int margin = 7;
    DialogTemplate dialog(Narrow16(title), 2 * margin + kPerRow * step - 2, 2 * margin + 2 * step - 2);
    for (int at = 0; at < kTraceColors; ++at)
        dialog.Item(DialogTemplate::kButton, BS_OWNERDRAW | (at == 0 ? WS_GROUP | WS_TABSTOP : 0U),
                    kFirstColorButton + at, Decimal(at + 1), static_cast<short>(margin + at % kPerRow * step),
                    static_cast<short>(margin + at / kPerRow * step), side, side);
    const INT_PTR chosen = DialogBoxIndirectParamW(
        GetModuleHandleW(nullptr), static_cast<const DLGTEMPLATE*>(dialog.Get()), owner, Procedure, color);
    if (chosen < kFirstColorButton) return std::nullopt;
    return static_cast<int>(chosen) - kFirstColorButton;
}

void DrawSwatch(const DRAWITEMSTRUCT& item, int color) {
    RECT rect = item.rcItem;
    const int edge = ScaledTo(DpiOf(item.hwndItem), 3);
    FillWith(item.hDC, rect, GetSysColor(COLOR_WINDOW));
    FrameRect(item.hDC, &rect, GetSysColorBrush(COLOR_BTNSHADOW));
    if ((item.itemState & ODS_FOCUS) != 0) {
        RECT focus = rect;
        InflateRect(&focus, -1, -1);
        DrawFocusRect(item.hDC, &focus);
    }
    InflateRect(&rect, -edge, -edge);
    FillWith(item.hDC, rect, ColorOf(TraceColor(static_cast<std::int16_t>(color))));
}

}  // namespace quillon
