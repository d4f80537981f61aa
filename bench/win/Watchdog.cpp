// How long messages wait in the viewer while it works on a large recording:
//     watchdog VIEWER RECORDING [SECONDS [FOLDER [KIND]]]
// Starts the viewer on the recording, gives it one command after the other, watches it for some seconds after each (3
// without SECONDS), and prints for each the longest time that a message sent by another process has waited, and the
// viewer's private memory. With FOLDER exports of all kinds and splitting follow, each ended with Esc; what they leave
// in FOLDER, and beside the recording, is the user's to look at. With KIND, a number from 0, only that export is made,
// and ended by closing the window. Behind the memory stands the longest time that a message to another process, which
// does nothing but answer, has waited meanwhile, where it is above 20 ms: what the machine adds to the viewer's own.
//     watchdog
// is that other process, which the first one starts and ends.
#include "base/win/Win32.h"

#include <commctrl.h>
#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>

#include "app/Commands.h"
#include "app/ControlIds.h"

namespace {

constexpr const wchar_t* kViewerClass = L"frmQLMain";
constexpr UINT kLongest = 120000;  // ms

double Milliseconds() {
    LARGE_INTEGER now{};
    LARGE_INTEGER perSecond{};
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&perSecond);
    return static_cast<double>(now.QuadPart) * 1000.0 / static_cast<double>(perSecond.QuadPart);
}

/// The longest wait of messages sent in turn for that many milliseconds.
double LongestWait(HWND window, double duration) {
    const double end = Milliseconds() + duration;
    double longest = 0.0;
    for (double start = Milliseconds(); start < end; start = Milliseconds()) {
        DWORD_PTR result = 0;
        if (SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, kLongest, &result) == 0) return -1.0;
        longest = std::max(longest, Milliseconds() - start);
        Sleep(2);
    }
    return longest;
}

constexpr const wchar_t* kIdleClass = L"WatchdogIdle";

/// A window that nobody sees and that does nothing but answer, until this process is ended.
int AnswerOnly() {
    WNDCLASSW idle{};
    idle.lpfnWndProc = DefWindowProcW;
    idle.lpszClassName = kIdleClass;
    if (RegisterClassW(&idle) == 0 ||
        CreateWindowW(kIdleClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr) == nullptr)
        return 1;
    for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
    return 0;
}

/// The longest wait of messages to the idle window, which others set to 0.
std::atomic<double> idleWait = 0.0;

DWORD WINAPI WatchIdle(void*) {
    for (;;)
        if (const HWND idle = FindWindowW(kIdleClass, nullptr); idle != nullptr)
            idleWait = std::max(idleWait.load(), LongestWait(idle, 100.0));
        else
            Sleep(1);
}

HWND WaitForWindow(DWORD process) {
    for (const double end = Milliseconds() + 30000.0; Milliseconds() < end; Sleep(1)) {
        const HWND window = FindWindowW(kViewerClass, nullptr);
        DWORD owner = 0;
        if (window != nullptr && GetWindowThreadProcessId(window, &owner) != 0 && owner == process &&
            IsWindowVisible(window))
            return window;
    }
    return nullptr;
}

/// Closes the dialog that is open, if any, and waits until it is gone.
void CloseDialog(HWND window) {
    const auto close = [](HWND top, LPARAM found) -> BOOL {
        wchar_t name[16] = {};
        if (GetClassNameW(top, name, 16) == 0 || std::wstring(name) != L"#32770") return TRUE;
        PostMessageW(top, WM_COMMAND, IDCANCEL, 0);
        *reinterpret_cast<bool*>(found) = true;
        return TRUE;
    };
    for (bool open = true; open; Sleep(50)) {
        open = false;
        EnumThreadWindows(GetWindowThreadProcessId(window, nullptr), close, reinterpret_cast<LPARAM>(&open));
    }
}

/// The dialog that a command opens; null where it opens none, as a fast export whose target is set.
HWND WaitForDialog(HWND window) {
    for (const double end = Milliseconds() + 2000.0; Milliseconds() < end; Sleep(5)) {
        const HWND dialog = GetLastActivePopup(window);
        if (dialog != nullptr && dialog != window && IsWindowVisible(dialog)) return dialog;
    }
    return nullptr;
}

/// The dialog in front that is not one of these, agreed to as soon as it is seen.
void AgreeToQuestion(HWND window, HWND dialog) {
    for (const double end = Milliseconds() + 300.0; Milliseconds() < end; Sleep(10)) {
        const HWND question = GetLastActivePopup(window);
        if (question != nullptr && question != dialog && question != window && IsWindowVisible(question))
            PostMessageW(question, WM_COMMAND, IDYES, 0);
    }
}

/// Gives a command, agrees to its dialog with this name in it, if any, watches the work, and ends it with Esc or by
/// closing the window.
double WatchExport(HWND window, int command, const std::wstring& name, double duration, bool closes) {
    constexpr int nameBox = 0x47C;  // the edit control inside the combo box of names
    PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(command), 0);
    const HWND dialog = WaitForDialog(window);
    if (dialog != nullptr && !name.empty())
        SendDlgItemMessageW(dialog, nameBox, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
    if (dialog != nullptr) PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    // Whether files may be replaced.
    if (dialog != nullptr) AgreeToQuestion(window, dialog);
    const double longest = LongestWait(window, duration);
    if (closes) {
        PostMessageW(window, WM_CLOSE, 0, 0);
        AgreeToQuestion(window, dialog);
        return longest;
    }
    PostMessageW(name.empty() && dialog != nullptr ? dialog : window, WM_KEYDOWN, VK_ESCAPE, 0);
    return std::max(longest, LongestWait(window, 500.0));
}

