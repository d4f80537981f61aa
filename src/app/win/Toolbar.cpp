#include "app/win/Toolbar.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

#include "app/ControlIds.h"
#include "app/ToolbarIcons.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

namespace {

constexpr int kPictureSize = 16;  // pixels at 96 per inch

}  // namespace

ImageList MakeIconList(const std::vector<std::vector<std::uint32_t>>& pictures, int size) {
    const auto count = static_cast<int>(pictures.size());
    ImageList list(ImageList_Create(size, size, ILC_COLOR32, count, 0));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size * count;
    info.bmiHeader.biHeight = -size;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    // One bitmap strip for all pictures: adding them one by one dominated the start-up time.
    const GdiBitmap strip(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!strip) return list;
    auto* row = static_cast<std::uint32_t*>(bits);
    for (std::ptrdiff_t y = 0; y < size; ++y) {
        for (const std::vector<std::uint32_t>& picture : pictures) {
            row = std::copy_n(picture.begin() + y * size, size, row);
        }
    }
    ImageList_Add(list.Get(), strip.Get(), nullptr);
    return list;
}

void Toolbar::Create(HWND parent, int id, std::span<const ToolbarButton> buttons, const ScreenDensity& density) {
    m_buttons = buttons;
    m_density = &density;
    constexpr DWORD style =
        WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS | CCS_NORESIZE | CCS_NODIVIDER | CCS_NOPARENTALIGN;
    m_window = CreateWindowExW(0, TOOLBARCLASSNAMEW, L"", style, 0, 0, 0, 0, parent,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (m_window == nullptr)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "toolbar");
    SendMessageW(m_window, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    AddButtons();
}

void Toolbar::AddButtons() {
    std::vector<TBBUTTON> items;
    int pictures = 0;
    for (const ToolbarButton& button : m_buttons) {
        if (button.startsGroup) {
            TBBUTTON gap{};
            gap.fsStyle = BTNS_SEP;
            items.push_back(gap);
        }
        TBBUTTON item{};
        item.iBitmap = pictures++;
        item.idCommand = button.command;
        item.fsState = TBSTATE_ENABLED;
        item.fsStyle = BTNS_BUTTON;
        items.push_back(item);
    }
    const int size = m_density->Scaled(kPictureSize);
    SendMessageW(m_window, TB_SETBITMAPSIZE, 0, MAKELPARAM(size, size));
    DrawPictures();
    SendPointer(m_window, TB_ADDBUTTONSW, items.size(), items.data());
}

void Toolbar::DensityChanged() {
    // The size of buttons is that of when they were added, and they only grow with their pictures.
    while (SendMessageW(m_window, TB_DELETEBUTTON, 0, 0) != FALSE) {
    }
    SendMessageW(m_window, TB_SETBUTTONSIZE, 0, 0);
    AddButtons();
}

void Toolbar::DrawPictures() {
    if (m_window == nullptr) return;
    std::vector<std::vector<std::uint32_t>> pictures;
    std::vector<std::vector<std::uint32_t>> disabled;
    const int size = m_density->Scaled(kPictureSize);
    for (const ToolbarButton& button : m_buttons) {
        pictures.push_back(DrawIcon(button.icon, size, SystemColor(COLOR_BTNFACE)));
        disabled.push_back(Greyed(pictures.back()));
    }
    // The old ones live until the window has the new ones.
    ImageList images = MakeIconList(pictures, size);
    ImageList disabledImages = MakeIconList(disabled, size);
    SendMessageW(m_window, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images.Get()));
    SendMessageW(m_window, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(disabledImages.Get()));
    m_images = std::move(images);
    m_disabledImages = std::move(disabledImages);
}

SIZE Toolbar::Size() const {
    RECT last{};
    const auto count = SendMessageW(m_window, TB_BUTTONCOUNT, 0, 0);
    if (count > 0) SendPointer(m_window, TB_GETITEMRECT, static_cast<WPARAM>(count - 1), &last);
    return {last.right + 2, last.bottom};
}

void Toolbar::Update(const CommandState& state) const {
    for (const ToolbarButton& button : m_buttons) {
        const bool enabled = IsEnabled(button.command, state);
        const bool checked = IsChecked(button.command, state);
        const auto id = static_cast<WPARAM>(button.command);
        const auto flags = static_cast<WORD>((enabled ? TBSTATE_ENABLED : 0) | (checked ? TBSTATE_CHECKED : 0));
        if (SendMessageW(m_window, TB_GETSTATE, id, 0) != flags) {
            SendMessageW(m_window, TB_SETSTATE, id, MAKELPARAM(flags, 0));
        }
    }
}

void Toolbars::CreateMain(HWND parent, const ScreenDensity& density) {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    m_main.Create(parent, tbMain, MainButtons(), density);
}

void Toolbars::CreateGoTo(HWND parent, const ScreenDensity& density) {
    m_goTo.Create(parent, tbGoTo, GoToButtons(), density);
}

void Toolbars::DrawPictures() {
    m_main.DrawPictures();
    m_goTo.DrawPictures();
}

void Toolbars::DensityChanged() {
    m_main.DensityChanged();
    m_goTo.DensityChanged();
    filters.DensityChanged();
}

void Toolbars::Update(const CommandState& state) {
    m_main.Update(state);
    filters.Update(state);
    m_goTo.Update(state);
}

void Toolbars::OnTip(NMTTDISPINFOW& tip, const UserServices& services) {
    m_tipText = Wide(services.Text(ToolTipId(static_cast<int>(tip.hdr.idFrom))));
    if (!m_tipText.empty()) tip.lpszText = m_tipText.data();
}

}  // namespace quillon
