#include "app/win/MainWindowFixture.h"

#include <algorithm>

#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"

namespace quillon::testing {

int Pixels::Count(std::uint32_t color) const {
    return static_cast<int>(std::count(rgb.begin(), rgb.end(), color));
}

FileBytes BinRecording(float rate, const std::vector<std::vector<std::int16_t>>& frames) {
    const std::size_t channels = frames.at(0).size();
    FileBytes bytes;
    bytes.Text("ABIN").U16(3).U16(3);
    for (const int field : {2026, 11, 7, 21, 9, 30, 0, 0}) bytes.U16(static_cast<std::uint16_t>(field));
    bytes.Float(rate).U32(0).U16(static_cast<std::uint16_t>(channels)).Zeros(30).Text("Device", 16).Zeros(48);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        bytes.Text("ADCh").U32(static_cast<std::uint32_t>(channel)).Text("Signal " + std::to_string(channel + 1), 32);
        bytes.Text("V", 24).Float(1.0F).Float(0.0F).Zeros(8);
    }
    bytes.Text("data").U32(static_cast<std::uint32_t>(frames.size() * channels * 2));
    for (const auto& frame : frames) {
        for (const std::int16_t sample : frame) bytes.U16(static_cast<std::uint16_t>(sample));
    }
    return bytes;
}

FileBytes SawRecording(int frames) {
    std::vector<std::vector<std::int16_t>> samples;
    for (int frame = 0; frame < frames; ++frame) samples.push_back({static_cast<std::int16_t>(frame % 100), 5});
    return BinRecording(100.0F, samples);
}

void MainWindowTest::Start() {
    Start(Wide(m_folder.Path()));
}

void MainWindowTest::Start(const std::wstring& folder) {
    Create(folder);
    ShowWindow(m_form->Window(), SW_SHOW);
    // Without a window manager nobody may activate the window.
    SetForegroundWindow(m_form->Window());
    Pump();
}

void MainWindowTest::Create(const std::wstring& folder) {
    // The real pointer would show values of its own in the graph.
    SetCursorPos(0, 0);
    m_services = std::make_unique<WinServices>(m_language);
    ASSERT_TRUE(Init(m_global, SystemParts(), *m_services));
    m_form = std::make_unique<frmQLMain>(m_global, *m_services, SystemParts().makeTimer, m_shutdown);
    m_global.settings.filesPath = Narrow16(folder);
    m_form->Create();
    SetWindowPos(m_form->Window(), nullptr, 20, 20, MulDiv(1000, ScreenDpi(), 96), MulDiv(640, ScreenDpi(), 96),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void MainWindowTest::TearDown() {
    if (m_form && m_form->Window() != nullptr) DestroyWindow(m_form->Window());
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
}

void MainWindowTest::Pump() const {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (m_form->PreTranslate(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void MainWindowTest::ScrollTo(std::int32_t column) {
    m_global.view->ScrollBy(column - m_global.view->Axis().FirstColumn());
}

void MainWindowTest::Command(int id) const {
    SendMessageW(m_form->Window(), WM_COMMAND, static_cast<WPARAM>(id), 0);
    Pump();
}

void MainWindowTest::Key(WPARAM key) const {
    SetFocus(Control(pbGraph));
    PostMessageW(Control(pbGraph), WM_KEYDOWN, key, 0);
    PostMessageW(Control(pbGraph), WM_KEYUP, key, 0);
    Pump();
}

void MainWindowTest::Click(int id, int x, int y) const {
    // Posted together: a list box that waits for the button to come up finds it in the queue.
    PostMessageW(Control(id), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    PostMessageW(Control(id), WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    Pump();
}

void MainWindowTest::ClickLine(int id, int line) const {
    RECT item{};
    ASSERT_NE(SendPointer(Control(id), LB_GETITEMRECT, static_cast<WPARAM>(line), &item), LB_ERR);
    Click(id, item.left + 5, (item.top + item.bottom) / 2);
}

void MainWindowTest::ClickCheckBox(int item) const {
    RECT rect{};
    rect.left = LVIR_ICON;
    SendPointer(Control(lvCh), LVM_GETITEMRECT, static_cast<WPARAM>(item), &rect);
    // The check box stands left of the icon.
    Click(lvCh, rect.left - 8, (rect.top + rect.bottom) / 2);
}

std::vector<std::wstring> MainWindowTest::Lines(int id) const {
    std::vector<std::wstring> lines;
    const LRESULT count = SendMessageW(Control(id), LB_GETCOUNT, 0, 0);
    for (LRESULT line = 0; line < count; ++line) {
        std::wstring text(
            static_cast<std::size_t>(SendMessageW(Control(id), LB_GETTEXTLEN, static_cast<WPARAM>(line), 0)), L'\0');
        SendPointer(Control(id), LB_GETTEXT, static_cast<WPARAM>(line), text.data());
        lines.push_back(text);
    }
    return lines;
}

std::wstring MainWindowTest::Status(StatusPanel panel) const {
    wchar_t text[1024] = {};
    SendPointer(Control(sbInfo), SB_GETTEXTW, static_cast<WPARAM>(panel), text);
    return text;
}

Pixels MainWindowTest::Capture(int id) const {
    Pump();
    RECT client{};
    GetClientRect(Control(id), &client);
    Pixels pixels{static_cast<int>(client.right), static_cast<int>(client.bottom), {}};
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = pixels.width;
    info.bmiHeader.biHeight = -pixels.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const MemoryDC memory(CreateCompatibleDC(nullptr));
    const HDC dc = memory.Get();
    const GdiBitmap bitmap(CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    {
        const SelectScope select(dc, bitmap.Get());
        SendMessageW(Control(id), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
        GdiFlush();
        const auto* first = static_cast<const std::uint32_t*>(bits);
        pixels.rgb.assign(first, first + static_cast<std::ptrdiff_t>(pixels.width) * pixels.height);
    }
    // The fourth byte differs between drawing operations and means nothing.
    for (std::uint32_t& pixel : pixels.rgb) pixel &= 0xFFFFFF;
    return pixels;
}

}  // namespace quillon::testing
