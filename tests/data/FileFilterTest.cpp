#include "data/FileFilter.h"

#include <gtest/gtest.h>

#include "base/Text.h"

namespace quillon {
namespace {

TEST(FileFilter, MatchesAnyPatternOfTheMaskWithoutRegardToCase) {
    const std::pair<std::u16string, std::u16string_view> matching[] = {
        {u"Ночь.Edf", u"*.bin;*.edf"}, {u".wav", u"*.wav"},       {u"НОЧЬ 1.bin", u"ночь ?.*"},
        {u"aXbXbc", u"a*bc"},          {u"no extension", u"*.*"}, {u"ab", u"ab**"}};
    for (const auto& [name, mask] : matching) EXPECT_TRUE(MatchesMask(name, mask)) << Utf8(name);
    const std::pair<std::u16string, std::u16string_view> others[] = {
        {u"a.wave", u"*.bin;*.wav"},
        {u"edf", u"*.edf"},
        {u"a.bin", u""},
        {u"", u";"},
        {u"aXbXb", u"a*bc"},
        {std::u16string(4000, u'a'), u"*a*a*a*a*a*a*a*a*b"}};  // in time that does not grow without bound
    for (const auto& [name, mask] : others) EXPECT_FALSE(MatchesMask(name, mask)) << Utf8(name);
}

}  // namespace
}  // namespace quillon
