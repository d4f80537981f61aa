#include "app/win/Toolbar.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "app/ToolbarIcons.h"

namespace quillon {

void AddIcon(HIMAGELIST list, const std::vector<std::uint32_t>& pixels, int size) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size;
    info.bmiHeader.biHeight = -size;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const GdiBitmap color(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!color) return;
    std::copy(pixels.begin(), pixels.end(), static_cast<std::uint32_t*>(bits));
    const std::vector<std::uint8_t> none(static_cast<std::size_t>((size + 15) / 16 * 2 * size), 0);
    const GdiBitmap mask(CreateBitmap(size, size, 1, 1, none.data()));
    ICONINFO icon{TRUE, 0, 0, mask.Get(), color.Get()};
    if (const HICON handle = CreateIconIndirect(&icon)) {
        ImageList_ReplaceIcon(list, -1, handle);
        DestroyIcon(handle);
    }
}

void Toolbar::Create(HWND parent, int id, std::span<const ToolbarButton> buttons, int dpi) {
    m_buttons = buttons;
    constexpr DWORD style =
        WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS | CCS_NORESIZE | CCS_NODIVIDER | CCS_NOPARENTALIGN;
    m_window = CreateWindowExW(0, TOOLBARCLASSNAMEW, L"", style, 0, 0, 0, 0, parent,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (m_window == nullptr)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "toolbar");
    SendMessageW(m_window, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    const int size = MulDiv(16, dpi, 96);
    const auto count = static_cast<int>(buttons.size());
    m_images = ImageList(ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, count, 0));
    m_disabledImages = ImageList(ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, count, 0));
    std::vector<TBBUTTON> items;
    for (const ToolbarButton& button : buttons) {
        if (button.startsGroup) {
            TBBUTTON gap{};
            gap.fsStyle = BTNS_SEP;
            items.push_back(gap);
        }
        TBBUTTON item{};
        item.iBitmap = ImageList_GetImageCount(m_images.Get());
        item.idCommand = button.command;
        item.fsState = TBSTATE_ENABLED;
        item.fsStyle = BTNS_BUTTON;
        items.push_back(item);
        AddIcon(m_images.Get(), DrawIcon(button.icon, size), size);
        AddIcon(m_disabledImages.Get(), DrawDisabledIcon(button.icon, size), size);
    }
    SendMessageW(m_window, TB_SETBITMAPSIZE, 0, MAKELPARAM(size, size));
    SendMessageW(m_window, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(m_images.Get()));
    SendMessageW(m_window, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(m_disabledImages.Get()));
    SendPointer(m_window, TB_ADDBUTTONSW, items.size(), items.data());
}

SIZE Toolbar::Size() const {
    RECT last{};
    const auto count = SendMessageW(m_window, TB_BUTTONCOUNT, 0, 0);
    if (count > 0) SendPointer(m_window, TB_GETITEMRECT, static_cast<WPARAM>(count - 1), &last);
    return {last.right + 2, last.bottom + 2};
}

void Toolbar::Update(const QL_Global& global) const {
    for (const ToolbarButton& button : m_buttons) {
        const bool enabled = IsEnabled(button.command, global);
        const bool checked = IsChecked(button.command, global);
        const auto id = static_cast<WPARAM>(button.command);
        const auto state = static_cast<WORD>((enabled ? TBSTATE_ENABLED : 0) | (checked ? TBSTATE_CHECKED : 0));
        if (SendMessageW(m_window, TB_GETSTATE, id, 0) != state) {
            SendMessageW(m_window, TB_SETSTATE, id, MAKELPARAM(state, 0));
        }
    }
}

}  // namespace quillon
