#include <gtest/gtest.h>

#include <vector>

#include "norvik/OutputFile.h"

namespace quillon {

TEST(OutputFileTest, AFullDiskIsCountedAtTheLatestWhenTheFileIsClosed) {
    const std::vector<std::byte> chunk(100000);
    const auto file = MakeOutputFile();
    ASSERT_TRUE(file->Create(u"/dev/full"));
    for (const bool taken : {true, true, false, false}) EXPECT_EQ(file->Write(chunk), taken);
    ASSERT_TRUE(file->Create(u"/dev/full"));
    EXPECT_TRUE(file->Write(chunk)) << "gathered only";
    EXPECT_FALSE(file->Close());
    EXPECT_EQ(file->FailureCount(), 1U);
}

}  // namespace quillon
