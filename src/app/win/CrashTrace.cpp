#include "app/win/CrashTrace.h"

#include "base/win/Win32.h"
// After windows.h, on which it depends.
#include <winternl.h>

#include <cxxabi.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <typeinfo>

#include "app/CrashText.h"
#include "base/FilePath.h"

namespace quillon {

namespace {

/// Path of the file as the kernel takes it. The calls of Windows that take other paths allocate memory.
struct KernelPath {
    wchar_t text[1024] = {};
    USHORT folders[2] = {};  ///< lengths in bytes up to the folders that may have to be made
    USHORT length = 0;
};

// What is used after a fault is laid out before: the heap may be damaged, the stack nearly used up.
HMODULE g_program = nullptr;
KernelPath g_path;
OSVERSIONINFOW g_system;
decltype(&NtCreateFile) g_createFile = nullptr;
BoundedText g_text;
CallList g_calls;
CONTEXT g_context;
std::atomic<DWORD> g_writer = 0;  ///< thread that writes

/// Bytes of the stack that are kept for the handling of its overflow.
constexpr ULONG kStackReserve = 128 * 1024;

/// Name of a loaded module out of its table of exports; the loader, which knows it too, may be locked.
std::string_view ModuleName(const char* base) {
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    if (dos->e_magic != IMAGE_DOS_SIGNATURE) return "?";
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD exports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
    if (exports == 0) return "?";
    return base + reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + exports)->Name;
}

CodePlace PlaceOf(std::uint64_t address) {
    MEMORY_BASIC_INFORMATION region{};
    const auto* pointer = reinterpret_cast<const char*>(address);
    if (VirtualQuery(pointer, &region, sizeof region) == 0 || region.Type != MEM_IMAGE)
        return {CodePlace::In::Nowhere, {}, address};
    const auto* base = static_cast<const char*>(region.AllocationBase);
    const auto offset = static_cast<std::uint64_t>(pointer - base);
    if (region.AllocationBase == g_program) return {CodePlace::In::Program, {}, offset};
    return {CodePlace::In::Module, ModuleName(base), offset};
}

/// Follows the calls up the stack of this thread. Of a call its last byte is taken, as the address behind it may belong
/// to the next line or function.
void CollectCalls(CONTEXT& context) {
    g_calls.Clear();
    g_calls.Add(context.Rip);
    // The calls that are followed lie above this one, and the stack is used from here to its end.
    MEMORY_BASIC_INFORMATION stack{};
    const void* here = __builtin_frame_address(0);
    if (VirtualQuery(here, &stack, sizeof stack) == 0) return;
    const auto low = reinterpret_cast<DWORD64>(here);
    const DWORD64 high = reinterpret_cast<DWORD64>(stack.BaseAddress) + stack.RegionSize;
    for (DWORD64 before = 0; context.Rsp > std::max(low, before) && context.Rsp + sizeof(DWORD64) <= high;) {
        before = context.Rsp;
        DWORD64 base = 0;
        const PRUNTIME_FUNCTION function = RtlLookupFunctionEntry(context.Rip, &base, nullptr);
        if (function == nullptr) {
            // A function without a frame, or a jump into nowhere: the return address is on top.
            context.Rip = *reinterpret_cast<const DWORD64*>(context.Rsp);
            context.Rsp += sizeof(DWORD64);
        } else {
            void* data = nullptr;
            DWORD64 frame = 0;
            RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &data, &frame, nullptr);
        }
        // Where the calls cannot be followed, what comes next is no address of code.
        if (PlaceOf(context.Rip - 1).in == CodePlace::In::Nowhere) return;
        g_calls.Add(context.Rip - 1);
    }
}

/// Null when it cannot be opened.
HANDLE OpenKernelPath(USHORT length, ACCESS_MASK access, ULONG disposition, ULONG options) {
    UNICODE_STRING name{length, length, g_path.text};
    OBJECT_ATTRIBUTES attributes{};
    attributes.Length = sizeof attributes;
    attributes.ObjectName = &name;
    attributes.Attributes = OBJ_CASE_INSENSITIVE;
    IO_STATUS_BLOCK status{};
    HANDLE handle = nullptr;
    const NTSTATUS result = g_createFile(&handle, access | SYNCHRONIZE, &attributes, &status, nullptr,
                                         FILE_ATTRIBUTE_NORMAL, FILE_SHARE_READ | FILE_SHARE_WRITE, disposition,
                                         options | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0);
    return result >= 0 ? handle : nullptr;
}

