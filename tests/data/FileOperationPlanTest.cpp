#include "data/FileOperationPlan.h"

#include <gtest/gtest.h>

#include "base/Text.h"

namespace quillon {
namespace {

TEST(FileOperationPlan, NamesOneFileOnly) {
    for (const std::u16string_view name : {u"Ночь 1.edf", u".edf", u"a..b", u"com.edf", u"com10", u"com0",
                                           u"console.bin", u"auxiliary", u" a", u"it's [1] + 2%.wav"}) {
        EXPECT_TRUE(IsFileName(name)) << Utf8(name);
    }
    for (const std::u16string_view name :
         {u"",         u"..",         u"a.",   u"a ",       u"a\\b",      u"a/b",   u"a:stream", u"*",
          u"a?.edf",   u"a|b",        u"<a",   u"b>.edf",   u"\"a\"",     u"a\tb",  u"nul",      u"NUL.edf",
          u"Con .txt", u"aux.tar.gz", u"com1", u"LPT9.edf", u"com\u00B2", u"conin$"}) {
        EXPECT_FALSE(IsFileName(name)) << Utf8(name);
    }
    EXPECT_FALSE(IsFileName(std::u16string(u"a\0b", 3)));
}

TEST(FileOperationPlan, JoinsFolderAndNamesAndRefusesWhatCouldHitAnotherFile) {
    EXPECT_EQ(PlanDelete(u"C:\\", u"a.edf").value().from, u"C:\\a.edf");
    const auto rename = PlanRename(u"\\\\server\\share", u"a.edf", u"A.edf");
    EXPECT_EQ(rename.value().from, u"\\\\server\\share\\a.edf");
    EXPECT_EQ(rename.value().to, u"\\\\server\\share\\A.edf");
    for (const std::u16string_view folder :
         {u"", u"data", u".\\data", u"C:", u"C:data", u"\\data", u"C:\\*", u"C:\\da?a", u"\\\\?\\C:\\data"}) {
        EXPECT_FALSE(PlanDelete(folder, u"a.edf")) << Utf8(folder);
    }
    EXPECT_FALSE(PlanDelete(std::u16string(u"C:\\a\0\\b", 7), u"a.edf"));
    for (const auto& [from, to] : {std::pair{u"*.edf", u"b.edf"}, {u"a.edf", u"..\\b.edf"}, {u"a.edf", u"a.edf"}}) {
        EXPECT_FALSE(PlanRename(u"C:\\data", from, to));
    }
    // "C:\data\" and 251 characters are the longest path.
    EXPECT_TRUE(PlanDelete(u"C:\\data", std::u16string(251, u'a')));
    EXPECT_FALSE(PlanDelete(u"C:\\data", std::u16string(252, u'a')));
}

}  // namespace
}  // namespace quillon
