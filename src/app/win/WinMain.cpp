#include "app/win/QL_Main.h"
#include "app/win/SystemDlls.h"
#include "base/win/Win32.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR arguments, int showCommand) {
    quillon::LoadSystemDllsOnly();
    quillon::StartUpParts parts = quillon::SystemParts();
    parts.path = quillon::PathOfArguments(arguments);
    quillon::LeaveStartFolder();
    return quillon::QL_Main(parts, showCommand);
}
