#include "view/win/PictureBox.h"

namespace quillon {

namespace {

constexpr const wchar_t* kClassName = L"QuillonPicture";

}  // namespace

bool PictureBox::Create(HWND parent, int id, PictureOwner& owner, bool tabStop) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    windowClass.style = CS_DBLCLKS;
    RegisterClassExW(&windowClass);  // fails harmlessly from the second box on
    m_owner = &owner;
    m_id = id;
    const DWORD style = WS_CHILD | WS_VISIBLE | (tabStop ? WS_TABSTOP : 0U);
    CreateWindowExW(0, kClassName, L"", style, 0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                    windowClass.hInstance, this);
    return m_window != nullptr;
}

LRESULT CALLBACK PictureBox::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* box = static_cast<PictureBox*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        box->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(box));
    }
    auto* box = reinterpret_cast<PictureBox*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (box == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    try {
        return box->Handle(message, wParam, lParam);
    } catch (const std::exception& error) {
        box->m_owner->PictureFailed(error);
        return 0;
    }
}

LRESULT PictureBox::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND window = m_window;
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: OnPaint(); return 0;
        case WM_PRINTCLIENT: {
            RECT client{};
            GetClientRect(window, &client);
            m_owner->PaintPicture(m_id, reinterpret_cast<HDC>(wParam), client);
            return 1;
        }
        case WM_GETDLGCODE: return DLGC_WANTARROWS;
        case WM_KEYDOWN:
            if (m_owner->PictureKey(wParam)) return 0;
            break;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: Invalidate(); return 0;
        case WM_NCDESTROY:
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            m_window = nullptr;
            return DefWindowProcW(window, message, wParam, lParam);
        default: break;
    }
    const bool mouse = (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) || message == WM_SETCURSOR ||
                       message == WM_MOUSELEAVE || message == WM_CANCELMODE || message == WM_CAPTURECHANGED;
    if (mouse && m_owner->PictureMouse(m_id, message, wParam, lParam)) return 0;
    return DefWindowProcW(window, message, wParam, lParam);
}

void PictureBox::OnPaint() {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(m_window, &paint);
    try {
        m_owner->PaintPicture(m_id, dc, paint.rcPaint);
    } catch (const std::exception& error) {
        m_owner->PictureFailed(error);
    }
    // Always validate, or the system would send WM_PAINT endlessly.
    EndPaint(m_window, &paint);
}

}  // namespace quillon