/// The control of a number, at any depth below the window.
HWND Control(HWND window, int id) {
    struct Search {
        int id;
        HWND found;
    } search{id, nullptr};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM at) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(at);
            if (GetDlgCtrlID(child) == wanted.id) wanted.found = child;
            return wanted.found == nullptr ? TRUE : FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

/// What a user does in the list of marks, which is shown for it.
void UseMarks(HWND window, int step) {
    const HWND list = Control(window, quillon::lvMarks);
    const HWND filter = Control(window, quillon::edtMarks);
    const HWND tabs = Control(window, quillon::tabFile);
    switch (step) {
        case 0: PostMessageW(tabs, TCM_SETCURFOCUS, 2, 0); break;
        case 1:
            for (const wchar_t letter : std::wstring(L"slow")) PostMessageW(filter, WM_CHAR, letter, 0);
            break;
        default:
            for (int line = 0; line < 20; ++line) PostMessageW(list, WM_KEYDOWN, VK_DOWN, 0);
    }
}

struct Step {
    const char* name;
    int command;
    int times;
};

struct Export {
    const char* name;
    int command;
    const wchar_t* file;  ///< empty: the dialog is left as it is
};

}  // namespace

int wmain(int count, wchar_t** arguments) {
    using namespace quillon;
    if (count == 1) return AnswerOnly();
    if (count < 3) return 2;
    const double seconds = count > 3 ? std::wcstod(arguments[3], nullptr) : 3.0;
    std::wstring line = L"\"" + std::wstring(arguments[1]) + L"\" \"" + arguments[2] + L"\"";
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    const double began = Milliseconds();
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) return 1;
    const HWND window = WaitForWindow(process.dwProcessId);
    if (window == nullptr) return 1;
    std::wstring idleLine = L"\"" + std::wstring(arguments[0]) + L"\"";
    PROCESS_INFORMATION idle{};
    if (!CreateProcessW(nullptr, idleLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &idle))
        return 1;
    CreateThread(nullptr, 0, WatchIdle, nullptr, 0, nullptr);
    std::printf("%-24s %8.0f ms\n", "window shown after", Milliseconds() - began);
    constexpr Step steps[] = {
        {"opening", 0, 0},
        {"zoom out to 2000:1", mnuZoomX, 11},
        {"next page", mnuGoTo + 2, 3},
        {"fit block", mnuView + 1, 1},
        {"find data", mnuBaseLine + 1, 1},
        {"zoom in", mnuZoomX + 1, 4},
        {"select block", mnuSelect, 1},
        {"statistics", mnuStatistics, 1},
        {"spectrogram", mnuSpectrogram, 1},
        {"zoom in further", mnuZoomX + 1, 6},
        {"end and start", mnuGoTo + 3, 1},
        {"spectrogram away", mnuSpectrogram, 1},
        {"next recording", mnuRecording + 1, 1},
        {"previous recording", mnuRecording, 1},
    };
    constexpr Export exports[] = {
        {"save as bin", mnuSaveAs, L"watched.bin"},  {"save as wav", mnuSaveAs, L"watched.wav"},
        {"save as edf", mnuSaveAs, L"watched.edf"},  {"save as text", mnuSaveAs, L"watched.txt"},
        {"fast export", mnuFastExport, L"fast.txt"}, {"split", mnuSplit, L""},
    };
    double worst = 0.0;
    const auto tell = [&](const char* name, double longest) {
        worst = std::max(worst, longest);
        PROCESS_MEMORY_COUNTERS memory{};
        GetProcessMemoryInfo(process.hProcess, &memory, sizeof memory);
        std::printf("%-24s %8.0f ms %8.0f MB", name, longest, static_cast<double>(memory.PagefileUsage) / 1e6);
        if (const double wait = idleWait.exchange(0.0); wait > 20.0) std::printf("   idle %.0f ms", wait);
        std::printf("\n");
        std::fflush(stdout);
        return longest >= 0.0;
    };
    bool alive = true;
    for (const Step& step : steps) {
        if (!alive) break;
        for (int time = 0; time < step.times; ++time)
            PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(step.command), 0);
        const double longest = LongestWait(window, seconds * 1000.0);
        CloseDialog(window);
        alive = tell(step.name, longest);
    }
    constexpr const char* marks[] = {"marks", "marks filtered", "marks walked"};
    for (int step = 0; alive && step < static_cast<int>(std::size(marks)); ++step) {
        UseMarks(window, step);
        alive = tell(marks[step], LongestWait(window, seconds * 1000.0));
    }
    const int only = count > 5 ? _wtoi(arguments[5]) : -1;
    for (const Export& each : exports) {
        if (!alive || count < 5) break;
        if (only >= 0 && &each != &exports[only]) continue;
        const std::wstring name =
            *each.file == L'\0' ? std::wstring() : arguments[4] + (L'\\' + std::wstring(each.file));
        alive = tell(each.name, WatchExport(window, each.command, name, seconds * 1000.0, only >= 0));
        if (only < 0) CloseDialog(window);
    }
    std::printf("%-24s %8.0f ms\n", "longest", worst);
    PostMessageW(window, WM_CLOSE, 0, 0);
    constexpr DWORD patience = 10000;
    if (WaitForSingleObject(process.hProcess, patience) != WAIT_OBJECT_0) TerminateProcess(process.hProcess, 1);
    TerminateProcess(idle.hProcess, 0);
    return 0;
}
