#include "app/TypedSearch.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillon {
namespace {

TEST(TypedSearch, LettersLeadToNamesAndOneAgainToTheNext) {
    const std::vector<std::u16string> names{u"Alpha", u"s1.edf", u"S2.edf", u"sleep.edf", u"Сон.edf", u"сон 2.edf"};
    TypedSearch search;
    std::uint32_t time = 0xFFFFFE00;
    int selected = -1;
    const auto type = [&](std::u16string_view letters, std::uint32_t pause = 200) {
        for (const char16_t letter : letters) {
            time += pause;
            selected = search.Type(letter, time, names, selected).value_or(selected);
        }
        return selected;
    };
    const auto wait = [&] { time += TypedSearch::kPause + 1; };
    EXPECT_EQ(type(u"S"), 1);
    EXPECT_EQ(type(u"l"), 3);
    EXPECT_EQ(type(u"q"), 3) << "nothing begins with that";
    EXPECT_EQ(type(u"e"), 3) << "nor does a letter that does not fit count";
    wait();
    EXPECT_EQ(type(u"s"), 1) << "round, to the next one";
    EXPECT_EQ(type(u"s"), 2);
    EXPECT_EQ(type(u"S"), 3);
    wait();
    EXPECT_EQ(type(u"СОН"), 4);
    EXPECT_EQ(type(u" "), 5);
    search.Begin();
    EXPECT_EQ(type(u"a"), 0);
    EXPECT_EQ(type(u"a", TypedSearch::kPause + 1), 0) << "the only one";
    EXPECT_EQ(search.Type(u'a', time, {}, -1), std::nullopt);
}

}  // namespace
}  // namespace quillon
