#include "norvik/private/win/CodePage.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(CodePageTest, NamesAreConvertedBothWaysInEveryKindOfCodePage) {
    EXPECT_EQ(ToCodePage(1251, u"ЭЭГ Fp1 µ", 32), "\xDD\xDD\xC3 Fp1 \xB5");
    EXPECT_EQ(FromCodePage(1251, "\xDD\xDD\xC3 Fp1 \xB5"), u"ЭЭГ Fp1 µ");
    EXPECT_EQ(ToCodePage(1252, u"ЭA\u0100", 32), "?A?") << "no look-alike";
    EXPECT_EQ(ToCodePage(CP_UTF8, u"ЭЭГ", 32), "\xD0\xAD\xD0\xAD\xD0\x93");
    EXPECT_EQ(FromCodePage(CP_UTF8, "\xB5V"), u"µV");
    EXPECT_EQ(FromCodePage(932, ToCodePage(932, u"脳波", 32)), u"脳波");
    EXPECT_EQ(FromCodePage(1251, ""), u"");
}

TEST(CodePageTest, FieldsEndAfterAWholeCharacter) {
    EXPECT_EQ(ToCodePage(CP_UTF8, u"ЭЭГ", 5), "\xD0\xAD\xD0\xAD");
    EXPECT_EQ(ToCodePage(CP_UTF8, u"\U0001D11E\U0001D11E", 7), "\xF0\x9D\x84\x9E");
    EXPECT_EQ(ToCodePage(932, u"脳波", 3), ToCodePage(932, u"脳", 32));
    EXPECT_EQ(ToCodePage(1251, u"ЭЭГ", 2), "\xDD\xDD");
}

}  // namespace
}  // namespace quillon
