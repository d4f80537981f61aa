#include "app/win/CrashTrace.h"
#include "app/win/QL_Main.h"
#include "app/win/SystemDlls.h"
#include "base/win/Win32.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR arguments, int showCommand) {
    const std::u16string crashFile = quillon::InstallCrashTrace();
    quillon::LoadSystemDllsOnly();
    quillon::StartUpParts parts = quillon::SystemParts();
    parts.crashFile = crashFile;
    parts.path = quillon::PathOfArguments(arguments);
    quillon::LeaveStartFolder();
    return quillon::QL_Main(parts, showCommand);
}
