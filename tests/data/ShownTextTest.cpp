#include "data/ShownText.h"

#include <gtest/gtest.h>

#include "support/FakeRecording.h"

namespace quillon {
namespace {

constexpr Language kEnglish = Language::English;
constexpr Language kRussian = Language::Russian;

TEST(ShownTextTest, FiltersAreToldInBothLanguages) {
    EXPECT_EQ(FilterText({.order = 4, .bothWays = true}, kEnglish), u"");
    EXPECT_EQ(FilterText({.highPass = 0.5, .lowPass = 35, .notch = 50}, kEnglish), u"0.5-35 Hz, 50 Hz");
    EXPECT_EQ(FilterText({.highPass = 0.5, .lowPass = 35, .order = 4, .notch = 50, .bothWays = true}, kRussian, u','),
              u"0,5-35 Гц, порядок 4, в обе стороны, 50 Гц");
    EXPECT_EQ(FilterText({.highPass = 0.1, .order = 1}, kEnglish), u"> 0.1 Hz, order 1");
    EXPECT_EQ(FilterText({.lowPass = 70}, kEnglish), u"< 70 Hz");
    EXPECT_EQ(FilterText({.order = 4, .notch = 60}, kEnglish), u"60 Hz") << "a notch has no order";
}

TEST(ShownTextTest, ABlockIsToldByItsGroupsAndExceptions) {
    testing::FakeBlock block;
    block.samples.resize(5, {0});
    block.titles = {u"Fp1", u"Cz", u"ECG", u"SpO2", u"Mark"};
    block.units = {u"uV", u"\u00B5V", u"mV", u"%", u""};
    ShownSettings settings;
    const auto text = [&](const std::set<std::int16_t>& channels, Language language = kEnglish) {
        return ShownText(settings, block, channels, language);
    };
    EXPECT_EQ(text({1, 2, 3, 4, 5}), u"");
    EXPECT_EQ(ShownText(settings, u"V", kEnglish), u"");
    settings.reference.kind = Reference::Kind::Average;
    EXPECT_EQ(text({1, 4}, kRussian), u"средний");
    settings.filters[u"V"] = {.highPass = 0.5, .lowPass = 35};
    EXPECT_EQ(ShownText(settings, u"V", kEnglish), u"0.5-35 Hz, average");
    EXPECT_EQ(ShownText(settings, u"%", kEnglish), u"average");
    EXPECT_EQ(text({1, 2}), u"0.5-35 Hz, average");
    EXPECT_EQ(text({1, 4}), u"V: 0.5-35 Hz; average") << "not of the group that has none";
    EXPECT_EQ(text({4, 5}), u"") << "each alone in its group";
    settings.filters[u"%"] = {.lowPass = 5};
    settings.reference = {Reference::Kind::Channel, u"Cz"};
    settings.montage = Montage{u"Own", u"Fp1-Cz"};
    settings.unfiltered = {u"ECG", u"Mark"};
    EXPECT_EQ(text({1, 3, 4, 5}), u"V: 0.5-35 Hz; %: < 5 Hz; - Cz, Own; unfiltered: ECG");
    EXPECT_EQ(text({1, 3}, kRussian), u"0.5-35 Гц, - Cz, Own; без фильтров: ECG");
    EXPECT_EQ(text({3}), u"- Cz, Own");
    EXPECT_EQ(text({4}), u"< 5 Hz, Own") << "Cz is of another unit";
    block.rate = 60.0;
    EXPECT_EQ(text({1}), u"> 0.5 Hz, - Cz, Own") << "there is no low pass of 35 Hz at 60 Hz";
}

TEST(ShownTextTest, RefusalsNameWhatIsWrong) {
    const auto text = [](const nsp::FilterSettings& filter, Language language = kEnglish) {
        return RefusalText(filter, 100.0, language);
    };
    EXPECT_EQ(text({.highPass = 0.5, .lowPass = 49.9, .notch = 49}), u"");
    EXPECT_EQ(text({.lowPass = 70}), u"70 Hz is not below half the rate of 100 Hz");
    EXPECT_EQ(text({.notch = 50}, kRussian), u"50 Гц не ниже половины частоты дискретизации 100 Гц");
    EXPECT_EQ(text({.highPass = 60, .lowPass = 70}), u"60 Hz is not below half the rate of 100 Hz");
    EXPECT_EQ(text({.highPass = 40, .lowPass = 35}), u"the high pass of 40 Hz is not below the low pass of 35 Hz");
    EXPECT_NE(text({.highPass = -1}).find(u"1, 2 or 4"), std::u16string::npos);
    EXPECT_EQ(RefusalText({.notch = 50}, 0.0, kEnglish), u"there is no sampling rate");
}

TEST(ShownTextTest, FiltersAreKeptAndDamageIsOff) {
    for (const nsp::FilterSettings& filter : {nsp::FilterSettings(),
                                              {.highPass = 0.5, .lowPass = 35, .notch = 50},
                                              {.order = 1, .bothWays = true},
                                              {.highPass = 1.0 / 3.0, .order = 4, .bothWays = true},
                                              {.lowPass = 1e-7, .notch = 2e16}})
        EXPECT_EQ(FilterKept(KeptText(filter)), filter) << ::testing::PrintToString(KeptText(filter));
    EXPECT_EQ(KeptText({.highPass = 0.5, .lowPass = 35, .notch = 50}), u"0.5;35;2;50;0");
    for (const std::u16string_view text :
         {u"", u";;;;", u"0.5;35;2;50", u"0.5;35;2;50;0;", u"0,5;35;2;50;0", u"0.5;35;3;50;0", u"-1;35;2;50;0",
          u"0.5;35;2;nan;0", u"0.5;inf;2;50;0", u"40;35;2;50;0", u"0.5;35;2;50;2", u"0.5 ;35;2;50;0", u"x"})
        EXPECT_EQ(FilterKept(text), nsp::FilterSettings()) << ::testing::PrintToString(std::u16string(text));
}

}  // namespace
}  // namespace quillon
