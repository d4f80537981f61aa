// Start-up time and memory of the viewer against those of a program with an empty window, under the same warm system:
//     start-time VIEWER PATH [ROUNDS]
// Both are started in turn; medians and lower quarters are printed. Where the system takes now 25 and now 55 ms to
// load any program, medians of few rounds say little, and the quarter tells the difference of two quick loads. A start
// has two ends: the program waits for input, and the user sees what it shows. The viewer shows the recording, or the
// first one of the folder, that the path names, so the graph must hold pixels of a trace; the empty window is filled
// with a colour of its own.
#include "base/win/Win32.h"

#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/ControlIds.h"

namespace {

constexpr const wchar_t* kEmptyClass = L"Empty";
constexpr const wchar_t* kViewerClass = L"frmQLMain";

int RunEmptyWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (message == WM_DESTROY) PostQuitMessage(0);
        return DefWindowProcW(window, message, wParam, lParam);
    };
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hbrBackground = CreateSolidBrush(RGB(0, 0, 0xC0));
    windowClass.lpszClassName = kEmptyClass;
    RegisterClassW(&windowClass);
    const HWND window = CreateWindowExW(0, kEmptyClass, L"Empty", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                        1060, 700, nullptr, nullptr, windowClass.hInstance, nullptr);
    ShowWindow(window, SW_SHOW);
    UpdateWindow(window);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}

/// What is seen of a window, read from outside: a strip from its middle.
class Strip {
  public:
    Strip() {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        m_bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &m_bits, nullptr, 0);
        SelectObject(m_dc, m_bitmap);
    }
    ~Strip() {
        DeleteDC(m_dc);
        DeleteObject(m_bitmap);
    }
    Strip(const Strip&) = delete;
    Strip& operator=(const Strip&) = delete;

    /// Whether a pixel of a full colour is there: background, grid and texts are grey or pale.
    [[nodiscard]] bool SeesColor(HWND window) const {
        RECT client{};
        if (!GetClientRect(window, &client) || client.right < 2 * kWidth) return false;
        const HWND top = GetAncestor(window, GA_ROOT);
        POINT place{client.right / 2, 0};
        MapWindowPoints(window, top, &place, 1);
        // Of another process's windows only the outermost can be read under every system, its children included.
        const HDC source = GetDCEx(top, nullptr, DCX_CACHE);
        const bool read = BitBlt(m_dc, 0, 0, kWidth, kHeight, source, static_cast<int>(place.x),
                                 static_cast<int>(place.y), SRCCOPY) != FALSE;
        ReleaseDC(top, source);
        GdiFlush();
        const auto* pixels = static_cast<const RGBQUAD*>(m_bits);
        const int rows = std::min(kHeight, static_cast<int>(client.bottom));
        return read && std::any_of(pixels, pixels + rows * kWidth, [](const RGBQUAD& pixel) {
                   const auto [low, high] = std::minmax({pixel.rgbRed, pixel.rgbGreen, pixel.rgbBlue});
                   return high - low >= 0x60;
               });
    }

  private:
    static constexpr int kWidth = 4;
    static constexpr int kHeight = 1024;
    HDC m_dc = CreateCompatibleDC(nullptr);
    HBITMAP m_bitmap = nullptr;
    void* m_bits = nullptr;
};

/// The window of a process that shows what it is started for, once it is visible.
HWND ShownWindow(DWORD process) {
    for (const wchar_t* const name : {kEmptyClass, kViewerClass}) {
        const HWND window = FindWindowW(name, nullptr);
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if (owner != process || !IsWindowVisible(window)) continue;
        return name == kViewerClass ? GetDlgItem(window, quillon::pbGraph) : window;
    }
    return nullptr;
}

struct Start {
    double idle = -1.0;     ///< ms until it waited for input
    double painted = -1.0;  ///< ms until its picture was seen
    double memory = 0.0;    ///< MB of private memory at most
};

