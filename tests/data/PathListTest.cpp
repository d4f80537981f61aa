#include "data/PathList.h"

#include <gtest/gtest.h>

#include "base/Text.h"

namespace quillon {
namespace {

bool AnyFolder(const std::u16string&) {
    return true;
}

std::vector<std::u16string> Numbered(int first, int last) {
    std::vector<std::u16string> folders;
    for (int number = first; number <= last; ++number) folders.push_back(u"C:\\" + Decimal(number));
    return folders;
}

TEST(PathList, AddsAtTheEndWhatIsAFolderAndNew) {
    PathList list;
    EXPECT_TRUE(list.Add(u"C:\\Записи\\Ночь", AnyFolder));
    EXPECT_TRUE(list.Add(u"D:\\ecg", AnyFolder));
    EXPECT_FALSE(list.Add(u"c:\\записи\\НОЧЬ", AnyFolder)) << "letter case does not count";
    EXPECT_FALSE(list.Add(u"E:\\gone", [](const std::u16string& path) { return path != u"E:\\gone"; }));
    EXPECT_EQ(list.Folders(), (std::vector<std::u16string>{u"C:\\Записи\\Ночь", u"D:\\ecg"}));
}

TEST(PathList, AFullListLosesItsOldest) {
    PathList list(Numbered(1, 30));
    EXPECT_FALSE(list.Add(u"c:\\1", AnyFolder));
    EXPECT_EQ(list.Folders(), Numbered(1, 30)) << "a folder that is known moves nothing, even in a full list";
    EXPECT_TRUE(list.Add(u"C:\\31", AnyFolder));
    EXPECT_EQ(list.Folders(), Numbered(2, 31));
    EXPECT_EQ(PathList(Numbered(1, 40)).Folders(), Numbered(11, 40));
    EXPECT_EQ(PathList({u"", u"C:\\1", u""}).Folders(), Numbered(1, 1));
}

}  // namespace
}  // namespace quillon
