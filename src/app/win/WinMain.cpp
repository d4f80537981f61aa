#include "app/win/QL_Main.h"
#include "app/win/SystemDlls.h"
#include "base/win/Win32.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int showCommand) {
    quillon::LoadSystemDllsOnly();
    return quillon::QL_Main(quillon::SystemParts(), showCommand);
}
