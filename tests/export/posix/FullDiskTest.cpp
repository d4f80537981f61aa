#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "norvik/OutputFile.h"
#include "norvik/TextWriter.h"

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
    std::u16string error;
    const auto text = CreateTextFile(u"/dev/full", error);
    text->Write(std::string(100000, 'x'));
    EXPECT_FALSE(text->Failed());
    text->Write(std::string(200000, 'x'));
    EXPECT_TRUE(text->Failed()) << "a long export need not go on";
    EXPECT_FALSE(text->Close());
}

}  // namespace quillon
