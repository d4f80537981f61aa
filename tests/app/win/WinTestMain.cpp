#include <gtest/gtest.h>

#include "base/win/Win32.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    return RUN_ALL_TESTS();
}
