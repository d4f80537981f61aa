#include <gtest/gtest.h>

#include "norvik/private/ByteSource.h"

namespace quillon {
namespace {

TEST(FileSourceTest, ADeviceIsNoFile) {
    for (const char16_t* device : {u"NUL", u"\\\\.\\NUL", u"nul.edf"}) {
        Bilingual error;
        EXPECT_EQ(OpenFileSource(device, error), nullptr);
        EXPECT_EQ(error.english, u"not a file");
        EXPECT_EQ(error.russian, u"это не файл");
    }
}

}  // namespace
}  // namespace quillon