void WriteText(HANDLE file) {
    DWORD written = 0;
    WriteFile(file, g_text.Text().data(), static_cast<DWORD>(g_text.Text().size()), &written, nullptr);
    g_text.Clear();
}

CrashFacts FactsOf(const EXCEPTION_RECORD& record) {
    CrashFacts facts;
    facts.system = {g_system.dwMajorVersion, g_system.dwMinorVersion, g_system.dwBuildNumber};
    SYSTEMTIME now{};
    GetSystemTime(&now);
    facts.time = {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, 0};
    facts.code = record.ExceptionCode;
    if (record.ExceptionCode == kUncaughtException) {
        if (record.ExceptionInformation[0] != 0)
            facts.thrown = reinterpret_cast<const char*>(record.ExceptionInformation[0]);
    } else if (record.NumberParameters >= 2) {
        facts.access = {record.ExceptionInformation[0], record.ExceptionInformation[1]};
    }
    return facts;
}

void WriteCrashFile(const EXCEPTION_POINTERS& fault) {
    for (const USHORT length : g_path.folders) {
        const HANDLE folder = OpenKernelPath(length, FILE_LIST_DIRECTORY, FILE_OPEN_IF, FILE_DIRECTORY_FILE);
        if (folder != nullptr) CloseHandle(folder);
    }
    const HANDLE file = OpenKernelPath(g_path.length, FILE_GENERIC_WRITE, FILE_OVERWRITE_IF, FILE_NON_DIRECTORY_FILE);
    if (file == nullptr) return;
    // Before the stack is read, which may be damaged too: a fault within this function ends the program.
    AddCrashFacts(g_text, FactsOf(*fault.ExceptionRecord));
    WriteText(file);
    g_context = *fault.ContextRecord;
    CollectCalls(g_context);
    AddCalls(g_text, g_calls, PlaceOf);
    WriteText(file);
    CloseHandle(file);
}

