#include <gtest/gtest.h>

#include "base/Text.h"
#include "data/FileFilter.h"
#include "data/FileOperationPlan.h"
#include "data/PathList.h"

namespace quillon {
namespace {

TEST(FileFilter, MatchesAnyPatternOfTheMaskWithoutRegardToCase) {
    using Case = std::pair<std::u16string, std::u16string_view>;
    for (const auto& [name, mask] :
         {Case(u"Ночь.Edf", u"*.bin;*.edf"), Case(u".wav", u"*.wav"), Case(u"НОЧЬ 1.bin", u"ночь ?.*"),
          Case(u"aXbXbc", u"a*bc"), Case(u"no extension", u"*.*"), Case(u"ab", u"ab**")})
        EXPECT_TRUE(MatchesMask(name, mask)) << Utf8(name);
    // The last one in time that does not grow without bound.
    for (const auto& [name, mask] :
         {Case(u"a.wave", u"*.bin;*.wav"), Case(u"edf", u"*.edf"), Case(u"a.bin", u""), Case(u"", u";"),
          Case(u"aXbXb", u"a*bc"), Case(std::u16string(4000, u'a'), u"*a*a*a*a*a*a*a*a*b")})
        EXPECT_FALSE(MatchesMask(name, mask)) << Utf8(name);
}

TEST(FileOperationPlan, NamesOneFileOnly) {
    for (const std::u16string_view name :
         {u"Ночь 1.edf", u".edf", u"a..b", u"com.edf", u"com10", u"com0", u"auxiliary", u" a", u"it's [1] + 2%.wav"})
        EXPECT_TRUE(IsFileName(name)) << Utf8(name);
    for (const std::u16string_view name :
         {u"",        u"..",       u"a.",         u"a ",   u"a\\b",     u"a/b",       u"a:stream",
          u"*",       u"a?",       u"a|b",        u"<",    u">",        u"\"",        u"a\tb",
          u"NUL.edf", u"Con .txt", u"aux.tar.gz", u"com1", u"LPT9.edf", u"com\u00B2", u"conin$"})
        EXPECT_FALSE(IsFileName(name)) << Utf8(name);
    EXPECT_FALSE(IsFileName(std::u16string(u"a\0b", 3)));
}

TEST(FileOperationPlan, JoinsFolderAndNamesAndRefusesWhatCouldHitAnotherFile) {
    EXPECT_EQ(PlanDelete(u"C:\\", u"a.edf").value().from, u"C:\\a.edf");
    const auto rename = PlanRename(u"\\\\server\\share", u"a.edf", u"A.edf");
    EXPECT_EQ(rename.value().from, u"\\\\server\\share\\a.edf");
    EXPECT_EQ(rename.value().to, u"\\\\server\\share\\A.edf");
    for (const std::u16string_view folder :
         {u"", u"data", u".\\data", u"C:", u"C:data", u"\\data", u"C:\\*", u"C:\\da?a", u"\\\\?\\C:\\data"})
        EXPECT_FALSE(PlanDelete(folder, u"a.edf")) << Utf8(folder);
    EXPECT_FALSE(PlanDelete(std::u16string(u"C:\\a\0\\b", 7), u"a.edf"));
    for (const auto& [from, to] : {std::pair{u"*.edf", u"b.edf"}, {u"a.edf", u"..\\b.edf"}, {u"a.edf", u"a.edf"}})
        EXPECT_FALSE(PlanRename(u"C:\\data", from, to));
    // "C:\data\" and 251 characters are the longest path.
    EXPECT_TRUE(PlanDelete(u"C:\\data", std::u16string(251, u'a')));
    EXPECT_FALSE(PlanDelete(u"C:\\data", std::u16string(252, u'a')));
}

TEST(PathList, AddsNewFoldersAtTheEndAndDropsTheOldest) {
    const auto isFolder = [](const std::u16string& path) { return path != u"E:\\gone"; };
    std::vector<std::u16string> folders{u"", u"C:\\lost"};
    for (int number = 1; number <= 30; ++number) folders.push_back(u"C:\\Ночь" + Decimal(number));
    PathList list(folders);
    folders.erase(folders.begin(), folders.begin() + 2);
    EXPECT_FALSE(list.Add(u"E:\\gone", isFolder));
    EXPECT_FALSE(list.Add(u"c:\\НОЧЬ1", isFolder)) << "letter case does not count";
    EXPECT_EQ(list.Folders(), folders) << "a folder that is known moves nothing, even in a full list";
    EXPECT_TRUE(list.Add(u"C:\\new", isFolder));
    folders.erase(folders.begin());
    folders.push_back(u"C:\\new");
    EXPECT_EQ(list.Folders(), folders);
}

}  // namespace
}  // namespace quillon
