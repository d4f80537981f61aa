#include <gtest/gtest.h>

#include "app/win/CrashAs.h"
#include "base/win/Win32.h"

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--crash") return quillon::testing::CrashAs(argv[2]);
    ::testing::InitGoogleTest(&argc, argv);
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    return RUN_ALL_TESTS();
}
