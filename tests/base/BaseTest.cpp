#include <gtest/gtest.h>

#include <limits>

#include "base/DateTime.h"
#include "base/FilePath.h"
#include "base/Rounding.h"
#include "base/Text.h"

namespace quillon {
namespace {

TEST(DateTime, KnownDaysAndFieldsThatCarryOver) {
    const std::pair<CivilTime, double> cases[] = {
        {{1899, 12, 29, 0, 0, 0, 0}, -1.0},   {{1900, 3, 1, 0, 0, 0, 0}, 61.0},
        {{2000, 1, 1, 12, 0, 0, 0}, 36526.5}, {{1970, 1, 1, 0, 0, 0, 0}, 25569.0},
        {{1999, 13, 1, 0, 0, 0, 0}, 36526.0}, {{2000, 1, 0, 23, 59, 60, 0}, 36526.0}};
    for (const auto& [time, date] : cases) EXPECT_EQ(DateFromCivil(time), date) << time.year << '-' << time.month;
}

TEST(DateTime, EveryMillisecondSurvivesTheRoundTrip) {
    for (const int year : {1, 1600, 1899, 1900, 2000, 2100, 9999}) {
        for (const int month : {1, 2, 12}) {
            char text[32];
            std::snprintf(text, sizeof text, "%04d-%02d-28T23:59:58.999", year, month);
            EXPECT_EQ(Iso8601(DateFromCivil({year, month, 28, 23, 59, 58, 999})), text);
        }
    }
    EXPECT_EQ(Iso8601(-0.25), "1899-12-29T18:00:00.000") << "time runs forward before the first day too";
    EXPECT_EQ(CivilFromDate(std::numeric_limits<double>::quiet_NaN()).year, 1899);
    EXPECT_GT(CivilFromDate(1e300).year, 30000);
    EXPECT_LT(CivilFromDate(-1e300).year, -30000);
}

TEST(Rounding, HalvesGoToTheEvenNeighbourAndWhatDoesNotFitIsAnError) {
    using Case = std::pair<double, std::int32_t>;
    for (const auto& [number, expected] :
         {Case(0.5, 0), Case(1.5, 2), Case(2.5, 2), Case(-0.5, 0), Case(-1.5, -2), Case(0.49999999999999994, 0),
          Case(2.5000000000000004, 3), Case(2147483647.4, 2147483647),
          Case(-2147483648.5, std::numeric_limits<std::int32_t>::min())})
        EXPECT_EQ(RoundHalfEven(number), expected) << number;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double number : {2147483647.5, -2147483649.0, nan, std::numeric_limits<double>::infinity()})
        EXPECT_THROW(static_cast<void>(RoundHalfEven(number)), std::range_error) << number;
    EXPECT_EQ(RoundHalfEven<std::int16_t>(32767.4), 32767);
    EXPECT_THROW(static_cast<void>(RoundHalfEven<std::int16_t>(32767.5)), std::range_error);
}

TEST(FilePath, FolderAndNameMakeUpThePath) {
    for (const std::u16string_view path :
         {u"C:\\a\\b.edf", u"/a/b", u"b.edf", u"C:\\", u"\\\\s\\share/x", u"", u"a/"}) {
        EXPECT_EQ(FolderOf(path) + FileNameOf(path), path);
        EXPECT_EQ(FileNameOf(path).find_first_of(u"\\/"), std::u16string::npos);
        EXPECT_TRUE(FolderOf(path).empty() || FolderOf(path).find_last_of(u"\\/") + 1 == FolderOf(path).size());
    }
    EXPECT_EQ(BareNameOf(u"C:\\a.b\\c.d.edf"), u"c.d");
    EXPECT_EQ(BareNameOf(u"C:\\a.b\\c"), u"c");
}

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

TEST(Text, FieldsEndAfterAWholeCharacter) {
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
    EXPECT_EQ(Trim(std::string_view("\0 a b\r\xB5\n ", 9)), "a b\r\xB5");
}

TEST(Text, LowerCaseCoversLatinGreekAndCyrillic) {
    EXPECT_EQ(LowerCase(u"@AZ[`a\u00C0\u00D6\u00D7\u00DE\u00DF"), u"@az[`a\u00E0\u00F6\u00D7\u00FE\u00DF");
    EXPECT_EQ(LowerCase(u"\u0100\u0101\u0139\u013A\u0178\u0179\u017E"), u"\u0101\u0101\u013A\u013A\u00FF\u017A\u017E");
    EXPECT_EQ(LowerCase(u"ПРИВЕТ Ёж ЇЏ Ґ Ω"), u"привет ёж їџ ґ ω");
}

}  // namespace
}  // namespace quillon
