#include "data/FileFilter.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(FileFilter, MatchesAnyPatternOfTheMaskWithoutRegardToCase) {
    const std::u16string mask = u"*.bin;*.wav;*.edf";
    EXPECT_TRUE(MatchesMask(u"a.BIN", mask));
    EXPECT_TRUE(MatchesMask(u"Ночь.Edf", mask));
    EXPECT_TRUE(MatchesMask(u".wav", mask));
    EXPECT_FALSE(MatchesMask(u"a.wave", mask));
    EXPECT_FALSE(MatchesMask(u"edf", mask));
    EXPECT_FALSE(MatchesMask(u"a.bin", u""));
    EXPECT_TRUE(MatchesMask(u"НОЧЬ 1.bin", u"ночь ?.*"));
    EXPECT_TRUE(MatchesMask(u"aXbXbc", u"a*bc"));
    EXPECT_FALSE(MatchesMask(u"aXbXb", u"a*bc"));
    EXPECT_TRUE(MatchesMask(u"no extension", u"*.*"));
    EXPECT_FALSE(MatchesMask(std::u16string(4000, u'a'), u"*a*a*a*a*a*a*a*a*b"));
}

}  // namespace
}  // namespace quillon
