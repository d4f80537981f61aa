// The text that a crash leaves: this program is run once more, crashes, and what it has written is read.
#include "app/win/CrashTrace.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

#include "app/win/CrashAs.h"
#include "base/win/WinHandle.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

int* volatile g_nowhere = reinterpret_cast<int*>(0x10);
void (*volatile g_noFunction)() = nullptr;
volatile int g_depth = 0;

void Write() {
    *g_nowhere = 1;
}

void Jump() {
    g_noFunction();
    g_depth = 0;
}

void Recurse() {
    g_depth = g_depth + 1;
    if (g_depth > 0) Recurse();
    g_depth = g_depth - 1;
}

void Throw() {
    throw std::runtime_error("C:\\a file of somebody");
}

void Assert() {
    const std::vector<int> empty;
    g_depth = empty[static_cast<std::size_t>(g_depth)];
}

/// A fault in a procedure that the system calls while it makes a window.
void WriteInCallback() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (message == WM_CREATE) Write();
        return DefWindowProcW(window, message, wParam, lParam);
    };
    windowClass.lpszClassName = L"Crash";
    RegisterClassW(&windowClass);
    CreateWindowExW(0, L"Crash", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
}

void WriteInThread() {
    std::thread(Write).join();
}

struct Crash {
    const char* how;
    void (*function)();  ///< called by CrashAs
    void (*faulty)();    ///< whose code fails, or calls what fails
    const char* told;
    bool followed = true;  ///< up to CrashAs
};

constexpr const char* kCallback = "callback";

constexpr Crash kCrashes[] = {
    {"write", Write, Write, "0xC0000005 access violation writing 0x0000000000000010\r\n"},
    {"jump", Jump, Jump, "0xC0000005 access violation executing 0x0000000000000000\r\n"},
    {"recurse", Recurse, Recurse, "0xC00000FD stack overflow\r\n"},
    {"throw", Throw, Throw, "0xE0000001 C++ exception without a handler of type St13runtime_error\r\n"},
    {"assert", Assert, Assert, "0xE0000002 abort\r\n"},
    {kCallback, WriteInCallback, Write, "0xC0000005 access violation writing 0x0000000000000010\r\n", false},
    {"thread", WriteInThread, Write, "0xC0000005 access violation writing 0x0000000000000010\r\n", false},
};

/// The text of this program run once more to crash like that.
std::string TextOf(const std::string& how, const TemporaryFolder& folder) {
    wchar_t self[MAX_PATH] = {};
    wchar_t before[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    GetEnvironmentVariableW(L"LOCALAPPDATA", before, MAX_PATH);
    SetEnvironmentVariableW(L"LOCALAPPDATA", Wide(folder.Path()).c_str());
    std::wstring line = L"\"" + std::wstring(self) + L"\" --crash " + std::wstring(how.begin(), how.end());
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    const bool started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process) != FALSE;
    SetEnvironmentVariableW(L"LOCALAPPDATA", before);
    if (!started) return {};
    CloseHandle(process.hThread);
    const FileHandle handle(process.hProcess);
    DWORD code = 0;
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60000), DWORD{WAIT_OBJECT_0});
    GetExitCodeProcess(process.hProcess, &code);
    EXPECT_GE(code, 0xC0000000U) << "the system's own end of such a program";
    return Contents(folder.File(u"Norvik/Quillon/crash.txt"));
}

/// Whether the text names a place in the code of that function.
bool Names(const std::string& text, const void* function) {
    const auto begin = reinterpret_cast<std::uintptr_t>(function) -
                       reinterpret_cast<std::uintptr_t>(GetModuleHandleW(nullptr)) + 0x140000000;
    constexpr std::uintptr_t longest = 256;
    for (std::size_t at = text.find("  0x14"); at != std::string::npos; at = text.find("  0x14", at + 1)) {
        const auto address = static_cast<std::uintptr_t>(std::stoull(text.substr(at + 2), nullptr, 16));
        if (address >= begin && address < begin + longest) return true;
    }
    return false;
}

TEST(CrashTraceTest, EveryKindOfCrashLeavesItsPlaceAndNothingOfTheUser) {
    for (const Crash& crash : kCrashes) {
        SCOPED_TRACE(crash.how);
        const TemporaryFolder folder;
        const std::string text = TextOf(crash.how, folder);
        EXPECT_THAT(text, HasSubstr(std::string("Exception: ") + crash.told));
        EXPECT_TRUE(Names(text, reinterpret_cast<const void*>(crash.faulty))) << text;
        if (crash.followed) {
            EXPECT_TRUE(Names(text, reinterpret_cast<const void*>(&CrashAs))) << text;
        }
        EXPECT_EQ(text.rfind(" outside"), text.find(crash.function == Jump ? " outside" : "no such")) << text;
        EXPECT_THAT(text, Not(HasSubstr("\\")));
        EXPECT_THAT(text, Not(HasSubstr("somebody")));
        EXPECT_EQ(text.find(" more\r\n") != std::string::npos, crash.function == Recurse);
    }
}

TEST(CrashTraceTest, IsFoundOnceAndKept) {
    const TemporaryFolder folder;
    const std::u16string path = folder.File(u"crash.txt").u16string();
    EXPECT_EQ(TakeCrashFile(path), u"");
    EXPECT_EQ(TakeCrashFile(u""), u"");
    for (const char* text : {"one", "two"}) {
        static_cast<void>(folder.Write(u"crash.txt", text));
        const std::u16string told = TakeCrashFile(path);
        EXPECT_EQ(told, folder.File(u"crash-told.txt").u16string());
        EXPECT_EQ(Contents(folder.File(u"crash-told.txt")), text);
        EXPECT_EQ(TakeCrashFile(path), u"");
    }
}

LPTOP_LEVEL_EXCEPTION_FILTER g_written = nullptr;

LONG WINAPI EndAtOnce(EXCEPTION_POINTERS* fault) {
    const LONG answer = g_written(fault);
    if (answer == EXCEPTION_CONTINUE_SEARCH)
        TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return answer;
}

}  // namespace

int CrashAs(const std::string& how) {
    if (InstallCrashTrace().empty()) return 1;
    // The fault in a callback is left to the system, which may take it for handled; for the others it would look for a
    // debugger.
    if (how != kCallback) g_written = SetUnhandledExceptionFilter(EndAtOnce);
    for (const Crash& crash : kCrashes)
        if (how == crash.how) crash.function();
    return 2;
}

}  // namespace quillon::testing
