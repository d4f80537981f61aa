#include "app/win/MainWindowFixture.h"

#include <oleacc.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>

#include "base/Text.h"
#include "base/win/WinHandle.h"
#include "view/win/GDI_Utils.h"
#include "view/win/cMemDC.h"

namespace quillon::testing {

bool WaitUntil(const std::function<bool()>& condition) {
    for (const ULONGLONG end = GetTickCount64() + 10000; GetTickCount64() < end; Sleep(1))
        if (condition()) return true;
    return false;
}

bool PumpUntil(const std::function<bool()>& condition) {
    for (const ULONGLONG end = GetTickCount64() + 60000; GetTickCount64() < end;) {
        if (condition()) return true;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    return false;
}

std::vector<HWND> Descendants(HWND window) {
    std::vector<HWND> all;
    const auto add = [](HWND child, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
        return TRUE;
    };
    EnumChildWindows(window, add, reinterpret_cast<LPARAM>(&all));
    return all;
}

HWND FindChild(HWND dialog, int id) {
    const std::vector<HWND> all = Descendants(dialog);
    const auto found = std::find_if(all.begin(), all.end(), [id](HWND window) { return GetDlgCtrlID(window) == id; });
    return found == all.end() ? nullptr : *found;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

HWND FocusOf(HWND window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

void ChooseLine(HWND combo, int line) {
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(line), 0);
    SendMessageW(GetParent(combo), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(combo), CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(combo));
}

void ExpectRoomForTexts(HWND dialog) {
    for (const HWND window : Descendants(dialog)) {
        const bool isList = ClassOf(window) == L"ComboBox";
        // Names of the user's are cut short with dots.
        if (ClassOf(window) == L"Static" && (GetWindowLongW(window, GWL_STYLE) & SS_ELLIPSISMASK) != 0) continue;
        std::vector<std::wstring> texts{WindowText(window)};
        for (LRESULT line = isList ? SendMessageW(window, CB_GETCOUNT, 0, 0) : 0; line-- > 0;) {
            wchar_t text[64] = {};
            SendPointer(window, CB_GETLBTEXT, static_cast<WPARAM>(line), text);
            texts.emplace_back(text);
        }
        // A list's arrow, a button's box or edges.
        int used = ClassOf(window) == L"Button" ? MulDiv(18, ScreenDpi(), 96) : 0;
        if (isList) used = GetSystemMetrics(SM_CXVSCROLL) + MulDiv(8, ScreenDpi(), 96);
        RECT client{};
        GetClientRect(window, &client);
        // A label that only names what follows is not seen, nor the text of a button that shows a colour.
        if (ClassOf(window) == L"Static" && client.right == 0) continue;
        const LONG kind = GetWindowLongW(window, GWL_STYLE) & BS_TYPEMASK;
        if (ClassOf(window) == L"Button" && kind == BS_OWNERDRAW) continue;
        const WindowDC dc(window);
        const SelectScope select(dc.Get(), reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0)));
        for (std::wstring& text : texts) {
            std::erase(text, L'&');
            if (text.empty()) continue;
            SIZE size{};
            GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
            EXPECT_LE(size.cx + used, client.right) << Utf8(Narrow16(text));
            EXPECT_LE(size.cy, client.bottom) << Utf8(Narrow16(text));
        }
    }
}

namespace {

/// As the system tells it to programs that read the screen aloud.
std::wstring AccessibleName(HWND window) {
    using FromWindow = HRESULT(WINAPI*)(HWND, DWORD, REFIID, void**);
    static const auto fromWindow = reinterpret_cast<FromWindow>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"oleacc.dll"), "AccessibleObjectFromWindow")));
    IAccessible* object = nullptr;
    std::wstring name;
    if (FAILED(fromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                          reinterpret_cast<void**>(&object))))
        return name;
    VARIANT self{};
    self.vt = VT_I4;
    BSTR text = nullptr;
    if (object->get_accName(self, &text) == S_OK && text != nullptr) {
        name = text;
        SysFreeString(text);
    }
    object->Release();
    return name;
}

/// A list, whose text is that of its items, or a field for text is named by the label before it.
bool IsNamedByLabel(const std::wstring& className) {
    constexpr const wchar_t* classes[] = {L"ListBox", L"ComboBox", L"Edit", L"SysListView32", L"SysTabControl32"};
    return std::find(std::begin(classes), std::end(classes), className) != std::end(classes);
}

