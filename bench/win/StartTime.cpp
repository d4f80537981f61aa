// Start-up time of the viewer against that of a program with an empty window, under the same warm system:
//     start-time VIEWER FOLDER [ROUNDS]
// A start is over when the program waits for input: by then the viewer has opened the folder's first recording and
// painted it. Both are started in turn; medians are told.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

int RunEmptyWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"Empty";
    RegisterClassW(&windowClass);
    const HWND window = CreateWindowExW(0, L"Empty", L"Empty", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 1060,
                                        700, nullptr, nullptr, windowClass.hInstance, nullptr);
    ShowWindow(window, SW_SHOW);
    UpdateWindow(window);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}

/// Milliseconds from the start of a program to its waiting for input; below 0 when it could not be started.
double TimeStart(std::wstring command, const wchar_t* folder) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    LARGE_INTEGER before{};
    LARGE_INTEGER after{};
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&before);
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, folder, &start, &process))
        return -1;
    constexpr DWORD patience = 20000;
    const DWORD idle = WaitForInputIdle(process.hProcess, patience);
    QueryPerformanceCounter(&after);
    TerminateProcess(process.hProcess, 0);
    WaitForSingleObject(process.hProcess, patience);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    if (idle != 0) return -1;
    return static_cast<double>(after.QuadPart - before.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

// A program with windows, as the viewer is: only such a one can be waited for.
int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    const int argc = __argc;
    wchar_t** const argv = __wargv;
    if (argc == 2 && std::wstring(argv[1]) == L"--empty") return RunEmptyWindow();
    if (argc < 3) return 2;
    wchar_t self[32768] = {};
    GetModuleFileNameW(nullptr, self, 32768);
    const int rounds = argc > 3 ? std::max(_wtoi(argv[3]), 1) : 11;
    std::vector<double> empty;
    std::vector<double> viewer;
    for (int round = 0; round < rounds; ++round) {
        empty.push_back(TimeStart(L"\"" + std::wstring(self) + L"\" --empty", argv[2]));
        viewer.push_back(TimeStart(L"\"" + std::wstring(argv[1]) + L"\"", argv[2]));
        if (empty.back() < 0 || viewer.back() < 0) return 1;
    }
    std::printf("empty window %.1f ms, viewer %.1f ms, difference %.1f ms (medians of %d)\n", Median(empty),
                Median(viewer), Median(viewer) - Median(empty), rounds);
    return 0;
}