/// The system calls it for an exception that nobody has handled.
LONG WINAPI OnUnhandled(EXCEPTION_POINTERS* fault) {
    // Thrown by the compiler's library, which goes on to std::terminate when it gets control back.
    constexpr DWORD thrownMask = 0x20FFFFFF;
    constexpr DWORD thrown = 0x20474343;
    if ((fault->ExceptionRecord->ExceptionCode & thrownMask) == thrown &&
        (fault->ExceptionRecord->ExceptionFlags & EXCEPTION_NONCONTINUABLE) == 0)
        return EXCEPTION_CONTINUE_EXECUTION;
    DWORD writer = 0;
    if (g_writer.compare_exchange_strong(writer, GetCurrentThreadId())) {
        WriteCrashFile(*fault);
    } else if (writer != GetCurrentThreadId()) {
        // The end of this thread would be that of the program before the text is written.
        constexpr DWORD patience = 10000;
        Sleep(patience);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

/// Hands the fault to the system as one that nobody handles, whoever is on the stack. Returns only under a debugger, to
/// which it belongs.
void EndBy(EXCEPTION_POINTERS& fault) {
    UnhandledExceptionFilter(&fault);
    if (g_writer == GetCurrentThreadId()) TerminateProcess(GetCurrentProcess(), fault.ExceptionRecord->ExceptionCode);
}

/// A fault in a window procedure that the kernel has called does not always reach OnUnhandled: the system may drop it,
/// and the program would go on with half of the work done. No code of this program expects such a fault.
LONG WINAPI OnFault(EXCEPTION_POINTERS* fault) {
    const EXCEPTION_RECORD& record = *fault->ExceptionRecord;
    const DWORD64 at = fault->ContextRecord->Rip;
    switch (record.ExceptionCode) {
        case EXCEPTION_ACCESS_VIOLATION:
            // A call through a bad pointer.
            if (record.ExceptionInformation[1] == at) EndBy(*fault);
            [[fallthrough]];
        case EXCEPTION_IN_PAGE_ERROR:
        case EXCEPTION_ILLEGAL_INSTRUCTION:
        case EXCEPTION_PRIV_INSTRUCTION:
        case EXCEPTION_INT_DIVIDE_BY_ZERO:
        case EXCEPTION_STACK_OVERFLOW:
            if (PlaceOf(at).in == CodePlace::In::Program) EndBy(*fault);
            break;
        default: break;
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

[[noreturn]] void EndByCode(CrashCode code, const char* thrown) {
    CONTEXT context{};
    RtlCaptureContext(&context);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = code;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(context.Rip);
    record.NumberParameters = 1;
    record.ExceptionInformation[0] = reinterpret_cast<ULONG_PTR>(thrown);
    EXCEPTION_POINTERS fault{&record, &context};
    EndBy(fault);
    TerminateProcess(GetCurrentProcess(), code);
    std::_Exit(EXIT_FAILURE);
}

[[noreturn]] void OnTerminate() {
    // Its words may hold the name of a file.
    const std::type_info* type = abi::__cxa_current_exception_type();
    EndByCode(kUncaughtException, type == nullptr ? nullptr : type->name());
}

void OnAbort(int) {
    EndByCode(kAborted, nullptr);
}

/// Sets g_path; false without a folder, or when it is too long.
bool FindPath() {
    wchar_t variable[900] = {};
    wchar_t folder[900] = {};
    constexpr DWORD room = static_cast<DWORD>(std::size(folder));
    if (GetEnvironmentVariableW(L"LOCALAPPDATA", variable, room) >= room) return false;
    const DWORD length = GetFullPathNameW(variable, room, folder, nullptr);
    if (length == 0 || length >= room) return false;
    const bool share = folder[0] == L'\\' && folder[1] == L'\\';
    std::wstring path = share ? L"\\??\\UNC" + std::wstring(folder + 1) : L"\\??\\" + std::wstring(folder);
    if (path.back() == L'\\') path.pop_back();
    const auto bytes = [&] { return static_cast<USHORT>(path.size() * sizeof(wchar_t)); };
    path += L"\\Norvik";
    g_path.folders[0] = bytes();
    path += L"\\Quillon";
    g_path.folders[1] = bytes();
    path += L"\\crash.txt";
    g_path.length = bytes();
    std::copy(path.begin(), path.end(), g_path.text);
    return true;
}

}  // namespace

std::u16string InstallCrashTrace() {
    const auto system = [](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name));
    };
    g_createFile = reinterpret_cast<decltype(g_createFile)>(system("NtCreateFile"));
    if (g_createFile == nullptr || !FindPath()) return {};
    g_program = GetModuleHandleW(nullptr);
    // GetVersion would tell the version that the manifest declares.
    g_system.dwOSVersionInfoSize = sizeof g_system;
    const auto getVersion = reinterpret_cast<LONG(WINAPI*)(OSVERSIONINFOW*)>(system("RtlGetVersion"));
    if (getVersion != nullptr) getVersion(&g_system);
    ULONG reserve = kStackReserve;
    SetThreadStackGuarantee(&reserve);
    SetUnhandledExceptionFilter(OnUnhandled);
    AddVectoredExceptionHandler(1, OnFault);
    std::set_terminate(OnTerminate);
    std::signal(SIGABRT, OnAbort);
    const std::wstring path(g_path.text, g_path.length / sizeof(wchar_t));
    constexpr std::size_t prefix = 4;  // "\??\"
    const std::wstring_view share = L"UNC\\";
    return Narrow16(path.compare(prefix, share.size(), share) == 0 ? L"\\\\" + path.substr(prefix + share.size())
                                                                   : path.substr(prefix));
}

std::u16string TakeCrashFile(const std::u16string& path) {
    if (path.empty()) return {};
    const std::u16string told = PathOf(FolderOf(path), u"crash-told.txt");
    return MoveFileExW(Wide(path).c_str(), Wide(told).c_str(), MOVEFILE_REPLACE_EXISTING) ? told : std::u16string();
}

}  // namespace quillon