/// Whether somebody who goes through a window by Tab expects `next` after `from`.
bool IsFurther(HWND from, HWND next) {
    RECT a{};
    RECT b{};
    GetWindowRect(from, &a);
    GetWindowRect(next, &b);
    return (b.top + b.bottom) / 2 >= a.bottom || (b.left + b.right) / 2 >= a.right;
}

}  // namespace

void ExpectNamesAndOrder(HWND window) {
    std::map<HWND, std::vector<HWND>> stops;  // by the page that they are on
    for (const HWND control : Descendants(window)) {
        const std::wstring kind = ClassOf(control);
        const LONG style = GetWindowLongW(control, GWL_STYLE);
        const std::string place = Utf8(Narrow16(kind)) + ' ' + std::to_string(GetDlgCtrlID(control));
        // What is part of another control or a dialog, and texts, need none.
        if (kind == L"Static" || kind == L"#32770" || kind == L"SysHeader32" || kind == L"msctls_updown32") continue;
        if (ClassOf(GetParent(control)) == L"ComboBox") continue;
        if (IsNamedByLabel(kind)) {
            const HWND label = GetWindow(control, GW_HWNDPREV);
            EXPECT_TRUE(label != nullptr && ClassOf(label) == L"Static" && !WindowText(label).empty()) << place;
        } else {
            EXPECT_NE(AccessibleName(control), L"") << place;
        }
        if ((style & WS_TABSTOP) != 0 && (style & WS_VISIBLE) != 0) stops[GetParent(control)].push_back(control);
    }
    for (const auto& [page, controls] : stops) {
        // They are a circle, which goes back to its start once.
        std::string back;
        int steps = 0;
        for (std::size_t i = 0; i < controls.size(); ++i) {
            const HWND next = controls[(i + 1) % controls.size()];
            if (IsFurther(controls[i], next)) continue;
            ++steps;
            back += std::to_string(GetDlgCtrlID(controls[i])) + " to " + std::to_string(GetDlgCtrlID(next)) + "; ";
        }
        EXPECT_LE(steps, 1) << back << Utf8(Narrow16(WindowText(window)));
    }
}

std::string ClipboardBytes(UINT format) {
    std::string bytes;
    if (!OpenClipboard(nullptr)) return bytes;
    if (const HANDLE memory = GetClipboardData(format)) {
        bytes.assign(static_cast<const char*>(GlobalLock(memory)), GlobalSize(memory));
        GlobalUnlock(memory);
    }
    CloseClipboard();
    return bytes;
}

std::wstring ClipboardText() {
    const std::string bytes = ClipboardBytes(CF_UNICODETEXT) + std::string(2, '\0');
    return reinterpret_cast<const wchar_t*>(bytes.data());
}

int Pixels::Count(std::uint32_t color) const {
    return static_cast<int>(std::count(rgb.begin(), rgb.end(), color));
}

Pixels PixelsOf(HWND picture) {
    RECT client{};
    GetClientRect(picture, &client);
    Pixels pixels{static_cast<int>(client.right), static_cast<int>(client.bottom), {}};
    cMemDC image;
    const std::uint32_t* first = image.CreatePixels(pixels.width, pixels.height);
    if (first == nullptr) return pixels;
    SendMessageW(picture, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(image.Handle()), PRF_CLIENT);
    GdiFlush();
    pixels.rgb.assign(first, first + static_cast<std::ptrdiff_t>(pixels.width) * pixels.height);
    // The fourth byte differs between drawing operations and means nothing.
    for (std::uint32_t& pixel : pixels.rgb) pixel &= 0xFFFFFF;
    return pixels;
}

FileBytes BinRecording(float rate, const std::vector<std::vector<std::int16_t>>& frames) {
    std::vector<samples::BinChannel> channels;
    for (std::size_t channel = 1; channel <= frames.at(0).size(); ++channel)
        channels.push_back({"Signal " + std::to_string(channel), "V"});
    FileBytes bytes;
    bytes.Text(samples::BinHeader(rate, "Device", channels, static_cast<std::uint32_t>(frames.size())));
    for (const auto& frame : frames) bytes.Codes(frame);
    return bytes;
}

