#include "app/win/QL_Main.h"
#include "base/win/Win32.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int showCommand) {
    return quillon::QL_Main(quillon::SystemParts(), showCommand);
}