class Stopwatch {
  public:
    [[nodiscard]] double Milliseconds() const {
        return static_cast<double>(Now().QuadPart - m_start.QuadPart) * 1000.0 / m_frequency;
    }

  private:
    static LARGE_INTEGER Now() {
        LARGE_INTEGER now{};
        QueryPerformanceCounter(&now);
        return now;
    }
    static double Frequency() {
        LARGE_INTEGER frequency{};
        QueryPerformanceFrequency(&frequency);
        return static_cast<double>(frequency.QuadPart);
    }
    double m_frequency = Frequency();
    LARGE_INTEGER m_start = Now();
};

double PrivateMegabytes(HANDLE process) {
    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(process, &memory, sizeof memory);
    return static_cast<double>(memory.PeakPagefileUsage) / (1 << 20);
}

/// A time that was not reached stays below 0.
Start MeasureStart(std::wstring command) {
    constexpr double patience = 20000.0;
    const Strip strip;
    STARTUPINFOW startInfo{};
    startInfo.cb = sizeof startInfo;
    PROCESS_INFORMATION process{};
    Start start;
    const Stopwatch watch;
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startInfo, &process))
        return start;
    HWND window = nullptr;
    while ((start.idle < 0 || start.painted < 0) && watch.Milliseconds() < patience) {
        if (start.idle < 0 && WaitForInputIdle(process.hProcess, 0) == 0) start.idle = watch.Milliseconds();
        if (window == nullptr) window = ShownWindow(process.dwProcessId);
        if (window != nullptr && start.painted < 0 && strip.SeesColor(window)) start.painted = watch.Milliseconds();
        Sleep(1);
    }
    start.memory = PrivateMegabytes(process.hProcess);
    TerminateProcess(process.hProcess, 0);
    WaitForSingleObject(process.hProcess, static_cast<DWORD>(patience));
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return start;
}

/// The value that a share of the starts stays below.
double Quantile(const std::vector<Start>& starts, double Start::*what, double share) {
    std::vector<double> values;
    for (const Start& start : starts) values.push_back(start.*what);
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(static_cast<double>(values.size()) * share)];
}

}  // namespace

// wWinMain, because WaitForInputIdle works with programs of the Windows subsystem only.
int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    const int argc = __argc;
    wchar_t** const argv = __wargv;
    if (argc == 2 && std::wstring(argv[1]) == L"--empty") return RunEmptyWindow();
    if (argc < 3) return 2;
    wchar_t self[32768] = {};
    GetModuleFileNameW(nullptr, self, 32768);
    const int rounds = argc > 3 ? std::max(_wtoi(argv[3]), 1) : 11;
    std::vector<Start> empty;
    std::vector<Start> viewer;
    for (int round = 0; round < rounds; ++round) {
        empty.push_back(MeasureStart(L"\"" + std::wstring(self) + L"\" --empty"));
        viewer.push_back(MeasureStart(L"\"" + std::wstring(argv[1]) + L"\" \"" + argv[2] + L"\""));
        if (std::min(empty.back().painted, viewer.back().painted) < 0 ||
            std::min(empty.back().idle, viewer.back().idle) < 0)
            return 1;
    }
    const auto tell = [&](const char* what, double Start::*value, const char* unit) {
        for (const double share : {0.25, 0.5}) {
            const double without = Quantile(empty, value, share);
            const double with = Quantile(viewer, value, share);
            std::printf("%s, %s: empty window %.1f %s, viewer %.1f %s, difference %.1f %s\n", what,
                        share < 0.5 ? "quarter" : "median", without, unit, with, unit, with - without, unit);
        }
    };
    std::printf("medians and lower quarters of %d rounds\n", rounds);
    tell("picture seen", &Start::painted, "ms");
    tell("waits for input", &Start::idle, "ms");
    tell("private memory", &Start::memory, "MB");
    return 0;
}
