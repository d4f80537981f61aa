#include "base/Text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(Text, EveryCodePointSurvivesTheWayToUtf8AndBack) {
    std::u16string text;
    for (char32_t point = 1; point < 0x110000; point += point < 0x1000 ? 1 : 61) {
        if (point >= 0xD800 && point < 0xE000) continue;
        if (point >= 0x10000) text.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
        text.push_back(static_cast<char16_t>(point < 0x10000 ? point : 0xDC00 + (point & 0x3FF)));
    }
    EXPECT_TRUE(IsValidUtf8(Utf8(text)));
    EXPECT_EQ(Utf16(Utf8(text)), text);
    EXPECT_EQ(Utf8(u"\u00B5\u20AC\U0001F600"), "\xC2\xB5\xE2\x82\xAC\xF0\x9F\x98\x80");
    const std::u16string loneSurrogates{char16_t{0xDE00}, char16_t{0xD83D}, u'b'};
    EXPECT_EQ(Utf16(Utf8(loneSurrogates)), u"\uFFFD\uFFFDb");
}

TEST(Text, FieldsEndBehindAWholeCharacter) {
    const std::u16string text = u"aµ€\U0001D11E";  // characters of 1 to 4 bytes
    for (const auto& [size, fitting] :
         {std::pair{11U, 10U}, {10U, 10U}, {9U, 6U}, {7U, 6U}, {5U, 3U}, {2U, 1U}, {0U, 0U}})
        EXPECT_EQ(Utf8Within(text, size), Utf8(text).substr(0, fitting)) << size;
}

TEST(Text, BytesThatAreNoUtf8AreReplacedOneByOneAndReadAsLatin1InHeaders) {
    for (const std::string bytes : {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xE2\x82", "\x80z", "\xFF"}) {
        EXPECT_FALSE(IsValidUtf8(bytes));
        EXPECT_EQ(Utf16(bytes).size(), bytes.size());
        EXPECT_EQ(FromUtf8OrLatin1(bytes), FromLatin1(bytes));
    }
    EXPECT_EQ(Utf16("a\xE2\x82"), u"a\uFFFD\uFFFD");
    EXPECT_EQ(FromUtf8OrLatin1("\xB5V \xC2"), u"\u00B5V \u00C2");
    EXPECT_EQ(FromUtf8OrLatin1("\xC2\xB5V"), u"\u00B5V");
}

TEST(Text, LowerCaseCoversLatinGreekAndCyrillic) {
    EXPECT_EQ(LowerCase(u"AZ az 09 _[`{"), u"az az 09 _[`{");
    EXPECT_EQ(LowerCase(u"\u00C0\u00D6\u00D7\u00DE\u00DF"), u"\u00E0\u00F6\u00D7\u00FE\u00DF");
    EXPECT_EQ(LowerCase(u"\u0100\u0101\u0139\u013A\u0178\u0179\u017E"), u"\u0101\u0101\u013A\u013A\u00FF\u017A\u017E");
    EXPECT_EQ(LowerCase(u"ПРИВЕТ Ёж ЇЏ Ґ Ω"), u"привет ёж їџ ґ ω");
}

TEST(Text, TrimTakesBlanksAndControlCharactersAtTheEndsOnly) {
    EXPECT_EQ(Trim(std::string_view("\0 a b\r\n ", 8)), "a b");
    EXPECT_EQ(Trim(" \xB5 "), "\xB5");
    EXPECT_EQ(Trim("  "), "");
}

}  // namespace
}  // namespace quillon