std::vector<std::vector<std::int16_t>> Noise(int frames, int channels) {
    std::mt19937 random(9);
    std::vector<std::vector<std::int16_t>> samples;
    for (int frame = 0; frame < frames; ++frame) {
        std::vector<std::int16_t> values;
        for (int channel = 0; channel < channels; ++channel)
            values.push_back(static_cast<std::int16_t>(static_cast<int>(random() % 400) - 200 + 50 * channel));
        samples.push_back(values);
    }
    return samples;
}

FileBytes SawRecording(int frames) {
    std::vector<std::vector<std::int16_t>> samples;
    for (int frame = 0; frame < frames; ++frame) samples.push_back({static_cast<std::int16_t>(frame % 100), 5});
    return BinRecording(100.0F, samples);
}

HWND OpenDialog() {
    const HWND dialog = FindWindowW(L"#32770", nullptr);
    DWORD process = 0;
    GetWindowThreadProcessId(dialog, &process);
    return process == GetCurrentProcessId() && IsWindowVisible(dialog) ? dialog : nullptr;
}

namespace {

constexpr const wchar_t* kFolders = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

void PutDocuments(const std::wstring& folder) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kFolders, L"Personal", REG_EXPAND_SZ, folder.c_str(),
                    static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

DocumentsScope::DocumentsScope(const std::wstring& folder) {
    wchar_t value[1024] = {};
    DWORD size = sizeof value;
    RegGetValueW(HKEY_CURRENT_USER, kFolders, L"Personal", RRF_RT_REG_EXPAND_SZ | RRF_RT_REG_SZ | RRF_NOEXPAND, nullptr,
                 value, &size);
    m_before = value;
    PutDocuments(folder);
}

DocumentsScope::~DocumentsScope() {
    PutDocuments(m_before);
}

void MainWindowTest::Start() {
    Start(Wide(m_folder.Path()));
}

void MainWindowTest::Start(const std::wstring& folder) {
    Create(folder);
    Show();
}

void MainWindowTest::StartWith(DeviceState& device) {
    Create(Wide(m_folder.Path()));
    m_global.makeSoundOutput = [&device](SoundOutputEvents events) {
        device.events = std::move(events);
        return std::make_unique<FakeOutput>(device);
    };
    Show();
}

void MainWindowTest::Show() const {
    ShowWindow(m_form->Window(), SW_SHOW);
    // Without a window manager nobody may activate the window.
    SetForegroundWindow(m_form->Window());
    Pump();
    CreateControls();
}

void MainWindowTest::CreateControls() const {
    while (!m_form->IsComplete() && m_form->RunSlice()) {
    }
    Pump();
}

void MainWindowTest::Create(const std::wstring& folder, const std::wstring& path) {
    // The real pointer would show values of its own in the graph.
    SetCursorPos(0, 0);
    m_services = std::make_unique<WinServices>(m_language);
    ASSERT_TRUE(Init(m_global, SystemParts(), *m_services));
    auto dialog = std::make_unique<SaveDialogSwitch>(std::move(m_global.saveDialog));
    m_saveDialog = dialog.get();
    m_global.saveDialog = std::move(dialog);
    m_form = std::make_unique<frmQLMain>(m_global, *m_services, SystemParts().makeTimer, m_shutdown);
    m_global.settings.filesPath = Narrow16(folder);
    m_form->Create(path);
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

void MainWindowTest::CommandWith(int id, std::function<void(HWND)> acts) const {
    const DialogAnswer answer(std::move(acts));
    Command(id);
}

void MainWindowTest::CommandPressing(int id, WORD button) const {
    CommandWith(id, [button](HWND dialog) { PostMessageW(dialog, WM_COMMAND, button, 0); });
}

RECT MainWindowTest::Place(int id) const {
    RECT place{};
    GetWindowRect(Control(id), &place);
    return place;
}

void MainWindowTest::Point(int id, int x, int y) const {
    POINT point{x, y};
    ClientToScreen(Control(id), &point);
    if (x < 0) point = {};
    SetCursorPos(static_cast<int>(point.x), static_cast<int>(point.y));
    Pump();
    SendMessageW(Control(id), WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
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
    return PixelsOf(Control(id));
}

}  // namespace quillon::testing
