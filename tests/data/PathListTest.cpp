#include "data/PathList.h"

#include <gtest/gtest.h>

#include "base/Text.h"

namespace quillon {
namespace {

std::vector<std::u16string> Numbered(int first, int last) {
    std::vector<std::u16string> folders;
    for (int number = first; number <= last; ++number) folders.push_back(u"C:\\Ночь" + Decimal(number));
    return folders;
}

TEST(PathList, AddsAtTheEndWhatIsAFolderAndNewAndLosesItsOldest) {
    const auto isFolder = [](const std::u16string& path) { return path != u"E:\\gone"; };
    PathList list({u"", u"C:\\Ночь1", u""});
    EXPECT_FALSE(list.Add(u"E:\\gone", isFolder));
    EXPECT_TRUE(list.Add(u"C:\\Ночь2", isFolder));
    EXPECT_EQ(list.Folders(), Numbered(1, 2));
    list = PathList(Numbered(1, 30));
    EXPECT_FALSE(list.Add(u"c:\\НОЧЬ1", isFolder)) << "letter case does not count";
    EXPECT_EQ(list.Folders(), Numbered(1, 30)) << "a folder that is known moves nothing, even in a full list";
    EXPECT_TRUE(list.Add(u"C:\\Ночь31", isFolder));
    EXPECT_EQ(list.Folders(), Numbered(2, 31));
    EXPECT_EQ(PathList(Numbered(1, 40)).Folders(), Numbered(11, 40));
}

}  // namespace
}  // namespace quillon
